// SPDX-License-Identifier: MIT
#include "tools/view/stage.hpp"

#include "tools/view/files.hpp"
#include "tools/view/shader_files.hpp"

#include "vorn/core/file.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace View {
namespace {

namespace fs = std::filesystem;

constexpr std::array<const char*, 3> Stores = {"img", "mesh", "mat"};

/// A folder of that name may belong to anybody; one with a store in it is a game's.
bool HoldsGame(const fs::path& folder) {
    std::error_code none;
    constexpr std::array<const char*, 7> parts = {"img",    "mesh", "mat",  "shaders",
                                                  "entity", "pack", "audio"};
    return std::any_of(parts.begin(), parts.end(), [&](const char* part) {
        return fs::is_directory(folder / "data" / part, none);
    });
}

fs::path RootOf(const fs::path& file, bool& isGame) {
    isGame = true;
    for (fs::path folder = file.parent_path();; folder = folder.parent_path()) {
        if (folder.filename() == "data" && HoldsGame(folder.parent_path()))
            return folder.parent_path();
        if (HoldsGame(folder))
            return folder;
        if (folder == folder.parent_path())
            break;
    }
    isGame = false;
    return file.parent_path();
}

/// What is there already stays.
void Link(const fs::path& target, const fs::path& link) {
    std::error_code there;
    fs::create_symlink(target, link, there);
}

template <typename Visit>
void ForEach(const fs::path& folder, const Visit& visit) {
    std::error_code none;
    for (fs::directory_iterator entry(folder, none), end; !none && entry != end;
         entry.increment(none))
        visit(entry->path());
}

bool IsIn(const fs::path& file, const fs::path& folder) {
    const fs::path relative = file.lexically_relative(folder);
    return !relative.empty() && *relative.begin() != "..";
}

} // namespace

Stage::Stage(const fs::path& file)
    : mFile(fs::absolute(file).lexically_normal()), mBefore(fs::current_path()) {
    mRoot = RootOf(mFile, mIsGame);
    std::string name = (fs::temp_directory_path() / "vorn-view-XXXXXX").string();
    if (!mkdtemp(name.data()))
        throw std::system_error(errno, std::generic_category(), name);
    mFolder = name;
    for (const char* store : Stores)
        fs::create_directories(mFolder / "data" / store);
    Refresh();
    CopyShaders();
    fs::current_path(mFolder);
}

Stage::~Stage() {
    std::error_code ignored;
    fs::current_path(mBefore, ignored);
    fs::remove_all(mFolder, ignored);
}

std::string Stage::NameOf(const char* store) const {
    const fs::path folder = mRoot / "data" / store;
    if (IsIn(mFile, folder))
        return mFile.lexically_relative(folder).string();
    return mFile.filename().string();
}

std::vector<std::string> Stage::Names(const char* store) {
    std::vector<std::string> names;
    Vorn::FilesInDirectory((std::string("data/") + store + "/*").c_str(), names);
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<fs::path> Stage::EntityFolders() const {
    const fs::path beside = mFile.parent_path();
    std::vector<fs::path> folders;
    for (const fs::path& folder :
         {beside, beside / "entity", mRoot / "data/entity", mRoot / "entity", mRoot / "data"})
        if (std::find(folders.begin(), folders.end(), folder) == folders.end())
            folders.push_back(folder);
    return folders;
}

void Stage::Refresh() const {
    // Nearer ones first: they win.
    if (!mIsGame || !IsIn(mFile, mRoot / "data"))
        linkNeighbours();
    if (mIsGame)
        linkGame();
}

void Stage::linkGame() const {
    const fs::path data = mRoot / "data";
    for (const char* store : Stores)
        ForEach(data / store, [&](const fs::path& path) {
            Link(path, mFolder / "data" / store / path.filename());
        });
    ForEach(data, [&](const fs::path& path) {
        const fs::path name = path.filename();
        if (name != "shaders" && name != "cursor_pointer.ani")
            Link(path, mFolder / "data" / name);
    });
}

void Stage::linkNeighbours() const {
    ForEach(mFile.parent_path(), [this](const fs::path& path) {
        const fs::path extension = path.extension();
        // By any name it may be a model, but for those that others have.
        const bool shown = path == mFile && extension != ".fx" && extension != ".ent" &&
                           extension != ".var" && extension != ".scene";
        const char* store = IsPicture(path)                                          ? "img"
                            : extension == ".json"                                   ? "mat"
                            : extension == ".mesh" || extension == ".model" || shown ? "mesh"
                                                                                     : nullptr;
        if (store)
            Link(path, mFolder / "data" / store / path.filename());
    });
}

void Stage::CopyShaders() const {
    const fs::path to = mFolder / "data/shaders";
    std::error_code ignored;
    fs::create_directories(to);
    // One by one: one that cannot be read does not keep the others away.
    ForEach(Shaders(), [&](const fs::path& path) {
        fs::copy(path, to / path.filename(),
                 fs::copy_options::overwrite_existing | fs::copy_options::recursive, ignored);
    });
    for (const auto& [name, text] : ShaderFiles)
        if (!fs::exists(to / name))
            Vorn::SaveToFile((to / name).string(), text.data(),
                             static_cast<unsigned int>(text.size()));
}

} // namespace View
