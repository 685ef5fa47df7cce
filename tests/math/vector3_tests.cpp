// SPDX-License-Identifier: MIT
#include "tests/math/exact.hpp"
#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>

namespace {

using Exact::ExpectNear;
using Vorn::Vector3;

constexpr float Shortest = 0.00001f;
constexpr float NaN = std::numeric_limits<float>::quiet_NaN();

// Arrays of vectors are handed to the device as they are.
static_assert(sizeof(Vector3[2]) == 6 * sizeof(float));
static_assert(std::is_standard_layout_v<Vector3> && std::is_trivially_copyable_v<Vector3>);

TEST(Vector3, ArithmeticIsComponentwise) {
    const Vector3 a(1, -2, 3);
    const Vector3 b(10, 20, -40);
    EXPECT_EQ(Vector3(), Vector3(0, 0, 0));
    EXPECT_EQ(a + b, Vector3(11, 18, -37));
    EXPECT_EQ(a - b, Vector3(-9, -22, 43));
    EXPECT_EQ(a * 2.0f, Vector3(2, -4, 6));
    EXPECT_EQ(2.0f * a, Vector3(2, -4, 6));
    EXPECT_EQ(b / 4.0f, Vector3(2.5f, 5, -10));
    EXPECT_EQ(-a, Vector3(-1, 2, -3));
    EXPECT_EQ(a, Vector3(1, -2, 3));

    Vector3 v;
    v.Set(4, 5, 6);
    EXPECT_EQ(&(v += a), &v);
    EXPECT_EQ(v, Vector3(5, 3, 9));
    EXPECT_EQ(&(v -= b), &v);
    EXPECT_EQ(v, Vector3(-5, -17, 49));
    EXPECT_EQ(&(v *= 2.0f), &v);
    EXPECT_EQ(v, Vector3(-10, -34, 98));
    EXPECT_EQ(&(v /= 2.0f), &v);
    EXPECT_EQ(v, Vector3(-5, -17, 49));
    const D3DXVECTOR3 platform = v;
    EXPECT_EQ(Vector3(platform.x, platform.y, platform.z), v);
}

// A factor that is a component of the vector itself must be read before it changes.
TEST(Vector3, ArithmeticTakesItselfAsOperand) {
    Vector3 v(2, 3, 4);
    const Vector3& same = v;
    v *= v.x;
    EXPECT_EQ(v, Vector3(4, 6, 8));
    v /= v.x;
    EXPECT_EQ(v, Vector3(1, 1.5f, 2));
    v += same;
    EXPECT_EQ(v, Vector3(2, 3, 4));
    v -= same;
    EXPECT_EQ(v, Vector3());
}

// Multiplying by the reciprocal instead would miss 1 for many of these, such as 41.
TEST(Vector3, DivisionIsExactWhereTheQuotientIs) {
    for (int i = 1; i <= 1000; ++i) {
        SCOPED_TRACE(i);
        const auto n = static_cast<float>(i);
        EXPECT_EQ(Vector3(n, 2 * n, -n) / n, Vector3(1, 2, -1));
        Vector3 axis(0, n, 0);
        axis.Normalize();
        EXPECT_EQ(axis, Vector3(0, 1, 0));
        Vector3(0, 0, -n).Normalize(axis);
        EXPECT_EQ(axis, Vector3(0, 0, -1));
    }
}

TEST(Vector3, DivisionByZeroGivesInfinitiesAndNaNs) {
    const Vector3 v = Vector3(1, -1, 0) / 0.0f;
    EXPECT_EQ(v.x, std::numeric_limits<float>::infinity());
    EXPECT_EQ(v.y, -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(v.z));
}

TEST(Vector3, ComparisonHasNoTolerance) {
    const Vector3 v(1, 2, 3);
    EXPECT_TRUE(v == Vector3(1, 2, 3));
    EXPECT_FALSE(v != Vector3(1, 2, 3));
    EXPECT_TRUE(v != Vector3(std::nextafter(1.0f, 2.0f), 2, 3));
    EXPECT_TRUE(v != Vector3(1, std::nextafter(2.0f, 3.0f), 3));
    EXPECT_TRUE(v != Vector3(1, 2, std::nextafter(3.0f, 4.0f)));
    EXPECT_TRUE(Vector3(0, 0, 0) == Vector3(-0.0f, -0.0f, -0.0f));
    for (const Vector3& none : {Vector3(NaN, 0, 0), Vector3(0, NaN, 0), Vector3(0, 0, NaN)}) {
        const Vector3& same = none;
        EXPECT_FALSE(none == same);
        EXPECT_TRUE(none != same);
    }
}

TEST(Vector3, LengthsAndProductsAgreeWithDoublePrecision) {
    Exact::Random random(7);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const Vector3 a = random.Vector(50);
        const Vector3 b = random.Vector(50);
        const Exact::Vec ea = Exact::Of(a);
        const Exact::Vec eb = Exact::Of(b);
        ExpectNear(a.Length(), Exact::Length(ea), 1e-4);
        ExpectNear(a.SquareLength(), Exact::Length(ea) * Exact::Length(ea), 5e-3);
        const double distance = Exact::Length(ea - eb);
        ExpectNear(a.Distance(b), distance, 1e-4);
        ExpectNear(a.SquareDistance(b), distance * distance, 2e-2);
        // The law of cosines.
        ExpectNear(a.DotProduct(b),
                   (Exact::Dot(ea, ea) + Exact::Dot(eb, eb) - distance * distance) / 2, 5e-3);

        const Exact::Vec cross = Exact::Of(a.CrossProduct(b));
        EXPECT_NEAR(Exact::Dot(cross, ea), 0, 0.1);
        EXPECT_NEAR(Exact::Dot(cross, eb), 0, 0.1);
        const double square =
            Exact::Dot(ea, ea) * Exact::Dot(eb, eb) - std::pow(Exact::Dot(ea, eb), 2);
        EXPECT_NEAR(Exact::Length(cross), std::sqrt(square), 5e-3);
    }
    EXPECT_EQ(Vector3(1, 0, 0).CrossProduct(Vector3(0, 1, 0)), Vector3(0, 0, 1));
    EXPECT_EQ(Vector3(0, 1, 0).CrossProduct(Vector3(0, 0, 1)), Vector3(1, 0, 0));
    EXPECT_EQ(Vector3(0, 0, 1).CrossProduct(Vector3(1, 0, 0)), Vector3(0, 1, 0));
}

