// SPDX-License-Identifier: MIT
//
// `vorn check`: tells the faults of a game's data, which the engine passes over in silence.
// docs/check.md is its manual.
#pragma once

#include <string>

namespace Check {

struct Options {
    std::string directory;
    std::string root;  // of the game; empty for what `directory` says
    std::string sarif; // where to write the findings too; empty for nowhere
};

/// Findings go to standard output. The exit status of the program: 0 for none, 1 for some.
int Run(const Options& options);

} // namespace Check
