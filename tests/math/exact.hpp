// SPDX-License-Identifier: MIT
//
// Geometry in double precision, by formulas that the engine does not use: what the single precision
// of the engine and of the platform is measured against.
//
//   const Exact::Vec turned = Exact::Rotate(Exact::Of(v), axis, angle);
//   Exact::ExpectNear(Exact::Of(matrix * v), turned, 1e-5);
//
// Matrices multiply column vectors. Axes are of length 1, angles are radians.
#pragma once

#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace Exact {

inline constexpr double Pi = 3.14159265358979323846;

/// Also a quaternion. `w` is 0 for what has three elements.
struct Vec {
    double x = 0, y = 0, z = 0, w = 0;
};
inline constexpr Vec X{1, 0, 0}, Y{0, 1, 0}, Z{0, 0, 1}, W{0, 0, 0, 1};

inline float Single(double number) {
    return static_cast<float>(number);
}
/// Of anything with x, y, z and perhaps w.
template <class V>
Vec Of(const V& v) {
    const auto wide = [](float f) { return static_cast<double>(f); };
    if constexpr (requires { v.w; })
        return {wide(v.x), wide(v.y), wide(v.z), wide(v.w)};
    else
        return {wide(v.x), wide(v.y), wide(v.z)};
}
template <class V = Vorn::Vector3>
V To(const Vec& v) {
    if constexpr (requires { V().w; })
        return V(Single(v.x), Single(v.y), Single(v.z), Single(v.w));
    else
        return V(Single(v.x), Single(v.y), Single(v.z));
}

inline Vec operator+(const Vec& a, const Vec& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z, a.w + b.w};
}
inline Vec operator-(const Vec& a, const Vec& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z, a.w - b.w};
}
inline Vec operator*(double f, const Vec& v) {
    return {f * v.x, f * v.y, f * v.z, f * v.w};
}
inline double Dot(const Vec& a, const Vec& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
}
inline Vec Cross(const Vec& a, const Vec& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double Length(const Vec& v) {
    return std::sqrt(Dot(v, v));
}
inline Vec Unit(const Vec& v) {
    return (1 / Length(v)) * v;
}
/// The formula of Rodrigues.
inline Vec Rotate(const Vec& v, const Vec& axis, double angle) {
    return std::cos(angle) * v + std::sin(angle) * Cross(axis, v) +
           (1 - std::cos(angle)) * Dot(axis, v) * axis;
}
/// The Hamilton product: as rotations, `b` first.
inline Vec Hamilton(const Vec& a, const Vec& b) {
    Vec product = a.w * b + b.w * a + Cross(a, b);
    product.w = 2 * a.w * b.w - Dot(a, b);
    return product;
}
inline Vec Turn(const Vec& axis, double angle) {
    return std::sin(angle / 2) * axis + std::cos(angle / 2) * W;
}
/// The product with all four elements of `v`.
inline Vec Apply(const Vorn::Matrix4& m, const Vec& v) {
    return {Dot(Of(m.Row1ToVec4()), v), Dot(Of(m.Row2ToVec4()), v), Dot(Of(m.Row3ToVec4()), v),
            Dot(Of(m.Row4ToVec4()), v)};
}
/// The same for Direct3D's matrices, which multiply row vectors.
inline Vec Apply(const D3DXMATRIX& m, const Vec& v) {
    return Apply(Vorn::Matrix4(&m.m[0][0]).Transposed(), v);
}
/// Where a point comes out, divided by w.
template <class M>
Vec Landing(const M& m, const Vec& point) {
    const Vec clip = Apply(m, point + W);
    return {clip.x / clip.w, clip.y / clip.w, clip.z / clip.w};
}

/// All numbers drawn are floats, also those given as double.
class Random {
public:
    explicit Random(unsigned int seed) : mEngine(seed) {}

    double operator()(float low, float high) {
        return static_cast<double>(std::uniform_real_distribution<float>(low, high)(mEngine));
    }
    float Float(float low, float high) { return Single((*this)(low, high)); }
    int Int(int low, int high) { return std::uniform_int_distribution<int>(low, high)(mEngine); }
    Vorn::Vector3 Place(float reach) { return To(Vector(reach)); }
    Vec Vector(float reach) {
        const double x = (*this)(-reach, reach);
        const double y = (*this)(-reach, reach);
        return {x, y, (*this)(-reach, reach)};
    }
    Vec Four(float reach) { return Vector(reach) + (*this)(-reach, reach) * W; }
    /// Never close to zero.
    Vec Axis() {
        Vec v;
        while (Length(v) < 0.1)
            v = Vector(1);
        return Unit(v);
    }
    Vorn::Matrix4 Matrix(float reach) {
        Vorn::Matrix4 m;
        for (float& element : m.m)
            element = Single((*this)(-reach, reach));
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
    EXPECT_NEAR(actual.w, expected.w, tolerance);
}
inline void ExpectNear(const Vorn::Vector3& actual, const Vec& expected, double tolerance) {
    ExpectNear(Of(actual), expected, tolerance);
}

} // namespace Exact