TEST(Vector3, NormalizeGivesLengthOneInTheSameDirection) {
    Exact::Random random(8);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const Vector3 v = random.Vector(i % 2 == 0 ? 1000.0f : 0.01f);
        Vector3 inPlace = v;
        inPlace.Normalize();
        ExpectNear(inPlace, Exact::Unit(Exact::Of(v)), 1e-6);
        Vector3 out;
        v.Normalize(out);
        EXPECT_EQ(out, inPlace);
        Vector3 both = v;
        both.Normalize(both);
        EXPECT_EQ(both, inPlace);
    }
}

TEST(Vector3, NormalizeLeavesAShortVectorAlone) {
    const float shorter = std::nextafter(Shortest, 0.0f);
    for (const Vector3& v : {Vector3(shorter, 0, 0), Vector3(0, -shorter, 0),
                             Vector3(5e-6f, 5e-6f, -5e-6f), Vector3()}) {
        Vector3 same = v;
        same.Normalize();
        EXPECT_EQ(same, v);
    }
    // The bound itself is not below the bound, and it is the float, a little below 1e-5 in double.
    Vector3 atTheBound(0, 0, -Shortest);
    atTheBound.Normalize();
    EXPECT_EQ(atTheBound, Vector3(0, 0, -1));
    // Components below the bound do not matter when the length is not.
    Vector3 diagonal(8e-6f, 8e-6f, 0);
    diagonal.Normalize();
    ExpectNear(diagonal, {std::sqrt(0.5), std::sqrt(0.5), 0}, 1e-6);
}

TEST(Vector3, NormalizeIntoAnotherVectorDividesWhateverTheLength) {
    const Vector3 shorter(0, std::nextafter(Shortest, 0.0f), 0);
    Vector3 out(7, 7, 7);
    shorter.Normalize(out);
    EXPECT_EQ(out, Vector3(0, 1, 0));
    Vector3(3e-9f, 0, -4e-9f).Normalize(out);
    ExpectNear(out, {0.6, 0, -0.8}, 1e-6);
    Vector3().Normalize(out);
    EXPECT_FALSE(std::isfinite(out.x));
    EXPECT_FALSE(std::isfinite(out.y));
    EXPECT_FALSE(std::isfinite(out.z));
}

