// SPDX-License-Identifier: MIT
#include "dev/file_watch.hpp"

#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>

namespace Vorn::Dev {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr Clock::duration Rest = std::chrono::milliseconds(100);
constexpr std::uint32_t Events = IN_CLOSE_WRITE | IN_MODIFY | IN_CREATE | IN_DELETE |
                                 IN_MOVED_FROM | IN_MOVED_TO | IN_ONLYDIR | IN_EXCL_UNLINK;

[[noreturn]] void Raise(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

struct Folder {
    fs::path path; // as it is told
    fs::path real;
    bool told = true; // else only files in it that a link stands for
};

} // namespace

struct FileWatch::Impl {
    Impl() : file(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        if (file < 0)
            Raise("cannot watch files");
    }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;
    ~Impl() { close(file); }

    void Add(const fs::path& folder);
    void AddBelow(const fs::path& folder);
    void FollowLink(const fs::path& link);
    void TouchAllBelow(const fs::path& folder);
    void Touch(const fs::path& path) { touched[path.string()] = Clock::now(); }
    void Read();
    void On(const inotify_event& event);
    void keep(int watch, const fs::path& folder);

    int file;
    std::map<int, Folder> folders;                // by their watch
    std::map<fs::path, std::set<fs::path>> links; // to files, by what they stand for
    std::set<fs::path> roots;
    std::map<std::string, Clock::time_point> touched;
};

void FileWatch::Impl::Add(const fs::path& folder) {
    const int watch = inotify_add_watch(file, folder.c_str(), Events);
    if (watch < 0)
        Raise("cannot watch folder: " + folder.string());
    keep(watch, folder);
}

// Folders come and go while we look.
void FileWatch::Impl::AddBelow(const fs::path& folder) {
    std::error_code gone;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, gone)) {
        if (entry.is_symlink(gone))
            FollowLink(entry.path());
        if (!entry.is_directory(gone) || entry.is_symlink(gone))
            continue;
        const int watch = inotify_add_watch(file, entry.path().c_str(), Events);
        if (watch < 0 && errno != ENOENT && errno != ENOTDIR)
            Raise("cannot watch folder: " + entry.path().string());
        if (watch < 0)
            continue;
        keep(watch, entry.path());
        AddBelow(entry.path());
    }
}

void FileWatch::Impl::keep(int watch, const fs::path& folder) {
    std::error_code gone;
    folders[watch] = {folder, fs::canonical(folder, gone), true};
}

// What is written through a link happens in another folder.
void FileWatch::Impl::FollowLink(const fs::path& link) {
    std::error_code gone;
    const fs::path real = fs::canonical(link, gone);
    if (gone || !fs::is_regular_file(real, gone))
        return;
    const fs::path folder = real.parent_path();
    const int watch = inotify_add_watch(file, folder.c_str(), Events);
    if (watch < 0)
        return;
    folders.try_emplace(watch, Folder{folder, folder, false});
    links[real].insert(link);
}

void FileWatch::Impl::TouchAllBelow(const fs::path& folder) {
    std::error_code gone;
    for (fs::recursive_directory_iterator at(folder, gone), end; !gone && at != end;
         at.increment(gone))
        if (std::error_code broken; !at->is_directory(broken))
            Touch(at->path());
}

void FileWatch::Impl::On(const inotify_event& event) {
    if (event.mask & IN_Q_OVERFLOW) {
        for (const fs::path& root : roots)
            TouchAllBelow(root);
        return;
    }
    if (event.mask & IN_IGNORED) {
        folders.erase(event.wd);
        return;
    }
    const auto folder = folders.find(event.wd);
    if (folder == folders.end() || event.len == 0)
        return;
    const Folder& place = folder->second;
    const fs::path path = place.path / static_cast<const char*>(event.name);
    const auto linked = links.find(place.real / static_cast<const char*>(event.name));
    if (linked != links.end())
        for (const fs::path& link : linked->second)
            Touch(link);
    if (!place.told)
        return;
    if (!(event.mask & IN_ISDIR)) {
        std::error_code gone;
        if (fs::is_symlink(path, gone))
            FollowLink(path);
        return Touch(path);
    }
    if (event.mask & (IN_CREATE | IN_MOVED_TO)) {
        // What is in it may have come before the watch.
        const int watch = inotify_add_watch(file, path.c_str(), Events);
        if (watch < 0)
            return;
        keep(watch, path);
        try {
            AddBelow(path);
        } catch (const std::system_error&) {
            // Without more watches its folders stay unknown.
        }
        TouchAllBelow(path);
    } else if (event.mask & IN_MOVED_FROM) {
        const std::string below = (path / "").string();
        std::erase_if(folders, [&](const auto& entry) {
            const bool moved = ((entry.second.path / "").string()).starts_with(below);
            if (moved)
                inotify_rm_watch(file, entry.first);
            return moved;
        });
    }
}

void FileWatch::Impl::Read() {
    alignas(inotify_event) char buffer[16384];
    for (;;) {
        const ssize_t size = read(file, buffer, sizeof buffer);
        if (size <= 0)
            return;
        for (const char* at = buffer; at < buffer + size;) {
            // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as the kernel writes it
            const auto& event = *reinterpret_cast<const inotify_event*>(at);
            at += sizeof event + event.len;
            On(event);
        }
    }
}

FileWatch::FileWatch() : mImpl(std::make_unique<Impl>()) {}

FileWatch::~FileWatch() = default;

void FileWatch::Add(const std::string& folder) {
    if (!mImpl->roots.insert(folder).second)
        return;
    mImpl->Add(folder);
    mImpl->AddBelow(folder);
}

std::vector<std::string> FileWatch::Changed() {
    mImpl->Read();
    const Clock::time_point now = Clock::now();
    std::vector<std::string> changed;
    std::erase_if(mImpl->touched, [&](const auto& entry) {
        const bool rests = now - entry.second >= Rest;
        if (rests)
            changed.push_back(entry.first);
        return rests;
    });
    return changed;
}

} // namespace Vorn::Dev
