// SPDX-License-Identifier: MIT
//
// Transforms in double precision, for converting scenes: what is baked together here passes through
// many products, and the model file gets floats only at the end. Column vectors, as in Matrix4.
#pragma once

#include <array>
#include <cmath>

namespace Import {

struct Vec3 {
    double x = 0, y = 0, z = 0;
};

inline Vec3 operator+(const Vec3& a, const Vec3& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec3 operator-(const Vec3& a, const Vec3& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec3 operator*(const Vec3& a, double f) {
    return {a.x * f, a.y * f, a.z * f};
}
inline double Dot(const Vec3& a, const Vec3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Vec3 Cross(const Vec3& a, const Vec3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double Length(const Vec3& a) {
    return std::sqrt(Dot(a, a));
}
inline Vec3 Lerp(const Vec3& a, const Vec3& b, double t) {
    return a + (b - a) * t;
}
inline bool Finite(const Vec3& a) {
    return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z);
}

/// A rotation; not of unit length only where a source says so.
struct Quat {
    double x = 0, y = 0, z = 0, w = 1;
};

/// `second` first, then `first`: the order of matrices of column vectors.
Quat operator*(const Quat& first, const Quat& second);
inline Quat Conjugate(const Quat& q) {
    return {-q.x, -q.y, -q.z, q.w};
}
inline double Dot(const Quat& a, const Quat& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
}
/// The identity for a length of 0.
Quat Normalized(const Quat& q);
/// The short way round.
Quat Slerp(const Quat& a, const Quat& b, double t);
Vec3 Rotate(const Quat& q, const Vec3& v);
/// (unit: radians), from 0 to pi
double AngleBetween(const Quat& a, const Quat& b);

/// A linear map and a translation: m[3 * row + column], then t.
struct Affine {
    std::array<double, 9> m{1, 0, 0, 0, 1, 0, 0, 0, 1};
    Vec3 t;
};

Affine operator*(const Affine& first, const Affine& second);
Vec3 operator*(const Affine& a, const Vec3& point);
Vec3 Linear(const Affine& a, const Vec3& direction);
double Determinant(const Affine& a);
/// Of a singular map, the inverse of its rotation and translation.
Affine Inverse(const Affine& a);
Affine Scaling(double factor);
/// Scale first, then rotation, then translation.
Affine Compose(const Vec3& position, const Quat& rotation, const Vec3& scale);
/// How normals go along with points: the inverse transpose, not normalised.
Vec3 TransformNormal(const Affine& a, const Vec3& normal);
/// Adds `weight` times `a` to `sum`, element by element.
void AddWeighted(Affine& sum, const Affine& a, double weight);
/// Largest difference of two linear maps on a unit cube, for telling a constant scale from one that
/// changes.
double LinearDifference(const Affine& a, const Affine& b);

/// Position and rotation: all that a key frame holds.
struct Rigid {
    Vec3 position;
    Quat rotation;
};

Rigid operator*(const Rigid& first, const Rigid& second);
Vec3 operator*(const Rigid& r, const Vec3& point);
Rigid Inverse(const Rigid& r);
Affine ToAffine(const Rigid& r);
/// The rotation nearest to the linear part (of its negative, where it mirrors) and the translation.
/// A scale falls away, and so does a shear. False: the map is too flat to hold a rotation, and
/// `rigid` gets the translation only.
bool NearestRigid(const Affine& a, Rigid& rigid);

} // namespace Import
