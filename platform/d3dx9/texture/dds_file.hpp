// SPDX-License-Identifier: MIT
//
// DDS: a header of 128 bytes, then the levels. Read are DXT1, DXT3 and DXT5, which stay as they
// are, and pixels of 8 to 32 bits by their masks: colours become X8R8G8B8, or A8R8G8B8 if there is
// a mask of alpha; greys L8 or A8L8; alpha alone A8. Cube maps, volumes, palettes and formats of
// later versions are not read.
#pragma once

#include "platform/d3dx9/texture/image.hpp"

namespace VornPlatform {

/// All levels that the header counts must be there; what follows them is passed over.
std::optional<Image> ReadDds(Bytes file);
/// One level of A8R8G8B8, or of X8R8G8B8 without `alpha`, from B, G, R, A.
std::vector<std::uint8_t> WriteDds(UINT width, UINT height, Bytes bgra, bool alpha);

} // namespace VornPlatform
