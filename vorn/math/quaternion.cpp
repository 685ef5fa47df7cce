// SPDX-License-Identifier: MIT
#include "vorn/math/quaternion.hpp"

#include <iostream>

namespace Vorn {

Quaternion::Quaternion(const float* wxyz) : Quaternion() {
    if (wxyz)
        mBlock = {wxyz[1], wxyz[2], wxyz[3], wxyz[0]};
}

void Quaternion::set(const Vector3& axis, float angle) {
    const D3DXVECTOR3 dxAxis = axis;
    D3DXQuaternionRotationAxis(&mBlock, &dxAxis, angle);
}

void Quaternion::set(float yaw, float pitch, float roll) {
    D3DXQuaternionRotationYawPitchRoll(&mBlock, yaw, pitch, roll);
}

Quaternion& Quaternion::operator+=(const Quaternion& q) {
    mBlock = {x + q.x, y + q.y, z + q.z, w + q.w};
    return *this;
}

Quaternion& Quaternion::operator-=(const Quaternion& q) {
    mBlock = {x - q.x, y - q.y, z - q.z, w - q.w};
    return *this;
}

Quaternion& Quaternion::operator*=(float f) {
    mBlock = {x * f, y * f, z * f, w * f};
    return *this;
}

Quaternion& Quaternion::operator*=(const Quaternion& q) {
    D3DXQuaternionMultiply(&mBlock, &mBlock, &q.mBlock);
    return *this;
}

Quaternion& Quaternion::operator/=(const Quaternion& q) {
    Quaternion inverse;
    q.Inverse(inverse);
    return *this *= inverse;
}

void Quaternion::Normalize(Quaternion& out) const {
    D3DXQuaternionNormalize(&out.mBlock, &mBlock);
}

void Quaternion::Inverse() {
    Inverse(*this);
}

void Quaternion::Inverse(Quaternion& out) const {
    D3DXQuaternionInverse(&out.mBlock, &mBlock);
}

Matrix4 Quaternion::QuatToMatrix() const {
    D3DXMATRIX rotation;
    D3DXMatrixRotationQuaternion(&rotation, &mBlock);
    return Matrix4(&rotation.m[0][0]).Transposed();
}

void Quaternion::QuatToAxisAngle(Vector3& axis, float& angle) const {
    D3DXVECTOR3 dxAxis;
    D3DXQuaternionToAxisAngle(&mBlock, &dxAxis, &angle);
    axis.Set(dxAxis.x, dxAxis.y, dxAxis.z);
}

void Quaternion::DisplayInfo() const {
    std::cout << '(' << x << ", " << y << ", " << z << ", " << w << ")\n";
}

Quaternion operator*(const Quaternion& first, const Quaternion& second) {
    return Quaternion(first) *= second;
}

} // namespace Vorn
