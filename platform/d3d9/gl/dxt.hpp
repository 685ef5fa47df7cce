// SPDX-License-Identifier: MIT
//
// DXT1, DXT3 and DXT5 without the help of the driver.
#pragma once

#include <d3d9.h>

#include <cstdint>
#include <vector>

namespace VornPlatform {

/// 0xAARRGGBB, rows without gaps.
/// @param pitch the distance of rows of blocks (unit: bytes)
std::vector<std::uint32_t> DecompressDxt(D3DFORMAT format, const void* blocks, UINT pitch,
                                         UINT width, UINT height);

} // namespace VornPlatform
