// SPDX-License-Identifier: MIT
//
// The triangles that a strip of lines consists of: a rectangle for each, so that at a bend two of
// them overlap inside and leave a notch outside.
//
//   const auto vertices = LineVertices(points, count, {.width = 3}, color);
#pragma once

#include "platform/d3d9/overlay.hpp"

#include <d3dx9.h>

#include <vector>

namespace VornPlatform {

struct LineStyle {
    float width = 1; // (unit: pixels)
    // Edges of one pixel in which the colour fades out: at the sides, and at both ends of the
    // strip. Where its lines meet they end sharply, so that no gap shows between them.
    bool antialias = false;
    // The width is measured along the axis that the line crosses, and its ends are cut along that
    // axis.
    bool glLines = false;
};

/// A list of triangles. From (10, 10) to (20, 10) with the width 1 they cover the ten pixels from
/// 10 to 19. Lines without a length, with a NaN or an infinity, and far outside have none.
std::vector<OverlayVertex> LineVertices(const D3DXVECTOR2* points, DWORD count,
                                        const LineStyle& style, D3DCOLOR color);

} // namespace VornPlatform
