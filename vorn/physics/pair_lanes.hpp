// SPDX-License-Identifier: MIT
//
// Below BodyGroup and the pair walk: what is asked of many pairs at once, in lanes.
#pragma once

#include "vorn/physics/body_lanes.hpp"
#include "vorn/physics/slim_box.hpp"

#include <cstddef>
#include <span>

namespace Vorn {

/// A body, and its place in the order of space.
struct Placed {
    int id, place;
};
struct PlacedPair {
    Placed first, second;
};

/// Places that follow each other.
struct PlaceRange {
    int begin, end;
};

/// One body against others, whichever of the two comes first in the list and so asks.
class PairQuestion {
public:
    PairQuestion(const Bounds& bounds, const Stretch& stretch)
        : x(bounds.center.x), y(bounds.center.y), z(bounds.center.z), reach(bounds.reach),
          stretched(bounds.reach * stretch.other), other(stretch.other),
          less(stretch.other - stretch.own) {}

    /// Writes the places of those in the ranges that it may meet, and returns the end of what it
    /// has written; as many more as a block has lanes may be overwritten. No range is empty.
    int* Ask(const BodyLanes& lanes, std::span<const PlaceRange> ranges, int* out) const;

    const float x, y, z, reach, stretched, other, less;
};

struct Judged {
    std::size_t hits, unsure;
};

/// Brings those of the pairs to the front whose boxes, by their places, are sure to hit, the first
/// of each by OBBToOBB with the second, and copies those that nobody can be sure of to `unsure`,
/// which has room for all.
Judged JudgePairs(const SlimBox* boxes, std::span<PlacedPair> pairs, PlacedPair* unsure);

} // namespace Vorn
