// SPDX-License-Identifier: MIT
#include "platform/d3d9/vertex_declaration.hpp"

#include <utility>

namespace VornPlatform {

VertexDeclaration::VertexDeclaration(Device& device, VertexLayout layout)
    : CountedChild(device, ObjectKind::VertexDeclaration, Resets::Survives),
      mLayout(std::move(layout)) {}

} // namespace VornPlatform
