// SPDX-License-Identifier: MIT
#pragma once

#ifdef __SSE__
#include <xmmintrin.h>
#endif

namespace VornPlatform {

/// Sixteen floats each, which may lie anywhere.
inline void Transpose(float* to, const float* from) {
#ifdef __SSE__
    __m128 a = _mm_loadu_ps(from), b = _mm_loadu_ps(from + 4);
    __m128 c = _mm_loadu_ps(from + 8), d = _mm_loadu_ps(from + 12);
    const __m128 low = _mm_unpacklo_ps(a, c), high = _mm_unpackhi_ps(a, c);
    const __m128 lowNext = _mm_unpacklo_ps(b, d), highNext = _mm_unpackhi_ps(b, d);
    a = _mm_unpacklo_ps(low, lowNext), b = _mm_unpackhi_ps(low, lowNext);
    c = _mm_unpacklo_ps(high, highNext), d = _mm_unpackhi_ps(high, highNext);
    _mm_storeu_ps(to, a), _mm_storeu_ps(to + 4, b);
    _mm_storeu_ps(to + 8, c), _mm_storeu_ps(to + 12, d);
#else
    float turned[16];
    for (int i = 0; i < 16; ++i)
        turned[i] = from[i % 4 * 4 + i / 4];
    for (int i = 0; i < 16; ++i)
        to[i] = turned[i];
#endif
}

} // namespace VornPlatform
