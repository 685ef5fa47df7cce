// SPDX-License-Identifier: MIT
#include "tests/math/exact.hpp"
#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <type_traits>

namespace {

using Exact::ExpectNear;
using Vorn::Matrix4;
using Vorn::Vector3;
using Vorn::Vector4;

static_assert(sizeof(Matrix4[2]) == 32 * sizeof(float));
static_assert(std::is_standard_layout_v<Matrix4> && std::is_trivially_copyable_v<Matrix4>);

// Element i is 10 + i.
Matrix4 Counting() {
    Matrix4 m;
    for (int i = 0; i < 16; ++i)
        m.m[i] = static_cast<float>(10 + i);
    return m;
}

void ExpectSame(const Matrix4& actual, const Matrix4& expected) {
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(actual.m[i], expected.m[i]) << "row " << i / 4 << " column " << i % 4;
}

void ExpectIs(const Vector4& v, float x, float y, float z, float w) {
    EXPECT_EQ(v.x, x);
    EXPECT_EQ(v.y, y);
    EXPECT_EQ(v.z, z);
    EXPECT_EQ(v.w, w);
}

TEST(Matrix4, StartsAsTheIdentity) {
    const Matrix4 identity(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    ExpectSame(Matrix4(), identity);
    ExpectSame(Matrix4(nullptr), identity);
    ExpectSame(Matrix4::Identity, identity);
    Matrix4 m = Counting();
    m.SetIdentity();
    ExpectSame(m, identity);
}

TEST(Matrix4, TakesElementsRowByRow) {
    const float elements[16] = {10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25};
    ExpectSame(Matrix4(elements), Counting());
    ExpectSame(Matrix4(10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25), Counting());
    const Matrix4 m(elements);
    EXPECT_EQ(std::memcmp(&m, elements, sizeof(elements)), 0);
}

TEST(Matrix4, RowsAndColumnsComeOutInOrder) {
    const Matrix4 m = Counting();
    EXPECT_EQ(m.Row1ToVec3(), Vector3(10, 11, 12));
    EXPECT_EQ(m.Row2ToVec3(), Vector3(14, 15, 16));
    EXPECT_EQ(m.Row3ToVec3(), Vector3(18, 19, 20));
    EXPECT_EQ(m.Row4ToVec3(), Vector3(22, 23, 24));
    ExpectIs(m.Row1ToVec4(), 10, 11, 12, 13);
    ExpectIs(m.Row2ToVec4(), 14, 15, 16, 17);
    ExpectIs(m.Row3ToVec4(), 18, 19, 20, 21);
    ExpectIs(m.Row4ToVec4(), 22, 23, 24, 25);
    EXPECT_EQ(m.Col1ToVec3(), Vector3(10, 14, 18));
    EXPECT_EQ(m.Col2ToVec3(), Vector3(11, 15, 19));
    EXPECT_EQ(m.Col3ToVec3(), Vector3(12, 16, 20));
    EXPECT_EQ(m.Col4ToVec3(), Vector3(13, 17, 21));
    ExpectIs(m.Col1ToVec4(), 10, 14, 18, 22);
    ExpectIs(m.Col2ToVec4(), 11, 15, 19, 23);
    ExpectIs(m.Col3ToVec4(), 12, 16, 20, 24);
    ExpectIs(m.Col4ToVec4(), 13, 17, 21, 25);
}

TEST(Matrix4, TransposesInPlaceAsACopyAndForThePlatform) {
    const Matrix4 expected(10, 14, 18, 22, 11, 15, 19, 23, 12, 16, 20, 24, 13, 17, 21, 25);
    Matrix4 m = Counting();
    ExpectSame(m.Transposed(), expected);
    ExpectSame(m, Counting());
    const D3DXMATRIX platform = m;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            EXPECT_EQ(platform.m[r][c], m.m[4 * c + r]) << r << c;
    // Where Direct3D looks for it.
    EXPECT_EQ(platform._41, 13.0f);
    m.Transpose();
    ExpectSame(m, expected);
}

TEST(Matrix4, AProductAppliesItsRightFactorFirst) {
    Exact::Random random(31);
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        const Matrix4 a = random.Matrix(2);
        const Matrix4 b = random.Matrix(2);
        const Vector4 v(random.Vector(3), random.Float(-3, 3));
        const Exact::Clip inner =
            Exact::Apply(Exact::Of(b), Exact::Of(v.x, v.y, v.z), static_cast<double>(v.w));
        const Exact::Clip outer = Exact::Apply(Exact::Of(a), inner.v, inner.w);
        Exact::ExpectNear4((a * b) * v, {outer.v, outer.w}, 2e-4);
        Exact::ExpectNear4(a * (b * v), {outer.v, outer.w}, 2e-4);
        Matrix4 inPlace = a;
        EXPECT_EQ(&(inPlace *= b), &inPlace);
        ExpectSame(inPlace, a * b);
    }
    // A quarter turn about Z and a step along X, told apart by hand.
    const Matrix4 turn = Matrix4::RotationAxisAngle({0, 0, 1}, static_cast<float>(Exact::Pi / 2));
    const Matrix4 step = Matrix4::Translation(5, 0, 0);
    ExpectNear((turn * step) * Vector3(1, 0, 0), {0, 6, 0}, 1e-5);
    ExpectNear((step * turn) * Vector3(1, 0, 0), {5, 1, 0}, 1e-5);
}

TEST(Matrix4, AProductWithItselfReadsTheOldElements) {
    Matrix4 m(1, 2, 0, 0, 3, 4, 0, 0, 0, 0, 5, 6, 0, 0, 7, 8);
    const Matrix4& same = m;
    m *= same;
    ExpectSame(m, Matrix4(7, 10, 0, 0, 15, 22, 0, 0, 0, 0, 67, 78, 0, 0, 91, 106));
}

TEST(Matrix4, AThreeVectorIsAPointAndTheLastRowTakesNoPart) {
    const Matrix4 m = Counting();
    const Vector3 v(1, -2, 3);
    const Vector3 expected(10 - 22 + 36 + 13, 14 - 30 + 48 + 17, 18 - 38 + 60 + 21);
    EXPECT_EQ(m * v, expected);
    ExpectIs(m * Vector4(v, 1), expected.x, expected.y, expected.z, 22 - 46 + 72 + 25);
    ExpectIs(m * Vector4(v, 0), expected.x - 13, expected.y - 17, expected.z - 21, 22 - 46 + 72);
}

TEST(Matrix4, TranslateAddsWhateverTheRotation) {
    Exact::Random random(32);
    for (int i = 0; i < 100; ++i) {
        SCOPED_TRACE(i);
        const Vector3 offset = random.Vector(10);
        const Matrix4 before = Matrix4::Translation(random.Vector(10)) *
                               Matrix4::RotationEuler(random.Vector(1)) * Matrix4::Scaling(2, 3, 4);
        Matrix4 m = before;
        m.Translate(offset);
        ExpectSame(m, Matrix4::Translation(offset) * before);
        Matrix4 fromNumbers = before;
        fromNumbers.Translate(offset.x, offset.y, offset.z);
        ExpectSame(fromNumbers, m);
        EXPECT_NE(m.Col4ToVec3(), (before * Matrix4::Translation(offset)).Col4ToVec3());
    }
    // A product would carry the last row into the others.
    Matrix4 m = Counting();
    m.Translate(100, 200, 300);
    ExpectSame(m, Matrix4(10, 11, 12, 113, 14, 15, 16, 217, 18, 19, 20, 321, 22, 23, 24, 25));
}

TEST(Matrix4, ScaleMultipliesTheDiagonalOnly) {
    const Matrix4 expected(20, 11, 12, 13, 14, 45, 16, 17, 18, 19, -80, 21, 22, 23, 24, 25);
    Matrix4 m = Counting();
    m.Scale(2, 3, -4);
    ExpectSame(m, expected);
    m = Counting();
    m.Scale(Vector3(2, 3, -4));
    ExpectSame(m, expected);
}

TEST(Matrix4, ExtractRotationDropsTheTranslationOnly) {
    const Matrix4 m = Counting();
    ExpectSame(m.ExtractRotation(),
               Matrix4(10, 11, 12, 0, 14, 15, 16, 0, 18, 19, 20, 0, 22, 23, 24, 25));
    ExpectSame(m, Counting());
}

TEST(Matrix4, InverseOfTranslationRotationScaleIsTheGeneralOne) {
    Exact::Random random(33);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const auto scale = [&] {
            const float size = random.Float(0.2f, 5);
            return random.Int(0, 3) == 0 ? -size : size;
        };
        const float sx = scale();
        const float sy = scale();
        const Vector3 axis = Exact::ToVector3(random.Axis());
        const Matrix4 m = Matrix4::Translation(random.Vector(20)) *
                          Matrix4::RotationAxisAngle(axis, random.Float(-7, 7)) *
                          Matrix4::Scaling(sx, sy, scale());
        const Exact::Mat expected = Exact::Inverse(Exact::Of(m));
        const Matrix4 inverse = m.Inversed();
        ExpectNear(Exact::Of(inverse), expected, 2e-4);
        Matrix4 inPlace = m;
        inPlace.Inverse();
        ExpectSame(inPlace, inverse);
        const Vector3 v = random.Vector(5);
        ExpectNear(inverse * (m * v), Exact::Of(v), 1e-3);
    }
}

