// SPDX-License-Identifier: MIT
//
// Any bytes as a cursor file: they give a picture that is whole, or none.
#include "fuzz/fuzz.hpp"
#include "platform/window/cursor_file.hpp"

FUZZ_TARGET(data, size) {
    const auto picture = VornPlatform::ReadCursor({data, data + size});
    if (!picture)
        return;
    const auto width = static_cast<std::size_t>(picture->width);
    Fuzz::Require(picture->width >= 1 && picture->height >= 1, "a picture without pixels");
    Fuzz::Require(picture->pixels.size() == width * static_cast<std::size_t>(picture->height),
                  "the pixels are not those of the size");
    Fuzz::Require(picture->hotX < picture->width && picture->hotY < picture->height,
                  "it points from outside of itself");
}
