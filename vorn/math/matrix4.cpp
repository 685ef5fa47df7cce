// SPDX-License-Identifier: MIT
#include "vorn/math/matrix4.hpp"

#include <algorithm>
#include <cmath>

namespace Vorn {

namespace {

// Direct3D's matrices come transposed.
Matrix4 FromDirect3D(const D3DXMATRIX& d) {
    return Matrix4(&d.m[0][0]).Transposed();
}

} // namespace

constinit const Matrix4 Matrix4::Identity(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);

Matrix4::Matrix4(const float* elements) {
    std::copy_n(elements ? elements : Identity.m, 16, m);
}

Matrix4::operator D3DXMATRIX() const {
    return D3DXMATRIX(Transposed().m);
}

Matrix4& Matrix4::operator*=(const Matrix4& right) {
    Matrix4 product;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            product.m[4 * r + c] = m[4 * r] * right.m[c] + m[4 * r + 1] * right.m[4 + c] +
                                   m[4 * r + 2] * right.m[8 + c] + m[4 * r + 3] * right.m[12 + c];
    return *this = product;
}

Matrix4 Matrix4::Transposed() const {
    return {m[0], m[4], m[8],  m[12], m[1], m[5], m[9],  m[13],
            m[2], m[6], m[10], m[14], m[3], m[7], m[11], m[15]};
}

Matrix4 Matrix4::Inversed() const {
    const float s0 = column3(0).Length();
    const float s1 = column3(1).Length();
    const float s2 = column3(2).Length();
    const Matrix4 rotation(m[0] / s0, m[1] / s1, m[2] / s2, 0,  //
                           m[4] / s0, m[5] / s1, m[6] / s2, 0,  //
                           m[8] / s0, m[9] / s1, m[10] / s2, 0, //
                           0, 0, 0, 1);
    return Scaling(1 / s0, 1 / s1, 1 / s2) * rotation.Transposed() *
           Translation(-m[3], -m[7], -m[11]);
}

void Matrix4::Translate(float x, float y, float z) {
    m[3] += x;
    m[7] += y;
    m[11] += z;
}

void Matrix4::Scale(float x, float y, float z) {
    m[0] *= x;
    m[5] *= y;
    m[10] *= z;
}

Matrix4 Matrix4::ExtractRotation() const {
    Matrix4 rotation = *this;
    rotation.m[3] = rotation.m[7] = rotation.m[11] = 0.0f;
    return rotation;
}

Matrix4 Matrix4::Translation(float x, float y, float z) {
    return {1, 0, 0, x, 0, 1, 0, y, 0, 0, 1, z, 0, 0, 0, 1};
}

Matrix4 Matrix4::Scaling(float x, float y, float z) {
    return {x, 0, 0, 0, 0, y, 0, 0, 0, 0, z, 0, 0, 0, 0, 1};
}

Matrix4 Matrix4::RotationEuler(float x, float y, float z) {
    const float cx = std::cos(x), sx = std::sin(x);
    const float cy = std::cos(y), sy = std::sin(y);
    const float cz = std::cos(z), sz = std::sin(z);
    return {cz * cy,
            cz * sy * sx - sz * cx,
            cz * sy * cx + sz * sx,
            0, //
            sz * cy,
            sz * sy * sx + cz * cx,
            sz * sy * cx - cz * sx,
            0, //
            -sy,
            cy * sx,
            cy * cx,
            0, //
            0,
            0,
            0,
            1};
}

Matrix4 Matrix4::RotationAxisAlignZ(const Vector3& axis) {
    const Vector3 xAxis(1, 0, 0);
    const Vector3 yAxis(0, 1, 0);
    Vector3 n = axis;
    n.Normalize();

    // An axis of length 1 along +Y has no cross product with Y; its side is taken from X.
    const bool alongY = std::abs(1 - axis.y) < 0.00001f;
    Vector3 a, b;
    if (alongY) {
        b = xAxis.CrossProduct(n);
        a = b.CrossProduct(n);
    } else {
        a = yAxis.CrossProduct(n);
        b = n.CrossProduct(a);
    }
    a.Normalize();
    b.Normalize();
    return {a.x, a.y, a.z, 0, b.x, b.y, b.z, 0, n.x, n.y, n.z, 0, 0, 0, 0, 1};
}

Matrix4 Matrix4::RotationAxisAngle(const Vector3& axis, float angle) {
    Vector3 n = axis;
    n.Normalize();
    const float x = n.x, y = n.y, z = n.z;
    const float c = std::cos(angle);
    const float s = std::sin(angle);
    const float t = 1 - c;
    return {x * x + (1 - x * x) * c,
            x * y * t - z * s,
            x * z * t + y * s,
            0, //
            x * y * t + z * s,
            y * y + (1 - y * y) * c,
            y * z * t - x * s,
            0, //
            x * z * t - y * s,
            y * z * t + x * s,
            z * z + (1 - z * z) * c,
            0, //
            0,
            0,
            0,
            1};
}

Matrix4 Matrix4::LookAt(const Vector3& eye, const Vector3& at, const Vector3& up) {
    const D3DXVECTOR3 dxEye = eye, dxAt = at, dxUp = up;
    D3DXMATRIX view;
    return FromDirect3D(*D3DXMatrixLookAtLH(&view, &dxEye, &dxAt, &dxUp));
}

Matrix4 Matrix4::Projection(float fov, float aspect, float nearZ, float farZ) {
    D3DXMATRIX projection;
    return FromDirect3D(*D3DXMatrixPerspectiveFovLH(&projection, fov, aspect, nearZ, farZ));
}

Matrix4 Matrix4::orthogonal(float width, float height, float nearZ, float farZ) {
    D3DXMATRIX projection;
    return FromDirect3D(*D3DXMatrixOrthoOffCenterLH(&projection, 0, width, height, 0, nearZ, farZ));
}

Matrix4 operator*(Matrix4 left, const Matrix4& right) {
    return left *= right;
}

Vector4 operator*(const Matrix4& m, const Vector4& v) {
    const float* e = m.m;
    return {e[0] * v.x + e[1] * v.y + e[2] * v.z + e[3] * v.w,
            e[4] * v.x + e[5] * v.y + e[6] * v.z + e[7] * v.w,
            e[8] * v.x + e[9] * v.y + e[10] * v.z + e[11] * v.w,
            e[12] * v.x + e[13] * v.y + e[14] * v.z + e[15] * v.w};
}

Vector3 operator*(const Matrix4& m, const Vector3& v) {
    const float* e = m.m;
    return {e[0] * v.x + e[1] * v.y + e[2] * v.z + e[3],
            e[4] * v.x + e[5] * v.y + e[6] * v.z + e[7],
            e[8] * v.x + e[9] * v.y + e[10] * v.z + e[11]};
}

} // namespace Vorn
