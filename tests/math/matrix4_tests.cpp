// SPDX-License-Identifier: MIT
#include "tests/math/exact.hpp"

namespace {

using namespace Exact;
using Vorn::Matrix4;
using Vorn::Vector3;
using Vorn::Vector4;

const Matrix4 Counting(10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25);

void ExpectSame(const Matrix4& actual, const Matrix4& expected) {
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(actual.m[i], expected.m[i]) << "row " << i / 4 << " column " << i % 4;
}

TEST(Matrix4, StandsRowByRow) {
    ExpectSame(Matrix4(), Matrix4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
    const Matrix4 m(Counting.m);
    const Vector4 rows[] = {m.Row1ToVec4(), m.Row2ToVec4(), m.Row3ToVec4(), m.Row4ToVec4()};
    const Vector4 columns[] = {m.Col1ToVec4(), m.Col2ToVec4(), m.Col3ToVec4(), m.Col4ToVec4()};
    const Vector3 rows3[] = {m.Row1ToVec3(), m.Row2ToVec3(), m.Row3ToVec3(), m.Row4ToVec3()};
    const Vector3 columns3[] = {m.Col1ToVec3(), m.Col2ToVec3(), m.Col3ToVec3(), m.Col4ToVec3()};
    const D3DXMATRIX platform = m;
    for (int i = 0; i < 4; ++i) {
        const Vec row{10.0 + 4 * i, 11.0 + 4 * i, 12.0 + 4 * i, 13.0 + 4 * i};
        const Vec column{10.0 + i, 14.0 + i, 18.0 + i, 22.0 + i};
        ExpectNear(Of(rows[i]), row, 0);
        ExpectNear(Of(columns[i]), column, 0);
        EXPECT_EQ(rows3[i], To(row));
        EXPECT_EQ(columns3[i], To(column));
        for (int k = 0; k < 4; ++k)
            EXPECT_EQ(platform.m[i][k], m.m[4 * k + i]);
    }
}

TEST(Matrix4, ProductsApplyTheRightFactorFirst) {
    Random random(31);
    for (int i = 0; i < 200; ++i) {
        const Matrix4 a = random.Matrix(2);
        const Matrix4 b = random.Matrix(2);
        const Vec v = random.Four(3);
        ExpectNear(Of((a * b) * To<Vector4>(v)), Apply(a, Apply(b, v)), 2e-4);
        ExpectNear(Of(a * To<Vector4>(v)), Apply(a, v), 1e-5);
        // Three floats are a point, and the last row takes no part.
        EXPECT_EQ(a * To(v), To(Of(a * Vector4(To(v), 1))));
    }
    Matrix4 square = Counting;
    square *= square;
    ExpectSame(square, Counting * Matrix4(Counting));
}

TEST(Matrix4, OffsetsAddAndFactorsMeetTheDiagonalOnly) {
    Matrix4 m = Counting;
    m.Translate(Vector3(100, 200, 300));
    ExpectSame(m, Matrix4(10, 11, 12, 113, 14, 15, 16, 217, 18, 19, 20, 321, 22, 23, 24, 25));
    m = Counting;
    m.Scale(Vector3(2, 3, -4));
    ExpectSame(m, Matrix4(20, 11, 12, 13, 14, 45, 16, 17, 18, 19, -80, 21, 22, 23, 24, 25));
    ExpectSame(Counting.ExtractRotation(),
               Matrix4(10, 11, 12, 0, 14, 15, 16, 0, 18, 19, 20, 0, 22, 23, 24, 25));
    ExpectSame(Matrix4::Translation(Vector3(2, -3, 4)) * Matrix4::Scaling(Vector3(5, 6, 7)),
               Matrix4(5, 0, 0, 2, 0, 6, 0, -3, 0, 0, 7, 4, 0, 0, 0, 1));
}

TEST(Matrix4, InverseTakesAnyMatrixForTranslationRotationScale) {
    Random random(34);
    for (int i = 0; i < 300; ++i) {
        const Matrix4 m = random.Matrix(3);
        Matrix4 inverse = m;
        inverse.Inverse();
        // Row i is column i divided by its square length, and meets the negated translation.
        const Vec place = random.Vector(5);
        const auto along = [&](const Vector3& column) {
            const Vec offset = place + -1.0 * Of(m.Col4ToVec3());
            return Dot(Of(column), offset) / Dot(Of(column), Of(column));
        };
        const Vec expected{along(m.Col1ToVec3()), along(m.Col2ToVec3()), along(m.Col3ToVec3()), 1};
        ExpectNear(Apply(inverse, place + W), expected, 1e-5 * Length(expected));
    }
    EXPECT_FALSE(std::isfinite(Matrix4::Scaling(2, 0, 2).Inversed().m[5]));
}

TEST(Matrix4Builders, RotateColumnVectors) {
    Random random(41);
    for (int i = 0; i < 300; ++i) {
        const Vec v = random.Vector(5);
        const Vec e = random.Vector(7);
        const Matrix4 euler = Matrix4::RotationEuler(To(e));
        const Vec turned = Rotate(Rotate(Rotate(v, X, e.x), Y, e.y), Z, e.z);
        ExpectNear(Apply(euler, v + W), turned + W, 1e-5);
        const Vec axis = random.Axis();
        const double length = std::pow(10, random(-4.5f, 4));
        const Matrix4 turn = Matrix4::RotationAxisAngle(To(length * axis), Single(e.x));
        ExpectNear(Apply(turn, v + W), Rotate(v, axis, e.x) + W, 1e-5);
    }
    // An axis too short is taken as it is.
    const Matrix4 tiny = Matrix4::RotationAxisAngle(Vector3(9e-6f, 0, 0), 0.7f);
    ExpectNear(Of(tiny * Vector3(1, 2, 3)), std::cos(0.7) * Vec{1, 2, 3}, 2e-5);
    ExpectNear(tiny.m[9], 9e-6 * std::sin(0.7), 1e-10);
}

TEST(Matrix4Builders, AxisAlignZCarriesTheAxisOntoZ) {
    Random random(43);
    for (int i = 0; i < 300; ++i) {
        // The second form is taken where Y of what was passed is 1, whatever the direction.
        const bool second = i % 3 == 0;
        Vec passed = random(0.01f, 50) * random.Axis();
        if (second)
            passed.y = 1 + random(-0.000009f, 0.000009f);
        else if (std::abs(passed.y - 1) < 0.00002 || std::abs(Unit(passed).y) > 0.999)
            continue;
        const Matrix4 m = Matrix4::RotationAxisAlignZ(To(passed));
        const Vec n = Unit(passed);
        const Vec up = second ? Unit(Cross(X, n)) : Cross(n, Unit(Cross(Y, n)));
        const Vec right = second ? Cross(up, n) : Unit(Cross(Y, n));
        ExpectNear(Of(m.Row1ToVec4()), right, 1e-5);
        ExpectNear(Of(m.Row2ToVec4()), up, 1e-5);
        ExpectNear(Of(m.Row3ToVec4()), n, 1e-5);
        ExpectNear(Of(m.Row4ToVec4()), W, 0);
    }
    ExpectSame(Matrix4::RotationAxisAlignZ(Vector3(0, 1, 0)),
               Matrix4(-1, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1));
    // Elsewhere along Y it flattens.
    for (const float y : {-1.0f, 0.5f, 1.00003f, 300.0f, 0.0f})
        ExpectSame(Matrix4::RotationAxisAlignZ(Vector3(0, y, 0)),
                   Matrix4(0, 0, 0, 0, 0, 0, 0, 0, 0, y < 0 ? -1.0f : y > 0, 0, 0, 0, 0, 0, 1));
}

TEST(Matrix4Builders, LookAtIsLeftHanded) {
    Random random(45);
    for (int i = 0; i < 300; ++i) {
        const Vec forward = random.Axis();
        const Vec up = Unit(Cross(forward, random.Axis()));
        const Vec right = Cross(up, forward);
        const Vec eye = random.Vector(20);
        // The up vector needs neither unit length nor a right angle to the view.
        const Matrix4 view = Matrix4::LookAt(To(eye), To(eye + random(0.5f, 30) * forward),
                                             To(3.0 * up + random(-2, 2) * forward));
        const Vec place = random.Vector(10);
        const Vec seen = eye + place.x * right + place.y * up + place.z * forward;
        ExpectNear(Apply(view, seen + W), place + W, 3e-4);
    }
}

TEST(Matrix4Builders, ProjectionsTakeTheFrustumAndTheScreenToTheBox) {
    Random random(46);
    for (int i = 0; i < 300; ++i) {
        const double fov = random(0.2f, 2.5f);
        const double aspect = random(0.4f, 3);
        const double n = random(0.1f, 5);
        const double f = n + random(1, 500);
        const Matrix4 m = Matrix4::Projection(Single(fov), Single(aspect), Single(n), Single(f));
        const double z = n + random(0, 1) * (f - n);
        const Vec share = random.Vector(1);
        const double top = std::tan(fov / 2) * z;
        // Depth is linear in 1 / z.
        ExpectNear(Landing(m, {share.x * top * aspect, share.y * top, z}),
                   {share.x, share.y, (1 / n - 1 / z) / (1 / n - 1 / f)}, 1e-4);
    }
    const Matrix4 m = Matrix4::orthogonal(800, 600, 2, 10);
    ExpectNear(Landing(m, {0, 0, 2}), {-1, 1, 0}, 1e-6);
    ExpectNear(Landing(m, {800, 600, 10}), {1, -1, 1}, 1e-6);
}

} // namespace
