// SPDX-License-Identifier: MIT
//
// The build of a game, in build/ of its folder: what `vorn run` and `vorn package` begin with.
#pragma once

#include <filesystem>
#include <string>

namespace Project {

struct BuiltGame {
    std::string name;              // as vorn_game has it
    std::filesystem::path program; // in the folder that it runs in
    std::filesystem::path build;
};

/// Configures (release, unless the build folder says otherwise) and builds with the package that
/// this command belongs to. `name` picks one of several games; empty: the only one. Raises
/// std::runtime_error where something is missing or a step fails, whose own words are on standard
/// error by then.
BuiltGame Build(const std::filesystem::path& folder, const std::string& name);

} // namespace Project
