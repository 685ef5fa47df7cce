// SPDX-License-Identifier: MIT
//
// The mathematics of D3DX 9, by its published definitions. Results are computed into locals first,
// since an out pointer may be the same as an argument.
#include <d3dx9.h>

#include <cmath>

namespace {

D3DXVECTOR3 Cross(const D3DXVECTOR3& a, const D3DXVECTOR3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

float Dot(const D3DXVECTOR3& a, const D3DXVECTOR3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

float Dot(const D3DXQUATERNION& a, const D3DXQUATERNION& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
}

D3DXVECTOR3 Normalized(const D3DXVECTOR3& v) {
    const float length = std::sqrt(Dot(v, v));
    if (length == 0.0f)
        return {0.0f, 0.0f, 0.0f};
    return {v.x / length, v.y / length, v.z / length};
}

D3DXMATRIX Rows(float m11, float m12, float m13, float m14, float m21, float m22, float m23,
                float m24, float m31, float m32, float m33, float m34, float m41, float m42,
                float m43, float m44) {
    const float elements[16] = {m11, m12, m13, m14, m21, m22, m23, m24,
                                m31, m32, m33, m34, m41, m42, m43, m44};
    return D3DXMATRIX(elements);
}

// Cramer's rule by the twelve 2x2 minors of the upper and the lower half, in double: a view and a
// projection multiplied leave little of a float's precision.
void Inverse(double (&inverse)[4][4], const double (&m)[4][4]) {
    const double s0 = m[0][0] * m[1][1] - m[1][0] * m[0][1];
    const double s1 = m[0][0] * m[1][2] - m[1][0] * m[0][2];
    const double s2 = m[0][0] * m[1][3] - m[1][0] * m[0][3];
    const double s3 = m[0][1] * m[1][2] - m[1][1] * m[0][2];
    const double s4 = m[0][1] * m[1][3] - m[1][1] * m[0][3];
    const double s5 = m[0][2] * m[1][3] - m[1][2] * m[0][3];
    const double c5 = m[2][2] * m[3][3] - m[3][2] * m[2][3];
    const double c4 = m[2][1] * m[3][3] - m[3][1] * m[2][3];
    const double c3 = m[2][1] * m[3][2] - m[3][1] * m[2][2];
    const double c2 = m[2][0] * m[3][3] - m[3][0] * m[2][3];
    const double c1 = m[2][0] * m[3][2] - m[3][0] * m[2][2];
    const double c0 = m[2][0] * m[3][1] - m[3][0] * m[2][1];
    const double d = 1.0 / (s0 * c5 - s1 * c4 + s2 * c3 + s3 * c2 - s4 * c1 + s5 * c0);

    inverse[0][0] = (m[1][1] * c5 - m[1][2] * c4 + m[1][3] * c3) * d;
    inverse[0][1] = (-m[0][1] * c5 + m[0][2] * c4 - m[0][3] * c3) * d;
    inverse[0][2] = (m[3][1] * s5 - m[3][2] * s4 + m[3][3] * s3) * d;
    inverse[0][3] = (-m[2][1] * s5 + m[2][2] * s4 - m[2][3] * s3) * d;
    inverse[1][0] = (-m[1][0] * c5 + m[1][2] * c2 - m[1][3] * c1) * d;
    inverse[1][1] = (m[0][0] * c5 - m[0][2] * c2 + m[0][3] * c1) * d;
    inverse[1][2] = (-m[3][0] * s5 + m[3][2] * s2 - m[3][3] * s1) * d;
    inverse[1][3] = (m[2][0] * s5 - m[2][2] * s2 + m[2][3] * s1) * d;
    inverse[2][0] = (m[1][0] * c4 - m[1][1] * c2 + m[1][3] * c0) * d;
    inverse[2][1] = (-m[0][0] * c4 + m[0][1] * c2 - m[0][3] * c0) * d;
    inverse[2][2] = (m[3][0] * s4 - m[3][1] * s2 + m[3][3] * s0) * d;
    inverse[2][3] = (-m[2][0] * s4 + m[2][1] * s2 - m[2][3] * s0) * d;
    inverse[3][0] = (-m[1][0] * c3 + m[1][1] * c1 - m[1][2] * c0) * d;
    inverse[3][1] = (m[0][0] * c3 - m[0][1] * c1 + m[0][2] * c0) * d;
    inverse[3][2] = (-m[3][0] * s3 + m[3][1] * s1 - m[3][2] * s0) * d;
    inverse[3][3] = (m[2][0] * s3 - m[2][1] * s1 + m[2][2] * s0) * d;
}

void MultiplyBy(double (&left)[4][4], const D3DXMATRIX& right) {
    double product[4][4];
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c) {
            product[r][c] = 0.0;
            for (int k = 0; k < 4; ++k)
                product[r][c] += left[r][k] * static_cast<double>(right.m[k][c]);
        }
    }
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            left[r][c] = product[r][c];
}

} // namespace