TEST(Vector3, AngleBetweenDoesNotDependOnTheLengths) {
    Exact::Random random(9);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const Exact::Vec axis = random.Axis();
        const Exact::Vec a = Exact::Unit(Exact::Cross(axis, random.Axis()));
        const double angle = static_cast<double>(random.Float(0.05f, 3.09f));
        const Exact::Vec b = Exact::Rotate(a, axis, angle);
        const Vector3 first = Exact::ToVector3(static_cast<double>(random.Float(0.01f, 90)) * a);
        const Vector3 second = Exact::ToVector3(static_cast<double>(random.Float(0.01f, 90)) * b);
        ExpectNear(first.AngleBetween(second), angle, 2e-5);
        ExpectNear(second.AngleBetween(first), angle, 2e-5);
    }
    ExpectNear(Vector3(2, 0, 0).AngleBetween(Vector3(-3, 0, 0)), Exact::Pi, 1e-6);
    EXPECT_EQ(Vector3(2, 0, 0).AngleBetween(Vector3(5, 0, 0)), 0.0f);
}

TEST(Vector3, AngleBetweenWithTheZeroVectorIsARightAngle) {
    ExpectNear(Vector3().AngleBetween(Vector3(1, 2, 3)), Exact::Pi / 2, 1e-6);
    ExpectNear(Vector3(0, -4, 0).AngleBetween(Vector3()), Exact::Pi / 2, 1e-6);
    // One too short to be normalised keeps its length, so that the cosine is next to 0.
    ExpectNear(Vector3(9e-6f, 0, 0).AngleBetween(Vector3(5, 0, 0)), Exact::Pi / 2 - 9e-6, 1e-6);
}

// Rounding takes the cosine of a vector with itself a little beyond 1 now and then.
TEST(Vector3, AngleBetweenDoesNotClampTheCosine) {
    Exact::Random random(10);
    int beyond = 0;
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const Vector3 v = random.Vector(1);
        Vector3 unit = v;
        unit.Normalize();
        if (unit.DotProduct(unit) <= 1.0f)
            continue;
        ++beyond;
        EXPECT_TRUE(std::isnan(v.AngleBetween(v)));
    }
    EXPECT_GT(beyond, 0);
}

TEST(Vector3, RotateToTurnsByTheAngleTowardsTheTarget) {
    Exact::Random random(11);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const Exact::Vec from = random.Axis();
        const Exact::Vec normal = Exact::Unit(Exact::Cross(from, random.Axis()));
        const double between = static_cast<double>(random.Float(0.1f, 3.0f));
        const double length = static_cast<double>(random.Float(0.5f, 20));
        // Backwards and past the target too.
        const float angle = random.Float(-4, 4);

        Vector3 v = Exact::ToVector3(length * from);
        const Vector3 target = Exact::ToVector3(3.0 * Exact::Rotate(from, normal, between));
        v.RotateTo(target, angle);
        const auto turn = static_cast<double>(angle);
        const Exact::Vec sideways = Exact::Cross(normal, from);
        ExpectNear(v, length * (std::cos(turn) * from + std::sin(turn) * sideways), 1e-4);
    }
}

TEST(Vector3, RotateToWithoutAnAxisScalesByTheCosine) {
    const double half = std::cos(Exact::Pi / 3);
    const auto angle = static_cast<float>(Exact::Pi / 3);
    Vector3 along(2, 0, -4);
    along.RotateTo(Vector3(1, 0, -2), angle);
    ExpectNear(along, {2 * half, 0, -4 * half}, 1e-6);
    Vector3 against(0, 6, 0);
    against.RotateTo(Vector3(0, -1, 0), angle);
    ExpectNear(against, {0, 6 * half, 0}, 1e-6);
    Vector3 itself(1, 2, 3);
    itself.RotateTo(itself, angle);
    ExpectNear(itself, {half, 2 * half, 3 * half}, 1e-6);
    // The axis of two short vectors is too short to be normalised.
    Vector3 tiny(0.002f, 0, 0);
    tiny.RotateTo(Vector3(0, 0.002f, 0), angle);
    ExpectNear(tiny, {0.002 * half, 0, 0}, 1e-7);
}

} // namespace
