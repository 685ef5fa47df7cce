// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/dxt.hpp"

#include <algorithm>
#include <cstddef>

namespace VornPlatform {

namespace {

using Block = std::uint32_t[16];

unsigned int Read16(const BYTE* p) {
    return p[0] | static_cast<unsigned int>(p[1]) << 8;
}

// 5, 6 and 5 bits, each repeated at the bottom so that the ends of the range are reached.
void Expand565(unsigned int packed, unsigned int (&rgb)[3]) {
    const unsigned int r = packed >> 11, g = (packed >> 5) & 63, b = packed & 31;
    rgb[0] = r << 3 | r >> 2;
    rgb[1] = g << 2 | g >> 4;
    rgb[2] = b << 3 | b >> 2;
}

void DecodeColors(const BYTE* p, bool mayBeClear, Block& pixels) {
    const unsigned int packed[2] = {Read16(p), Read16(p + 2)};
    unsigned int colors[4][3] = {};
    Expand565(packed[0], colors[0]);
    Expand565(packed[1], colors[1]);
    const bool clear = mayBeClear && packed[0] <= packed[1];
    for (std::size_t i = 0; i < 3; ++i) {
        const unsigned int a = colors[0][i], b = colors[1][i];
        colors[2][i] = clear ? (a + b) / 2 : (2 * a + b) / 3;
        colors[3][i] = clear ? 0 : (a + 2 * b) / 3;
    }
    for (unsigned int i = 0; i < 16; ++i) {
        const unsigned int choice = (p[4 + i / 4] >> (2 * (i % 4))) & 3;
        const unsigned int alpha = clear && choice == 3 ? 0 : 0xff;
        const auto& color = colors[choice];
        pixels[i] = alpha << 24 | color[0] << 16 | color[1] << 8 | color[2];
    }
}

void SetAlpha(std::uint32_t& pixel, unsigned int alpha) {
    pixel = (pixel & 0xffffff) | alpha << 24;
}

void DecodeAlpha4(const BYTE* p, Block& pixels) {
    for (unsigned int i = 0; i < 16; ++i)
        SetAlpha(pixels[i], ((p[i / 2] >> (4 * (i % 2))) & 15u) * 17);
}

void DecodeAlphaRamp(const BYTE* p, Block& pixels) {
    const unsigned int a = p[0], b = p[1];
    unsigned int ramp[8] = {a, b, 0, 0, 0, 0, 0, 0xff};
    const unsigned int steps = a > b ? 7 : 5;
    for (unsigned int i = 1; i < steps; ++i)
        ramp[i + 1] = ((steps - i) * a + i * b) / steps;
    std::uint64_t choices = 0;
    for (unsigned int i = 0; i < 6; ++i)
        choices |= std::uint64_t(p[2 + i]) << (8 * i);
    for (unsigned int i = 0; i < 16; ++i)
        SetAlpha(pixels[i], ramp[(choices >> (3 * i)) & 7]);
}

void DecodeBlock(D3DFORMAT format, const BYTE* block, Block& pixels) {
    if (format == D3DFMT_DXT1)
        return DecodeColors(block, true, pixels);
    DecodeColors(block + 8, false, pixels);
    if (format == D3DFMT_DXT3)
        DecodeAlpha4(block, pixels);
    else
        DecodeAlphaRamp(block, pixels);
}

} // namespace

std::vector<std::uint32_t> DecompressDxt(D3DFORMAT format, const void* blocks, UINT pitch,
                                         UINT width, UINT height) {
    const std::size_t blockBytes = format == D3DFMT_DXT1 ? 8 : 16;
    std::vector<std::uint32_t> pixels(std::size_t(width) * height);
    Block block;
    for (UINT y = 0; y < height; y += 4)
        for (UINT x = 0; x < width; x += 4) {
            const BYTE* row = static_cast<const BYTE*>(blocks) + std::size_t(y / 4) * pitch;
            DecodeBlock(format, row + x / 4 * blockBytes, block);
            const UINT w = std::min(4u, width - x), h = std::min(4u, height - y);
            for (UINT i = 0; i < h; ++i)
                std::copy_n(block + std::size_t(i) * 4, w,
                            pixels.begin() + std::ptrdiff_t(std::size_t(y + i) * width + x));
        }
    return pixels;
}

} // namespace VornPlatform
