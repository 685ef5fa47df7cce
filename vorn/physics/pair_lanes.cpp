// SPDX-License-Identifier: MIT
#include "vorn/physics/pair_lanes.hpp"

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace Vorn {

namespace {

namespace Four {
#define VORN_LANES 4
#include "vorn/physics/pair_lanes.inl"
#undef VORN_LANES
} // namespace Four

#if defined(__x86_64__)
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2")
#endif
namespace Eight {
#define VORN_LANES 8
#include "vorn/physics/pair_lanes.inl"
#undef VORN_LANES
} // namespace Eight
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
#endif

} // namespace

int* PairQuestion::Ask(const BodyLanes& lanes, std::span<const PlaceRange> ranges, int* out) const {
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2"))
        return Eight::Ask(*this, lanes, ranges, out);
#endif
    return Four::Ask(*this, lanes, ranges, out);
}

Judged JudgePairs(const SlimBox* boxes, std::span<PlacedPair> pairs, PlacedPair* unsure) {
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2"))
        return Eight::JudgePairs(boxes, pairs, unsure);
#endif
    return Four::JudgePairs(boxes, pairs, unsure);
}

} // namespace Vorn
