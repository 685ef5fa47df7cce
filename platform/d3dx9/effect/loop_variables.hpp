// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3dx9/effect/shader_text.hpp"

namespace VornPlatform {

/// In Direct3D 9 the variable of `for (int i = 0; ...)` lives on behind its loop. Where it is used
/// there it is declared before the loop.
void RewriteLoopVariables(ShaderText& text);

} // namespace VornPlatform