TEST(Matrix4, InverseTakesAnyMatrixForTranslationRotationScale) {
    Exact::Random random(34);
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        Matrix4 m;
        // Columns that are far from zero, at no right angles; the last row is arbitrary.
        const auto setColumn = [&](int c, const Vector3& v) {
            m.m[c] = v.x;
            m.m[4 + c] = v.y;
            m.m[8 + c] = v.z;
            m.m[12 + c] = random.Float(-3, 3);
        };
        for (int c = 0; c < 3; ++c) {
            const double length = static_cast<double>(random.Float(0.5f, 3));
            setColumn(c, Exact::ToVector3(length * random.Axis()));
        }
        setColumn(3, random.Vector(5));

        // Row i is column i divided by its square length, and meets the negated translation.
        Exact::Mat expected;
        expected.e[3][3] = 1;
        const Exact::Vec translation = Exact::Of(m.Col4ToVec3());
        const Vector3 columns[] = {m.Col1ToVec3(), m.Col2ToVec3(), m.Col3ToVec3()};
        for (int r = 0; r < 3; ++r) {
            const Exact::Vec column = Exact::Of(columns[r]);
            const Exact::Vec row = (1 / Exact::Dot(column, column)) * column;
            expected.e[r][0] = row.x;
            expected.e[r][1] = row.y;
            expected.e[r][2] = row.z;
            expected.e[r][3] = -Exact::Dot(row, translation);
        }
        ExpectNear(Exact::Of(m.Inversed()), expected, 1e-4);
    }
}

TEST(Matrix4, InverseOfAZeroColumnIsNotFinite) {
    const Matrix4 inverse = (Matrix4::Translation(1, 2, 3) * Matrix4::Scaling(2, 0, 2)).Inversed();
    EXPECT_FALSE(std::isfinite(inverse.m[5]));
}

} // namespace
