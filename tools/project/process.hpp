// SPDX-License-Identifier: MIT
//
// Programs that the command starts: CMake, and the game.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace Project {

/// Runs a program with its arguments and waits for it. What it says goes where ours goes, or, with
/// a `log`, into that file. Its exit status, 128 and the signal where one ended it. Raises
/// std::runtime_error for a program that cannot be started.
int RunProgram(const std::vector<std::string>& words, const std::filesystem::path& log = {});

/// Becomes that program, in that folder. Returns only by raising std::runtime_error.
[[noreturn]] void BecomeProgram(const std::vector<std::string>& words,
                                const std::filesystem::path& folder);

/// Where this program lies, links followed.
std::filesystem::path OwnFolder();

} // namespace Project
