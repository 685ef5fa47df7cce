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

/// The transpose of (the spin about the orientation times the turn of the orientation onto +Z), row
/// by row.
struct BodyTurn {
    float m[9];
};

inline BodyTurn TurnOf(const Vector3& orientation, float angle) {
    const Matrix4 spin = Matrix4::RotationAxisAngle(orientation, angle);
    const Matrix4 align = Matrix4::RotationAxisAlignZ(orientation);
    BodyTurn turn;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            turn.m[3 * column + row] = spin.m[4 * row] * align.m[column] +
                                       spin.m[4 * row + 1] * align.m[4 + column] +
                                       spin.m[4 * row + 2] * align.m[8 + column];
    return turn;
}

/// The translation times the turn.
inline Matrix4 BodyTransform(const Vector3& position, const BodyTurn& turn) {
    const float* t = turn.m;
    return {t[0], t[1], t[2], position.x, //
            t[3], t[4], t[5], position.y, //
            t[6], t[7], t[8], position.z, //
            0,    0,    0,    1};
}

} // namespace Vorn
