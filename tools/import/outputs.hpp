// SPDX-License-Identifier: MIT
#pragma once

#include "tools/import/options.hpp"

#include <string>
#include <vector>

namespace Import {

/// Puts files below a folder, all of them or none: they are written beside their places first and
/// moved there once every one is whole. Files that are there with the same bytes stay; others are
/// replaced only with `force`. Raises std::runtime_error that names what is in the way.
void WriteOutputs(const std::string& folder, const std::vector<OutputFile>& files, bool force);

} // namespace Import
