// SPDX-License-Identifier: MIT
//
// `vorn package`: packs a game into a folder that runs on other machines. What goes along is
// decided in cmake/VornGamePackage.cmake.
#pragma once

#include <string>

namespace Project {

struct PackageOptions {
    std::string folder = ".";
    std::string game;   // of several; empty: the only one
    std::string out;    // empty: package/NAME in the game's folder
    bool force = false; // takes an earlier package's place
};

/// The exit status. Raises std::runtime_error where something fails; what was at `out` stays then.
int Package(const PackageOptions& options);

} // namespace Project
