// SPDX-License-Identifier: MIT
#pragma once

#include "tools/check/finding.hpp"
#include "tools/check/table.hpp"

#include <string_view>

namespace Check {

/// What a font file says and the engine does not read: docs/font_file.md.
void CheckFont(const Table& table, const std::string& file, std::string_view text,
               Findings& findings);

} // namespace Check
