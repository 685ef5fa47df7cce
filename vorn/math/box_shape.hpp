// SPDX-License-Identifier: MIT
//
// Below OBB: corners and normals of a box in rows of eight, which the compiler takes several at a
// time. OBB, OBBToOBB and the pair walk of the physics are all made of these functions, so that
// they agree to the last bit. Hosts use OBB.
#pragma once

#include "vorn/math/matrix4.hpp"
#include "vorn/math/vector3.hpp"
#include "vorn/math/volumes.hpp"

#include <cmath>

namespace Vorn {

struct BoxShape {
    /// The corners, in the order of volumes.hpp.
    float x[8], y[8], z[8];
    /// The six normals, in the order of the faces, and two zeros.
    float nx[8], ny[8], nz[8];
    /// How far the corners reach along each normal.
    float low[8], high[8];

    Vector3 Corner(int i) const { return {x[i], y[i], z[i]}; }
    Vector3 Normal(int i) const { return {nx[i], ny[i], nz[i]}; }
};

/// The corner that a face's plane is taken through.
inline constexpr int FirstCornerOfFace[6] = {0, 2, 0, 4, 0, 1};

inline void SetCorners(BoxShape& shape, const Matrix4& transform, const Vector3& extents) {
    static constexpr float signX[8] = {-1, -1, 1, 1, -1, -1, 1, 1};
    static constexpr float signY[8] = {1, -1, 1, -1, 1, -1, 1, -1};
    static constexpr float signZ[8] = {-1, -1, -1, -1, 1, 1, 1, 1};
    const float hx = extents.x * 0.5f, hy = extents.y * 0.5f, hz = extents.z * 0.5f;
    const auto row = [&](float* out, const float* m) {
        const float ax = m[0] * hx, ay = m[1] * hy, az = m[2] * hz;
        for (int i = 0; i < 8; ++i)
            out[i] = m[3] + (signX[i] * ax + signY[i] * ay + signZ[i] * az);
    };
    row(shape.x, transform.m);
    row(shape.y, transform.m + 4);
    row(shape.z, transform.m + 8);
}

/// From the corners: (to - from) x (side - from), to length 1 where it is not shorter than 0.00001.
inline void SetNormals(BoxShape& shape) {
    static constexpr int from[6] = {1, 7, 1, 5, 4, 3};
    static constexpr int to[6] = {5, 3, 0, 7, 6, 7};
    static constexpr int side[6] = {0, 6, 3, 4, 0, 1};
    float ux[8] = {}, uy[8] = {}, uz[8] = {}, vx[8] = {}, vy[8] = {}, vz[8] = {};
    for (int i = 0; i < 6; ++i) {
        ux[i] = shape.x[to[i]] - shape.x[from[i]];
        uy[i] = shape.y[to[i]] - shape.y[from[i]];
        uz[i] = shape.z[to[i]] - shape.z[from[i]];
        vx[i] = shape.x[side[i]] - shape.x[from[i]];
        vy[i] = shape.y[side[i]] - shape.y[from[i]];
        vz[i] = shape.z[side[i]] - shape.z[from[i]];
    }
    for (int i = 0; i < 8; ++i) {
        const float x = uy[i] * vz[i] - uz[i] * vy[i];
        const float y = uz[i] * vx[i] - ux[i] * vz[i];
        const float z = ux[i] * vy[i] - uy[i] * vx[i];
        const float length = std::sqrt(x * x + y * y + z * z);
        const float divisor = length < 0.00001f ? 1.0f : length;
        shape.nx[i] = x / divisor;
        shape.ny[i] = y / divisor;
        shape.nz[i] = z / divisor;
    }
}

/// How far the corners of `box` reach along the normals of `axes`.
inline void Project(const BoxShape& box, const BoxShape& axes, float* low, float* high) {
    for (int i = 0; i < 8; ++i)
        low[i] = high[i] = box.x[0] * axes.nx[i] + box.y[0] * axes.ny[i] + box.z[0] * axes.nz[i];
    for (int corner = 1; corner < 8; ++corner) {
        const float x = box.x[corner], y = box.y[corner], z = box.z[corner];
        for (int i = 0; i < 8; ++i) {
            const float reach = x * axes.nx[i] + y * axes.ny[i] + z * axes.nz[i];
            low[i] = reach < low[i] ? reach : low[i];
            high[i] = reach > high[i] ? reach : high[i];
        }
    }
}

/// Whether no normal of `a` separates the boxes, those of `b` and the edges left aside: the answer
/// can change with the order of the two. `a` has its normals and its reach along them, `b` its
/// corners. A NaN separates.
inline bool Overlap(const BoxShape& a, const BoxShape& b) {
    float low[8], high[8];
    Project(b, a, low, high);
    bool touching = true;
    for (int i = 0; i < 6; ++i)
        touching &= low[i] <= a.high[i] && a.low[i] <= high[i];
    return touching;
}

/// When a sphere that moves by `v` meets the infinite plane through a point. False where it does
/// not come nearer; else `t` is the time, and `side` the radius with the sign of the side that it
/// comes from. A sphere that touches from the start has time 0.
inline bool SphereReachesPlane(const Sphere& sphere, const Vector3& v, const Vector3& point,
                               const Vector3& normal, float& t, float& side) {
    const float distance = normal.DotProduct(sphere.center) - normal.DotProduct(point);
    side = distance > 0.0f ? sphere.radius : -sphere.radius;
    if (sphere.radius >= std::abs(distance)) {
        t = 0.0f;
        return true;
    }
    const float approach = normal.DotProduct(v);
    if (!(approach * distance < 0.0f))
        return false;
    t = (side - distance) / approach;
    return true;
}

/// Whether the sphere meets any of the six infinite planes of the box before time 1.
inline bool SphereReachesFaces(const Sphere& sphere, const Vector3& v, const BoxShape& box) {
    for (int face = 0; face < 6; ++face) {
        float t, side;
        if (SphereReachesPlane(sphere, v, box.Corner(FirstCornerOfFace[face]), box.Normal(face), t,
                               side) &&
            t < 1.0f)
            return true;
    }
    return false;
}

} // namespace Vorn
