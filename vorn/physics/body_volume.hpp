// SPDX-License-Identifier: MIT
//
// Below PhysicsCmpt: the volumes of a body from what its entity and its component say. PhysicsCmpt
// and the pair walk are both made of these functions.
#pragma once

#include "vorn/math/matrix4.hpp"
#include "vorn/math/vector3.hpp"
#include "vorn/math/volumes.hpp"

namespace Vorn {

/// Full edge lengths.
inline Vector3 BodySize(const Vector3& scale, const Vector3& factor) {
    return {scale.x * factor.x, scale.y * factor.y, scale.z * factor.z};
}

inline Sphere BodySphere(const Vector3& position, const Vector3& size) {
    return {position, (size / 2).Length()};
}

/// The translation times the transpose of (the spin about the orientation times the turn of the
/// orientation onto +Z).
inline Matrix4 BodyTransform(const Vector3& position, const Vector3& orientation, float angle) {
    const Matrix4 spin = Matrix4::RotationAxisAngle(orientation, angle);
    const Matrix4 align = Matrix4::RotationAxisAlignZ(orientation);
    const float* r = spin.m;
    const float* a = align.m;
    const auto element = [r, a](int row, int column) {
        return r[4 * row] * a[column] + r[4 * row + 1] * a[4 + column] +
               r[4 * row + 2] * a[8 + column];
    };
    return {element(0, 0),
            element(1, 0),
            element(2, 0),
            position.x, //
            element(0, 1),
            element(1, 1),
            element(2, 1),
            position.y, //
            element(0, 2),
            element(1, 2),
            element(2, 2),
            position.z, //
            0,
            0,
            0,
            1};
}

} // namespace Vorn
