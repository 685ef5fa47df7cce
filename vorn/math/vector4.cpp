// SPDX-License-Identifier: MIT
#include "vorn/math/vector4.hpp"

namespace Vorn {

Vector4 Vector4::Normalize() const {
    Vector4 normalized;
    D3DXVec4Normalize(&normalized.mBlock, &mBlock);
    return normalized;
}

Vector4 operator+(const Vector4& a, const Vector4& b) {
    if (a.w != 0.0f && b.w != 0.0f)
        return {0.0f, 0.0f, 0.0f, 1.0f};
    return {a.x + b.x, a.y + b.y, a.z + b.z, a.w + b.w};
}

Vector4 operator-(const Vector4& a, const Vector4& b) {
    const bool sameKind = (a.w != 0.0f) == (b.w != 0.0f);
    return {a.x - b.x, a.y - b.y, a.z - b.z, sameKind ? 0.0f : 1.0f};
}

Vector4 operator*(const Vector4& v, float f) {
    return {v.x * f, v.y * f, v.z * f, v.w};
}

Vector4 operator*(float f, const Vector4& v) {
    return v * f;
}

} // namespace Vorn
