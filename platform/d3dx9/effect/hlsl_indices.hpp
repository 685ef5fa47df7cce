// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3dx9/effect/shader_text.hpp"

namespace VornPlatform {

/// `a[x]` is `a[(int)(x)]`: an index may be a float or a vector, of which the compiler makes what
/// no driver takes.
void CastIndices(ShaderText& text);

} // namespace VornPlatform
