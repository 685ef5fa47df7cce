// SPDX-License-Identifier: MIT
//
// What the author is told at the end. A line goes to the list of what became of the source, of what
// was changed, of what was left out, or of what needs an eye.
#pragma once

#include <string>
#include <vector>

namespace Import {

struct Report {
    std::vector<std::string> changed;
    std::vector<std::string> dropped;
    std::vector<std::string> warnings;

    /// The lists, each under its heading; empty ones not at all. A line that comes several times is
    /// told once.
    std::string Text() const;
};

} // namespace Import
