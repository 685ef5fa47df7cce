// SPDX-License-Identifier: MIT
//
// Start values in braces, which Direct3D 9 takes as one row of numbers whatever the braces:
// `float2 a[2] = {1, 2, 3, 4};`. The compiler of today wants a list for each array and structure
// and a constructor for each vector.
#pragma once

#include "platform/d3dx9/effect/shader_text.hpp"

namespace VornPlatform {

/// Lists that it cannot make sense of stay as they are.
void RewriteInitializers(ShaderText& text);

} // namespace VornPlatform
