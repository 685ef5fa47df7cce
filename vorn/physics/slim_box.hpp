// SPDX-License-Identifier: MIT
//
// Below the pair walk: a box in one cache line, and a test of two of them by far less than their
// corners. Rounding makes it differ from OBBToOBB where they hardly touch or hardly miss, and
// there it says that it cannot tell.
#pragma once

#include "vorn/core/float4.hpp"
#include "vorn/math/vector3.hpp"
#include "vorn/physics/body_volume.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Vorn {

/// Lane i of x, y and z is axis i, in the order of BoxAxes, and lane 3 the centre. Lane i of `half`
/// is half the edge along that axis, and lane 3 the doubt.
struct alignas(64) SlimBox {
    Float4 x, y, z, half;
};

/// What is said of a box whose axes may not be of length 1 and at right angles.
inline constexpr float AllDoubt = std::numeric_limits<float>::infinity();

/// How far the two tests may be apart, in parts of the sum of two boxes' sizes. With u for the last
/// bit of a float and f for the distance from the origin and 30 times the sum of half the edges, a
/// corner is good to u * f, and so an axis to 4.6 * u * f / (shortest edge), which counts over the
/// distance of the two boxes. What else is rounded is less than two fifths of that.
inline float DoubtOf(const Vector3& center, const Vector3& size) {
    const float x = std::abs(size.x), y = std::abs(size.y), z = std::abs(size.z);
    return 2e-6f * (center.Length() + 15 * (x + y + z)) / std::min({x, y, z});
}

inline SlimBox SlimBoxOf(const Vector3& center, const BodyTurn& turn, const Vector3& size,
                         float doubt) {
    const float* t = turn.m;
    return {Float4{t[0], t[2], t[1], center.x}, Float4{t[3], t[5], t[4], center.y},
            Float4{t[6], t[8], t[7], center.z},
            Float4{std::abs(size.x) / 2, std::abs(size.z) / 2, std::abs(size.y) / 2, doubt}};
}

struct BoxVerdict {
    bool hit, sure;
};

/// Whether OBBToOBB of `a` and `b` hits.
inline BoxVerdict Judge(const SlimBox& a, const SlimBox& b) {
    const auto size = [](const Float4& f) { return f < 0.0f ? -f : f; };
    const auto alongA = [&a](const Float4& x, const Float4& y, const Float4& z) {
        return a.x * x + a.y * y + a.z * z;
    };
    const auto reachOfEdge = [&]<int i>() {
        return size(alongA(Spread<i>(b.x), Spread<i>(b.y), Spread<i>(b.z))) * Spread<i>(b.half);
    };
    const Float4 distance =
        size(alongA(Spread<3>(b.x - a.x), Spread<3>(b.y - a.y), Spread<3>(b.z - a.z)));
    const Float4 limit = a.half + reachOfEdge.operator()<0>() + reachOfEdge.operator()<1>() +
                         reachOfEdge.operator()<2>();
    const Float4 sizes = Spread<0>(limit) + Spread<1>(limit) + Spread<2>(limit);
    const Float4 slack = (Spread<3>(a.half) + Spread<3>(b.half)) * sizes;
    const Float4 gap = distance - limit;
    constexpr unsigned int Axes = 7;
    const bool hit = (LaneBits(gap < -slack) & Axes) == Axes;
    const bool miss = (LaneBits(gap > slack) & Axes) != 0;
    return {hit, hit || miss};
}

} // namespace Vorn
