// SPDX-License-Identifier: MIT
//
// Four floats at a time, by the vector types that gcc and clang share: below the geometry, not for
// hosts. Each lane computes as a float alone does.
#pragma once

#include <cmath>
#include <cstdint>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Vorn {

using Float4 = float __attribute__((vector_size(16)));
/// What a comparison of Float4 gives: all bits of a lane, or none.
using Int4 = std::int32_t __attribute__((vector_size(16)));
using UInt4 = std::uint32_t __attribute__((vector_size(16)));

inline Float4 AllFour(float f) {
    return Float4{f, f, f, f};
}

/// A bit for each lane that is set.
inline unsigned int LaneBits(const Int4& mask) {
#ifdef __SSE2__
    return static_cast<unsigned int>(_mm_movemask_ps(__builtin_bit_cast(__m128, mask)));
#else
    return (mask[0] & 1u) | (mask[1] & 2u) | (mask[2] & 4u) | (mask[3] & 8u);
#endif
}

/// The roots of all four, each as std::sqrt gives it.
inline Float4 RootOf(const Float4& f) {
#ifdef __SSE2__
    return __builtin_bit_cast(Float4, _mm_sqrt_ps(__builtin_bit_cast(__m128, f)));
#else
    return Float4{std::sqrt(f[0]), std::sqrt(f[1]), std::sqrt(f[2]), std::sqrt(f[3])};
#endif
}

/// The largest whole numbers that are not larger, where an int can hold them.
inline Int4 FloorOf(const Float4& f) {
    const Int4 cut = __builtin_convertvector(f, Int4);
    return cut + (__builtin_convertvector(cut, Float4) > f);
}

/// Without the sign.
inline Float4 SizeOf(const Float4& f) {
    return __builtin_bit_cast(Float4, __builtin_bit_cast(Int4, f) & 0x7fffffff);
}

/// Of each lane, `a` where the mask is set and `b` where it is not.
inline Float4 Pick(const Int4& mask, const Float4& a, const Float4& b) {
    return __builtin_bit_cast(Float4, (mask & __builtin_bit_cast(Int4, a)) |
                                          (~mask & __builtin_bit_cast(Int4, b)));
}

/// One lane, in all four.
template <int lane>
Float4 Spread(const Float4& f) {
    return __builtin_shufflevector(f, f, lane, lane, lane, lane);
}

/// Lane i of row j becomes lane j of row i.
inline void Transpose(Float4 (&rows)[4]) {
    const Float4 low0 = __builtin_shufflevector(rows[0], rows[1], 0, 4, 1, 5);
    const Float4 high0 = __builtin_shufflevector(rows[0], rows[1], 2, 6, 3, 7);
    const Float4 low1 = __builtin_shufflevector(rows[2], rows[3], 0, 4, 1, 5);
    const Float4 high1 = __builtin_shufflevector(rows[2], rows[3], 2, 6, 3, 7);
    rows[0] = __builtin_shufflevector(low0, low1, 0, 1, 4, 5);
    rows[1] = __builtin_shufflevector(low0, low1, 2, 3, 6, 7);
    rows[2] = __builtin_shufflevector(high0, high1, 0, 1, 4, 5);
    rows[3] = __builtin_shufflevector(high0, high1, 2, 3, 6, 7);
}

} // namespace Vorn
