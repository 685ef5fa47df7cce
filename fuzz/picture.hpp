// SPDX-License-Identifier: MIT
//
// What must hold of any picture that was read.
#pragma once

#include "fuzz/fuzz.hpp"
#include "platform/d3d9/limits.hpp"
#include "platform/d3d9/pixel_format.hpp"
#include "platform/d3dx9/texture/image.hpp"

namespace Fuzz {

inline void RequireWhole(VornPlatform::Image& image) {
    using namespace VornPlatform;
    Require(image.width >= 1 && image.width <= MaxTextureSize && image.height >= 1 &&
                image.height <= MaxTextureSize,
            "a size that no texture has");
    Require(UnitBytes(image.format) != 0, "a format of no texture");
    Require(!image.levels.empty(), "a picture without a level");
    // To make the levels of a huge one takes the search its time.
    if (image.width * image.height <= 1 << 16)
        CompleteLevels(image);
    Require(image.levels.size() <= FullLevels(image.width, image.height), "too many levels");
    for (UINT level = 0; level < image.levels.size(); ++level)
        Require(image.levels[level].size() == LevelBytes(image.format,
                                                         LevelSide(image.width, level),
                                                         LevelSide(image.height, level)),
                "the pixels are not those of the size");
}

} // namespace Fuzz
