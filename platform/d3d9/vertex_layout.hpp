// SPDX-License-Identifier: MIT
//
// The formats of vertices: those that an FVF names are made once and stay, those of declarations
// live as long as these.
#pragma once

#include "platform/d3d9/state.hpp"

#include <optional>

namespace VornPlatform {

struct VertexLayout {
    VertexFormat format;
    UINT size = 0;            // that a vertex has at least (unit: bytes)
    bool hasPosition = false; // else nothing can be drawn
};

/// The same for the same FVF; null for one that is not position with any of normal, diffuse colour
/// and one pair of texture coordinates.
const VertexLayout* LayoutOfFvf(DWORD fvf);

/// How many elements of a list stand before its end mark, or before one that is refused: behind
/// that, nothing may be read.
std::size_t CountSound(const D3DVERTEXELEMENT9* elements);
/// Of a list with its end mark. Nothing if it is too long or names what there is not: other streams
/// than the first, types and methods that we lack, an element twice.
std::optional<VertexLayout> LayoutOfElements(const D3DVERTEXELEMENT9* elements);

} // namespace VornPlatform
