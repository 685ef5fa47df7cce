// SPDX-License-Identifier: MIT
#pragma once

#include <json/value.h>

#include <string>

namespace Vorn::Dev {

/// The object that a file holds. The engine takes a text as far as it goes; here one that has a
/// fault, or no object, raises DataError with the line. Raises as TextFromFile does.
Json::Value ReadWhole(const std::string& path);

} // namespace Vorn::Dev
