// SPDX-License-Identifier: MIT
//
// The formats of pixels, all in one place.
#pragma once

#include <d3d9.h>

#include <cstddef>

namespace VornPlatform {

enum class PixelUse { Color, Depth };

struct PixelFormat {
    D3DFORMAT format;
    PixelUse use;
    UINT blockBytes;
    UINT blockSide;    // 4 in a compressed format, else 1 (unit: pixels)
    bool renderTarget; // a colour that draws may go to
};

/// Null for a format that no surface has.
const PixelFormat* FindPixelFormat(D3DFORMAT format);

inline UINT BlocksOf(const PixelFormat& format, UINT pixels) {
    return (pixels + format.blockSide - 1) / format.blockSide;
}
/// Of a row of blocks.
inline UINT PitchOf(const PixelFormat& format, UINT width) {
    return BlocksOf(format, width) * format.blockBytes;
}

/// Of a chain down to 1 by 1.
UINT FullLevels(UINT width, UINT height);
/// The side of a level, never below 1.
inline UINT LevelSide(UINT side, UINT level) {
    return side >> level ? side >> level : 1;
}

/// 0xAARRGGBB of a pixel that is not compressed: what the format lacks is full, but the colours of
/// one that has alpha alone are 0.
D3DCOLOR ColorOf(D3DFORMAT format, const std::byte* pixel);

} // namespace VornPlatform
