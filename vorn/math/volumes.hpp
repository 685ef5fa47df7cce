// SPDX-License-Identifier: MIT
//
// The bounding volumes: plain records that intersection.hpp compares.
//
//   const Vorn::Sphere ball(position, 0.5f);
//   const Vorn::OBB crate(Vorn::Matrix4::Translation(place), Vorn::Vector3(1, 2, 1));
//   const bool touched = Vorn::DynamicSphereToOBB(ball, velocity, crate, Vorn::Vector3());
//
// An AABB stores half extents, an OBB full edge lengths.
//
// The corners of a box are numbered, and its faces made of them, so:
//
//   corner  0    1    2    3    4    5    6    7       face     0   1   2   3   4   5
//   X       -    -    +    +    -    -    +    +       side    -X  +X  -Z  +Z  +Y  -Y
//   Y       +    -    +    -    +    -    +    -       corners  0   2   0   4   0   1
//   Z       -    -    -    -    +    +    +    +                1   3   1   5   4   5
//                                                               5   7   3   7   6   7
//                                                               4   6   2   6   2   3
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/matrix4.hpp"
#include "vorn/math/vector3.hpp"

namespace Vorn {

struct Sphere {
    Vector3 center;
    float radius = 0.0f;

    Sphere() = default;
    Sphere(const Vector3& c, float r) : center(c), radius(r) {}
};

/// The direction need not be of unit length, unless a test asks for it.
struct Ray {
    Vector3 origin;
    Vector3 direction;

    Ray() = default;
    Ray(const Vector3& o, const Vector3& d) : origin(o), direction(d) {}
};

/// Infinite, through a point.
struct VORN_API Plane {
    Vector3 point;
    Vector3 normal;

    Plane(const Vector3& p, const Vector3& n) : point(p), normal(n) {}

    /// Whether `p` stands less than the length of `v` in front of the plane; every point behind it
    /// does.
    bool CollisionCheck(const Vector3& p, const Vector3& v) const;
};

/// A bounded face. Its corners run along the rim: 0 and 2 are diagonally opposite.
struct VORN_API FlatPlane {
    Vector3 corners[4];
    Vector3 normal;

    FlatPlane() = default;
    /// From four corners, with the normal (corner 1 - corner 0) x (corner 3 - corner 0). The normal
    /// of a degenerate face stays shorter than 1.
    explicit FlatPlane(const Vector3* rim);
    FlatPlane(const Vector3* rim, const Vector3& n);
};

struct VORN_API AABB {
    Vector3 center;
    Vector3 halfExtents;

    AABB() = default;
    AABB(const Vector3& c, const Vector3& half) : center(c), halfExtents(half) {}

    /// Writes six faces.
    void GetFlatPlane(FlatPlane* out) const;
};

struct VORN_API OBB {
    /// The centre in the fourth column, the orientation in the 3x3 block.
    Matrix4 transform;
    /// Outward, in the order of the faces. In step with the other two only after ComputeNorm. The
    /// normals of a face without area are shorter than 1, or zero.
    Vector3 normals[6];
    /// Full edge lengths along the box's own axes.
    Vector3 extents;

    OBB() = default;
    OBB(const Matrix4& m, const Vector3& edges);

    void ComputeNorm();
    Vector3 Position() const { return transform.Col4ToVec3(); }
    /// Writes eight corners.
    void GetVertices(Vector3* out) const;
    /// Writes six faces.
    void GetPlane(FlatPlane* out) const;
    /// The point of the box that is nearest to `p`.
    Vector3 ClosestPoint(const Vector3& p) const;
    /// Writes three vectors: the box's own X, Y and Z axis.
    void GetBasis(Vector3* out) const;
};

} // namespace Vorn
