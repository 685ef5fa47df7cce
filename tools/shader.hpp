// SPDX-License-Identifier: MIT
//
// `vorn shader`: compiles an effect file, or a shader by itself, as the engine does, and tells what
// came out. docs/shader_command.md is its manual.
#pragma once

#include <string>
#include <vector>

namespace Shader {

struct Options {
    std::string file;
    std::string entry, profile;       // of a shader by itself; both empty for an effect
    std::vector<std::string> defines; // "NAME" or "NAME=VALUE"
};

/// What came out goes to standard output, errors and warnings to standard error. The exit status of
/// the program: 0, or 1 for a file that is missing or has errors.
int Run(const Options& options);

} // namespace Shader
