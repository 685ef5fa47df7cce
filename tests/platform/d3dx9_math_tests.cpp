// SPDX-License-Identifier: MIT
#include "tests/platform/d3dx9_exact.hpp"

#include <d3dx9.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Exact::ExpectNear;
using Exact::ExpectNear4;
using Exact::Of;
using Exact::Platform;
using Exact::RandomMatrix;
using Exact::RandomQuaternion;
using Exact::RandomTurn;
using Exact::Same;

Exact::Vec Landing(const D3DXMATRIX& m, const Exact::Vec& point) {
    return Exact::Divided(Exact::Apply(Exact::Of(m), point));
}

TEST(D3dxMatrix, IdentityAndTranslationAreThoseOfRowVectors) {
    Exact::Random random(60);
    D3DXMATRIX m = RandomMatrix(random, 9);
    EXPECT_EQ(D3DXMatrixIdentity(&m), &m);
    const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    EXPECT_TRUE(Same(m, D3DXMATRIX(identity)));
    m = RandomMatrix(random, 9);
    EXPECT_EQ(D3DXMatrixTranslation(&m, 2, -3, 4), &m);
    const float moved[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 2, -3, 4, 1};
    EXPECT_TRUE(Same(m, D3DXMATRIX(moved)));
    EXPECT_EQ(m._41, 2.0f);
}

TEST(D3dxMatrix, TransposeSwapsRowsAndColumnsAlsoInPlace) {
    Exact::Random random(61);
    const D3DXMATRIX m = RandomMatrix(random, 9);
    D3DXMATRIX out;
    EXPECT_EQ(D3DXMatrixTranspose(&out, &m), &out);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(out.m[i / 4][i % 4], m.m[i % 4][i / 4]) << i;
    D3DXMATRIX both = m;
    EXPECT_EQ(D3DXMatrixTranspose(&both, &both), &both);
    EXPECT_TRUE(Same(both, out));
}

TEST(D3dxMatrix, AProductAppliesItsFirstFactorFirst) {
    Exact::Random random(62);
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        const D3DXMATRIX a = RandomMatrix(random, 2);
        const D3DXMATRIX b = RandomMatrix(random, 2);
        D3DXMATRIX out;
        EXPECT_EQ(D3DXMatrixMultiply(&out, &a, &b), &out);
        const Exact::Vec v = Exact::Of(random.Vector(3));
        const Exact::Clip once = Exact::Apply(Exact::Of(a), v, 0.5);
        const Exact::Clip twice = Exact::Apply(Exact::Of(b), once.v, once.w);
        const Exact::Clip direct = Exact::Apply(Exact::Of(out), v, 0.5);
        ExpectNear(direct.v, twice.v, 5e-5);
        EXPECT_NEAR(direct.w, twice.w, 5e-5);

        D3DXMATRIX first = a;
        D3DXMatrixMultiply(&first, &first, &b);
        EXPECT_TRUE(Same(first, out));
        D3DXMATRIX second = b;
        D3DXMatrixMultiply(&second, &a, &second);
        EXPECT_TRUE(Same(second, out));
        D3DXMATRIX square;
        D3DXMatrixMultiply(&square, &a, &a);
        D3DXMATRIX both = a;
        D3DXMatrixMultiply(&both, &both, &both);
        EXPECT_TRUE(Same(both, square));
    }
}

// q v q* is the rotation times the square length. What does not normalise differs from that by the
// rest to 1.
TEST(D3dxMatrix, RotationQuaternionTurnsRowVectorsAndDoesNotNormalise) {
    Exact::Random random(63);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const D3DXQUATERNION q =
            i % 2 == 0 ? Platform(RandomTurn(random)) : RandomQuaternion(random, 2);
        D3DXMATRIX m;
        EXPECT_EQ(D3DXMatrixRotationQuaternion(&m, &q), &m);
        const Exact::Vec v = Exact::Of(random.Vector(3));
        const double rest = 1 - std::pow(Exact::Length(Of(q)), 2);
        const Exact::Clip turned = Exact::Apply(Exact::Of(m), v);
        ExpectNear(turned.v, Exact::Sandwich(Of(q), v) + rest * v, 5e-5);
        EXPECT_EQ(turned.w, 1);
    }
}

