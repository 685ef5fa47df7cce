// SPDX-License-Identifier: MIT
//
// What the tests of Matrix4 and Quaternion do not measure already through their own operations.
#include "tests/math/exact.hpp"

#include <cstring>

namespace {

using namespace Exact;

template <class T>
bool Same(const T* a, const T* b) {
    return std::memcmp(a, b, sizeof(T)) == 0;
}

TEST(D3dx, MatricesMultiplyRowVectors) {
    Random random(62);
    for (int i = 0; i < 100; ++i) {
        const D3DXMATRIX a(random.Matrix(2).m);
        const D3DXMATRIX b(random.Matrix(2).m);
        const Vec v = random.Four(3);
        D3DXMATRIX out;
        D3DXMatrixMultiply(&out, &a, &b);
        ExpectNear(Apply(out, v), Apply(b, Apply(a, v)), 5e-5);
        D3DXMatrixTranslation(&out, 2, -3, 4);
        ExpectNear(Apply(out, v), v + v.w * Vec{2, -3, 4}, 2e-6);
    }
    // Bounds may run either way, as for a screen whose Y runs down.
    D3DXMATRIX out;
    D3DXMatrixOrthoOffCenterLH(&out, -1, 3, 20, 10, 5, 7);
    ExpectNear(Landing(out, {-1, 20, 5}), {-1, -1, 0}, 1e-6);
    ExpectNear(Landing(out, {3, 10, 7}), {1, 1, 1}, 1e-6);
}

TEST(D3dx, UnprojectTurnsTheWayToTheScreenBack) {
    Random random(76);
    const D3DVIEWPORT9 viewport = {10, 20, 200, 100, 0.25f, 0.75f};
    D3DXVECTOR3 out;
    for (int i = 0; i < 300; ++i) {
        D3DXMATRIX matrices[3];
        const Vec point = random.Vector(0.5f);
        Vec clip = point + W;
        for (D3DXMATRIX& m : matrices) {
            m = D3DXMATRIX(random.Matrix(1).m);
            for (int k = 0; k < 4; ++k)
                m.m[k][k] += (i >> k) % 2 == 0 ? 4.0f : -4.0f;
            clip = Apply(m, clip);
        }
        const Vec ndc = (1 / clip.w) * clip;
        const auto screen = To<D3DXVECTOR3>({110 + 100 * ndc.x, 70 - 50 * ndc.y, 0.25 + ndc.z / 2});
        D3DXVec3Unproject(&out, &screen, &viewport, &matrices[2], &matrices[1], &matrices[0]);
        ExpectNear(Of(out), point, 1e-3);
    }
    const D3DXMATRIX flat(Vorn::Matrix4::Scaling(1, 1, 0).m);
    D3DXVec3Unproject(&out, &out, &viewport, &flat, &flat, &flat);
    EXPECT_FALSE(std::isfinite(out.x) && std::isfinite(out.y) && std::isfinite(out.z));
}

TEST(D3dx, SlerpTurnsEvenlyTheShorterWayAndBeyond) {
    Random random(73);
    D3DXQUATERNION out;
    for (int i = 0; i < 500; ++i) {
        const Vec start = Unit(random.Four(1));
        const Vec axis = random.Axis();
        // So close, every other time, that the sine of the arc is no divisor any more.
        const bool close = i % 2 == 0;
        const double between = close ? std::pow(10, random(-8, -1)) : random(0.15f, 3);
        const double t = close ? random(0, 1) : random(-1.5f, 2.5f);
        const auto a = To<D3DXQUATERNION>(start);
        const Vec end = Hamilton(Turn(axis, between), start);
        // The other quaternion of the same rotation would lead the long way round.
        for (const double sign : {1.0, -1.0}) {
            const auto b = To<D3DXQUATERNION>(sign * end);
            D3DXQuaternionSlerp(&out, &a, &b, Single(t));
            ExpectNear(Of(out), Hamilton(Turn(axis, between * t), start), close ? 3e-4 : 2e-5);
        }
    }
    // The ends are the operands, whatever their length. At a right angle nothing is negated.
    const D3DXQUATERNION turned(0, 3, 0, 4), none(0, 0, 0, 1), halfTurn(0, -1, 0, 0);
    EXPECT_TRUE(Same(D3DXQuaternionSlerp(&out, &turned, &none, 0), &turned));
    D3DXQuaternionSlerp(&out, &none, &halfTurn, 0.5f);
    ExpectNear(Of(out), {0, -std::sqrt(0.5), 0, std::sqrt(0.5)}, 1e-6);
}

TEST(D3dx, OutMayBeAnArgument) {
    const Vorn::Matrix4 elements = Random(77).Matrix(1);
    const D3DXMATRIX m(elements.m), transposed = elements;
    D3DXMATRIX out, both = m;
    EXPECT_TRUE(Same(D3DXMatrixTranspose(&both, &both), &transposed));
    both = m;
    D3DXMatrixMultiply(&out, &m, &m);
    EXPECT_TRUE(Same(D3DXMatrixMultiply(&both, &both, &both), &out));
    D3DXMatrixMultiply(&both, D3DXMatrixIdentity(&both), &m);
    EXPECT_TRUE(Same(&both, &m));

    const D3DXQUATERNION q(0.5f, 0.1f, -0.3f, 0.2f), r(0.1f, 0.7f, 0.2f, -0.4f);
    D3DXQUATERNION apart, self = r;
    D3DXQuaternionMultiply(&apart, &r, &r);
    EXPECT_TRUE(Same(D3DXQuaternionMultiply(&self, &self, &self), &apart));
    self = r;
    D3DXQuaternionSlerp(&apart, &q, &r, 0.3f);
    EXPECT_TRUE(Same(D3DXQuaternionSlerp(&self, &q, &self, 0.3f), &apart));

    float angle = 0;
    D3DXVECTOR3 axis;
    D3DXQuaternionToAxisAngle(&q, &axis, nullptr);
    D3DXQuaternionToAxisAngle(&q, nullptr, &angle);
    EXPECT_TRUE(axis.x == q.x && angle == 2 * std::acos(q.w));
}

} // namespace
