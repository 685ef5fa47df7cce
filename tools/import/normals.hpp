// SPDX-License-Identifier: MIT
#pragma once

#include "tools/import/source.hpp"

namespace Import {

/// Gives a mesh normals that it lacks: smooth where faces meet at less than 60 degrees, sharp at
/// the other edges. Every corner becomes a vertex of its own; equal ones are merged again later.
void MakeNormals(SourceMesh& mesh);

} // namespace Import
