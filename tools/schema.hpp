// SPDX-License-Identifier: MIT
//
// `vorn schema`: writes JSON schemas of all data files, with which editors complete and check while
// one types. docs/check.md is its manual.
#pragma once

#include <string>

namespace Schema {

struct Options {
    std::string directory;
    std::string game;  // whose declared keys go into the schemas; empty for none
    std::string pages; // in place of schemas: brings the tables of these pages up to date
};

/// The exit status of the program. Raises for what cannot be written.
int Run(const Options& options);

} // namespace Schema