D3DXMATRIX* D3DXMatrixIdentity(D3DXMATRIX* out) {
    *out = Rows(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    return out;
}

D3DXMATRIX* D3DXMatrixTranspose(D3DXMATRIX* out, const D3DXMATRIX* m) {
    D3DXMATRIX transposed;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            transposed.m[r][c] = m->m[c][r];
    *out = transposed;
    return out;
}

D3DXMATRIX* D3DXMatrixMultiply(D3DXMATRIX* out, const D3DXMATRIX* a, const D3DXMATRIX* b) {
    D3DXMATRIX product;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            product.m[r][c] = a->m[r][0] * b->m[0][c] + a->m[r][1] * b->m[1][c] +
                              a->m[r][2] * b->m[2][c] + a->m[r][3] * b->m[3][c];
    *out = product;
    return out;
}

D3DXMATRIX* D3DXMatrixTranslation(D3DXMATRIX* out, float x, float y, float z) {
    *out = Rows(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1);
    return out;
}

D3DXMATRIX* D3DXMatrixRotationQuaternion(D3DXMATRIX* out, const D3DXQUATERNION* q) {
    const float x = q->x, y = q->y, z = q->z, w = q->w;
    *out = Rows(1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w), 0, //
                2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w), 0, //
                2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y), 0, //
                0, 0, 0, 1);
    return out;
}

D3DXMATRIX* D3DXMatrixLookAtLH(D3DXMATRIX* out, const D3DXVECTOR3* eye, const D3DXVECTOR3* at,
                               const D3DXVECTOR3* up) {
    const D3DXVECTOR3 z = Normalized({at->x - eye->x, at->y - eye->y, at->z - eye->z});
    const D3DXVECTOR3 x = Normalized(Cross(*up, z));
    const D3DXVECTOR3 y = Cross(z, x);
    *out = Rows(x.x, y.x, z.x, 0, //
                x.y, y.y, z.y, 0, //
                x.z, y.z, z.z, 0, //
                -Dot(x, *eye), -Dot(y, *eye), -Dot(z, *eye), 1);
    return out;
}

D3DXMATRIX* D3DXMatrixPerspectiveFovLH(D3DXMATRIX* out, float fovY, float aspect, float zn,
                                       float zf) {
    const float yScale = 1.0f / std::tan(fovY / 2);
    const float xScale = yScale / aspect;
    const float depth = zf / (zf - zn);
    *out = Rows(xScale, 0, 0, 0, 0, yScale, 0, 0, 0, 0, depth, 1, 0, 0, -zn * depth, 0);
    return out;
}

D3DXMATRIX* D3DXMatrixOrthoOffCenterLH(D3DXMATRIX* out, float l, float r, float b, float t,
                                       float zn, float zf) {
    *out = Rows(2 / (r - l), 0, 0, 0,   //
                0, 2 / (t - b), 0, 0,   //
                0, 0, 1 / (zf - zn), 0, //
                (l + r) / (l - r), (t + b) / (b - t), zn / (zn - zf), 1);
    return out;
}

D3DXVECTOR3* D3DXVec3Unproject(D3DXVECTOR3* out, const D3DXVECTOR3* v, const D3DVIEWPORT9* viewport,
                               const D3DXMATRIX* projection, const D3DXMATRIX* view,
                               const D3DXMATRIX* world) {
    double toClip[4][4];
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            toClip[r][c] = static_cast<double>(world->m[r][c]);
    MultiplyBy(toClip, *view);
    MultiplyBy(toClip, *projection);
    double fromClip[4][4];
    Inverse(fromClip, toClip);

    const double clip[4] = {
        (static_cast<double>(v->x) - viewport->X) / viewport->Width * 2 - 1,
        1 - (static_cast<double>(v->y) - viewport->Y) / viewport->Height * 2,
        (static_cast<double>(v->z) - static_cast<double>(viewport->MinZ)) /
            (static_cast<double>(viewport->MaxZ) - static_cast<double>(viewport->MinZ)),
        1};
    double point[4] = {};
    for (int c = 0; c < 4; ++c)
        for (int k = 0; k < 4; ++k)
            point[c] += clip[k] * fromClip[k][c];
    *out = {static_cast<float>(point[0] / point[3]), static_cast<float>(point[1] / point[3]),
            static_cast<float>(point[2] / point[3])};
    return out;
}

