// SPDX-License-Identifier: MIT
//
// `vorn new`: writes a game to start from, out of the files of tools/new/template.
#pragma once

#include <string>

namespace Project {

struct NewOptions {
    /// Where the game goes; its last part is the name.
    std::string folder;
};

/// Why it is no name of a game, which is a program, a target of CMake and a folder too; empty if it
/// is one.
std::string FaultOfName(const std::string& name);

/// The exit status. Raises std::runtime_error, and leaves nothing behind, where the folder is there
/// already or cannot be written.
int New(const NewOptions& options);

} // namespace Project
