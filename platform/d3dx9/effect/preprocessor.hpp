// SPDX-License-Identifier: MIT
//
// Includes, macros and conditions of an effect file resolved, as the compiler of Direct3D does.
//
// Known are #include, #define (without variable arguments), #undef, #if, #ifdef, #ifndef, #elif,
// #else, #endif, #error, #line, #pragma once and pack_matrix; other pragmas are passed over.
// Predefined are __FILE__, __LINE__, D3DX, D3DX_VERSION, DIRECT3D and DIRECT3D_VERSION.
#pragma once

#include "platform/d3dx9/effect/effect_source.hpp"

#include <cstdint>

namespace VornPlatform {

struct PreprocessedText {
    std::string text; // without comments; a line is of one line of a file
    std::vector<SourcePlace> lines;
    /// From this byte of the text on, matrices are row_major where nothing else is said, or not.
    std::vector<std::pair<std::uint32_t, bool>> packing;
    std::vector<std::pair<std::string, std::string>> files; // as in EffectSource
    std::string warnings;
};

PreprocessedText Preprocess(const std::string& path, std::string_view text, const Macros& macros,
                            const IncludeReader& include);

} // namespace VornPlatform
