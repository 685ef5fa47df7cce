// SPDX-License-Identifier: MIT
#include "tools/import/affine.hpp"

#include <algorithm>
#include <cstddef>

namespace Import {

Quat operator*(const Quat& a, const Quat& b) {
    return {a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
            a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x,
            a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w,
            a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
}

Quat Normalized(const Quat& q) {
    const double length = std::sqrt(Dot(q, q));
    if (!std::isfinite(length) || length < 1e-12)
        return {};
    return {q.x / length, q.y / length, q.z / length, q.w / length};
}

Quat Slerp(const Quat& a, const Quat& b, double t) {
    double cosine = Dot(a, b);
    const double sign = cosine < 0 ? -1.0 : 1.0;
    cosine = std::min(cosine * sign, 1.0);
    double from = 1 - t;
    double to = t;
    if (cosine < 1 - 1e-9) {
        const double angle = std::acos(cosine);
        from = std::sin(angle * (1 - t)) / std::sin(angle);
        to = std::sin(angle * t) / std::sin(angle);
    }
    to *= sign;
    return Normalized({a.x * from + b.x * to, a.y * from + b.y * to, a.z * from + b.z * to,
                       a.w * from + b.w * to});
}

Vec3 Rotate(const Quat& q, const Vec3& v) {
    const Vec3 axis{q.x, q.y, q.z};
    const Vec3 twice = Cross(axis, v) * 2;
    return v + twice * q.w + Cross(axis, twice);
}

double AngleBetween(const Quat& a, const Quat& b) {
    const Quat turn = Conjugate(a) * b;
    return 2 * std::atan2(Length({turn.x, turn.y, turn.z}), std::abs(turn.w));
}

Vec3 Linear(const Affine& a, const Vec3& v) {
    return {a.m[0] * v.x + a.m[1] * v.y + a.m[2] * v.z, a.m[3] * v.x + a.m[4] * v.y + a.m[5] * v.z,
            a.m[6] * v.x + a.m[7] * v.y + a.m[8] * v.z};
}

Vec3 operator*(const Affine& a, const Vec3& point) {
    return Linear(a, point) + a.t;
}

Affine operator*(const Affine& a, const Affine& b) {
    Affine product;
    for (std::size_t r = 0; r < 3; ++r) {
        for (std::size_t c = 0; c < 3; ++c)
            product.m[3 * r + c] =
                a.m[3 * r] * b.m[c] + a.m[3 * r + 1] * b.m[3 + c] + a.m[3 * r + 2] * b.m[6 + c];
    }
    product.t = a * b.t;
    return product;
}

double Determinant(const Affine& a) {
    const auto& m = a.m;
    return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) +
           m[2] * (m[3] * m[7] - m[4] * m[6]);
}

namespace {

/// The inverse transpose times the determinant.
std::array<double, 9> cofactors(const std::array<double, 9>& m) {
    return {m[4] * m[8] - m[5] * m[7], m[5] * m[6] - m[3] * m[8], m[3] * m[7] - m[4] * m[6],
            m[2] * m[7] - m[1] * m[8], m[0] * m[8] - m[2] * m[6], m[1] * m[6] - m[0] * m[7],
            m[1] * m[5] - m[2] * m[4], m[2] * m[3] - m[0] * m[5], m[0] * m[4] - m[1] * m[3]};
}

double norm(const std::array<double, 9>& m) {
    double sum = 0;
    for (const double element : m)
        sum += element * element;
    return std::sqrt(sum);
}

/// Whether the linear map is so flat that its inverse means nothing.
bool flat(const Affine& a) {
    const double size = norm(a.m);
    return !(std::abs(Determinant(a)) > 1e-9 * size * size * size) || !std::isfinite(size);
}

Quat fromRotation(const std::array<double, 9>& m) {
    // Of the four ways, the one with the largest divisor.
    const double trace = m[0] + m[4] + m[8];
    Quat q;
    if (trace > 0)
        q = {m[7] - m[5], m[2] - m[6], m[3] - m[1], 1 + trace};
    else if (m[0] >= m[4] && m[0] >= m[8])
        q = {1 + m[0] - m[4] - m[8], m[1] + m[3], m[2] + m[6], m[7] - m[5]};
    else if (m[4] >= m[8])
        q = {m[1] + m[3], 1 + m[4] - m[0] - m[8], m[5] + m[7], m[2] - m[6]};
    else
        q = {m[2] + m[6], m[5] + m[7], 1 + m[8] - m[0] - m[4], m[3] - m[1]};
    return Normalized(q);
}

} // namespace

Affine Inverse(const Affine& a) {
    if (flat(a)) {
        Rigid rigid;
        NearestRigid(a, rigid);
        return ToAffine(Inverse(rigid));
    }
    const double determinant = Determinant(a);
    const std::array<double, 9> c = cofactors(a.m);
    Affine inverse;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column)
            inverse.m[3 * row + column] = c[3 * column + row] / determinant;
    }
    inverse.t = Linear(inverse, a.t) * -1;
    return inverse;
}

