// SPDX-License-Identifier: MIT
#include "vorn/math/vector3.hpp"

#include "vorn/math/matrix4.hpp"

namespace Vorn {

void Vector3::Normalize(Vector3& out) const {
    out = *this / Length();
}

float Vector3::AngleBetween(const Vector3& v) const {
    Vector3 a = *this;
    Vector3 b = v;
    a.Normalize();
    b.Normalize();
    return std::acos(a.DotProduct(b));
}

void Vector3::RotateTo(const Vector3& target, float angle) {
    *this = Matrix4::RotationAxisAngle(CrossProduct(target), angle) * *this;
}

} // namespace Vorn
