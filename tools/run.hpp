// SPDX-License-Identifier: MIT
//
// `vorn run`: builds a game and starts it in its folder.
#pragma once

#include <string>
#include <vector>

namespace Project {

struct RunOptions {
    std::string folder = ".";
    std::string game; // of several; empty: the only one
    std::vector<std::string> arguments;
};

/// Becomes the game, so that its exit status is the command's. Raises std::runtime_error where it
/// does not come to that.
[[noreturn]] void Run(const RunOptions& options);

} // namespace Project
