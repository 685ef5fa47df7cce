// SPDX-License-Identifier: MIT
#pragma once

#include "tools/check/table.hpp"

#include <string>

namespace Check {

/// A page of docs/ with its tables of keys as the table has them. They stand between the lines
/// `<!-- keys: Material -->` and `<!-- end -->`, all else stays. Besides records there are
/// "Events", "Commands", "Font", "Effects" and "EffectNames". A name that there is not raises
/// std::runtime_error.
std::string UpdatePage(const std::string& page, const Table& table);

} // namespace Check
