// SPDX-License-Identifier: MIT
//
// Four floats, of which `w` tells a point (other than 0) from a direction (0); addition and
// subtraction follow it.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/vector3.hpp"

#include <d3dx9.h>

namespace Vorn {

class VORN_API Vector4 {
public:
    // Names for the elements of the block below, bound once and for all by every constructor.
    float& x;
    float& y;
    float& z;
    float& w;

    Vector4() : Vector4(0.0f, 0.0f, 0.0f, 0.0f) {}
    Vector4(float ax, float ay, float az, float aw)
        : x(mBlock.x), y(mBlock.y), z(mBlock.z), w(mBlock.w), mBlock(ax, ay, az, aw) {}
    Vector4(const Vector3& v, float aw) : Vector4(v.x, v.y, v.z, aw) {}
    Vector4(const Vector4& v) : Vector4(v.x, v.y, v.z, v.w) {}
    Vector4& operator=(const Vector4& v) {
        mBlock = v.mBlock;
        return *this;
    }

    /// Of all four elements.
    float Length() const { return std::sqrt(x * x + y * y + z * z + w * w); }
    /// A normalised copy; this vector stays. A zero vector gives a zero vector.
    Vector4 Normalize() const;

private:
    D3DXVECTOR4 mBlock;
};

/// (0, 0, 0, 1) for two points, which cannot be added; else the sum of all four elements.
VORN_API Vector4 operator+(const Vector4& a, const Vector4& b);
/// A direction for two points and for two directions, a point for one of each.
VORN_API Vector4 operator-(const Vector4& a, const Vector4& b);
/// Scales x, y and z; `w` stays.
VORN_API Vector4 operator*(const Vector4& v, float f);
VORN_API Vector4 operator*(float f, const Vector4& v);

} // namespace Vorn
