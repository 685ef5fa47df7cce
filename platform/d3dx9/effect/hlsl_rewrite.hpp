// SPDX-License-Identifier: MIT
//
// From the HLSL of Direct3D 9 to what the compiler of today takes, and takes right.
//
//   ShaderText text(source);
//   RewriteHlsl(text, false);
//
// Names of the text that something else could have get the prefix "hl_", and so have the helpers
// that the rewritten text calls. Messages are shown without it.
#pragma once

#include "platform/d3dx9/effect/shader_text.hpp"

namespace VornPlatform {

/// Without `keepRowMajor` all matrices lie in the same way: what an effect holds is seen only
/// through operations that hide it.
void RewriteHlsl(ShaderText& text, bool keepRowMajor);

/// What is called and is neither a function of the text nor one of Direct3D 9 never reaches the
/// compiler, which falls over some of them: EffectError, at `place` if the words are not the
/// text's.
void CheckCalls(const ShaderText& text, const Words& words, WordRange range,
                const SourcePlace* place = nullptr);

/// The name that a variable, member or structure has in the rewritten text.
std::string SafeName(const std::string& name);
/// That of a function.
std::string FunctionName(const std::string& name);
/// Whether the text may call it without a definition.
bool IsIntrinsic(std::string_view name);
/// "tex2D" and the like: the kind of sampler that it takes.
std::optional<SamplerKind> SampledKind(std::string_view function);
/// Helpers that the words call, in one line.
std::string HelpersFor(const Words& words);

} // namespace VornPlatform
