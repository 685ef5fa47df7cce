// SPDX-License-Identifier: MIT
//
// Below the pair walk: a box in one cache line, enough for a test of two of them by far less than
// their corners. Rounding makes it differ from OBBToOBB where they hardly touch or hardly miss, and
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
    const float out = std::abs(center.x) + std::abs(center.y) + std::abs(center.z);
    return 2e-6f * (out + 15 * (x + y + z)) / std::min({x, y, z});
}

inline SlimBox SlimBoxOf(const Vector3& center, const BodyTurn& turn, const Vector3& size,
                         float doubt) {
    SlimBox box{turn.x, turn.y, turn.z,
                Float4{std::abs(size.x), std::abs(size.z), std::abs(size.y)} * 0.5f};
    box.x[3] = center.x;
    box.y[3] = center.y;
    box.z[3] = center.z;
    box.half[3] = doubt;
    return box;
}

} // namespace Vorn
