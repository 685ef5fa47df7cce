// SPDX-License-Identifier: MIT
//
// Below OBB: corners and axes of a box side by side, which the compiler takes several at a time.
// OBB, OBBToOBB and the pair walk of the physics are all made of these functions, so that they
// agree to the last bit. Hosts use OBB.
#pragma once

#include "vorn/core/float4.hpp"
#include "vorn/math/matrix4.hpp"
#include "vorn/math/vector3.hpp"
#include "vorn/math/volumes.hpp"

#include <cmath>
#include <utility>

namespace Vorn {

/// Three directions, and a zero to make them four.
struct BoxAxes {
    Float4 x{}, y{}, z{};

    void Set(int i, const Vector3& axis) {
        x[i] = axis.x;
        y[i] = axis.y;
        z[i] = axis.z;
    }
    Vector3 At(int i) const { return {x[i], y[i], z[i]}; }
};

/// How far something reaches along axes.
struct BoxReach {
    Float4 low, high;
};

/// The axes of a box and how far it reaches along them.
struct BoxSides {
    BoxAxes axes;
    BoxReach reach;
};

/// In the order of volumes.hpp.
struct BoxCorners {
    float x[8], y[8], z[8];

    Vector3 At(int i) const { return {x[i], y[i], z[i]}; }
};

/// The faces +X, +Z and +Y are those whose normals are the axes 0, 1 and 2; the normals of the
/// others are their opposites.
inline constexpr int AxisOfFace[6] = {0, 0, 1, 1, 2, 2};
inline constexpr bool IsOpposite[6] = {true, false, true, false, false, true};
/// The corner that a face's plane is taken through.
inline constexpr int FirstCornerOfFace[6] = {0, 2, 0, 4, 0, 1};

inline BoxCorners CornersOf(const Matrix4& transform, const Vector3& extents) {
    static constexpr float signX[8] = {-1, -1, 1, 1, -1, -1, 1, 1};
    static constexpr float signY[8] = {1, -1, 1, -1, 1, -1, 1, -1};
    static constexpr float signZ[8] = {-1, -1, -1, -1, 1, 1, 1, 1};
    const float hx = extents.x * 0.5f, hy = extents.y * 0.5f, hz = extents.z * 0.5f;
    const auto row = [&](float* out, const float* m) {
        const float ax = m[0] * hx, ay = m[1] * hy, az = m[2] * hz;
        for (int i = 0; i < 8; ++i)
            out[i] = m[3] + (signX[i] * ax + signY[i] * ay + signZ[i] * az);
    };
    BoxCorners corners;
    row(corners.x, transform.m);
    row(corners.y, transform.m + 4);
    row(corners.z, transform.m + 8);
    return corners;
}

/// The normals of +X, +Z and +Y, to length 1 where they are not shorter than 0.00001.
inline BoxAxes AxesOf(const BoxCorners& corners) {
    // Each is (to - at) x (side - at), of the corners 7, 3, 6, of 5, 7, 4 and of 4, 6, 0.
    const auto edges = [](const float* c) {
        const Float4 at{c[7], c[5], c[4], 0.0f};
        return std::pair(Float4{c[3], c[7], c[6], 0.0f} - at, Float4{c[6], c[4], c[0], 0.0f} - at);
    };
    const auto [ux, vx] = edges(corners.x);
    const auto [uy, vy] = edges(corners.y);
    const auto [uz, vz] = edges(corners.z);
    BoxAxes axes;
    axes.x = uy * vz - uz * vy;
    axes.y = uz * vx - ux * vz;
    axes.z = ux * vy - uy * vx;

    const Float4 length = RootOf(axes.x * axes.x + axes.y * axes.y + axes.z * axes.z);
    const Float4 divisor = length < 0.00001f ? AllFour(1.0f) : length;
    axes.x /= divisor;
    axes.y /= divisor;
    axes.z /= divisor;
    return axes;
}

inline BoxReach Project(const BoxCorners& corners, const BoxAxes& axes) {
    const auto along = [&](int i) {
        return corners.x[i] * axes.x + corners.y[i] * axes.y + corners.z[i] * axes.z;
    };
    BoxReach reach{along(0), along(0)};
    for (int i = 1; i < 8; ++i) {
        const Float4 at = along(i);
        reach.low = at < reach.low ? at : reach.low;
        reach.high = at > reach.high ? at : reach.high;
    }
    return reach;
}

/// Touching counts; a NaN does not overlap.
inline bool Overlap(const BoxReach& a, const BoxReach& b) {
    return LaneBits((b.low <= a.high) & (a.low <= b.high)) == 0xF;
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

} // namespace Vorn
