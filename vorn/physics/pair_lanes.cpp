// SPDX-License-Identifier: MIT
#include "vorn/physics/pair_lanes.hpp"

#include "vorn/core/lanes.hpp"

#include <algorithm>
#include <bit>

namespace Vorn {

namespace {

#define VORN_LANES_FILE "vorn/physics/pair_lanes.inl"
#include "vorn/core/lanes.inl"

} // namespace

int* PairQuestion::Ask(const BodyLanes& lanes, std::span<const PlaceRange> ranges, int* out) const {
#if VORN_HAS_EIGHT_LANES
    if (__builtin_cpu_supports("avx2"))
        return Eight::Ask(*this, lanes, ranges, out);
#endif
    return Four::Ask(*this, lanes, ranges, out);
}

Judged JudgePairs(const SlimBox* boxes, std::span<PlacedPair> pairs, PlacedPair* unsure) {
#if VORN_HAS_EIGHT_LANES
    if (__builtin_cpu_supports("avx2"))
        return Eight::JudgePairs(boxes, pairs, unsure);
#endif
    return Four::JudgePairs(boxes, pairs, unsure);
}

} // namespace Vorn
