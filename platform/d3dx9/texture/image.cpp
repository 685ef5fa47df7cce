// SPDX-License-Identifier: MIT
#include "platform/d3dx9/texture/image.hpp"

#include "platform/d3dx9/texture/block_compression.hpp"
#include "platform/d3dx9/texture/dds_file.hpp"
#include "platform/d3dx9/texture/picture_file.hpp"
#include "platform/d3dx9/texture/tga_file.hpp"

#include <algorithm>

namespace VornPlatform {

namespace {

using Pixels = std::vector<std::uint8_t>;

struct Size {
    UINT width, height;
};

// How much of a source pixel lies under a pixel of the smaller row: where rows of 5 become rows of
// 2, each takes two whole pixels and half of the one in the middle. Weights sum up to `from`.
struct Tap {
    UINT source;
    std::uint64_t weight;
};
std::vector<Tap> Taps(UINT pixel, UINT from, UINT to) {
    std::vector<Tap> taps;
    const std::uint64_t begin = std::uint64_t(pixel) * from, end = begin + from;
    for (std::uint64_t at = begin; at < end;) {
        const std::uint64_t source = at / to, next = std::min(end, (source + 1) * to);
        taps.push_back({static_cast<UINT>(source), next - at});
        at = next;
    }
    return taps;
}

Pixels HalvedUneven(const Pixels& pixels, Size from, Size to, UINT channels) {
    std::vector<std::vector<Tap>> columns;
    for (UINT x = 0; x < to.width; ++x)
        columns.push_back(Taps(x, from.width, to.width));
    const std::uint64_t whole = std::uint64_t(from.width) * from.height;

    Pixels half;
    half.reserve(std::size_t(to.width) * to.height * channels);
    for (UINT y = 0; y < to.height; ++y) {
        const std::vector<Tap> rows = Taps(y, from.height, to.height);
        for (const std::vector<Tap>& column : columns)
            for (UINT c = 0; c < channels; ++c) {
                std::uint64_t sum = 0;
                for (const Tap& row : rows)
                    for (const Tap& tap : column)
                        sum +=
                            row.weight * tap.weight *
                            pixels[(std::size_t(row.source) * from.width + tap.source) * channels +
                                   c];
                half.push_back(static_cast<std::uint8_t>((sum + whole / 2) / whole));
            }
    }
    return half;
}

// The usual case, without a division.
Pixels HalvedEven(const Pixels& pixels, Size to, UINT channels) {
    Pixels half(std::size_t(to.width) * to.height * channels);
    const std::size_t row = std::size_t(to.width) * 2 * channels;
    std::uint8_t* out = half.data();
    for (UINT y = 0; y < to.height; ++y) {
        const std::uint8_t* above = pixels.data() + std::size_t(y) * 2 * row;
        const std::uint8_t* below = above + row;
        for (UINT x = 0; x < to.width; ++x, above += 2 * channels, below += 2 * channels)
            for (UINT c = 0; c < channels; ++c)
                *out++ = static_cast<std::uint8_t>(
                    (above[c] + above[channels + c] + below[c] + below[channels + c] + 2) / 4);
    }
    return half;
}

Pixels Halved(const Pixels& pixels, Size from, UINT channels) {
    const Size to = {LevelSide(from.width, 1), LevelSide(from.height, 1)};
    if (from.width % 2 == 0 && from.height % 2 == 0)
        return HalvedEven(pixels, to, channels);
    return HalvedUneven(pixels, from, to, channels);
}

} // namespace

std::optional<Image> ReadImage(Bytes file) {
    const auto starts = [file](std::initializer_list<std::uint8_t> mark) {
        return file.size() >= mark.size() && std::equal(mark.begin(), mark.end(), file.begin());
    };
    if (starts({'D', 'D', 'S', ' '}))
        return ReadDds(file);
    if (starts({0x89, 'P', 'N', 'G'}))
        return ReadPng(file);
    if (starts({0xff, 0xd8, 0xff}))
        return ReadJpg(file);
    if (starts({'B', 'M'}))
        return ReadBmp(file);
    return ReadTga(file);
}

void CompleteLevels(Image& image) {
    const UINT count = FullLevels(image.width, image.height);
    const auto have = static_cast<UINT>(image.levels.size());
    if (have == 0 || have >= count)
        return;
    const bool compressed = IsCompressed(image.format);
    const auto size = [&image](UINT level) {
        return Size{LevelSide(image.width, level), LevelSide(image.height, level)};
    };

    const Size last = size(have - 1);
    Pixels plain =
        compressed ? DecompressBlocks(image.format, last.width, last.height, image.levels.back())
                   : image.levels.back();
    for (UINT level = have; level < count; ++level) {
        // Of the means themselves, so that no loss of compressing adds up.
        plain = Halved(plain, size(level - 1), compressed ? 4 : UnitBytes(image.format));
        const Size to = size(level);
        image.levels.push_back(compressed ? CompressBlocks(image.format, to.width, to.height, plain)
                                          : plain);
    }
}

Pixels ToBgra(D3DFORMAT format, UINT width, UINT height, Bytes pixels) {
    if (IsCompressed(format))
        return DecompressBlocks(format, width, height, pixels);
    Pixels bgra(std::size_t(width) * height * 4, 0xff);
    const std::size_t unit = UnitBytes(format);
    for (std::size_t i = 0; i < bgra.size() / 4; ++i) {
        const std::uint8_t* from = &pixels[i * unit];
        std::uint8_t* to = &bgra[i * 4];
        switch (format) {
        case D3DFMT_A8R8G8B8:
            std::copy_n(from, 4, to);
            break;
        case D3DFMT_X8R8G8B8:
            std::copy_n(from, 3, to);
            break;
        case D3DFMT_A8:
            std::fill_n(to, 3, std::uint8_t(0));
            to[3] = from[0];
            break;
        default:
            std::fill_n(to, 3, from[0]);
            if (format == D3DFMT_A8L8)
                to[3] = from[1];
        }
    }
    return bgra;
}

} // namespace VornPlatform
