// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3dx9/effect/shader_text.hpp"

namespace VornPlatform {

/// Whether the statements of the functions are any, and whether operators and arguments are given
/// what they can take. In texts that are wrong there the compiler follows null pointers, or makes
/// of them what no driver takes; all else it checks itself. Start values of variables are looked at
/// too. `functions` tells which, by index; the text has been rewritten. Raises EffectError at the
/// line of the first fault.
void CheckFunctions(const ShaderText& text, const std::vector<bool>& functions);
/// The same of an argument of `compile`, which stands at `place`.
void CheckArgument(const ShaderText& text, const Words& words, const SourcePlace& place);

} // namespace VornPlatform
