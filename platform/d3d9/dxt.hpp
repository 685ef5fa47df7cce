// SPDX-License-Identifier: MIT
//
// Reading the DXT formats, for machines that cannot and for pictures that are made smaller. Blocks
// of 4 by 4 pixels: two colours of 16 bits and what lies between them, and the alpha beside it
// (DXT3: 4 bits a pixel, DXT5: two alphas and what lies between them) or in it (DXT1: nothing or
// all).
#pragma once

#include <d3d9.h>

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace VornPlatform {

/// B, G, R, A.
using DxtColor = std::array<std::uint8_t, 4>;

/// B, G, R, A. `blocks` holds them all, without gaps; what lies beyond the edges is left out.
std::vector<std::uint8_t> DecompressBlocks(D3DFORMAT format, UINT width, UINT height,
                                           std::span<const std::uint8_t> blocks);
/// The four colours of a block. With `punch`, and the smaller one first, they are three and a
/// transparent black.
std::array<DxtColor, 4> DxtPalette(UINT first, UINT second, bool punch);

} // namespace VornPlatform
