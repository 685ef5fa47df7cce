// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace VornPlatform {

/// function(operation, words, count) for each instruction; the first word is that of the operation.
template <typename Function>
void ForEachInstruction(std::vector<std::uint32_t>& spirv, Function function) {
    constexpr std::size_t HeaderWords = 5;
    for (std::size_t at = HeaderWords; at < spirv.size();) {
        const std::size_t count = spirv[at] >> 16;
        if (count == 0 || at + count > spirv.size())
            return;
        function(spirv[at] & 0xffff, &spirv[at], count);
        at += count;
    }
}

} // namespace VornPlatform
