// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace VornPlatform {

struct SpirvFault {
    std::string message;
    int line = 0; // of the text, from 1, where the module tells lines; else 0
};

/// The compiler takes some texts that mean nothing, an index that is a vector for one. No driver
/// would take what it makes of them, and none would say so before the first draw.
std::optional<SpirvFault> FindFault(const std::vector<std::uint32_t>& spirv);

} // namespace VornPlatform
