// SPDX-License-Identifier: MIT
//
// What a body reads of its block, by the text alone. Where the blocks of many draws stand in an
// array, the pixel stage would have to look up its own for each pixel; the vertex stage hands it
// the few numbers that it reads instead.
#pragma once

#include "platform/d3d9/shader_code.hpp"

#include <optional>

namespace VornPlatform {

struct BlockMember {
    std::string type, name; // of a number or a vector
};

/// Nothing if the body reads more than a few members, or others than numbers and vectors.
std::optional<std::vector<BlockMember>> FewReads(const ShaderCode& code);
/// The body with `to` and the member's name for each member that it reads.
std::string ReplaceReads(const std::string& body, const std::string& blockName,
                         const std::string& to);

bool IsNamePart(char c);
/// Where a name stands by itself, from a place on.
std::size_t FindName(const std::string& text, const std::string& name, std::size_t from);

} // namespace VornPlatform
