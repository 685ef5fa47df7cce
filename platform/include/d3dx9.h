// SPDX-License-Identifier: MIT
//
// The part of the D3DX 9 interface that Vorn and its hosts use, under the platform's own names.
//
//   D3DXMATRIX view;
//   D3DXMatrixLookAtLH(&view, &eye, &at, &up);
//
// Matrices multiply row vectors: v' = v M, the translation stands in the fourth row. Angles are
// radians. An out pointer may be the same as an argument; each function returns its first argument.
// Nothing reports an error: a vector without length has the direction (0, 0, 0), so a look-at
// without one has axes of zeros, and a singular matrix gives infinities or NaNs.
//
//   [X] mathematics
//   [ ] textures, surfaces, fonts, lines, effects, shaders
#ifndef VORN_PLATFORM_D3DX9_H
#define VORN_PLATFORM_D3DX9_H
#pragma GCC system_header

#include <d3d9.h>

struct D3DXVECTOR2 {
    float x, y;
    D3DXVECTOR2() = default;
    D3DXVECTOR2(float a, float b) : x(a), y(b) {}
};
struct D3DXVECTOR3 : D3DVECTOR {
    D3DXVECTOR3() = default;
    D3DXVECTOR3(float a, float b, float c) {
        x = a;
        y = b;
        z = c;
    }
};
struct D3DXVECTOR4 {
    float x, y, z, w;
    D3DXVECTOR4() = default;
    D3DXVECTOR4(float a, float b, float c, float d) : x(a), y(b), z(c), w(d) {}
};
struct D3DXQUATERNION {
    float x, y, z, w;
    D3DXQUATERNION() = default;
    D3DXQUATERNION(float a, float b, float c, float d) : x(a), y(b), z(c), w(d) {}
};
struct D3DXMATRIX : D3DMATRIX {
    D3DXMATRIX() = default;
    D3DXMATRIX(const float* p) {
        for (int i = 0; i < 16; ++i)
            m[i / 4][i % 4] = p[i];
    }
};
typedef D3DXMATRIX D3DXMATRIXA16;

#pragma GCC visibility push(default)

D3DXMATRIX* D3DXMatrixIdentity(D3DXMATRIX*);
D3DXMATRIX* D3DXMatrixTranspose(D3DXMATRIX*, const D3DXMATRIX*);
D3DXMATRIX* D3DXMatrixMultiply(D3DXMATRIX*, const D3DXMATRIX*, const D3DXMATRIX*);
D3DXMATRIX* D3DXMatrixTranslation(D3DXMATRIX*, float, float, float);
/// The quaternion is not normalised first.
D3DXMATRIX* D3DXMatrixRotationQuaternion(D3DXMATRIX*, const D3DXQUATERNION*);
D3DXMATRIX* D3DXMatrixLookAtLH(D3DXMATRIX*, const D3DXVECTOR3* eye, const D3DXVECTOR3* at,
                               const D3DXVECTOR3* up);
D3DXMATRIX* D3DXMatrixPerspectiveFovLH(D3DXMATRIX*, float fovY, float aspect, float zn, float zf);
D3DXMATRIX* D3DXMatrixOrthoOffCenterLH(D3DXMATRIX*, float l, float r, float b, float t, float zn,
                                       float zf);
/// From pixels of the viewport, Y down, and depth to the space before `world`.
D3DXVECTOR3* D3DXVec3Unproject(D3DXVECTOR3*, const D3DXVECTOR3*, const D3DVIEWPORT9*,
                               const D3DXMATRIX* projection, const D3DXMATRIX* view,
                               const D3DXMATRIX* world);
/// A vector of length 0 stays 0.
D3DXVECTOR4* D3DXVec4Normalize(D3DXVECTOR4*, const D3DXVECTOR4*);
/// Normalises the axis; a zero axis gives (0, 0, 0, cos(angle / 2)).
D3DXQUATERNION* D3DXQuaternionRotationAxis(D3DXQUATERNION*, const D3DXVECTOR3* axis, float angle);
/// Roll about Z first, then pitch about X, then yaw about Y.
D3DXQUATERNION* D3DXQuaternionRotationYawPitchRoll(D3DXQUATERNION*, float yaw, float pitch,
                                                   float roll);
/// Rotation `a` first, then `b`: the Hamilton product b a.
D3DXQUATERNION* D3DXQuaternionMultiply(D3DXQUATERNION*, const D3DXQUATERNION* a,
                                       const D3DXQUATERNION* b);
/// The conjugate divided by the square length; a quaternion of length 0 stays 0.
D3DXQUATERNION* D3DXQuaternionInverse(D3DXQUATERNION*, const D3DXQUATERNION*);
/// A quaternion of length 0 stays 0.
D3DXQUATERNION* D3DXQuaternionNormalize(D3DXQUATERNION*, const D3DXQUATERNION*);
/// The shorter way round; `t` outside 0 to 1 extrapolates. Nothing is normalised.
D3DXQUATERNION* D3DXQuaternionSlerp(D3DXQUATERNION*, const D3DXQUATERNION*, const D3DXQUATERNION*,
                                    float t);
/// The axis is x, y, z as they are, the angle 2 acos(w). Either out pointer may be null.
void D3DXQuaternionToAxisAngle(const D3DXQUATERNION*, D3DXVECTOR3* axis, float* angle);

#pragma GCC visibility pop

#endif
