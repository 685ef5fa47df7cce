// SPDX-License-Identifier: MIT
//
// TGA: types 1, 2, 3 (palette, colour, grey) and 9, 10, 11 (the same, packed). Colours of 15, 16,
// 24 and 32 bits become X8R8G8B8, or A8R8G8B8 where they have alpha; greys L8, greys of 16 bits
// A8L8. 32 bits whose header tells of no alpha have one nevertheless, unless it is 0 everywhere:
// many programs write files like that.
#pragma once

#include "platform/d3dx9/texture/image.hpp"

namespace VornPlatform {

/// The type has no mark, so each field of the header must make sense. A packet that runs beyond the
/// last pixel is cut; an index outside the palette is a broken file.
std::optional<Image> ReadTga(Bytes file);

} // namespace VornPlatform
