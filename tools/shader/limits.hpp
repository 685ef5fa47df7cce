// SPDX-License-Identifier: MIT
//
// Where Direct3D 9 would have refused what our compiler takes, or done otherwise: a line of text
// each, without file and line.
#pragma once

#include "platform/d3dx9/effect/effect_code.hpp"

namespace Shader {

/// "vs_3_0" of the first word of its code.
std::string ProfileOf(const VornPlatform::ShaderCode& code);
/// "TEXCOORD0".
std::string SemanticOf(const VornPlatform::ShaderVariable& variable);

/// `constants` of the effect, or of the shader by itself.
std::vector<std::string> Limits(const VornPlatform::ShaderCode& code,
                                const std::vector<VornPlatform::ShaderConstant>& constants);
/// What the pixel stage reads and the vertex stage does not write.
std::vector<std::string> Mismatches(const VornPlatform::ShaderCode& vertex,
                                    const VornPlatform::ShaderCode& pixel);
/// Empty for what works here.
std::string Refusal(const VornPlatform::SourceState& state);

} // namespace Shader
