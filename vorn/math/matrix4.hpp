// SPDX-License-Identifier: MIT
//
// A 4x4 matrix, stored row by row, that multiplies column vectors.
//
//   const Vorn::Matrix4 turn = Vorn::Matrix4::RotationEuler(0, yaw, 0);
//   const Vorn::Matrix4 world = Vorn::Matrix4::Translation(position) * turn;
//   const Vorn::Vector3 corner = world * Vorn::Vector3(1, 1, 1);
//
// In A * B the factor B acts first; the translation stands in the fourth column. Direct3D
// multiplies row vectors, so a matrix is transposed on its way to D3DXMATRIX. Angles are radians.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/vector3.hpp"
#include "vorn/math/vector4.hpp"

#include <d3dx9.h>

namespace Vorn {

class VORN_API Matrix4 {
public:
    static const Matrix4 Identity;

    /// Element (row, column), both from 0, stands at index 4 row + column.
    float m[16];

    /// The sixteen floats at `elements`; the identity where it is null.
    Matrix4(const float* elements = nullptr);
    constexpr Matrix4(float m00, float m01, float m02, float m03, float m10, float m11, float m12,
                      float m13, float m20, float m21, float m22, float m23, float m30, float m31,
                      float m32, float m33)
        : m{m00, m01, m02, m03, m10, m11, m12, m13, m20, m21, m22, m23, m30, m31, m32, m33} {}

    /// The transpose.
    operator D3DXMATRIX() const;

    Matrix4& operator*=(const Matrix4& right);

    void SetIdentity() { *this = Identity; }
    void Transpose() { *this = Transposed(); }
    Matrix4 Transposed() const;
    /// Of a translation, a rotation and a scale along the axes, multiplied in this order; no
    /// general inverse. Row 3 is ignored. A column of length 0 gives infinities and NaNs.
    void Inverse() { *this = Inversed(); }
    Matrix4 Inversed() const;
    /// Adds to the fourth column; the matrix's own rotation does not turn the offset.
    void Translate(float x, float y, float z);
    void Translate(const Vector3& offset) { Translate(offset.x, offset.y, offset.z); }
    /// Multiplies the three elements of the diagonal only.
    void Scale(float x, float y, float z);
    void Scale(const Vector3& factors) { Scale(factors.x, factors.y, factors.z); }
    /// A copy with no translation; scale and row 3 stay.
    Matrix4 ExtractRotation() const;

    Vector3 Col1ToVec3() const { return column3(0); }
    Vector3 Col2ToVec3() const { return column3(1); }
    Vector3 Col3ToVec3() const { return column3(2); }
    Vector3 Col4ToVec3() const { return column3(3); }
    Vector4 Col1ToVec4() const { return column4(0); }
    Vector4 Col2ToVec4() const { return column4(1); }
    Vector4 Col3ToVec4() const { return column4(2); }
    Vector4 Col4ToVec4() const { return column4(3); }
    Vector3 Row1ToVec3() const { return row3(0); }
    Vector3 Row2ToVec3() const { return row3(1); }
    Vector3 Row3ToVec3() const { return row3(2); }
    Vector3 Row4ToVec3() const { return row3(3); }
    Vector4 Row1ToVec4() const { return row4(0); }
    Vector4 Row2ToVec4() const { return row4(1); }
    Vector4 Row3ToVec4() const { return row4(2); }
    Vector4 Row4ToVec4() const { return row4(3); }

    static Matrix4 Translation(float x, float y, float z);
    static Matrix4 Translation(const Vector3& v) { return Translation(v.x, v.y, v.z); }
    static Matrix4 Scaling(float x, float y, float z);
    static Matrix4 Scaling(const Vector3& v) { return Scaling(v.x, v.y, v.z); }
    /// About X first, then about Y, then about Z.
    static Matrix4 RotationEuler(float x, float y, float z);
    static Matrix4 RotationEuler(const Vector3& v) { return RotationEuler(v.x, v.y, v.z); }
    /// Carries `axis` onto +Z. An axis along -Y, or along +Y and not of length 1, leaves rows 0 and
    /// 1 zero.
    static Matrix4 RotationAxisAlignZ(const Vector3& axis);
    /// An axis shorter than 0.00001 is not normalised: a zero axis gives cos(angle) on the
    /// diagonal.
    static Matrix4 RotationAxisAngle(const Vector3& axis, float angle);

    /// The left-handed view of D3DXMatrixLookAtLH.
    static Matrix4 LookAt(const Vector3& eye, const Vector3& at, const Vector3& up);
    /// The left-handed projection of D3DXMatrixPerspectiveFovLH; `fov` is the vertical one.
    static Matrix4 Projection(float fov, float aspect, float nearZ, float farZ);
    /// The screen from (0, 0) at the top left to (width, height) at the bottom right, by
    /// D3DXMatrixOrthoOffCenterLH.
    static Matrix4 orthogonal(float width, float height, float nearZ, float farZ);

private:
    Vector3 column3(int c) const { return {m[c], m[4 + c], m[8 + c]}; }
    Vector4 column4(int c) const { return {m[c], m[4 + c], m[8 + c], m[12 + c]}; }
    Vector3 row3(int r) const { return {m[4 * r], m[4 * r + 1], m[4 * r + 2]}; }
    Vector4 row4(int r) const { return {m[4 * r], m[4 * r + 1], m[4 * r + 2], m[4 * r + 3]}; }
};

VORN_API Matrix4 operator*(Matrix4 left, const Matrix4& right);
VORN_API Vector4 operator*(const Matrix4& m, const Vector4& v);
/// Rows 0 to 2 with an implied w of 1; no division, and row 3 takes no part.
VORN_API Vector3 operator*(const Matrix4& m, const Vector3& v);

static_assert(sizeof(Matrix4) == sizeof(D3DXMATRIX));

} // namespace Vorn
