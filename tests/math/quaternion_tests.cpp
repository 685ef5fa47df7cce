// SPDX-License-Identifier: MIT
#include "tests/math/exact.hpp"
#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using Exact::ExpectNear;
using Exact::ExpectNear4;
using Vorn::Matrix4;
using Vorn::Quaternion;
using Vorn::Vector3;

constexpr Exact::Vec X{1, 0, 0};
constexpr Exact::Vec Y{0, 1, 0};
constexpr Exact::Vec Z{0, 0, 1};

Quaternion Make(float x, float y, float z, float w) {
    const float wxyz[] = {w, x, y, z};
    return Quaternion(wxyz);
}

Exact::Quat Of(const Quaternion& q) {
    return {Exact::Of(q.x, q.y, q.z), static_cast<double>(q.w)};
}

Quaternion RandomUnit(Exact::Random& random) {
    const Vector3 axis = Exact::ToVector3(random.Axis());
    return Quaternion(axis, random.Float(-7, 7));
}

void ExpectIs(const Quaternion& q, float x, float y, float z, float w) {
    EXPECT_EQ(q.x, x);
    EXPECT_EQ(q.y, y);
    EXPECT_EQ(q.z, z);
    EXPECT_EQ(q.w, w);
    Exact::ExpectBoundToItself(q);
}

TEST(Quaternion, StartsAsZeroAndReadsArraysWithWFirst) {
    ExpectIs(Quaternion(), 0, 0, 0, 0);
    ExpectIs(Quaternion(nullptr), 0, 0, 0, 0);
    const float wxyz[] = {4, 1, 2, 3};
    ExpectIs(Quaternion(wxyz), 1, 2, 3, 4);
}

TEST(Quaternion, CopiesAreBoundToThemselves) {
    auto original = std::make_unique<Quaternion>(Make(1, 2, 3, 4));
    Quaternion copy(*original);
    const Quaternion moved(std::move(*original));
    Quaternion assigned;
    EXPECT_EQ(&(assigned = *original), &assigned);
    original->x = 9;
    original.reset();
    ExpectIs(copy, 1, 2, 3, 4);
    ExpectIs(moved, 1, 2, 3, 4);
    ExpectIs(assigned, 1, 2, 3, 4);

    copy.w = 40;
    ExpectIs(copy, 1, 2, 3, 40);
    const Quaternion& same = copy;
    copy = same;
    ExpectIs(copy, 1, 2, 3, 40);
    std::swap(copy, assigned);
    ExpectIs(copy, 1, 2, 3, 4);
    ExpectIs(assigned, 1, 2, 3, 40);
}

TEST(Quaternion, ElementsOfAVectorSurviveGrowthAndSorting) {
    std::vector<Quaternion> list;
    for (int i = 0; i < 100; ++i) {
        const float n = static_cast<float>((i * 37) % 100);
        list.push_back(Make(n, n + 0.25f, n + 0.5f, n + 0.75f));
    }
    list.insert(list.begin(), list[50]);
    list.erase(list.begin());
    std::sort(list.begin(), list.end(),
              [](const Quaternion& a, const Quaternion& b) { return a.x < b.x; });
    ASSERT_EQ(list.size(), 100u);
    for (std::size_t i = 0; i < list.size(); ++i) {
        SCOPED_TRACE(i);
        const auto n = static_cast<float>(i);
        ExpectIs(list[i], n, n + 0.25f, n + 0.5f, n + 0.75f);
    }
}

TEST(Quaternion, AxisAndAngleGiveARotationOfColumnVectors) {
    Exact::Random random(51);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const Exact::Vec axis = random.Axis();
        const float angle = random.Float(-7, 7);
        const double length = static_cast<double>(random.Float(0.1f, 50));
        const Quaternion q(Exact::ToVector3(length * axis), angle);
        ExpectNear4(q, Exact::Turn(axis, static_cast<double>(angle)), 1e-6);
        Exact::ExpectBoundToItself(q);
        Quaternion set = Make(9, 9, 9, 9);
        set.set(Exact::ToVector3(length * axis), angle);
        EXPECT_TRUE(set == q);

        const Vector3 v = random.Vector(5);
        const Exact::Vec turned = Exact::Rotate(Exact::Of(v), axis, static_cast<double>(angle));
        ExpectNear(q.QuatToMatrix() * v, turned, 1e-5);
    }
}

TEST(Quaternion, ThreeAnglesAreYawPitchRoll) {
    Exact::Random random(52);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const Vector3 angles = random.Vector(7);
        const Exact::Vec e = Exact::Of(angles);
        const Quaternion q(angles.x, angles.y, angles.z);
        const Vector3 v = random.Vector(5);
        Exact::Vec turned = Exact::Rotate(Exact::Of(v), Z, e.z);
        turned = Exact::Rotate(turned, X, e.y);
        turned = Exact::Rotate(turned, Y, e.x);
        ExpectNear(q.QuatToMatrix() * v, turned, 1e-5);
        Quaternion set = Make(9, 9, 9, 9);
        set.set(angles.x, angles.y, angles.z);
        EXPECT_TRUE(set == q);
        Exact::ExpectBoundToItself(q);
    }
}

