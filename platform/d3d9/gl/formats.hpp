// SPDX-License-Identifier: MIT
//
// How OpenGL holds each format of Direct3D.
#pragma once

#include <d3d9.h>

#include <epoxy/gl.h>

namespace VornPlatform {

struct GlFormat {
    D3DFORMAT format;
    GLenum internal;
    GLenum external, type; // of the host's bytes; 0 for compressed and depth formats
    UINT bytes;            // of a pixel, or of a block of 4 by 4
    GLint swizzle[4];
    bool compressed = false, depth = false;
    bool alpha = true; // else it reads 1, whatever the machine holds there
};

/// Null for a format that no texture has.
const GlFormat* FindFormat(D3DFORMAT format);

/// The border colour as the swizzle of the format wants it.
void BorderFor(const GlFormat& format, D3DCOLOR color, GLfloat (&border)[4]);
/// Red, green, blue, alpha.
void Unpack(D3DCOLOR color, GLfloat (&channels)[4]);

} // namespace VornPlatform
