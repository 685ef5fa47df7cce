// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3dx9/effect/shader_text.hpp"

namespace VornPlatform {

/// Components of matrices by their index: `m._11` is m[0][0], `m._11_22` a vector of two, which may
/// also be assigned to. The compiler of today gets more than one of them wrong.
void RewriteMatrixSwizzles(ShaderText& text);

} // namespace VornPlatform
