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
using Exact::RandomQuaternion;
using Exact::RandomTurn;
using Exact::Same;

constexpr Exact::Vec X{1, 0, 0};
constexpr Exact::Vec Y{0, 1, 0};
constexpr Exact::Vec Z{0, 0, 1};

TEST(D3dxQuaternion, RotationAxisNormalisesItsAxis) {
    Exact::Random random(69);
    for (int i = 0; i < 300; ++i) {
        SCOPED_TRACE(i);
        const Exact::Vec axis = random.Axis();
        const float angle = random.Float(-15, 15);
        const D3DXVECTOR3 scaled =
            Platform(std::pow(10, static_cast<double>(random.Float(-4, 4))) * axis);
        D3DXQUATERNION q;
        EXPECT_EQ(D3DXQuaternionRotationAxis(&q, &scaled, angle), &q);
        ExpectNear4(q, Exact::Turn(axis, static_cast<double>(angle)), 1e-6);
        const Exact::Vec v = Exact::Of(random.Vector(3));
        ExpectNear(Exact::Sandwich(Of(q), v), Exact::Rotate(v, axis, static_cast<double>(angle)),
                   1e-5);
    }
    const D3DXVECTOR3 none(0, 0, 0);
    D3DXQUATERNION q;
    D3DXQuaternionRotationAxis(&q, &none, 1.0f);
    ExpectNear4(q, {{0, 0, 0}, std::cos(0.5)}, 1e-6);
    D3DXQuaternionRotationAxis(&q, &none, 5.0f);
    ExpectNear4(q, {{0, 0, 0}, std::cos(2.5)}, 1e-6);
}

TEST(D3dxQuaternion, YawPitchRollTurnsAboutZThenXThenY) {
    Exact::Random random(70);
    for (int i = 0; i < 300; ++i) {
        SCOPED_TRACE(i);
        const Vorn::Vector3 angles = random.Vector(10);
        D3DXQUATERNION q;
        EXPECT_EQ(D3DXQuaternionRotationYawPitchRoll(&q, angles.x, angles.y, angles.z), &q);
        const Exact::Vec e = Exact::Of(angles);
        // Of the two quaternions of a rotation it is the product of the three single ones.
        const Exact::Quat tilted = Exact::Hamilton(Exact::Turn(X, e.y), Exact::Turn(Z, e.z));
        ExpectNear4(q, Exact::Hamilton(Exact::Turn(Y, e.x), tilted), 2e-6);
        const Exact::Vec v = Exact::Of(random.Vector(3));
        const Exact::Vec rolled = Exact::Rotate(v, Z, e.z);
        ExpectNear(Exact::Sandwich(Of(q), v), Exact::Rotate(Exact::Rotate(rolled, X, e.y), Y, e.x),
                   2e-5);
    }
}

TEST(D3dxQuaternion, AProductIsTheHamiltonProductBackwards) {
    const D3DXQUATERNION i(1, 0, 0, 0);
    const D3DXQUATERNION j(0, 1, 0, 0);
    D3DXQUATERNION out;
    EXPECT_TRUE(Same(*D3DXQuaternionMultiply(&out, &j, &i), D3DXQUATERNION(0, 0, 1, 0)));
    EXPECT_TRUE(Same(*D3DXQuaternionMultiply(&out, &i, &j), D3DXQUATERNION(0, 0, -1, 0)));
    Exact::Random random(71);
    for (int k = 0; k < 300; ++k) {
        SCOPED_TRACE(k);
        const D3DXQUATERNION a = RandomQuaternion(random, 3);
        const D3DXQUATERNION b = RandomQuaternion(random, 3);
        EXPECT_EQ(D3DXQuaternionMultiply(&out, &a, &b), &out);
        ExpectNear4(out, Exact::Hamilton(Of(b), Of(a)), 2e-5);
        const Exact::Vec v = Exact::Of(random.Vector(2));
        ExpectNear(Exact::Sandwich(Of(out), v), Exact::Sandwich(Of(b), Exact::Sandwich(Of(a), v)),
                   1e-2);

        D3DXQUATERNION first = a;
        EXPECT_EQ(D3DXQuaternionMultiply(&first, &first, &b), &first);
        EXPECT_TRUE(Same(first, out));
        D3DXQUATERNION second = b;
        EXPECT_EQ(D3DXQuaternionMultiply(&second, &a, &second), &second);
        EXPECT_TRUE(Same(second, out));
        D3DXQUATERNION square = a;
        D3DXQuaternionMultiply(&square, &square, &square);
        ExpectNear4(square, Exact::Hamilton(Of(a), Of(a)), 2e-5);
    }
}

TEST(D3dxQuaternion, InverseAndNormalizeTakeAnyLength) {
    Exact::Random random(72);
    for (int i = 0; i < 300; ++i) {
        SCOPED_TRACE(i);
        const Exact::Quat turn = RandomTurn(random);
        const double length = static_cast<double>(random.Float(0.1f, 10));
        const D3DXQUATERNION q = Platform(Exact::Quat{length * turn.v, length * turn.w});
        D3DXQUATERNION inverse;
        EXPECT_EQ(D3DXQuaternionInverse(&inverse, &q), &inverse);
        const Exact::Quat one = Exact::Hamilton(Of(inverse), Of(q));
        ExpectNear(one.v, {0, 0, 0}, 1e-6);
        EXPECT_NEAR(one.w, 1, 1e-6);
        D3DXQUATERNION unit;
        EXPECT_EQ(D3DXQuaternionNormalize(&unit, &q), &unit);
        ExpectNear4(unit, turn, 1e-6);

        D3DXQUATERNION both = q;
        EXPECT_EQ(D3DXQuaternionInverse(&both, &both), &both);
        EXPECT_TRUE(Same(both, inverse));
        both = q;
        EXPECT_EQ(D3DXQuaternionNormalize(&both, &both), &both);
        EXPECT_TRUE(Same(both, unit));
    }
    D3DXQUATERNION zero(0, 0, 0, 0);
    D3DXQuaternionNormalize(&zero, &zero);
    EXPECT_TRUE(Same(zero, D3DXQUATERNION(0, 0, 0, 0)));
    D3DXQuaternionInverse(&zero, &zero);
    EXPECT_TRUE(Same(zero, D3DXQUATERNION(0, 0, 0, 0)));
}

