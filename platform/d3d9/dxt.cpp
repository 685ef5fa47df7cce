// SPDX-License-Identifier: MIT
#include "platform/d3d9/dxt.hpp"

#include <algorithm>

namespace VornPlatform {

namespace {

using Bytes = std::span<const std::uint8_t>;
using Color = DxtColor;
using Block = std::array<Color, 16>;

constexpr UINT Red = 2, Green = 1, Blue = 0, Alpha = 3;

UINT Read16(Bytes bytes, std::size_t at) {
    return bytes[at] | static_cast<UINT>(bytes[at + 1]) << 8;
}

std::uint8_t Expanded(UINT value, UINT most) {
    return static_cast<std::uint8_t>((value * 255 + most / 2) / most);
}

Color From565(UINT packed) {
    Color color;
    color[Red] = Expanded(packed >> 11, 31);
    color[Green] = Expanded(packed >> 5 & 63, 63);
    color[Blue] = Expanded(packed & 31, 31);
    color[Alpha] = 0xff;
    return color;
}

Color Between(const Color& a, const Color& b, UINT weightA, UINT weightB) {
    Color color;
    const UINT whole = weightA + weightB;
    for (std::size_t c = 0; c < 4; ++c)
        color[c] = static_cast<std::uint8_t>((a[c] * weightA + b[c] * weightB + whole / 2) / whole);
    return color;
}

void ReadColors(Bytes bytes, bool punch, Block& block) {
    const std::array<Color, 4> palette = DxtPalette(Read16(bytes, 0), Read16(bytes, 2), punch);
    const UINT indices = Read16(bytes, 4) | Read16(bytes, 6) << 16;
    for (std::size_t i = 0; i < 16; ++i)
        block[i] = palette[indices >> (2 * i) & 3];
}

void ReadAlphas4(Bytes bytes, Block& block) {
    for (std::size_t i = 0; i < 16; ++i)
        block[i][Alpha] = Expanded(bytes[i / 2] >> (i % 2 * 4) & 15u, 15);
}

void ReadAlphas8(Bytes bytes, Block& block) {
    const UINT a = bytes[0], b = bytes[1], steps = a > b ? 7 : 5;
    std::array<std::uint8_t, 8> palette = {bytes[0], bytes[1]};
    for (UINT i = 1; i < steps; ++i)
        palette[i + 1] = static_cast<std::uint8_t>((a * (steps - i) + b * i + steps / 2) / steps);
    if (a <= b) {
        palette[6] = 0;
        palette[7] = 0xff;
    }
    std::uint64_t indices = 0;
    for (std::size_t i = 0; i < 6; ++i)
        indices |= std::uint64_t(bytes[2 + i]) << (8 * i);
    for (std::size_t i = 0; i < 16; ++i)
        block[i][Alpha] = palette[indices >> (3 * i) & 7];
}

} // namespace

std::array<DxtColor, 4> DxtPalette(UINT first, UINT second, bool punch) {
    const Color a = From565(first), b = From565(second);
    if (punch && first <= second)
        return {a, b, Between(a, b, 1, 1), Color{0, 0, 0, 0}};
    return {a, b, Between(a, b, 2, 1), Between(a, b, 1, 2)};
}

std::vector<std::uint8_t> DecompressBlocks(D3DFORMAT format, UINT width, UINT height,
                                           Bytes blocks) {
    std::vector<std::uint8_t> pixels(std::size_t(width) * height * 4);
    const std::size_t unit = format == D3DFMT_DXT1 ? 8 : 16;
    Bytes rest = blocks;
    Block block;
    for (UINT top = 0; top < height; top += 4)
        for (UINT left = 0; left < width; left += 4, rest = rest.subspan(unit)) {
            ReadColors(rest.subspan(unit - 8), format == D3DFMT_DXT1, block);
            if (format == D3DFMT_DXT3)
                ReadAlphas4(rest, block);
            else if (format == D3DFMT_DXT5)
                ReadAlphas8(rest, block);
            for (UINT y = top; y < std::min(top + 4, height); ++y)
                for (UINT x = left; x < std::min(left + 4, width); ++x)
                    std::copy_n(block[(y - top) * 4 + x - left].begin(), 4,
                                &pixels[(std::size_t(y) * width + x) * 4]);
        }
    return pixels;
}

} // namespace VornPlatform
