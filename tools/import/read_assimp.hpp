// SPDX-License-Identifier: MIT
#pragma once

#include "tools/import/source.hpp"

#include <functional>
#include <string>

namespace Import {

/// Reads a file with Assimp and takes its scene over. `progress` gets the part done, 0 to 1. Raises
/// std::runtime_error that says why a file cannot be read. A damaged file may also crash it:
/// callers run it in a process of its own.
SourceScene ReadSource(const std::string& path, const std::function<void(double)>& progress);

} // namespace Import
