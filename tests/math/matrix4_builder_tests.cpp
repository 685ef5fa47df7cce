// SPDX-License-Identifier: MIT
#include "tests/math/exact.hpp"
#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Exact::ExpectNear;
using Vorn::Matrix4;
using Vorn::Vector3;
using Vorn::Vector4;

constexpr Exact::Vec X{1, 0, 0};
constexpr Exact::Vec Y{0, 1, 0};
constexpr Exact::Vec Z{0, 0, 1};

void ExpectSame(const Matrix4& actual, const Matrix4& expected) {
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(actual.m[i], expected.m[i]) << "row " << i / 4 << " column " << i % 4;
}

void ExpectFourthRowAndColumnOfIdentity(const Matrix4& m) {
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(m.m[4 * i + 3], i == 3 ? 1.0f : 0.0f) << i;
        EXPECT_EQ(m.m[12 + i], i == 3 ? 1.0f : 0.0f) << i;
    }
}

// That the rows of the block are three unit vectors at right angles, right-handed among themselves.
void ExpectRotation(const Matrix4& m) {
    const Exact::Vec a = Exact::Of(m.Row1ToVec3());
    const Exact::Vec b = Exact::Of(m.Row2ToVec3());
    EXPECT_NEAR(Exact::Length(a), 1, 1e-5);
    EXPECT_NEAR(Exact::Length(b), 1, 1e-5);
    EXPECT_NEAR(Exact::Dot(a, b), 0, 1e-5);
    ExpectNear(m.Row3ToVec3(), Exact::Cross(a, b), 1e-5);
    ExpectFourthRowAndColumnOfIdentity(m);
}

Exact::Vec Landing(const Matrix4& m, const Exact::Vec& point) {
    const Vector4 v = m * Vector4(Exact::ToVector3(point), 1);
    return (1 / static_cast<double>(v.w)) * Exact::Of(v.x, v.y, v.z);
}

TEST(Matrix4Builders, TranslationAndScalingPlaceTheirNumbers) {
    const Matrix4 translation(1, 0, 0, 2, 0, 1, 0, -3, 0, 0, 1, 4, 0, 0, 0, 1);
    ExpectSame(Matrix4::Translation(2, -3, 4), translation);
    ExpectSame(Matrix4::Translation(Vector3(2, -3, 4)), translation);
    const Matrix4 scaling(2, 0, 0, 0, 0, -3, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1);
    ExpectSame(Matrix4::Scaling(2, -3, 4), scaling);
    ExpectSame(Matrix4::Scaling(Vector3(2, -3, 4)), scaling);
}

TEST(Matrix4Builders, EulerAnglesTurnAboutXThenYThenZ) {
    Exact::Random random(41);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const Vector3 angles = random.Vector(7);
        const Vector3 v = random.Vector(5);
        const Exact::Vec e = Exact::Of(angles);
        Exact::Vec turned = Exact::Rotate(Exact::Of(v), X, e.x);
        turned = Exact::Rotate(turned, Y, e.y);
        turned = Exact::Rotate(turned, Z, e.z);
        const Matrix4 m = Matrix4::RotationEuler(angles);
        ExpectNear(m * v, turned, 1e-5);
        ExpectSame(Matrix4::RotationEuler(angles.x, angles.y, angles.z), m);
        ExpectRotation(m);
    }
}

TEST(Matrix4Builders, AxisAngleTurnsAboutTheDirectionOfTheAxis) {
    Exact::Random random(42);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const Exact::Vec axis = random.Axis();
        const double length = std::pow(10, static_cast<double>(random.Float(-4.5f, 4)));
        const float angle = random.Float(-7, 7);
        const Vector3 v = random.Vector(5);
        const Matrix4 m = Matrix4::RotationAxisAngle(Exact::ToVector3(length * axis), angle);
        ExpectNear(m * v, Exact::Rotate(Exact::Of(v), axis, static_cast<double>(angle)), 1e-5);
        ExpectRotation(m);
    }
}

TEST(Matrix4Builders, AnAxisTooShortIsTakenAsItIs) {
    const float angle = 0.7f;
    const auto cosine = static_cast<float>(std::cos(0.7));
    const Matrix4 none = Matrix4::RotationAxisAngle(Vector3(), angle);
    ExpectNear(none * Vector3(1, 2, 3), std::cos(0.7) * Exact::Vec{1, 2, 3}, 1e-6);
    EXPECT_EQ(none.m[1], 0.0f);
    EXPECT_EQ(none.m[6], 0.0f);
    ExpectFourthRowAndColumnOfIdentity(none);
    const Matrix4 tiny = Matrix4::RotationAxisAngle(Vector3(9e-6f, 0, 0), angle);
    EXPECT_FLOAT_EQ(tiny.m[0], cosine);
    ExpectNear(tiny.m[9], 9e-6 * std::sin(0.7), 1e-10);
    ExpectNear(tiny.m[6], -9e-6 * std::sin(0.7), 1e-10);
}

TEST(Matrix4Builders, AxisAlignZCarriesTheAxisOntoZ) {
    Exact::Random random(43);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const Exact::Vec axis = random.Axis();
        const double length = static_cast<double>(random.Float(0.01f, 50));
        const Vector3 passed = Exact::ToVector3(length * axis);
        if (std::abs(1 - passed.y) < 0.001f || std::abs(axis.y) > 0.999)
            continue;
        const Matrix4 m = Matrix4::RotationAxisAlignZ(passed);
        ExpectNear(m * Exact::ToVector3(axis), Z, 1e-5);
        ExpectRotation(m);
        // What was up stays in the plane of Y and Z, and its Y is never negative.
        const Vector3 up = m * Vector3(0, 1, 0);
        ExpectNear(up.x, 0, 1e-5);
        EXPECT_GE(up.y, 0.0f);
    }
}