TEST(D3dxQuaternion, SlerpTurnsEvenlyTheShorterWayAndBeyond) {
    Exact::Random random(73);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const Exact::Quat start = RandomTurn(random);
        const Exact::Vec axis = random.Axis();
        // Between the ends by less than half a turn, more than the stretch where a straight line
        // will do.
        const double between = static_cast<double>(random.Float(0.15f, 3.0f));
        const float t = random.Float(-1.5f, 2.5f);
        const Exact::Quat end = Exact::Hamilton(Exact::Turn(axis, between), start);
        const Exact::Quat expected =
            Exact::Hamilton(Exact::Turn(axis, between * static_cast<double>(t)), start);
        const D3DXQUATERNION a = Platform(start);
        const D3DXQUATERNION b = Platform(end);
        // The other quaternion of the same rotation would lead the long way round.
        const D3DXQUATERNION opposite(-b.x, -b.y, -b.z, -b.w);
        D3DXQUATERNION out;
        EXPECT_EQ(D3DXQuaternionSlerp(&out, &a, &b, t), &out);
        ExpectNear4(out, expected, 2e-5);
        D3DXQuaternionSlerp(&out, &a, &opposite, t);
        ExpectNear4(out, expected, 2e-5);

        D3DXQUATERNION first = a;
        EXPECT_EQ(D3DXQuaternionSlerp(&first, &first, &opposite, t), &first);
        EXPECT_TRUE(Same(first, out));
        D3DXQUATERNION second = opposite;
        EXPECT_EQ(D3DXQuaternionSlerp(&second, &a, &second, t), &second);
        EXPECT_TRUE(Same(second, out));
    }
}

TEST(D3dxQuaternion, SlerpAtItsLimits) {
    Exact::Random random(74);
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        // Close together: the sine of the angle between them is no divisor any more.
        const Exact::Quat start = RandomTurn(random);
        const Exact::Vec axis = random.Axis();
        const double between = std::pow(10, static_cast<double>(random.Float(-8, -1)));
        const float t = random.Float(0, 1);
        const D3DXQUATERNION a = Platform(start);
        const D3DXQUATERNION b = Platform(Exact::Hamilton(Exact::Turn(axis, between), start));
        D3DXQUATERNION out;
        D3DXQuaternionSlerp(&out, &a, &b, t);
        const Exact::Quat turn = Exact::Turn(axis, between * static_cast<double>(t));
        ExpectNear4(out, Exact::Hamilton(turn, start), 3e-4);
        D3DXQuaternionSlerp(&out, &a, &a, t);
        ExpectNear4(out, start, 1e-6);

        // The ends are the operands, whatever their length.
        for (const double length : {0.5, 1.0, 3.0}) {
            const D3DXQUATERNION from = Platform(Exact::Quat{length * start.v, length * start.w});
            D3DXQuaternionSlerp(&out, &from, &b, 0);
            ExpectNear4(out, Of(from), 1e-6);
            D3DXQuaternionSlerp(&out, &b, &from, 1);
            ExpectNear4(out, Of(from), 1e-6);
        }
    }
    // At a right angle nothing is negated.
    const D3DXQUATERNION none(0, 0, 0, 1);
    const double root = std::sqrt(0.5);
    for (const float side : {1.0f, -1.0f}) {
        const D3DXQUATERNION halfTurn(0, side, 0, 0);
        D3DXQUATERNION out;
        D3DXQuaternionSlerp(&out, &none, &halfTurn, 0.5f);
        ExpectNear4(out, {{0, static_cast<double>(side) * root, 0}, root}, 1e-6);
    }
}

TEST(D3dxQuaternion, ToAxisAngleDoesNotNormalise) {
    Exact::Random random(75);
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        const float angle = random.Float(0.1f, 6.1f);
        Exact::Quat turn = Exact::Turn(random.Axis(), static_cast<double>(angle));
        turn.v = static_cast<double>(random.Float(0, 5)) * turn.v;
        const D3DXQUATERNION q = Platform(turn);
        D3DXVECTOR3 axis;
        float out = 0;
        D3DXQuaternionToAxisAngle(&q, &axis, &out);
        EXPECT_TRUE(axis.x == q.x && axis.y == q.y && axis.z == q.z);
        ExpectNear(out, static_cast<double>(angle), 2e-5);
    }
    const D3DXQUATERNION q(1, 2, 3, -1);
    D3DXVECTOR3 axis(0, 0, 0);
    float angle = 0;
    D3DXQuaternionToAxisAngle(&q, &axis, nullptr);
    D3DXQuaternionToAxisAngle(&q, nullptr, &angle);
    EXPECT_TRUE(axis.x == 1 && axis.y == 2 && axis.z == 3);
    ExpectNear(angle, 2 * Exact::Pi, 1e-5);
}

} // namespace
