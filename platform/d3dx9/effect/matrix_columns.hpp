// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace VornPlatform {

/// `abs`, `lerp`, `ddx` and their like take matrices in HLSL and vectors in SPIR-V: they are done
/// column by column.
void SplitMatrixFunctions(std::vector<std::uint32_t>& spirv);

} // namespace VornPlatform
