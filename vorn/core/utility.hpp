// SPDX-License-Identifier: MIT
//
// Small functions that hosts and subsystems lean on: clamping, random numbers, angles.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/fwd.hpp"

namespace Vorn {

/// `low` below `low`, `high` above `high`, else `value`.
VORN_API float fclamp(float value, float low, float high);
/// Wraps by one span: `value` plus `high - low` below `low`, minus it above `high`. A value further
/// than a span outside stays outside; `low` and `high` themselves stay.
VORN_API float fclampw(float value, float low, float high);

/// One of 10,000 steps from `low` up to, but not reaching, `high`; the two may come in either
/// order. Draws one number of `rand`, which only the host seeds.
VORN_API float Random(float low, float high);
/// `Random` per axis, in the order X, Y, Z.
VORN_API void RandomVector(const Vector3& low, const Vector3& high, Vector3& out);

VORN_API float RadToDeg(float radians);
VORN_API float DegToRad(float degrees);

} // namespace Vorn
