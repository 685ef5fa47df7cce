// SPDX-License-Identifier: MIT
#include "platform/d3dx9/texture/block_compression.hpp"

#include "platform/d3dx9/texture/stb.hpp"

#include <algorithm>
#include <array>
#include <limits>

namespace VornPlatform {

namespace {

using Color = DxtColor;
using Block = std::array<Color, 16>;

constexpr UINT Red = 2, Green = 1, Blue = 0, Alpha = 3;

UINT To565(const Color& color) {
    const auto part = [&color](UINT channel, UINT most) {
        return (color[channel] * most + 127) / 255;
    };
    return part(Red, 31) << 11 | part(Green, 63) << 5 | part(Blue, 31);
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
    const std::array<Color, 4> palette = DxtPalette(first, second, true);

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
