// SPDX-License-Identifier: MIT
#include "tools/check/folder.hpp"

#include "vorn/core/file.hpp"

#include <stdexcept>
#include <system_error>

namespace Check {
namespace {

namespace fs = std::filesystem;

fs::path GameOf(const fs::path& directory) {
    for (fs::path at = directory;; at = at.parent_path()) {
        std::error_code none;
        if (fs::is_directory(at / "data", none))
            return at;
        if (at == at.parent_path())
            return directory;
    }
}

bool IsHidden(const fs::path& path) {
    return path.filename().native().starts_with('.');
}

// Links to folders are not followed, so the walk ends.
void AddFiles(const fs::path& directory, const fs::path& root, std::set<std::string>& names) {
    std::error_code error;
    fs::recursive_directory_iterator at(directory, fs::directory_options::skip_permission_denied,
                                        error);
    for (const fs::recursive_directory_iterator end; !error && at != end; at.increment(error)) {
        std::error_code none;
        if (at->is_directory(none) && IsHidden(at->path()))
            at.disable_recursion_pending();
        else if (at->is_regular_file(none))
            names.insert(at->path().lexically_relative(root).generic_string());
    }
}

} // namespace

Folder ReadFolder(const fs::path& directory, const fs::path& root) {
    std::error_code error;
    const fs::path whole = fs::canonical(directory, error);
    if (error || !fs::is_directory(whole))
        throw std::runtime_error("no such folder: " + directory.string());
    const fs::path game = root.empty() ? GameOf(whole) : fs::canonical(root, error);
    if (error || !fs::is_directory(game))
        throw std::runtime_error("no such folder: " + root.string());

    Folder folder;
    AddFiles(whole, game, folder.checked);
    folder.names = folder.checked;
    AddFiles(game / "data", game, folder.names);
    if (fs::is_regular_file(game / "check.json", error))
        folder.names.insert("check.json");
    folder.read = [game](const std::string& name) {
        return Vorn::TextFromFile((game / name).string());
    };
    folder.path = [game, here = fs::current_path()](const std::string& name) {
        const fs::path path = (game / name).lexically_normal();
        const fs::path near = path.lexically_relative(here);
        return near.empty() || near.native().starts_with("..") ? path.string() : near.string();
    };
    return folder;
}

} // namespace Check
