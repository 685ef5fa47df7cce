// SPDX-License-Identifier: MIT
//
// From the text of one shader to SPIR-V, and from there to the pieces of ShaderCode.
#pragma once

#include "platform/d3dx9/effect/entry_point.hpp"

namespace VornPlatform {

/// Warnings of the compiler are added to `warnings`, in the form of EffectError's text. Raises
/// EffectError, in which `source` gives lines their place; what is not the author's is at `place`.
std::vector<std::uint32_t> CompileToSpirv(const EntryText& entry, const EffectSource& source,
                                          const SourcePlace& place, std::string& warnings);

/// What the pieces were made of, by the names in the text.
struct GlslShader {
    ShaderCode code; // without registers; the index of each sampler is its place in `samplers`
    std::vector<std::string> samplers; // names in the text, in the order of the body
    struct Member {
        UINT index = 0; // among the members of the block, in the order of their declaration
        UINT offset = 0;
        bool isUsed = false;
    };
    std::vector<Member> members;
};
/// Raises EffectError at `place` for a shader that has no counterpart.
GlslShader WriteGlsl(std::vector<std::uint32_t> spirv, const EntryText& entry,
                     const SourcePlace& place);

} // namespace VornPlatform
