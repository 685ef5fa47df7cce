// SPDX-License-Identifier: MIT
//
// The platform's records beside those of double precision.
#pragma once

#include "tests/math/exact.hpp"

#include <d3dx9.h>

#include <algorithm>

namespace Exact {

inline D3DXVECTOR3 Platform(const Vec& v) {
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}
inline D3DXQUATERNION Platform(const Quat& q) {
    const D3DXVECTOR3 v = Platform(q.v);
    return {v.x, v.y, v.z, static_cast<float>(q.w)};
}
inline Quat Of(const D3DXQUATERNION& q) {
    return {Of(q.x, q.y, q.z), static_cast<double>(q.w)};
}

inline D3DXQUATERNION RandomQuaternion(Random& random, float reach) {
    const Vorn::Vector3 v = random.Vector(reach);
    return {v.x, v.y, v.z, random.Float(-reach, reach)};
}
inline Quat RandomTurn(Random& random) {
    const Vec axis = random.Axis();
    return Turn(axis, static_cast<double>(random.Float(-7, 7)));
}
inline D3DXMATRIX RandomMatrix(Random& random, float reach) {
    return D3DXMATRIX(random.Matrix(reach).m);
}

template <class T>
bool Same(const T& a, const T& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;
}
inline bool Same(const D3DXMATRIX& a, const D3DXMATRIX& b) {
    return std::equal(&a.m[0][0], &a.m[0][0] + 16, &b.m[0][0]);
}

} // namespace Exact