TEST(Quaternion, MemberOperatorsChangeTheirLeftOperand) {
    Quaternion q = Make(1, 2, 3, 4);
    const Quaternion r = Make(10, -20, 30, -40);
    EXPECT_EQ(&(q + r), &q);
    ExpectIs(q, 11, -18, 33, -36);
    EXPECT_EQ(&(q += r), &q);
    ExpectIs(q, 21, -38, 63, -76);
    EXPECT_EQ(&(q - r), &q);
    ExpectIs(q, 11, -18, 33, -36);
    EXPECT_EQ(&(q -= r), &q);
    ExpectIs(q, 1, 2, 3, 4);
    EXPECT_EQ(&(q * 3.0f), &q);
    ExpectIs(q, 3, 6, 9, 12);
    EXPECT_EQ(&(q *= -2.0f), &q);
    ExpectIs(q, -6, -12, -18, -24);
    EXPECT_EQ(&(q / -2.0f), &q);
    ExpectIs(q, 3, 6, 9, 12);
    EXPECT_EQ(&(q /= 0.5f), &q);
    ExpectIs(q, 6, 12, 18, 24);
    ExpectIs(r, 10, -20, 30, -40);
    // A chain goes on with the same object.
    EXPECT_EQ(&(q + r + r), &q);
    ExpectIs(q, 26, -28, 78, -56);
}

TEST(Quaternion, MemberOperatorsTakeThemselvesAsOperand) {
    Quaternion q = Make(1, 2, 3, 4);
    const Quaternion& same = q;
    q + same;
    ExpectIs(q, 2, 4, 6, 8);
    q *= q.x;
    ExpectIs(q, 4, 8, 12, 16);
    q / q.x;
    ExpectIs(q, 1, 2, 3, 4);
    q -= same;
    ExpectIs(q, 0, 0, 0, 0);
}

// Where a division would give 1.
TEST(Quaternion, DivisionByANumberMultipliesByItsReciprocal) {
    const float missed = 41.0f * (1.0f / 41.0f);
    ASSERT_NE(missed, 1.0f);
    Quaternion q = Make(41, 0, -41, 82);
    q /= 41.0f;
    ExpectIs(q, missed, 0, -missed, 2 * missed);
    Quaternion along = Make(0, 41, 0, 0);
    along.Normalize();
    ExpectIs(along, 0, missed, 0, 0);
    Quaternion none = Make(1, -1, 0, 0);
    none /= 0.0f;
    EXPECT_EQ(none.x, std::numeric_limits<float>::infinity());
    EXPECT_EQ(none.y, -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(none.z));
}

TEST(Quaternion, AProductTurnsByItsLeftFactorFirst) {
    Exact::Random random(53);
    for (int i = 0; i < 300; ++i) {
        SCOPED_TRACE(i);
        const Quaternion first = RandomUnit(random);
        const Quaternion second = RandomUnit(random);
        const Quaternion keptFirst = first;
        const Quaternion keptSecond = second;
        const Quaternion product = first * second;
        ExpectNear4(product, Exact::Hamilton(Of(second), Of(first)), 1e-6);
        Exact::ExpectBoundToItself(product);
        EXPECT_TRUE(first == keptFirst && second == keptSecond);

        const Vector3 v = random.Vector(5);
        const Exact::Vec once = Exact::Sandwich(Of(first), Exact::Of(v));
        ExpectNear(product.QuatToMatrix() * v, Exact::Sandwich(Of(second), once), 1e-5);
        Quaternion inPlace = first;
        EXPECT_EQ(&(inPlace *= second), &inPlace);
        EXPECT_TRUE(inPlace == product);
    }
    // j first, then i: the Hamilton product i j.
    ExpectIs(Make(0, 1, 0, 0) * Make(1, 0, 0, 0), 0, 0, 1, 0);
}

TEST(Quaternion, AQuotientTurnsBackByItsRightOperand) {
    Exact::Random random(54);
    for (int i = 0; i < 300; ++i) {
        SCOPED_TRACE(i);
        const Quaternion first = RandomUnit(random);
        Quaternion second = RandomUnit(random);
        const float length = random.Float(0.3f, 3);
        second *= length;
        const Quaternion kept = second;

        Quaternion quotient = first;
        EXPECT_EQ(&(quotient / second), &quotient);
        EXPECT_TRUE(second == kept);
        // Multiplied from the left it must give the dividend back.
        ExpectNear4(first, Exact::Hamilton(Of(second), Of(quotient)), 1e-5);
        Quaternion twin = first;
        EXPECT_EQ(&(twin /= second), &twin);
        EXPECT_TRUE(twin == quotient);

        const Quaternion& same = second;
        second /= same;
        ExpectNear4(second, {{0, 0, 0}, 1}, 1e-6);
    }
    Quaternion square = Make(1, 2, 3, 4);
    const Quaternion& same = square;
    square *= same;
    ExpectIs(square, 8, 16, 24, 2);
}

