// SPDX-License-Identifier: MIT
//
// The DXT formats, blocks of 4 by 4 pixels: two colours of 16 bits and what lies between them, and
// the alpha beside it (DXT3: 4 bits a pixel, DXT5: two alphas and what lies between them) or in it
// (DXT1: nothing or all).
#pragma once

#include "platform/d3dx9/texture/image.hpp"

namespace VornPlatform {

/// B, G, R, A. `blocks` holds them all; what lies beyond the edges is left out.
std::vector<std::uint8_t> DecompressBlocks(D3DFORMAT, UINT width, UINT height, Bytes blocks);
/// From B, G, R, A. A block at an edge is filled up with the pixels of the edge. An alpha below 128
/// makes a pixel of DXT1 transparent.
std::vector<std::uint8_t> CompressBlocks(D3DFORMAT, UINT width, UINT height, Bytes bgra);

} // namespace VornPlatform
