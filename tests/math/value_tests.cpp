// SPDX-License-Identifier: MIT
#include "tests/math/exact.hpp"

#include <cstring>
#include <limits>
#include <vector>

namespace {

using namespace Exact;
using Vorn::Quaternion;
using Vorn::Vector3;
using Vorn::Vector4;

Quaternion Make(const Vec& q) {
    const float wxyz[] = {Single(q.w), Single(q.x), Single(q.y), Single(q.z)};
    return Quaternion(wxyz);
}

TEST(Vector3, ArithmeticAndComparisonAreComponentwiseAndExact) {
    const Vector3 a(1, -2, 3);
    const Vector3 b(10, 20, -40);
    EXPECT_EQ(a + b, Vector3(11, 18, -37));
    EXPECT_EQ(a - b, Vector3(-9, -22, 43));
    EXPECT_EQ(a * 2.0f, Vector3(2, -4, 6));
    EXPECT_EQ(2.0f * a, Vector3(2, -4, 6));
    EXPECT_EQ(-a, Vector3(-1, 2, -3));
    // Multiplying by the reciprocal instead would miss 1.
    EXPECT_EQ(Vector3(41, 82, -41) / 41.0f, Vector3(1, 2, -1));
    EXPECT_NE(a, Vector3(std::nextafter(1.0f, 2.0f), -2, 3));
    EXPECT_NE(a, Vector3(1, std::nextafter(-2.0f, 0.0f), 3));
    EXPECT_NE(a, Vector3(1, -2, std::nextafter(3.0f, 4.0f)));
    EXPECT_NE(Vector3(NAN, 0, 0), Vector3(NAN, 0, 0));
    const Vorn::Point2 difference = Vorn::Point2(3, -4) - Vorn::Point2(1, 10);
    EXPECT_TRUE(difference.x == 2 && difference.y == -14);
}

TEST(Vectors, AgreeWithDoublePrecision) {
    Random random(7);
    for (int i = 0; i < 300; ++i) {
        const Vec a = random.Vector(50);
        const Vec b = random.Vector(50);
        const double distance = Length(a + -1.0 * b);
        ExpectNear(To(a).Length(), Length(a), 1e-4);
        ExpectNear(To(a).Distance(To(b)), distance, 1e-4);
        ExpectNear(To(a).SquareDistance(To(b)), distance * distance, 2e-2);
        ExpectNear(To(a).DotProduct(To(b)), Dot(a, b), 5e-3);
        ExpectNear(Of(To(a).CrossProduct(To(b))), Cross(a, b), 5e-3);
        Vector3 unit = To(a);
        unit.Normalize();
        ExpectNear(Of(unit), Unit(a), 1e-6);
        const Vec four = random.Four(50);
        ExpectNear(To<Vector4>(four).Length(), Length(four), 1e-4);
        ExpectNear(Of(To<Vector4>(four).Normalize()), Unit(four), 1e-6);
    }
    ExpectNear(Of(Vector4().Normalize()), {0, 0, 0, 0}, 0);
}

TEST(Vector3, OnlyNormalizeInPlaceLeavesAShortVectorAlone) {
    const float bound = 0.00001f;
    const Vector3 shorter(0, std::nextafter(bound, 0.0f), 0);
    Vector3 v = shorter;
    v.Normalize();
    EXPECT_EQ(v, shorter);
    shorter.Normalize(v);
    EXPECT_EQ(v, Vector3(0, 1, 0));
    v = Vector3(0, 0, -bound);
    v.Normalize();
    EXPECT_EQ(v, Vector3(0, 0, -1));
    Vector3().Normalize(v);
    EXPECT_FALSE(std::isfinite(v.x) || std::isfinite(v.y) || std::isfinite(v.z));
}

TEST(Vector3, TurnsTowardsATargetByExactlyTheAngle) {
    Random random(9);
    for (int i = 0; i < 300; ++i) {
        const Vec from = random.Axis();
        const Vec axis = Unit(Cross(from, random.Axis()));
        const double between = random(0.05f, 3.09f);
        const double length = random(0.5f, 20);
        Vector3 v = To(length * from);
        const Vector3 target = To(random(0.01f, 90) * Rotate(from, axis, between));
        ExpectNear(v.AngleBetween(target), between, 2e-5);
        // Backwards and past the target too.
        const double angle = random(-4, 4);
        v.RotateTo(target, Single(angle));
        ExpectNear(Of(v), length * Rotate(from, axis, angle), 1e-4);
    }
    // Without an axis to turn about it is scaled.
    Vector3 v(2, 0, -4);
    v.RotateTo(Vector3(1, 0, -2), Single(Pi / 3));
    ExpectNear(Of(v), {1, 0, -2}, 1e-6);
}

TEST(Vector3, AngleBetweenNeitherClampsNorFailsOnZero) {
    ExpectNear(Vector3(0, -4, 0).AngleBetween(Vector3()), Pi / 2, 1e-6);
    // Rounding takes the cosine of this one with itself beyond 1.
    const Vector3 v(6, 8, 1);
    EXPECT_TRUE(std::isnan(v.AngleBetween(v)));
}

// By copies of every kind, of which one is written to.
template <class T>
void ExpectOwnStorage(T written) {
    std::vector<T> list(1, written);
    for (int i = 0; i < 9; ++i)
        list.push_back(written);
    T assigned;
    ExpectNear(Of(assigned), {0, 0, 0, 0}, 0);
    assigned = written;
    list.push_back(assigned);
    list.erase(list.begin());
    written.x = assigned.y = assigned.z = written.w = 9;
    ExpectNear(Of(written), {9, 2, 3, 9}, 0);
    ExpectNear(Of(assigned), {1, 9, 9, 4}, 0);
    for (const T& copy : list)
        ExpectNear(Of(copy), {1, 2, 3, 4}, 0);
}

TEST(FourFloats, AreBoundToTheirOwnStorage) {
    ExpectOwnStorage(Vector4(1, 2, 3, 4));
    ExpectOwnStorage(Make({1, 2, 3, 4}));
}

TEST(Vector4, SumsAndDifferencesTellPointsFromDirections) {
    for (const Vec& c : {Vec{1, 0, 1, 1}, Vec{0, 5, 5, 1}, Vec{0, -0.0, 0, 0}, Vec{5, 0, 5, 1}}) {
        const Vector4 a(1, 2, 3, Single(c.x));
        const Vector4 b(10, 30, 50, Single(c.y));
        ExpectNear(Of(a + b), {11, 32, 53, c.z}, 0);
        ExpectNear(Of(a - b), {-9, -28, -47, c.w}, 0);
    }
    for (const float w : {1.0f, -2.0f, 0.5f}) {
        ExpectNear(Of(Vector4(1, 2, 3, w) + Vector4(4, 5, 6, 2)), W, 0);
        ExpectNear(Of(Vector4(1, 2, 3, w) - Vector4(4, 5, 7, 2)), {-3, -3, -4, 0}, 0);
    }
    // Scaling leaves w alone.
    ExpectNear(Of(Vector4(Vector3(1, -2, 3), 5) * 2.0f), {2, -4, 6, 5}, 0);
    ExpectNear(Of(0.5f * Vector4(1, -2, 3, 5)), {0.5, -1, 1.5, 5}, 0);
}

TEST(Quaternion, IsARotationOfColumnVectors) {
    Random random(51);
    for (int i = 0; i < 300; ++i) {
        const Vec axis = random.Axis();
        const double angle = random(-7, 7);
        const Quaternion q(To(random(0.1f, 50) * axis), Single(angle));
        ExpectNear(Of(q), Turn(axis, angle), 1e-6);
        const Vec v = random.Vector(3);
        ExpectNear(Of(q.QuatToMatrix() * To(v)), Rotate(v, axis, angle), 1e-5);

        const Vec e = random.Vector(7);
        const Quaternion yawPitchRoll(Single(e.x), Single(e.y), Single(e.z));
        ExpectNear(Of(yawPitchRoll), Hamilton(Turn(Y, e.x), Hamilton(Turn(X, e.y), Turn(Z, e.z))),
                   2e-6);

        // q v q* is the rotation times the square length. The matrix, which does not normalise,
        // differs from that by the rest to 1.
        const Vec any = random.Four(2);
        const Vec sandwich = Hamilton(Hamilton(any, v), {-any.x, -any.y, -any.z, any.w});
        const Vec expected = sandwich + (1 - Dot(any, any)) * v;
        ExpectNear(Of(Make(any).QuatToMatrix() * To(v)), expected, 5e-5);
    }
    ExpectNear(Of(Quaternion(Vector3(), 1.0f)), {0, 0, 0, std::cos(0.5)}, 1e-6);
}

TEST(Quaternion, ProductsTurnByTheLeftFactorFirst) {
    Random random(53);
    for (int i = 0; i < 300; ++i) {
        const Vec a = random.Four(3);
        const Vec unit = Turn(random.Axis(), random(-7, 7));
        const double length = random(0.3f, 3);
        const Vec b = length * unit;
        const Vec inverse = (1 / length) * Vec{-unit.x, -unit.y, -unit.z, unit.w};
        const Quaternion first = Make(a);
        Quaternion second = Make(b);
        ExpectNear(Of(first * second), Hamilton(b, a), 3e-5);
        Quaternion changed = first;
        EXPECT_TRUE((changed *= second) == first * second);
        changed = first;
        EXPECT_EQ(&(changed / second), &changed);
        ExpectNear(Of(changed), Hamilton(inverse, a), 5e-5);

        Quaternion out;
        second.Normalize(out);
        ExpectNear(Of(out), unit, 1e-6);
        second.Inverse();
        ExpectNear(Of(second), inverse, 2e-6);
        second.Normalize();
        ExpectNear(Of(second), length * inverse, 1e-6);
    }
}

TEST(Quaternion, MemberOperatorsChangeTheirLeftOperand) {
    Quaternion q = Make({1, 2, 3, 4});
    const Quaternion r = Make({10, -20, 30, -40});
    EXPECT_EQ(&(q + r), &q);
    ExpectNear(Of(q), {11, -18, 33, -36}, 0);
    EXPECT_EQ(&(q - r), &q);
    ExpectNear(Of(q), {1, 2, 3, 4}, 0);
    EXPECT_EQ(&(q * 3.0f), &q);
    ExpectNear(Of(q), {3, 6, 9, 12}, 0);
    EXPECT_EQ(&(q / -0.5f), &q);
    ExpectNear(Of(q), {-6, -12, -18, -24}, 0);
    // The product with 1 / 41, where a division would give 1.
    q = Make({41, 0, 0, 0});
    q /= 41.0f;
    EXPECT_TRUE(q != Make({1, 0, 0, 0}));
}

TEST(Quaternion, WithoutLengthOnlyTheOutParameterStaysFinite) {
    Quaternion zero, out = Make({1, 2, 3, 4});
    zero.Normalize(out);
    EXPECT_TRUE(out == zero);
    zero.Inverse();
    EXPECT_TRUE(out == zero);
    zero.Normalize();
    EXPECT_FALSE(std::isfinite(zero.x) || std::isfinite(zero.w));
}

TEST(Quaternion, GivesItsAxisAsItIsAndItsNumbersInALine) {
    Vector3 axis;
    float angle = 0;
    Make({5, -6, 7, 0.5}).QuatToAxisAngle(axis, angle);
    EXPECT_EQ(axis, Vector3(5, -6, 7));
    ExpectNear(angle, 2 * Pi / 3, 1e-5);
    testing::internal::CaptureStdout();
    Make({1.5, -2, 0.25, 3}).DisplayInfo();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "(1.5, -2, 0.25, 3)\n");
}

