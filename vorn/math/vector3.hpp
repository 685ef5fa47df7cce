// SPDX-License-Identifier: MIT
//
// Three floats: a point, a direction, a scale.
//
//   Vorn::Vector3 toTarget = target - position;
//   toTarget.Normalize();
//   position += toTarget * (speed * dt);
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/fwd.hpp"

#include <d3dx9.h>

#include <cmath>

namespace Vorn {

class VORN_API Vector3 {
public:
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;

    constexpr Vector3() = default;
    constexpr Vector3(float ax, float ay, float az) : x(ax), y(ay), z(az) {}

    void Set(float ax, float ay, float az) { *this = Vector3(ax, ay, az); }
    operator D3DXVECTOR3() const { return {x, y, z}; }

    Vector3& operator+=(const Vector3& v) {
        x += v.x;
        y += v.y;
        z += v.z;
        return *this;
    }
    Vector3& operator-=(const Vector3& v) {
        x -= v.x;
        y -= v.y;
        z -= v.z;
        return *this;
    }
    Vector3& operator*=(float f) {
        x *= f;
        y *= f;
        z *= f;
        return *this;
    }
    Vector3& operator/=(float f) {
        x /= f;
        y /= f;
        z /= f;
        return *this;
    }
    constexpr Vector3 operator-() const { return {-x, -y, -z}; }

    /// Exact, without a tolerance; a NaN is unequal to everything.
    constexpr bool operator==(const Vector3& v) const { return x == v.x && y == v.y && z == v.z; }

    /// To length 1. A vector shorter than 0.00001 stays as it is.
    void Normalize() {
        const float length = Length();
        if (!(length < 0.00001f))
            *this /= length;
    }
    /// The same into `out`, but divided whatever the length: a zero vector gives NaNs.
    void Normalize(Vector3& out) const;

    float Length() const { return std::sqrt(SquareLength()); }
    float SquareLength() const { return x * x + y * y + z * z; }
    float Distance(const Vector3& v) const { return Vector3(x - v.x, y - v.y, z - v.z).Length(); }
    float SquareDistance(const Vector3& v) const {
        return Vector3(x - v.x, y - v.y, z - v.z).SquareLength();
    }
    float DotProduct(const Vector3& v) const { return x * v.x + y * v.y + z * v.z; }
    Vector3 CrossProduct(const Vector3& v) const {
        return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
    }
    /// (unit: radians), 0 to pi. A NaN where rounding takes the cosine beyond 1.
    float AngleBetween(const Vector3& v) const;
    /// Turns this vector towards `target` by exactly `angle` (unit: radians), also past it. A
    /// vector parallel to its target has no axis to turn about and is scaled by the cosine.
    void RotateTo(const Vector3& target, float angle);
};

inline Vector3 operator+(Vector3 a, const Vector3& b) {
    return a += b;
}
inline Vector3 operator-(Vector3 a, const Vector3& b) {
    return a -= b;
}
inline Vector3 operator*(Vector3 v, float f) {
    return v *= f;
}
inline Vector3 operator*(float f, Vector3 v) {
    return v *= f;
}
inline Vector3 operator/(Vector3 v, float f) {
    return v /= f;
}

static_assert(sizeof(Vector3) == sizeof(D3DXVECTOR3));

} // namespace Vorn
