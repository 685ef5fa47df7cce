// SPDX-License-Identifier: MIT
//
// The faults that ParseJson passes over, for tools that tell an author of them.
//
//   std::vector<Vorn::JsonFault> faults;
//   const Json::Value root = Vorn::ParseJson(text, faults);
#pragma once

#include "vorn/core/json.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Vorn {

struct JsonFault {
    std::size_t offset = 0; // from the start of the text (unit: bytes)
    std::string message;
};

/// What ParseJson(text) gives, and what it met on the way, in the order of the text. Values know
/// where they stand: Json::Value::getOffsetStart.
VORN_API Json::Value ParseJson(std::string_view text, std::vector<JsonFault>& faults);

} // namespace Vorn
