// SPDX-License-Identifier: MIT
//
// Below PhysicsCmpt: the volumes of a body from what its entity and its component say. PhysicsCmpt
// and the pair walk are both made of these functions.
#pragma once

#include "vorn/core/float4.hpp"
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

/// The transpose of (the spin about the orientation times the turn of the orientation onto +Z). Its
/// columns are the box's axes; lane i of a row belongs to axis i, in the order of BoxAxes, and lane
/// 3 is 0.
struct BodyTurn {
    Float4 x, y, z;
};

inline BodyTurn TurnOf(const Vector3& orientation, float angle) {
    const Matrix4 spin = Matrix4::RotationAxisAngle(orientation, angle);
    const Matrix4 align = Matrix4::RotationAxisAlignZ(orientation);
    const auto row = [&](int column) {
        const auto element = [&](int i) {
            return spin.m[4 * i] * align.m[column] + spin.m[4 * i + 1] * align.m[4 + column] +
                   spin.m[4 * i + 2] * align.m[8 + column];
        };
        return Float4{element(0), element(2), element(1), 0.0f};
    };
    return {row(0), row(1), row(2)};
}

/// The translation times the turn.
inline Matrix4 BodyTransform(const Vector3& position, const BodyTurn& turn) {
    const auto& [x, y, z] = turn;
    return {x[0], x[2], x[1], position.x, //
            y[0], y[2], y[1], position.y, //
            z[0], z[2], z[1], position.z, //
            0,    0,    0,    1};
}

} // namespace Vorn
