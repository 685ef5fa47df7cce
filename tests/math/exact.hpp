// SPDX-License-Identifier: MIT
//
// Geometry in double precision, by formulas that the engine does not use: what the single precision
// of the engine is measured against.
//
//   const Exact::Vec turned = Exact::Rotate(Exact::Of(v), axis, angle);
//   Exact::ExpectNear(matrix * v, turned, 1e-5);
//
// Matrices multiply column vectors. Axes are of length 1, angles are radians.
#pragma once

#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <utility>

namespace Exact {

inline constexpr double Pi = 3.14159265358979323846;

struct Vec {
    double x = 0, y = 0, z = 0;
};

inline Vec Of(float x, float y, float z) {
    return {static_cast<double>(x), static_cast<double>(y), static_cast<double>(z)};
}
inline Vec Of(const Vorn::Vector3& v) {
    return Of(v.x, v.y, v.z);
}
inline Vorn::Vector3 ToVector3(const Vec& v) {
    return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}
inline Vec operator+(const Vec& a, const Vec& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec operator-(const Vec& a, const Vec& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec operator*(double f, const Vec& v) {
    return {f * v.x, f * v.y, f * v.z};
}
inline double Dot(const Vec& a, const Vec& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Vec Cross(const Vec& a, const Vec& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double Length(const Vec& v) {
    return std::hypot(v.x, v.y, v.z);
}
inline Vec Unit(const Vec& v) {
    return (1 / Length(v)) * v;
}

/// The formula of Rodrigues.
inline Vec Rotate(const Vec& v, const Vec& axis, double angle) {
    return std::cos(angle) * v + std::sin(angle) * Cross(axis, v) +
           (1 - std::cos(angle)) * Dot(axis, v) * axis;
}

struct Quat {
    Vec v;
    double w = 0;
};

/// The Hamilton product: as rotations, `b` first.
inline Quat Hamilton(const Quat& a, const Quat& b) {
    return {a.w * b.v + b.w * a.v + Cross(a.v, b.v), a.w * b.w - Dot(a.v, b.v)};
}
inline Quat Turn(const Vec& axis, double angle) {
    return {std::sin(angle / 2) * axis, std::cos(angle / 2)};
}
inline double Length(const Quat& q) {
    return std::hypot(Length(q.v), q.w);
}
/// q v q*, not divided by the square length.
inline Vec Sandwich(const Quat& q, const Vec& v) {
    return Hamilton(Hamilton(q, {v, 0}), {-1.0 * q.v, q.w}).v;
}

struct Mat {
    double e[4][4] = {};
};

inline Mat Of(const Vorn::Matrix4& m) {
    Mat result;
    for (int i = 0; i < 16; ++i)
        result.e[i / 4][i % 4] = static_cast<double>(m.m[i]);
    return result;
}
/// The transpose: Direct3D's matrices multiply row vectors.
inline Mat Of(const D3DXMATRIX& m) {
    Mat result;
    for (int i = 0; i < 16; ++i)
        result.e[i % 4][i / 4] = static_cast<double>(m.m[i / 4][i % 4]);
    return result;
}

struct Clip {
    Vec v;
    double w = 0;
};
inline Clip Apply(const Mat& m, const Vec& v, double w = 1) {
    double out[4];
    for (int r = 0; r < 4; ++r)
        out[r] = m.e[r][0] * v.x + m.e[r][1] * v.y + m.e[r][2] * v.z + m.e[r][3] * w;
    return {{out[0], out[1], out[2]}, out[3]};
}
inline Vec Divided(const Clip& c) {
    return (1 / c.w) * c.v;
}

/// By Gauss and Jordan with pivots, for any regular matrix.
inline Mat Inverse(Mat m) {
    Mat result;
    for (int i = 0; i < 4; ++i)
        result.e[i][i] = 1;
    for (int c = 0; c < 4; ++c) {
        int pivot = c;
        for (int r = c + 1; r < 4; ++r)
            if (std::abs(m.e[r][c]) > std::abs(m.e[pivot][c]))
                pivot = r;
        std::swap(m.e[c], m.e[pivot]);
        std::swap(result.e[c], result.e[pivot]);
        const double divisor = m.e[c][c];
        for (int k = 0; k < 4; ++k) {
            m.e[c][k] /= divisor;
            result.e[c][k] /= divisor;
        }
        for (int r = 0; r < 4; ++r) {
            const double factor = r == c ? 0 : m.e[r][c];
            for (int k = 0; k < 4; ++k) {
                m.e[r][k] -= factor * m.e[c][k];
                result.e[r][k] -= factor * result.e[c][k];
            }
        }
    }
    return result;
}

class Random {
public:
    explicit Random(unsigned int seed) : mEngine(seed) {}

    float Float(float low, float high) {
        return std::uniform_real_distribution<float>(low, high)(mEngine);
    }
    int Int(int low, int high) { return std::uniform_int_distribution<int>(low, high)(mEngine); }
    Vorn::Vector3 Vector(float reach) {
        const float x = Float(-reach, reach);
        const float y = Float(-reach, reach);
        return {x, y, Float(-reach, reach)};
    }
    /// Never close to zero.
    Vec Axis() {
        Vec v;
        while (Length(v) < 0.1)
            v = Of(Vector(1));
        return Unit(v);
    }
    Vorn::Matrix4 Matrix(float reach) {
        Vorn::Matrix4 m;
        for (float& element : m.m)
            element = Float(-reach, reach);
        return m;
    }

private:
    std::mt19937 mEngine;
};

inline void ExpectNear(float actual, double expected, double tolerance) {
    EXPECT_NEAR(static_cast<double>(actual), expected, tolerance);
}
inline void ExpectNear(const Vec& actual, const Vec& expected, double tolerance) {
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
}
inline void ExpectNear(const Vorn::Vector3& actual, const Vec& expected, double tolerance) {
    ExpectNear(Of(actual), expected, tolerance);
}
/// For anything with x, y, z, w, such as the quaternions of the engine and of the platform.
template <class Q>
void ExpectNear4(const Q& actual, const Quat& expected, double tolerance) {
    ExpectNear(Of(actual.x, actual.y, actual.z), expected.v, tolerance);
    ExpectNear(actual.w, expected.w, tolerance);
}
inline void ExpectNear(const Mat& actual, const Mat& expected, double tolerance) {
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            EXPECT_NEAR(actual.e[r][c], expected.e[r][c], tolerance)
                << "row " << r << " column " << c;
}

/// That the four named references of `v` stand for four floats in a row within `v` itself.
template <class T>
void ExpectBoundToItself(const T& v) {
    const auto self = reinterpret_cast<std::uintptr_t>(&v);
    const auto first = reinterpret_cast<std::uintptr_t>(&v.x);
    EXPECT_EQ(first - self, sizeof(T) - 4 * sizeof(float));
    EXPECT_EQ(&v.y, &v.x + 1);
    EXPECT_EQ(&v.z, &v.x + 2);
    EXPECT_EQ(&v.w, &v.x + 3);
}

} // namespace Exact
