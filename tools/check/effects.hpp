// SPDX-License-Identifier: MIT
#pragma once

#include "tools/check/finding.hpp"
#include "tools/check/folder.hpp"
#include "tools/check/table.hpp"

#include <string>

namespace Check {

/// A file of data/shaders: compiles it as the engine does, and looks for the names that the engine
/// sets in it.
void CheckEffect(const Table& table, const Folder& folder, const std::string& file,
                 Findings& findings);

} // namespace Check
