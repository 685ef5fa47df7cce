// SPDX-License-Identifier: MIT
//
// A picture in memory, as the file readers make it and a texture takes it: one of the formats of
// textures, and one or more levels, each half the size of the one before.
//
//   if (auto image = ReadImage(bytes)) {
//       CompleteLevels(*image);
//       Upload(*image);
//   }
//
// Pixels lie as Direct3D has them: B, G, R, A of A8R8G8B8 and X8R8G8B8 (X is 0xff), L, A of A8L8;
// the top row first, rows without a gap; blocks of 4 by 4 in the DXT formats.
#pragma once

#include "platform/d3d9/pixel_format.hpp"

#include <d3d9.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace VornPlatform {

using Bytes = std::span<const std::uint8_t>;

struct Image {
    D3DFORMAT format = D3DFMT_A8R8G8B8;
    UINT width = 0, height = 0;
    std::vector<std::vector<std::uint8_t>> levels; // the whole picture first
};

/// What a file holds, by its content: DDS, PNG, JPG, BMP, or else TGA, which has no mark of its
/// own. Its levels are those of the file. Nothing for what is none of them, is cut off, or larger
/// than a texture may be; no memory is taken for pixels before their bytes are known to be there.
std::optional<Image> ReadImage(Bytes file);

/// Adds the levels that miss, down to 1 by 1, each the mean of the one before it. In a compressed
/// format they are taken apart and compressed again.
void CompleteLevels(Image&);

/// B, G, R, A of any format, as textures show it: a grey is the three colours, what has no alpha is
/// opaque, A8 is black.
std::vector<std::uint8_t> ToBgra(D3DFORMAT, UINT width, UINT height, Bytes pixels);

/// Of a pixel, or of a block where the format is compressed; 0 for a format of no picture.
inline UINT UnitBytes(D3DFORMAT format) {
    const PixelFormat* known = FindPixelFormat(format);
    return known && known->use == PixelUse::Color ? known->blockBytes : 0;
}
// Of the formats of pictures only.
inline bool IsCompressed(D3DFORMAT format) {
    return FindPixelFormat(format)->blockSide > 1;
}
/// Of a row of pixels or blocks, and how many there are.
inline std::size_t RowBytes(D3DFORMAT format, UINT width) {
    return PitchOf(*FindPixelFormat(format), width);
}
inline std::size_t RowCount(D3DFORMAT format, UINT height) {
    return BlocksOf(*FindPixelFormat(format), height);
}
inline std::size_t LevelBytes(D3DFORMAT format, UINT width, UINT height) {
    return RowBytes(format, width) * RowCount(format, height);
}

// Numbers of a file, the low byte first; their bytes are known to be there.
inline UINT Read16(Bytes bytes, std::size_t at) {
    return bytes[at] | static_cast<UINT>(bytes[at + 1]) << 8;
}
inline UINT Read32(Bytes bytes, std::size_t at) {
    return Read16(bytes, at) | Read16(bytes, at + 2) << 16;
}

} // namespace VornPlatform
