// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>

namespace Check {

/// The files of a game. Names go from the game's folder, the one that holds "data", with "/".
struct Folder {
    std::set<std::string> names;   // all there are
    std::set<std::string> checked; // those that faults are told of
    /// The bytes of one of them; raises std::runtime_error.
    std::function<std::string(const std::string& name)> read;
    /// How a person or an editor finds it: from the working directory.
    std::function<std::string(const std::string& name)> path;

    bool Holds(const std::string& name) const { return names.count(name) != 0; }
};

/// What lies below `directory`, and below "data" of the game that it belongs to: `root`, or if that
/// is empty, the nearest folder from `directory` upwards that holds "data". Folders whose name
/// begins with a dot are left out. Raises std::runtime_error for a directory that is none.
Folder ReadFolder(const std::filesystem::path& directory, const std::filesystem::path& root);

} // namespace Check