TEST(Quaternion, NormalizeTakesAllFourElements) {
    EXPECT_EQ(Make(1, 2, 2, 4).Length(), 5.0f);
    EXPECT_EQ(Make(1, 2, 2, 4).SquareLength(), 25.0f);
    Exact::Random random(55);
    for (int i = 0; i < 300; ++i) {
        SCOPED_TRACE(i);
        const Vector3 v = random.Vector(10);
        const Quaternion q = Make(v.x, v.y, v.z, random.Float(-10, 10));
        const Exact::Quat e = Of(q);
        const double length = Exact::Length(e);
        ExpectNear(q.Length(), length, 1e-5);
        const Exact::Quat unit{(1 / length) * e.v, e.w / length};
        Quaternion out;
        q.Normalize(out);
        ExpectNear4(out, unit, 1e-6);
        ExpectNear4(q, e, 0);
        Quaternion inPlace = q;
        inPlace.Normalize();
        ExpectNear4(inPlace, unit, 1e-6);
        Quaternion both = q;
        both.Normalize(both);
        EXPECT_TRUE(both == out);
    }
    Quaternion zero;
    zero.Normalize();
    EXPECT_FALSE(std::isfinite(zero.x));
    EXPECT_FALSE(std::isfinite(zero.w));
}

TEST(Quaternion, TimesItsInverseIsTheIdentity) {
    Exact::Random random(56);
    for (int i = 0; i < 300; ++i) {
        SCOPED_TRACE(i);
        Quaternion q = RandomUnit(random);
        q *= random.Float(0.3f, 3);
        const Quaternion kept = q;
        Quaternion inverse;
        q.Inverse(inverse);
        EXPECT_TRUE(q == kept);
        ExpectNear4(kept, Of(q), 0);
        const Exact::Quat one = Exact::Hamilton(Of(q), Of(inverse));
        ExpectNear(one.v, {0, 0, 0}, 1e-6);
        EXPECT_NEAR(one.w, 1, 1e-6);
        Quaternion both = q;
        both.Inverse(both);
        EXPECT_TRUE(both == inverse);
        q.Inverse();
        EXPECT_TRUE(q == inverse);
        Exact::ExpectBoundToItself(q);
    }
}

TEST(Quaternion, ComparisonHasNoTolerance) {
    const Quaternion q = Make(1, 2, 3, 4);
    EXPECT_TRUE(q == Make(1, 2, 3, 4));
    EXPECT_FALSE(q != Make(1, 2, 3, 4));
    EXPECT_TRUE(q != Make(std::nextafter(1.0f, 2.0f), 2, 3, 4));
    EXPECT_TRUE(q != Make(1, std::nextafter(2.0f, 3.0f), 3, 4));
    EXPECT_TRUE(q != Make(1, 2, std::nextafter(3.0f, 4.0f), 4));
    EXPECT_TRUE(q != Make(1, 2, 3, std::nextafter(4.0f, 5.0f)));
    // The same rotation, but not the same numbers.
    EXPECT_FALSE(q == Make(-1, -2, -3, -4));
}

TEST(Quaternion, AxisAndAngleComeBackWithoutNormalising) {
    const Quaternion q(Vector3(0, 3, 4), 1.2f);
    Vector3 axis;
    float angle = 0;
    q.QuatToAxisAngle(axis, angle);
    ExpectNear(angle, 1.2, 1e-5);
    ExpectNear(axis, std::sin(0.6) * Exact::Vec{0, 0.6, 0.8}, 1e-6);
    Make(5, -6, 7, 0.5f).QuatToAxisAngle(axis, angle);
    EXPECT_EQ(axis, Vector3(5, -6, 7));
    ExpectNear(angle, 2 * Exact::Pi / 3, 1e-5);
}

TEST(Quaternion, DisplayInfoWritesTheNumbersInOneLine) {
    testing::internal::CaptureStdout();
    Make(1.5f, -2, 0.25f, 3).DisplayInfo();
    const std::string text = testing::internal::GetCapturedStdout();
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(text.front(), '(');
    EXPECT_EQ(text.find('\n'), text.size() - 1);
    const char* at = text.c_str() + 1;
    for (const float expected : {1.5f, -2.0f, 0.25f, 3.0f}) {
        char* end = nullptr;
        EXPECT_EQ(std::strtof(at, &end), expected);
        EXPECT_EQ(std::string(end).substr(0, 2), expected == 3.0f ? ")\n" : ", ");
        at = end + 2;
    }
}

} // namespace
