// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3dx9/effect/effect_code.hpp"

#include <d3dx9.h>

namespace VornPlatform {

/// Raises std::bad_alloc.
ID3DXConstantTable* MakeConstantTable(std::shared_ptr<const CompiledShader> shader);

} // namespace VornPlatform
