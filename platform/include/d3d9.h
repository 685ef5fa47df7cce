// SPDX-License-Identifier: MIT
//
// The part of the Direct3D 9 interface that Vorn and its hosts use, under the platform's own names.
//
//   [X] vectors, matrices, viewport: the records that mathematics works on
//   [ ] interfaces, states, formats
#ifndef VORN_PLATFORM_D3D9_H
#define VORN_PLATFORM_D3D9_H
#pragma GCC system_header

#include <windows.h>

typedef DWORD D3DCOLOR;

struct D3DVIEWPORT9 {
    DWORD X, Y, Width, Height;
    float MinZ, MaxZ;
};
struct D3DVECTOR {
    float x, y, z;
};
struct D3DMATRIX {
    union {
        struct {
            float _11, _12, _13, _14, _21, _22, _23, _24, _31, _32, _33, _34, _41, _42, _43, _44;
        };
        float m[4][4];
    };
};

#endif
