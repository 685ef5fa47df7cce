// SPDX-License-Identifier: MIT
//
// A rotation in four floats, by the quaternion functions of D3DX.
//
//   Vorn::Quaternion turn(Vorn::Vector3(0, 1, 0), angle);
//   const Vorn::Matrix4 rotation = turn.QuatToMatrix();
//
// The member operators +, -, * and / change their left operand, each being its compound twin; only
// the free product of two quaternions makes a new one. The default is (0, 0, 0, 0), which is no
// rotation at all.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/matrix4.hpp"
#include "vorn/math/vector3.hpp"

#include <d3dx9.h>

namespace Vorn {

class VORN_API Quaternion {
public:
    // Names for the elements of the block below, bound once and for all by every constructor.
    float& x;
    float& y;
    float& z;
    float& w;

    Quaternion() : Quaternion(D3DXQUATERNION(0.0f, 0.0f, 0.0f, 0.0f)) {}
    /// A turn by `angle` (unit: radians) about `axis`.
    Quaternion(const Vector3& axis, float angle) : Quaternion() { set(axis, angle); }
    /// (unit: radians)
    Quaternion(float yaw, float pitch, float roll) : Quaternion() { set(yaw, pitch, roll); }
    /// From an array that runs w, x, y, z; all 0 where it is null.
    Quaternion(const float* wxyz);
    Quaternion(const Quaternion& q) : Quaternion(q.mBlock) {}
    Quaternion& operator=(const Quaternion& q) {
        mBlock = q.mBlock;
        return *this;
    }

    void set(const Vector3& axis, float angle);
    void set(float yaw, float pitch, float roll);

    Quaternion& operator+(const Quaternion& q) { return *this += q; }
    Quaternion& operator+=(const Quaternion& q);
    Quaternion& operator-(const Quaternion& q) { return *this -= q; }
    Quaternion& operator-=(const Quaternion& q);
    Quaternion& operator*(float f) { return *this *= f; }
    Quaternion& operator*=(float f);
    Quaternion& operator/(float f) { return *this /= f; }
    Quaternion& operator/=(float f) { return *this *= 1 / f; }
    /// This rotation first, then `q`.
    Quaternion& operator*=(const Quaternion& q);
    /// This rotation first, then the inverse of `q`.
    Quaternion& operator/(const Quaternion& q) { return *this /= q; }
    Quaternion& operator/=(const Quaternion& q);

    /// Exact, without a tolerance.
    bool operator==(const Quaternion& q) const {
        return x == q.x && y == q.y && z == q.z && w == q.w;
    }

    float Length() const { return std::sqrt(SquareLength()); }
    float SquareLength() const { return x * x + y * y + z * z + w * w; }
    /// In place; a length of 0 gives NaNs.
    void Normalize() { *this *= 1 / Length(); }
    /// Into `out`, by D3DXQuaternionNormalize, where a length of 0 stays 0.
    void Normalize(Quaternion& out) const;
    void Inverse();
    void Inverse(Quaternion& out) const;

    /// The rotation of column vectors.
    Matrix4 QuatToMatrix() const;
    /// `angle` in radians.
    void QuatToAxisAngle(Vector3& axis, float& angle) const;
    /// Writes "(x, y, z, w)" and a line end to standard output.
    void DisplayInfo() const;

private:
    explicit Quaternion(const D3DXQUATERNION& block)
        : x(mBlock.x), y(mBlock.y), z(mBlock.z), w(mBlock.w), mBlock(block) {}
    friend VORN_API Quaternion operator*(const Quaternion& first, const Quaternion& second);

    D3DXQUATERNION mBlock;
};

/// The rotation `first`, then the rotation `second`.
VORN_API Quaternion operator*(const Quaternion& first, const Quaternion& second);

} // namespace Vorn
