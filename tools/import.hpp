// SPDX-License-Identifier: MIT
//
// `vorn import`: a model of another program becomes a model file with its materials, textures and a
// resource pack. docs/import.md is its manual.
#pragma once

#include "tools/import/options.hpp"

namespace Import {

/// Does what the options say and tells it on standard output; what cannot be done, on standard
/// error. The exit status of the program: 0, or 1 where nothing was written.
int Run(const Options& options);

} // namespace Import
