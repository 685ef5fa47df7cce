// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3dx9/effect/reflection.hpp"

namespace VornPlatform {

/// Puts the members of the block in SPIR-V where Reflect has put them. The compiler packs what is
/// inside of structures by rules of HLSL that no block of GLSL has.
void LayOutBlock(std::vector<std::uint32_t>& spirv, const Reflection& reflection);

} // namespace VornPlatform
