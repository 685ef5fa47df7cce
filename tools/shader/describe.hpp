// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3dx9/effect/effect_code.hpp"

namespace Shader {

/// As text: parameters with types and start values, techniques, passes, shaders. `source` is what
/// `code` was made of.
std::string Describe(const VornPlatform::EffectCode& code,
                     const VornPlatform::EffectSource& source);
/// Constants and samplers with their registers, inputs and outputs.
std::string Describe(const VornPlatform::CompiledShader& shader);

} // namespace Shader
