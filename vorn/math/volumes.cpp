// SPDX-License-Identifier: MIT
#include "vorn/math/volumes.hpp"

#include "vorn/math/box_shape.hpp"

#include <algorithm>

namespace Vorn {

namespace {

constexpr int CornersOfFace[6][4] = {{0, 1, 5, 4}, {2, 3, 7, 6}, {0, 1, 3, 2},
                                     {4, 5, 7, 6}, {0, 4, 6, 2}, {1, 5, 7, 3}};

void MakeFaces(FlatPlane* out, const Vector3* corners, const Vector3* normals) {
    for (int face = 0; face < 6; ++face) {
        for (int i = 0; i < 4; ++i)
            out[face].corners[i] = corners[CornersOfFace[face][i]];
        out[face].normal = normals[face];
    }
}

void MakeCorners(Vector3* out, const Matrix4& transform, const Vector3& extents) {
    const BoxCorners corners = CornersOf(transform, extents);
    for (int i = 0; i < 8; ++i)
        out[i] = corners.At(i);
}

} // namespace

bool Plane::CollisionCheck(const Vector3& p, const Vector3& v) const {
    return normal.DotProduct(p - point) < v.Length();
}

FlatPlane::FlatPlane(const Vector3* rim)
    : FlatPlane(rim, (rim[1] - rim[0]).CrossProduct(rim[3] - rim[0])) {
    normal.Normalize();
}

FlatPlane::FlatPlane(const Vector3* rim, const Vector3& n) : normal(n) {
    std::copy_n(rim, 4, corners);
}

void AABB::GetFlatPlane(FlatPlane* out) const {
    static const Vector3 sides[6] = {{-1, 0, 0}, {1, 0, 0}, {0, 0, -1},
                                     {0, 0, 1},  {0, 1, 0}, {0, -1, 0}};
    Vector3 corners[8];
    MakeCorners(corners, Matrix4::Translation(center), halfExtents * 2.0f);
    MakeFaces(out, corners, sides);
}

OBB::OBB(const Matrix4& m, const Vector3& edges) : transform(m), extents(edges) {
    ComputeNorm();
}

void OBB::ComputeNorm() {
    const BoxAxes axes = AxesOf(CornersOf(transform, extents));
    for (int face = 0; face < 6; ++face) {
        const Vector3 axis = axes.At(AxisOfFace[face]);
        normals[face] = IsOpposite[face] ? -axis : axis;
    }
}

void OBB::GetVertices(Vector3* out) const {
    MakeCorners(out, transform, extents);
}

void OBB::GetPlane(FlatPlane* out) const {
    Vector3 corners[8];
    GetVertices(corners);
    MakeFaces(out, corners, normals);
}

Vector3 OBB::ClosestPoint(const Vector3& p) const {
    const Vector3 offset = p - Position();
    const float half[3] = {extents.x / 2, extents.y / 2, extents.z / 2};
    Vector3 basis[3];
    GetBasis(basis);

    Vector3 closest = Position();
    for (int i = 0; i < 3; ++i) {
        const float along = offset.DotProduct(basis[i]);
        closest += basis[i] * std::min(std::max(along, -half[i]), half[i]);
    }
    return closest;
}

void OBB::GetBasis(Vector3* out) const {
    out[0] = transform.Col1ToVec3();
    out[1] = transform.Col2ToVec3();
    out[2] = transform.Col3ToVec3();
}

} // namespace Vorn
