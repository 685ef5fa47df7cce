// SPDX-License-Identifier: MIT
#pragma once

#include "tools/import/source.hpp"

#include <string>

namespace Import {

/// Assimp reads the keys of glTF animations as if the way between two of them were always straight.
/// This reads from the file itself which tracks step and which are cubic curves, with their
/// tangents, and puts it right in `scene`. What it cannot read stays straight and is noted.
void ReadGltfCurves(const std::string& path, SourceScene& scene);

} // namespace Import
