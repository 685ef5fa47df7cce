// SPDX-License-Identifier: MIT
#pragma once

#include <d3d9.h>

#include <optional>
#include <string_view>

namespace VornPlatform {

struct Semantic {
    enum class Kind { Usage, PixelPlace, Face } kind = Kind::Usage;
    BYTE usage = 0, index = 0; // D3DDECLUSAGE
};

/// "TEXCOORD7", "color", "POSITION0", "TEXCOORD1_centroid"; nothing for a word that is none.
std::optional<Semantic> ReadSemantic(std::string_view word);

} // namespace VornPlatform
