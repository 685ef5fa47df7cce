// SPDX-License-Identifier: MIT
#pragma once

#include "tools/check/finding.hpp"

#include <string_view>

namespace Check {

/// What a model file promises: docs/model_file.md.
void CheckModel(const std::string& file, std::string_view bytes, Findings& findings);

} // namespace Check
