// SPDX-License-Identifier: MIT
#include "tests/math/exact.hpp"
#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>

namespace {

using namespace Exact;
using Exact::Random;
using namespace Vorn;

constexpr int Signs[8][3] = {{-1, 1, -1}, {-1, -1, -1}, {1, 1, -1}, {1, -1, -1},
                             {-1, 1, 1},  {-1, -1, 1},  {1, 1, 1},  {1, -1, 1}};
constexpr std::size_t Rims[6][4] = {{0, 1, 5, 4}, {2, 3, 7, 6}, {0, 1, 3, 2},
                                    {4, 5, 7, 6}, {0, 4, 6, 2}, {1, 5, 7, 3}};
constexpr Vec Outward[6] = {{-1, 0, 0}, {1, 0, 0}, {0, 0, -1}, {0, 0, 1}, {0, 1, 0}, {0, -1, 0}};

/// The block of `m` times `v`, without the translation.
Vec Turned(const Matrix4& m, const Vec& v) {
    return Apply(m, v);
}

Vec Corner(std::size_t i, const Vec& center, const Matrix4& turn, const Vec& half) {
    return center +
           Turned(turn, {Signs[i][0] * half.x, Signs[i][1] * half.y, Signs[i][2] * half.z});
}

OBB RigidBox(Random& random) {
    const Matrix4 turn = Matrix4::RotationEuler(random.Place(4));
    return {Matrix4::Translation(random.Place(9)) * turn, random.Place(4) + Vector3(5, 5, 5)};
}

TEST(Volumes, CornersAndFacesFollowTheirNumberingUnderAnyMatrix) {
    Random random(21);
    for (int run = 0; run < 500; ++run) {
        Matrix4 transform = random.Matrix(3); // scaled, sheared and mirrored
        std::copy_n(Matrix4::Identity.m + 12, 4, transform.m + 12);
        const OBB box(transform, random.Place(5));
        const Vector3 center(transform.m[3], transform.m[7], transform.m[11]);
        EXPECT_EQ(box.Position(), center);
        Vector3 vertices[8], basis[3];
        FlatPlane faces[6], alignedFaces[6];
        box.GetVertices(vertices);
        box.GetPlane(faces);
        AABB(center, box.extents / 2).GetFlatPlane(alignedFaces);
        box.GetBasis(basis);
        const Vec half = 0.5 * Of(box.extents);
        for (std::size_t i = 0; i < 8; ++i)
            ExpectNear(vertices[i], Corner(i, Of(center), transform, half), 1e-4);
        for (std::size_t f = 0; f < 6; ++f) {
            EXPECT_EQ(faces[f].normal, box.normals[f]);
            ExpectNear(alignedFaces[f].normal, Outward[f], 0);
            for (std::size_t i = 0; i < 4; ++i) {
                EXPECT_EQ(faces[f].corners[i], vertices[Rims[f][i]]);
                ExpectNear(alignedFaces[f].corners[i],
                           Corner(Rims[f][i], Of(center), Matrix4(), half), 1e-5);
            }
        }
        for (std::size_t i = 0; i < 3; ++i)
            ExpectNear(basis[i], Turned(transform, Outward[i == 0 ? 1 : 5 - i]), 0);
    }
}

TEST(Volumes, NormalsOfABoxPointOutwardsOnceTheyAreComputed) {
    Random random(22);
    for (int run = 0; run < 500; ++run) {
        const OBB box = RigidBox(random);
        for (std::size_t i = 0; i < 6; ++i)
            ExpectNear(box.normals[i], Turned(box.transform, Outward[i]), 1e-3);
    }
    OBB box;
    box.extents = Vector3(-2, 2, 2);
    box.normals[1] = Vector3(7, 8, 9);
    FlatPlane faces[6];
    box.GetPlane(faces);
    EXPECT_EQ(faces[1].normal, Vector3(7, 8, 9)) << "as stale as they are";
    EXPECT_EQ(faces[0].normal, Vector3());
    // A negative extent mirrors the corners and with them the sense of the rims: the faces across
    // it lie on each other's sides, the other four have their normals turned inwards.
    box.ComputeNorm();
    for (std::size_t i = 0; i < 6; ++i)
        ExpectNear(box.normals[i], (i < 2 ? 1.0 : -1.0) * Outward[i], 0);
}

TEST(Volumes, NormalsOfSmallFacesStayShortAndThoseOfEmptyOnesZero) {
    const OBB small(Matrix4(), Vector3(0.002f, 0.002f, 4)), flat(Matrix4(), Vector3(0, 2, 2));
    ExpectNear(small.normals[3], {0, 0, 4e-6}, 1e-9);
    ExpectNear(small.normals[1], {1, 0, 0}, 1e-6);
    for (std::size_t i = 0; i < 6; ++i)
        ExpectNear(flat.normals[i], i < 2 ? Outward[i] : Vec(), 0);
    const Vector3 tiny[4] = {{0, 0, 0}, {0.002f, 0, 0}, {9, 9, 9}, {0, 0.002f, 0}};
    const Vector3 large[4] = {{1, 1, 1}, {1, 4, 1}, {9, 9, 9}, {1, 1, 3}};
    ExpectNear(FlatPlane(tiny).normal, {0, 0, 4e-6}, 1e-9);
    EXPECT_EQ(FlatPlane(large).normal, Vector3(1, 0, 0));
    EXPECT_EQ(FlatPlane(large, Vector3(3, 0, 4)).normal, Vector3(3, 0, 4)) << "taken as it comes";
}

TEST(Volumes, TheClosestPointLiesOnTheBoxAndNoneIsCloser) {
    Random random(23);
    for (int run = 0; run < 300; ++run) {
        const OBB box = RigidBox(random);
        const Vector3 p = random.Place(15), closest = box.ClosestPoint(p);
        ExpectNear(box.ClosestPoint(closest), Of(closest), 1e-4);
        for (int sample = 0; sample < 100; ++sample) {
            const Vec at = Of(random.Place(0.5f)), edges = Of(box.extents);
            const Vec other = Corner(6, Of(box.Position()), box.transform,
                                     {edges.x * at.x, edges.y * at.y, edges.z * at.z});
            EXPECT_GE(Length(other - Of(p)), Length(Of(closest) - Of(p)) - 1e-4);
        }
    }
    const OBB box(Matrix4(), Vector3(2, 4, 6));
    EXPECT_EQ(box.ClosestPoint(Vector3(9, 9, -9)), Vector3(1, 2, -3));
    EXPECT_EQ(box.ClosestPoint(Vector3(0.5f, 1, 2)), Vector3(0.5f, 1, 2));
}

TEST(Volumes, APlaneReachesAsFarAsTheVectorIsLongAndAnywhereBehind) {
    const Plane plane(Vector3(0, 1, 0), Vector3(0, 1, 0));
    EXPECT_TRUE(plane.CollisionCheck({50, 3, 0}, {2, 2, -1}));
    EXPECT_FALSE(plane.CollisionCheck({0, 3, 0}, {0, -2, 0}));
    EXPECT_FALSE(CrossPlaneCheck({0, 1, 0}, {0, 0, 0}, plane));
    EXPECT_TRUE(CrossPlaneCheck({0, -99, 0}, {0, 0, 0}, plane));
}

} // namespace