D3DXVECTOR4* D3DXVec4Normalize(D3DXVECTOR4* out, const D3DXVECTOR4* v) {
    const float length = std::sqrt(v->x * v->x + v->y * v->y + v->z * v->z + v->w * v->w);
    const float scale = length == 0.0f ? 0.0f : 1.0f / length;
    *out = {v->x * scale, v->y * scale, v->z * scale, v->w * scale};
    return out;
}

D3DXQUATERNION* D3DXQuaternionRotationAxis(D3DXQUATERNION* out, const D3DXVECTOR3* axis,
                                           float angle) {
    const D3DXVECTOR3 n = Normalized(*axis);
    const float s = std::sin(angle / 2);
    *out = {n.x * s, n.y * s, n.z * s, std::cos(angle / 2)};
    return out;
}

D3DXQUATERNION* D3DXQuaternionRotationYawPitchRoll(D3DXQUATERNION* out, float yaw, float pitch,
                                                   float roll) {
    const float sy = std::sin(yaw / 2), cy = std::cos(yaw / 2);
    const float sp = std::sin(pitch / 2), cp = std::cos(pitch / 2);
    const float sr = std::sin(roll / 2), cr = std::cos(roll / 2);
    *out = {cy * sp * cr + sy * cp * sr, sy * cp * cr - cy * sp * sr, cy * cp * sr - sy * sp * cr,
            cy * cp * cr + sy * sp * sr};
    return out;
}

D3DXQUATERNION* D3DXQuaternionMultiply(D3DXQUATERNION* out, const D3DXQUATERNION* a,
                                       const D3DXQUATERNION* b) {
    *out = {b->w * a->x + b->x * a->w + b->y * a->z - b->z * a->y,
            b->w * a->y - b->x * a->z + b->y * a->w + b->z * a->x,
            b->w * a->z + b->x * a->y - b->y * a->x + b->z * a->w,
            b->w * a->w - b->x * a->x - b->y * a->y - b->z * a->z};
    return out;
}

D3DXQUATERNION* D3DXQuaternionInverse(D3DXQUATERNION* out, const D3DXQUATERNION* q) {
    const float square = Dot(*q, *q);
    const float scale = square == 0.0f ? 0.0f : 1.0f / square;
    *out = {-q->x * scale, -q->y * scale, -q->z * scale, q->w * scale};
    return out;
}

D3DXQUATERNION* D3DXQuaternionNormalize(D3DXQUATERNION* out, const D3DXQUATERNION* q) {
    const float length = std::sqrt(Dot(*q, *q));
    const float scale = length == 0.0f ? 0.0f : 1.0f / length;
    *out = {q->x * scale, q->y * scale, q->z * scale, q->w * scale};
    return out;
}

D3DXQUATERNION* D3DXQuaternionSlerp(D3DXQUATERNION* out, const D3DXQUATERNION* a,
                                    const D3DXQUATERNION* b, float t) {
    float cosine = Dot(*a, *b);
    const float sign = cosine < 0.0f ? -1.0f : 1.0f;
    cosine *= sign;

    // Where the arc is so short that it is lost in rounding, the chord is the same to a float's
    // precision.
    float fromA = 1 - t, fromB = t;
    if (1 - cosine > 1e-6f) {
        const float arc = std::acos(cosine);
        fromA = std::sin((1 - t) * arc) / std::sin(arc);
        fromB = std::sin(t * arc) / std::sin(arc);
    }
    fromB *= sign;
    *out = {fromA * a->x + fromB * b->x, fromA * a->y + fromB * b->y, fromA * a->z + fromB * b->z,
            fromA * a->w + fromB * b->w};
    return out;
}

void D3DXQuaternionToAxisAngle(const D3DXQUATERNION* q, D3DXVECTOR3* axis, float* angle) {
    const float w = q->w;
    if (axis)
        *axis = {q->x, q->y, q->z};
    if (angle)
        *angle = 2 * std::acos(w);
}
