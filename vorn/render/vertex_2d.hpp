// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/render/line.hpp"

#include <cstdint>

namespace Vorn {

/// The vertex of images on the screen: FVF 0x142, position, colour, one texture.
struct VERTEX_2D {
    float x = 0.0f, y = 0.0f, z = 0.0f;
    /// Packed: 31..24 alpha   23..16 red   15..8 green   7..0 blue
    std::uint32_t color = 0xFFFFFFFFu;
    float u = 0.0f, v = 0.0f;
};

/// The vertex of Graphic::Draw3DLine: FVF 0x42, position and colour.
struct VERTEX_LINE {
    float x = 0.0f, y = 0.0f, z = 0.0f;
    COLORS color{};
};

static_assert(sizeof(VERTEX_2D) == 24 && sizeof(VERTEX_LINE) == 16);

} // namespace Vorn
