// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/formats.hpp"

#include <algorithm>
#include <iterator>

namespace VornPlatform {

namespace {

constexpr GLint R = GL_RED, G = GL_GREEN, B = GL_BLUE, A = GL_ALPHA, Zero = GL_ZERO, One = GL_ONE;

constexpr GlFormat Formats[] = {
    {D3DFMT_A8R8G8B8, GL_RGBA8, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, 4, {R, G, B, A}},
    {.format = D3DFMT_X8R8G8B8,
     .internal = GL_RGBA8,
     .external = GL_BGRA,
     .type = GL_UNSIGNED_INT_8_8_8_8_REV,
     .bytes = 4,
     .swizzle = {R, G, B, One},
     .alpha = false},
    {D3DFMT_A8, GL_R8, GL_RED, GL_UNSIGNED_BYTE, 1, {Zero, Zero, Zero, R}},
    {D3DFMT_L8, GL_R8, GL_RED, GL_UNSIGNED_BYTE, 1, {R, R, R, One}},
    {D3DFMT_A8L8, GL_RG8, GL_RG, GL_UNSIGNED_BYTE, 2, {R, R, R, G}},
    {D3DFMT_DXT1, GL_COMPRESSED_RGBA_S3TC_DXT1_EXT, 0, 0, 8, {R, G, B, A}, true},
    {D3DFMT_DXT3, GL_COMPRESSED_RGBA_S3TC_DXT3_EXT, 0, 0, 16, {R, G, B, A}, true},
    {D3DFMT_DXT5, GL_COMPRESSED_RGBA_S3TC_DXT5_EXT, 0, 0, 16, {R, G, B, A}, true},
    {D3DFMT_D16, GL_DEPTH_COMPONENT16, 0, 0, 2, {R, G, B, A}, false, true},
    {D3DFMT_D24S8, GL_DEPTH_COMPONENT24, 0, 0, 4, {R, G, B, A}, false, true},
    {D3DFMT_D24X8, GL_DEPTH_COMPONENT24, 0, 0, 4, {R, G, B, A}, false, true},
};

} // namespace

const GlFormat* FindFormat(D3DFORMAT format) {
    const auto* found = std::find_if(std::begin(Formats), std::end(Formats),
                                     [&](const GlFormat& f) { return f.format == format; });
    return found == std::end(Formats) ? nullptr : found;
}

void Unpack(D3DCOLOR color, GLfloat (&channels)[4]) {
    for (unsigned int i = 0; i < 4; ++i) {
        const unsigned int shift = i == 3 ? 24 : 16 - 8 * i;
        channels[i] = static_cast<GLfloat>((color >> shift) & 0xff) / 255.0f;
    }
}

void BorderFor(const GlFormat& format, D3DCOLOR color, GLfloat (&border)[4]) {
    Unpack(color, border);
    if (format.format == D3DFMT_A8)
        border[0] = border[3];
    else if (format.format == D3DFMT_A8L8)
        border[1] = border[3];
}

} // namespace VornPlatform