TEST(D3dxMatrix, LookAtPutsKnownPointsWhereTheCameraSeesThem) {
    Exact::Random random(64);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const Exact::Vec forward = random.Axis();
        const Exact::Vec sideways = Exact::Cross(forward, random.Axis());
        if (Exact::Length(sideways) < 0.1)
            continue;
        const Exact::Vec up = Exact::Unit(sideways);
        const Exact::Vec right = Exact::Cross(up, forward);
        const Exact::Vec eye = Exact::Of(random.Vector(20));
        const double distance = static_cast<double>(random.Float(0.5f, 30));
        const double lean = static_cast<double>(random.Float(-2, 2));
        const D3DXVECTOR3 from = Platform(eye);
        const D3DXVECTOR3 at = Platform(eye + distance * forward);
        const D3DXVECTOR3 above = Platform(0.3 * up + lean * forward);
        D3DXMATRIX m;
        EXPECT_EQ(D3DXMatrixLookAtLH(&m, &from, &at, &above), &m);
        ExpectNear(Landing(m, eye), {0, 0, 0}, 1e-4);
        ExpectNear(Landing(m, eye + distance * forward), {0, 0, distance}, 1e-4);
        const Exact::Vec place = Exact::Of(random.Vector(10));
        const Exact::Vec seen = eye + place.x * right + place.y * up + place.z * forward;
        ExpectNear(Landing(m, seen), place, 2e-4);
    }
}

TEST(D3dxMatrix, PerspectiveFollowsSimilarTriangles) {
    Exact::Random random(65);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const float fov = random.Float(0.2f, 2.5f);
        const float aspect = random.Float(0.4f, 3);
        const float zn = random.Float(0.1f, 5);
        const float zf = zn + random.Float(1, 500);
        D3DXMATRIX m;
        EXPECT_EQ(D3DXMatrixPerspectiveFovLH(&m, fov, aspect, zn, zf), &m);
        const double height = std::tan(static_cast<double>(fov) / 2);
        const double width = height * static_cast<double>(aspect);
        const double n = static_cast<double>(zn);
        const double f = static_cast<double>(zf);
        const double z = static_cast<double>(random.Float(zn, zf));
        const Exact::Vec share = Exact::Of(random.Vector(1));
        // Depth is linear in 1 / z.
        const double depth = (1 / n - 1 / z) / (1 / n - 1 / f);
        const Exact::Vec point{share.x * width * z, share.y * height * z, z};
        ExpectNear(Landing(m, point), {share.x, share.y, depth}, 2e-5);
        EXPECT_EQ(Exact::Apply(Exact::Of(m), point).w, z);
    }
}

TEST(D3dxMatrix, OrthoOffCenterIsLinearBetweenItsBounds) {
    Exact::Random random(66);
    for (int i = 0; i < 300; ++i) {
        SCOPED_TRACE(i);
        // Bounds may run either way, as for a screen whose Y runs down.
        float bounds[6];
        for (int k = 0; k < 6; k += 2) {
            const float size = random.Float(1, 40);
            bounds[k] = random.Float(-50, 50);
            bounds[k + 1] = bounds[k] + (random.Int(0, 1) == 0 ? size : -size);
        }
        D3DXMATRIX m;
        EXPECT_EQ(D3DXMatrixOrthoOffCenterLH(&m, bounds[0], bounds[1], bounds[2], bounds[3],
                                             bounds[4], bounds[5]),
                  &m);
        const Exact::Vec low = Exact::Of(bounds[0], bounds[2], bounds[4]);
        const Exact::Vec size = Exact::Of(bounds[1], bounds[3], bounds[5]) - low;
        const Exact::Vec share = Exact::Of(random.Vector(1.5f));
        const Exact::Vec point =
            low + Exact::Vec{share.x * size.x, share.y * size.y, share.z * size.z};
        const Exact::Clip clip = Exact::Apply(Exact::Of(m), point);
        ExpectNear(clip.v, {2 * share.x - 1, 2 * share.y - 1, share.z}, 2e-4);
        EXPECT_EQ(clip.w, 1);
    }
}

