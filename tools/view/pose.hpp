// SPDX-License-Identifier: MIT
//
// A skinned mesh at a time of its animation, on the processor: for what is measured and for lines.
#pragma once

#include "tools/view/lines.hpp"

#include "vorn/resource/mesh.hpp"

namespace View {

/// Whether it has bones that move its vertices.
bool IsPosable(const Vorn::Mesh& mesh);
/// Puts clock, cursors and bones where they are at that time, whatever was before.
void Seek(Vorn::Mesh& mesh, float time);

/// A vertex as it is drawn, in the model's space. Not posed: as the file has it.
struct Placed {
    Vorn::Vector3 at, normal;
};
Placed PlaceVertex(const Vorn::Mesh& mesh, std::uint32_t vertex, bool posed);
Bounds BoundsOf(const Vorn::Mesh& mesh, bool posed);

} // namespace View
