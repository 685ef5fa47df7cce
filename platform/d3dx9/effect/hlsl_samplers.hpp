// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3dx9/effect/shader_text.hpp"

namespace VornPlatform {

/// Gives each sampler, and each argument that is one, the kind that it is used as, and fills
/// `text.samplers`, which the compiled text declares in its first line. Elements of an array become
/// samplers of their own. Raises EffectError for one that is used in two ways.
void RewriteSamplers(ShaderText& text);

/// Puts the names of `text.samplers` in place of `s[1]` and the like. The index must be a number:
/// no shader of Direct3D 9 chooses a sampler while it runs.
void NameSamplerElements(Words& words, const EffectSource& source);

/// "sampler2D"
const char* SamplerWord(SamplerKind kind);

} // namespace VornPlatform
