// SPDX-License-Identifier: MIT
//
// Writing the DXT formats.
#pragma once

#include "platform/d3d9/dxt.hpp"
#include "platform/d3dx9/texture/image.hpp"

namespace VornPlatform {

/// From B, G, R, A. A block at an edge is filled up with the pixels of the edge. An alpha below 128
/// makes a pixel of DXT1 transparent.
std::vector<std::uint8_t> CompressBlocks(D3DFORMAT, UINT width, UINT height, Bytes bgra);

} // namespace VornPlatform
