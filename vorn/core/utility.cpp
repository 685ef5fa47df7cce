// SPDX-License-Identifier: MIT
#include "vorn/core/utility.hpp"

#include "vorn/math/vector3.hpp"

#include <cstdlib>
#include <utility>

namespace Vorn {

float fclamp(float value, float low, float high) {
    if (value < low)
        return low;
    return value > high ? high : value;
}

float fclampw(float value, float low, float high) {
    const float span = high - low;
    if (value < low)
        return value + span;
    return value > high ? value - span : value;
}

float Random(float low, float high) {
    if (!(high > low))
        std::swap(low, high);
    const int step = std::rand() % 10000;
    // The step is the float nearest to 0.0001, not the double.
    const float t = static_cast<float>(step * 9.999999747378752e-05);
    const double from = static_cast<double>(low);
    const double to = static_cast<double>(high);
    return static_cast<float>(from + (to - from) * static_cast<double>(t));
}

void RandomVector(const Vector3& low, const Vector3& high, Vector3& out) {
    out.x = Random(low.x, high.x);
    out.y = Random(low.y, high.y);
    out.z = Random(low.z, high.z);
}

float RadToDeg(float radians) {
    return static_cast<float>(static_cast<double>(radians) * 57.295780181884766);
}

float DegToRad(float degrees) {
    return static_cast<float>(static_cast<double>(degrees) * 0.01745329238474369);
}

} // namespace Vorn
