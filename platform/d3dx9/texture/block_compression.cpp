// SPDX-License-Identifier: MIT
#include "platform/d3dx9/texture/block_compression.hpp"

#include "platform/d3dx9/texture/stb.hpp"

#include <algorithm>
#include <array>
#include <limits>

namespace VornPlatform {

namespace {

using Color = std::array<std::uint8_t, 4>; // in the order of the caller
using Block = std::array<Color, 16>;

constexpr UINT Red = 2, Green = 1, Blue = 0, Alpha = 3;

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

UINT To565(const Color& color) {
    const auto part = [&color](UINT channel, UINT most) {
        return (color[channel] * most + 127) / 255;
    };
    return part(Red, 31) << 11 | part(Green, 63) << 5 | part(Blue, 31);
}

Color Between(const Color& a, const Color& b, UINT weightA, UINT weightB) {
    Color color;
    const UINT whole = weightA + weightB;
    for (std::size_t c = 0; c < 4; ++c)
        color[c] = static_cast<std::uint8_t>((a[c] * weightA + b[c] * weightB + whole / 2) / whole);
    return color;
}

// Four colours, or with `punch` and the smaller one first three and a transparent black.
std::array<Color, 4> Palette(UINT first, UINT second, bool punch) {
    const Color a = From565(first), b = From565(second);
    if (punch && first <= second)
        return {a, b, Between(a, b, 1, 1), Color{0, 0, 0, 0}};
    return {a, b, Between(a, b, 2, 1), Between(a, b, 1, 2)};
}

void ReadColors(Bytes bytes, bool punch, Block& block) {
    const std::array<Color, 4> palette = Palette(Read16(bytes, 0), Read16(bytes, 2), punch);
    const UINT indices = Read32(bytes, 4);
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

void Put16(std::uint8_t* to, UINT value) {
    to[0] = static_cast<std::uint8_t>(value);
    to[1] = static_cast<std::uint8_t>(value >> 8);
}

// stb knows no transparent pixels, so these blocks are ours: the ends of the box around the colours
// that show, and the nearest of the three.
void WritePunched(const Block& block, std::uint8_t* to) {
    Color low = {255, 255, 255, 255}, high = {0, 0, 0, 255};
    for (const Color& color : block)
        if (color[Alpha] >= 128)
            for (std::size_t c = 0; c < 3; ++c) {
                low[c] = std::min(low[c], color[c]);
                high[c] = std::max(high[c], color[c]);
            }
    UINT first = To565(low), second = To565(high);
    if (first > second)
        std::swap(first, second);
    const std::array<Color, 4> palette = Palette(first, second, true);

    UINT indices = 0;
    for (std::size_t i = 0; i < 16; ++i) {
        UINT best = 3;
        int distance = std::numeric_limits<int>::max();
        for (UINT p = 0; p < 3 && block[i][Alpha] >= 128; ++p) {
            int sum = 0;
            for (std::size_t c = 0; c < 3; ++c) {
                const int difference = block[i][c] - palette[p][c];
                sum += difference * difference;
            }
            if (sum < distance) {
                distance = sum;
                best = p;
            }
        }
        indices |= best << (2 * i);
    }
    Put16(to, first);
    Put16(to + 2, second);
    Put16(to + 4, indices);
    Put16(to + 6, indices >> 16);
}

void WriteBlock(D3DFORMAT format, const Block& bgra, std::uint8_t* to) {
    Block rgba = bgra;
    for (Color& color : rgba)
        std::swap(color[0], color[2]);
    const auto* bytes = rgba.front().data();
    if (format == D3DFMT_DXT5) {
        stb_compress_dxt_block(to, bytes, 1, STB_DXT_HIGHQUAL);
        return;
    }
    if (format == D3DFMT_DXT3) {
        for (std::size_t i = 0; i < 8; ++i) {
            const auto alpha = [&bgra](std::size_t pixel) {
                return (bgra[pixel][Alpha] * 15u + 127) / 255;
            };
            *to++ = static_cast<std::uint8_t>(alpha(2 * i) | alpha(2 * i + 1) << 4);
        }
    } else if (std::any_of(bgra.begin(), bgra.end(),
                           [](const Color& color) { return color[Alpha] < 128; })) {
        WritePunched(bgra, to);
        return;
    }
    stb_compress_dxt_block(to, bytes, 0, STB_DXT_HIGHQUAL);
}

} // namespace

std::vector<std::uint8_t> DecompressBlocks(D3DFORMAT format, UINT width, UINT height,
                                           Bytes blocks) {
    std::vector<std::uint8_t> pixels(std::size_t(width) * height * 4);
    const std::size_t unit = UnitBytes(format);
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

std::vector<std::uint8_t> CompressBlocks(D3DFORMAT format, UINT width, UINT height, Bytes bgra) {
    std::vector<std::uint8_t> blocks(LevelBytes(format, width, height));
    std::uint8_t* to = blocks.data();
    Block block;
    for (UINT top = 0; top < height; top += 4)
        for (UINT left = 0; left < width; left += 4, to += UnitBytes(format)) {
            for (UINT i = 0; i < 16; ++i) {
                const std::size_t x = std::min(left + i % 4, width - 1);
                const std::size_t y = std::min(top + i / 4, height - 1);
                std::copy_n(&bgra[(y * width + x) * 4], 4, block[i].begin());
            }
            WriteBlock(format, block, to);
        }
    return blocks;
}

} // namespace VornPlatform
