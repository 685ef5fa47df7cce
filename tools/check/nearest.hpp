// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Check {

/// Of `names` the one that `name` was most likely meant to be; empty where none is near. Letters
/// may be missing, too many, others, or swapped with their neighbour; capitals do not count.
std::string Nearest(std::string_view name, const std::vector<std::string>& names);

/// `; is "Mass" meant?`, or nothing.
std::string Suggestion(std::string_view name, const std::vector<std::string>& names);

} // namespace Check
