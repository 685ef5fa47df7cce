// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3dx9/effect/effect_source.hpp"

namespace VornPlatform {

/// Raises EffectError at `place` for what would keep a driver busy without end: arrays that no
/// shader needs, and functions that call others so often that the whole, written out, is too long.
void CheckLimits(std::vector<std::uint32_t>& spirv, const SourcePlace& place);

} // namespace VornPlatform