// The length of what was passed decides, by its Y alone, not the direction.
TEST(Matrix4Builders, AxisAlignZTakesItsSecondFormWhereYOfTheAxisIsOne) {
    ExpectSame(Matrix4::RotationAxisAlignZ(Vector3(0, 1, 0)),
               Matrix4(-1, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1));
    Exact::Random random(44);
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        const float y = 1 + random.Float(-0.000009f, 0.000009f);
        const Vector3 passed(random.Float(-9, 9), y, random.Float(-9, 9));
        const Matrix4 m = Matrix4::RotationAxisAlignZ(passed);
        ExpectNear(m * Exact::ToVector3(Exact::Unit(Exact::Of(passed))), Z, 1e-5);
        ExpectRotation(m);
        // What was X stays in the plane of X and Z, and its X is never positive.
        const Vector3 right = m * Vector3(1, 0, 0);
        ExpectNear(right.y, 0, 1e-5);
        EXPECT_LE(right.x, 0.0f);

        const Vector3 outside(passed.x, y < 1 ? 0.99998f : 1.00002f, passed.z);
        const Vector3 up = Matrix4::RotationAxisAlignZ(outside) * Vector3(0, 1, 0);
        ExpectNear(up.x, 0, 1e-5);
        EXPECT_GE(up.y, 0.0f);
    }
}

TEST(Matrix4Builders, AxisAlignZFlattensAlongYButForTheUnitAxis) {
    ExpectSame(Matrix4::RotationAxisAlignZ(Vector3(0, -1, 0)),
               Matrix4(0, 0, 0, 0, 0, 0, 0, 0, 0, -1, 0, 0, 0, 0, 0, 1));
    for (const float length : {0.5f, 1.00003f, 2.0f, 300.0f})
        ExpectSame(Matrix4::RotationAxisAlignZ(Vector3(0, length, 0)),
                   Matrix4(0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1));
    ExpectSame(Matrix4::RotationAxisAlignZ(Vector3()),
               Matrix4(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1));
}

TEST(Matrix4Builders, LookAtPutsTheEyeAtTheOriginAndTheTargetAhead) {
    Exact::Random random(45);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const Exact::Vec forward = random.Axis();
        const Exact::Vec sideways = Exact::Cross(forward, random.Axis());
        if (Exact::Length(sideways) < 0.1)
            continue;
        const Exact::Vec up = Exact::Unit(sideways);
        // Left-handed: X is to the right of one who looks along Z with Y up.
        const Exact::Vec right = Exact::Cross(up, forward);
        const Vector3 eye = random.Vector(20);
        const Exact::Vec e = Exact::Of(eye);
        const double distance = static_cast<double>(random.Float(0.5f, 30));
        const double lean = static_cast<double>(random.Float(-2, 2));
        // The up vector needs neither unit length nor a right angle to the view.
        const Matrix4 view = Matrix4::LookAt(eye, Exact::ToVector3(e + distance * forward),
                                             Exact::ToVector3(3.0 * up + lean * forward));
        ExpectNear(view * eye, {0, 0, 0}, 1e-4);
        ExpectNear(Landing(view, e + distance * forward), {0, 0, distance}, 1e-4);
        const Exact::Vec place = Exact::Of(random.Vector(10));
        ExpectNear(Landing(view, e + place.x * right + place.y * up + place.z * forward), place,
                   1e-4);
        const Vector4 lastRow = view.Row4ToVec4();
        Exact::ExpectNear4(lastRow, {{0, 0, 0}, 1}, 0);
    }
}

TEST(Matrix4Builders, ProjectionTakesTheFrustumToTheBoxOfTheScreen) {
    Exact::Random random(46);
    for (int i = 0; i < 300; ++i) {
        SCOPED_TRACE(i);
        const float fov = random.Float(0.2f, 2.5f);
        const float aspect = random.Float(0.4f, 3);
        const float nearZ = random.Float(0.1f, 5);
        const float farZ = nearZ + random.Float(1, 500);
        const Matrix4 m = Matrix4::Projection(fov, aspect, nearZ, farZ);
        const double top = std::tan(static_cast<double>(fov) / 2);
        const double right = top * static_cast<double>(aspect);
        const auto n = static_cast<double>(nearZ);
        const auto f = static_cast<double>(farZ);
        ExpectNear(Landing(m, {right * n, top * n, n}), {1, 1, 0}, 1e-4);
        ExpectNear(Landing(m, {-right * f, top * f, f}), {-1, 1, 1}, 1e-4);
        ExpectNear(Landing(m, {right * f, -top * f, f}), {1, -1, 1}, 1e-4);
        ExpectNear(Landing(m, {0, 0, n}), {0, 0, 0}, 1e-4);
        // w is the distance ahead, for the division.
        ExpectNear((m * Vector4(1, 2, farZ, 1)).w, f, 1e-6);
    }
}

TEST(Matrix4Builders, OrthogonalStartsAtTheTopLeftWithYRunningDown) {
    const Matrix4 m = Matrix4::orthogonal(800, 600, 2, 10);
    ExpectNear(Landing(m, {0, 0, 2}), {-1, 1, 0}, 1e-6);
    ExpectNear(Landing(m, {800, 0, 10}), {1, 1, 1}, 1e-6);
    ExpectNear(Landing(m, {0, 600, 6}), {-1, -1, 0.5}, 1e-6);
    ExpectNear(Landing(m, {800, 600, 2}), {1, -1, 0}, 1e-6);
    ExpectNear(Landing(m, {400, 150, 4}), {0, 0.5, 0.25}, 1e-6);
    Exact::ExpectNear4(m.Row4ToVec4(), {{0, 0, 0}, 1}, 0);
}

} // namespace
