// SPDX-License-Identifier: MIT
#pragma once

#include "tools/view/resources.hpp"

namespace View {

/// Fills an empty mesh, in memory only: a size of 2 about the origin, u and v as pictures lie.
void MakeShape(Shape shape, Vorn::Mesh& mesh);

} // namespace View
