// SPDX-License-Identifier: MIT
#pragma once

#include "tools/check/finding.hpp"
#include "tools/check/folder.hpp"
#include "tools/check/table.hpp"

#include <functional>
#include <string>
#include <vector>

namespace Check {

/// Compiling shaders takes half of the library's machinery: whoever has it brings it.
using EffectChecker =
    std::function<void(const Table&, const Folder&, const std::string& file, Findings&)>;

/// Everything that is to tell of a folder.
std::vector<Finding> CheckFolder(const Folder& folder, const EffectChecker& checkEffect);

} // namespace Check