using Color = Vorn3DColorSigned;
using Vorn::Vertex_UTx;

constexpr int Highest = std::numeric_limits<int>::max();
constexpr int Lowest = std::numeric_limits<int>::min();

void ExpectIs(const Color& c, int a, int r, int g, int b) {
    EXPECT_TRUE(c.a == a && c.r == r && c.g == g && c.b == b)
        << c.a << ' ' << c.r << ' ' << c.g << ' ' << c.b << " is not " << a << ' ' << r << ' ' << g
        << ' ' << b;
}

TEST(Color, PackingAddsSoThatChannelsSpill) {
    const auto packed = [](unsigned long number) { return number; };
    EXPECT_EQ(packed(Color(1, 300, 0, 0)), 0x022C0000u);
    EXPECT_EQ(packed(Color(256, 0, 1, -1)), 0x000000FFu);
    EXPECT_EQ(packed(Color(0, 0, 0, -1)), 0xFFFFFFFFu);
    // Of a wider number the low 32 bits count.
    ExpectIs(Color(0x1280402010ul), 0x80, 0x40, 0x20, 0x10);
    EXPECT_EQ(packed(Color(0xFEDCBA98u)), 0xFEDCBA98u);
}

TEST(Color, IntegerArithmeticNeverClampsAndWraps) {
    const Color a(200, -100, 30, Highest);
    const Color b(100, 200, -40, 2);
    ExpectIs(a + b, 300, 100, -10, Lowest + 1);
    ExpectIs(a - b, 100, -300, 70, Highest - 2);
    ExpectIs(a * b, 20000, -20000, -1200, -2);
    ExpectIs(a / b, 2, 0, 0, Highest / 2);
    ExpectIs(Color(-7, 7, -7, Lowest) / Color(2, -2, -2, -1), -3, -3, 3, Lowest);
}

