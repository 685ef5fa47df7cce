// SPDX-License-Identifier: MIT
#include <windows.h>

#include <cstring>
#include <memory>
#include <string>

#include <dirent.h>
#include <fnmatch.h>
#include <sys/stat.h>

namespace {

struct Listing {
    DIR* directory;
    std::string folder; // with its slash
    std::string pattern;

    Listing(DIR* opened, std::string path, std::string names)
        : directory(opened), folder(std::move(path)), pattern(std::move(names)) {}
    Listing(const Listing&) = delete;
    Listing& operator=(const Listing&) = delete;
    ~Listing() { closedir(directory); }
};

// Only `*` and `?` are wildcards on Win32, and "*.*" means every name.
std::string ShellPattern(const std::string& names) {
    if (names == "*.*")
        return "*";
    std::string pattern;
    for (const char c : names) {
        if (c == '[' || c == ']' || c == '\\')
            pattern += '\\';
        pattern += c;
    }
    return pattern;
}

void Describe(const Listing& listing, const char* name, WIN32_FIND_DATAA& found) {
    found = {};
    std::strncpy(found.cFileName, name, sizeof found.cFileName - 1);
    found.dwFileAttributes = FILE_ATTRIBUTE_NORMAL;
    struct stat status {};
    if (stat((listing.folder + name).c_str(), &status) != 0)
        return;
    if (S_ISDIR(status.st_mode))
        found.dwFileAttributes = FILE_ATTRIBUTE_DIRECTORY;
    const auto size = static_cast<ULONGLONG>(status.st_size);
    found.nFileSizeHigh = static_cast<DWORD>(size >> 32);
    found.nFileSizeLow = static_cast<DWORD>(size & 0xffffffffu);
}

} // namespace

HANDLE FindFirstFileA(LPCSTR pattern, WIN32_FIND_DATAA* found) {
    const std::string path = pattern;
    const std::size_t slash = path.rfind('/');
    const std::size_t names = slash == std::string::npos ? 0 : slash + 1;
    const std::string folder = path.substr(0, names);

    DIR* directory = opendir(folder.empty() ? "." : folder.c_str());
    if (!directory)
        return INVALID_HANDLE_VALUE;
    auto listing = std::make_unique<Listing>(directory, folder, ShellPattern(path.substr(names)));
    if (!FindNextFileA(listing.get(), found))
        return INVALID_HANDLE_VALUE;
    return listing.release();
}

BOOL FindNextFileA(HANDLE handle, WIN32_FIND_DATAA* found) {
    const auto* listing = static_cast<const Listing*>(handle);
    while (const dirent* entry = readdir(listing->directory)) {
        if (fnmatch(listing->pattern.c_str(), entry->d_name, 0) != 0)
            continue;
        Describe(*listing, entry->d_name, *found);
        return TRUE;
    }
    return FALSE;
}

BOOL FindClose(HANDLE handle) {
    if (handle == INVALID_HANDLE_VALUE)
        return FALSE;
    delete static_cast<Listing*>(handle);
    return TRUE;
}
