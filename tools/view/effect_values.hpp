// SPDX-License-Identifier: MIT
//
// What the engine, or a frame, gives an effect by itself: by the names of docs/shaders.md, and by
// the semantics that effect files of other programs have.
#pragma once

#include "tools/view/subject.hpp"

#include "platform/d3dx9/effect/effect_code.hpp"

namespace View {

/// Whether SetFrameValues sets the parameter, so that nobody else need.
bool IsGiven(const VornPlatform::ShaderConstant& parameter);
/// `material` is what the effect's surface is made of where it asks.
void SetFrameValues(ID3DXEffect& effect,
                    const std::vector<VornPlatform::ShaderConstant>& parameters, const Frame& frame,
                    Vorn::Material& material);

} // namespace View