TEST(Color, FloatingPointArithmeticTruncatesTowardsZero) {
    ExpectIs(Color(255, -255, 1, -1) * 0.5f, 127, -127, 0, 0);
    ExpectIs(Color(255, -255, 7, -3) * -1.5, -382, 382, -10, 4);
    ExpectIs(Color(255, -255, 7, -7) / 2.0f, 127, -127, 3, -3);
    // Double keeps what single precision rounds.
    EXPECT_EQ((Color(255) * 0.9999999999).a, 254);
    EXPECT_EQ((Color(255) / 1.0000000001).a, 254);
    EXPECT_EQ((Color(16777217) * 1.0f).a, 16777216);
    // What no integer can hold stays at the end of the range.
    ExpectIs(Color(255, -255, 0, 1) * 1e30f, Highest, Lowest, 0, Highest);
    ExpectIs(Color(255, -255, 0, 1) / 0.0, Highest, Lowest, 0, Highest);
    ExpectIs(Color(Highest, Lowest, 1, 2) * 1.0f, Highest, Lowest, 1, 2);
}

TEST(Color, OrderIsThatOfTheSums) {
    // The packed number of the first is far greater.
    EXPECT_TRUE(Color(200, 0, 0, 0) < Color(0, 0, 0, 201));
    EXPECT_TRUE(Color(300, -400, 0, 0) < Color(0, 0, -99, 0));
    EXPECT_FALSE(Color(255, 0, 0, 0) < Color(0, 0, 0, 255));
    EXPECT_FALSE(Color(0, 0, 0, 255) < Color(255, 0, 0, 0));
}

TEST(Vertex, AssignmentKeepsTheTargetsSkinningAndACopyDoesNot) {
    Vertex_UTx source(20, 21, 22, 23, 24, 25, 26, 27);
    const float floats[] = {20, 21, 22, 23, 24, 25};
    EXPECT_EQ(std::memcmp(&source, floats, sizeof floats), 0);
    EXPECT_TRUE(source.color == 0xFFFFFFFFu && source.u == 26 && source.v == 27);
    source.color = 28;
    const std::vector<char> old(20, 5);
    std::memset(source.weights, 6, 20);
    const Vertex_UTx copy(source);
    EXPECT_EQ(std::memcmp(&copy, &source, sizeof copy), 0);
    Vertex_UTx target;
    std::memcpy(target.weights, old.data(), 20);
    target = source;
    EXPECT_EQ(std::memcmp(&target, &source, 36), 0);
    EXPECT_EQ(std::memcmp(target.weights, old.data(), 20), 0);
}

} // namespace