Affine Scaling(double factor) {
    Affine scaling;
    scaling.m = {factor, 0, 0, 0, factor, 0, 0, 0, factor};
    return scaling;
}

Affine Compose(const Vec3& position, const Quat& rotation, const Vec3& scale) {
    Affine a = ToAffine({position, Normalized(rotation)});
    for (std::size_t row = 0; row < 3; ++row) {
        a.m[3 * row] *= scale.x;
        a.m[3 * row + 1] *= scale.y;
        a.m[3 * row + 2] *= scale.z;
    }
    return a;
}

Vec3 TransformNormal(const Affine& a, const Vec3& normal) {
    Affine inverseTranspose;
    inverseTranspose.m = cofactors(a.m);
    return Linear(inverseTranspose, normal) * (Determinant(a) < 0 ? -1.0 : 1.0);
}

void AddWeighted(Affine& sum, const Affine& a, double weight) {
    for (std::size_t i = 0; i < a.m.size(); ++i)
        sum.m[i] += a.m[i] * weight;
    sum.t = sum.t + a.t * weight;
}

double LinearDifference(const Affine& a, const Affine& b) {
    double largest = 0;
    for (std::size_t i = 0; i < a.m.size(); ++i)
        largest = std::max(largest, std::abs(a.m[i] - b.m[i]));
    return largest;
}

Rigid operator*(const Rigid& first, const Rigid& second) {
    return {first * second.position, Normalized(first.rotation * second.rotation)};
}

Vec3 operator*(const Rigid& r, const Vec3& point) {
    return Rotate(r.rotation, point) + r.position;
}

Rigid Inverse(const Rigid& r) {
    const Quat back = Conjugate(r.rotation);
    return {Rotate(back, r.position) * -1, back};
}

Affine ToAffine(const Rigid& r) {
    const Vec3 x = Rotate(r.rotation, {1, 0, 0});
    const Vec3 y = Rotate(r.rotation, {0, 1, 0});
    const Vec3 z = Rotate(r.rotation, {0, 0, 1});
    Affine a;
    a.m = {x.x, y.x, z.x, x.y, y.y, z.y, x.z, y.z, z.z};
    a.t = r.position;
    return a;
}

bool NearestRigid(const Affine& a, Rigid& rigid) {
    rigid.position = a.t;
    rigid.rotation = {};
    if (flat(a))
        return false;

    // The polar decomposition: the mean of a matrix and its inverse transpose, over and over, ends
    // in the nearest rotation. A first division by the size spares most of the way.
    Affine q = a;
    const double size = norm(q.m) / std::sqrt(3.0) * (Determinant(q) < 0 ? -1.0 : 1.0);
    for (double& element : q.m)
        element /= size;
    for (int step = 0; step < 60; ++step) {
        const std::array<double, 9> c = cofactors(q.m);
        const double determinant = Determinant(q);
        double change = 0;
        for (std::size_t i = 0; i < 9; ++i) {
            const double next = (q.m[i] + c[i] / determinant) / 2;
            change = std::max(change, std::abs(next - q.m[i]));
            q.m[i] = next;
        }
        if (change < 1e-15)
            break;
    }
    rigid.rotation = fromRotation(q.m);
    return true;
}

} // namespace Import
