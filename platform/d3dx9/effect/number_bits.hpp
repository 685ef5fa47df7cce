// SPDX-License-Identifier: MIT
//
// Numbers of one type as the four bytes of another, as D3DX turns them: what is cut off goes
// towards zero, everything but 0 is true, and true is 1.
#pragma once

#include "platform/d3dx9/effect/effect_code.hpp"

#include <bit>
#include <cstring>

namespace VornPlatform {

inline INT ToInt(INT number) {
    return number;
}
/// What no int holds, NaN too, is the least of them, as the processor has it.
template <typename Real>
INT ToInt(Real number) {
    const double wide = static_cast<double>(number);
    return wide > -2147483649.0 && wide < 2147483648.0 ? static_cast<INT>(wide) : INT32_MIN;
}

template <typename Number>
std::uint32_t BitsOf(ValueType type, Number number) {
    switch (type) {
    case ValueType::Bool:
        return number != Number(0);
    case ValueType::Int:
        return std::bit_cast<std::uint32_t>(ToInt(number));
    default:
        return std::bit_cast<std::uint32_t>(static_cast<float>(number));
    }
}

/// Of `bits` that lie in a block.
template <typename Number>
Number NumberOf(ValueType type, std::uint32_t bits) {
    if (type == ValueType::Float) {
        const float number = std::bit_cast<float>(bits);
        if constexpr (std::is_same_v<Number, INT>)
            return ToInt(number);
        else
            return static_cast<Number>(number);
    }
    return static_cast<Number>(std::bit_cast<INT>(bits));
}

inline std::uint32_t LoadBits(const std::byte* from) {
    std::uint32_t bits;
    std::memcpy(&bits, from, sizeof bits);
    return bits;
}
inline void StoreBits(std::byte* to, std::uint32_t bits) {
    std::memcpy(to, &bits, sizeof bits);
}

} // namespace VornPlatform
