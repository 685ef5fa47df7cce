// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3dx9/effect/reflection.hpp"
#include "platform/d3dx9/effect/shader_compiler.hpp"

namespace VornPlatform {

EffectCode CompileEffectSource(const EffectSource& source);
CompiledShader CompileShaderSource(const EffectSource& source, const std::string& entry,
                                   const std::string& profile);

/// One entry of a rewritten text. Raises EffectError also where the block does not lie as
/// reflected.
GlslShader CompileStage(const ShaderText& text, const CompileCall& call,
                        const Reflection& reflection, std::string& warnings);

struct UsedSampler {
    UINT index = 0; // of the device
    const HlslSampler* sampler = nullptr;
};
/// Gives the samplers of `glsl` the device's indices.
std::vector<UsedSampler> UseSamplers(const ShaderText& text, const CompileCall& call,
                                     GlslShader& glsl);

} // namespace VornPlatform