TEST(D3dxVector, UnprojectTurnsTheWayToTheScreenBack) {
    Exact::Random random(67);
    int checked = 0;
    for (int i = 0; i < 1000; ++i) {
        SCOPED_TRACE(i);
        // A world that turns, scales and moves, a camera in front of the point, a viewport
        // somewhere.
        const D3DXQUATERNION turn = Platform(RandomTurn(random));
        D3DXMATRIX world;
        D3DXMatrixRotationQuaternion(&world, &turn);
        for (int k = 0; k < 4; ++k)
            world.m[0][k] *= 2.5f;
        world._41 = random.Float(-5, 5);
        world._43 = random.Float(-5, 5);
        const Exact::Vec point = Exact::Of(random.Vector(3));
        const D3DXVECTOR3 eye = Platform(Exact::Of(random.Vector(10)));
        const D3DXVECTOR3 at = Platform(Exact::Of(random.Vector(3)));
        const D3DXVECTOR3 up(0, 1, 0);
        D3DXMATRIX view;
        D3DXMatrixLookAtLH(&view, &eye, &at, &up);
        D3DXMATRIX projection;
        D3DXMatrixPerspectiveFovLH(&projection, random.Float(0.5f, 1.5f), 1.5f, 1, 40);
        const D3DVIEWPORT9 viewport = {static_cast<DWORD>(random.Int(0, 200)),
                                       static_cast<DWORD>(random.Int(0, 200)),
                                       static_cast<DWORD>(random.Int(100, 800)),
                                       static_cast<DWORD>(random.Int(100, 800)),
                                       random.Float(0, 0.3f),
                                       random.Float(0.7f, 1)};

        const Exact::Clip placed = Exact::Apply(Exact::Of(world), point);
        const Exact::Clip seen = Exact::Apply(Exact::Of(view), placed.v);
        if (!(seen.v.z > 2 && seen.v.z < 20))
            continue;
        ++checked;
        const Exact::Vec ndc = Exact::Divided(Exact::Apply(Exact::Of(projection), seen.v));
        const double minZ = static_cast<double>(viewport.MinZ);
        const D3DXVECTOR3 screen =
            Platform(Exact::Vec{viewport.X + (ndc.x + 1) / 2 * viewport.Width,
                                viewport.Y + (1 - ndc.y) / 2 * viewport.Height,
                                minZ + ndc.z * (static_cast<double>(viewport.MaxZ) - minZ)});
        D3DXVECTOR3 out;
        EXPECT_EQ(D3DXVec3Unproject(&out, &screen, &viewport, &projection, &view, &world), &out);
        ExpectNear(Exact::Of(out.x, out.y, out.z), point, 5e-3);
        D3DXVECTOR3 both = screen;
        D3DXVec3Unproject(&both, &both, &viewport, &projection, &view, &world);
        EXPECT_TRUE(both.x == out.x && both.y == out.y && both.z == out.z);
    }
    EXPECT_GT(checked, 200);
}

// The matrices of a camera leave too many elements of their product in proportion.
TEST(D3dxVector, UnprojectTurnsAnyRegularMatricesBack) {
    Exact::Random random(76);
    for (int i = 0; i < 300; ++i) {
        SCOPED_TRACE(i);
        D3DXMATRIX matrices[3];
        for (D3DXMATRIX& m : matrices) {
            m = RandomMatrix(random, 1);
            for (int k = 0; k < 4; ++k)
                m.m[k][k] += random.Int(0, 1) == 0 ? 4.0f : -4.0f;
        }
        const Exact::Vec point = Exact::Of(random.Vector(0.5f));
        Exact::Clip clip{point, 1};
        for (const D3DXMATRIX& m : matrices)
            clip = Exact::Apply(Exact::Of(m), clip.v, clip.w);
        const Exact::Vec ndc = Exact::Divided(clip);
        const D3DVIEWPORT9 viewport = {10, 20, 200, 100, 0, 1};
        const D3DXVECTOR3 screen = Platform(Exact::Vec{110 + 100 * ndc.x, 70 - 50 * ndc.y, ndc.z});
        D3DXVECTOR3 out;
        D3DXVec3Unproject(&out, &screen, &viewport, &matrices[2], &matrices[1], &matrices[0]);
        ExpectNear(Exact::Of(out.x, out.y, out.z), point, 1e-3);
    }
}

TEST(D3dxVector, UnprojectThroughASingularMatrixIsNotFinite) {
    D3DXMATRIX identity;
    D3DXMatrixIdentity(&identity);
    D3DXMATRIX flat = identity;
    flat._33 = 0;
    const D3DVIEWPORT9 viewport = {0, 0, 100, 100, 0, 1};
    const D3DXVECTOR3 screen(30, 40, 0.5f);
    D3DXVECTOR3 out(0, 0, 0);
    D3DXVec3Unproject(&out, &screen, &viewport, &identity, &flat, &identity);
    EXPECT_FALSE(std::isfinite(out.x) && std::isfinite(out.y) && std::isfinite(out.z));
}

TEST(D3dxVector, Vec4NormalizeTakesAllFourElements) {
    Exact::Random random(68);
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        const D3DXQUATERNION q = RandomQuaternion(random, 50);
        const D3DXVECTOR4 v(q.x, q.y, q.z, q.w);
        const double length = Exact::Length(Of(q));
        D3DXVECTOR4 out;
        EXPECT_EQ(D3DXVec4Normalize(&out, &v), &out);
        ExpectNear4(out, {(1 / length) * Of(q).v, Of(q).w / length}, 1e-6);
        D3DXVECTOR4 both = v;
        EXPECT_EQ(D3DXVec4Normalize(&both, &both), &both);
        EXPECT_TRUE(Same(both, out));
    }
    D3DXVECTOR4 zero(0, 0, 0, 0);
    D3DXVec4Normalize(&zero, &zero);
    EXPECT_TRUE(Same(zero, D3DXVECTOR4(0, 0, 0, 0)));
}

} // namespace
