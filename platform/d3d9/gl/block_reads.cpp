// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/block_reads.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <sstream>

namespace VornPlatform {

namespace {

constexpr std::size_t MostMembers = 8;

bool IsNumbers(const std::string& type) {
    constexpr std::array<std::string_view, 12> types = {"float", "int",   "uint",  "vec2",
                                                        "vec3",  "vec4",  "ivec2", "ivec3",
                                                        "ivec4", "uvec2", "uvec3", "uvec4"};
    return std::find(types.begin(), types.end(), type) != types.end();
}

// The numbers and vectors among the members.
std::vector<BlockMember> NumbersOf(const std::string& members) {
    std::vector<BlockMember> numbers;
    std::istringstream stream(members);
    for (std::string declaration; std::getline(stream, declaration, ';');) {
        std::istringstream words(declaration);
        BlockMember member;
        std::string rest;
        if (words >> member.type >> member.name && !(words >> rest) && IsNumbers(member.type) &&
            std::all_of(member.name.begin(), member.name.end(), IsNamePart))
            numbers.push_back(std::move(member));
    }
    return numbers;
}

// Behind a block's name and a dot; empty if there is no dot.
std::string MemberAt(const std::string& text, std::size_t at) {
    if (at >= text.size() || text[at] != '.')
        return {};
    const auto begin = text.begin() + static_cast<std::ptrdiff_t>(at) + 1;
    return {begin, std::find_if_not(begin, text.end(), IsNamePart)};
}

} // namespace

bool IsNamePart(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

std::size_t FindName(const std::string& text, const std::string& name, std::size_t from) {
    for (std::size_t at = text.find(name, from); at != std::string::npos;
         at = text.find(name, at + 1)) {
        const char before = at > 0 ? text[at - 1] : ' ';
        const std::size_t behind = at + name.size();
        if (before != '.' && !IsNamePart(before) &&
            (behind == text.size() || !IsNamePart(text[behind])))
            return at;
    }
    return std::string::npos;
}

std::optional<std::vector<BlockMember>> FewReads(const ShaderCode& code) {
    std::vector<BlockMember> reads;
    if (code.blockSize == 0)
        return reads;
    const std::vector<BlockMember> numbers = NumbersOf(code.members);
    const auto find = [](const std::vector<BlockMember>& members, const std::string& name) {
        return std::find_if(members.begin(), members.end(),
                            [&](const BlockMember& member) { return member.name == name; });
    };
    for (std::size_t at = FindName(code.body, code.blockName, 0); at != std::string::npos;
         at = FindName(code.body, code.blockName, at + 1)) {
        const std::string name = MemberAt(code.body, at + code.blockName.size());
        const auto member = find(numbers, name);
        if (member == numbers.end())
            return std::nullopt;
        if (find(reads, name) == reads.end())
            reads.push_back(*member);
    }
    if (reads.size() > MostMembers)
        return std::nullopt;
    return reads;
}

std::string ReplaceReads(const std::string& body, const std::string& blockName,
                         const std::string& to) {
    if (blockName.empty())
        return body;
    std::string result;
    std::size_t end = 0;
    for (std::size_t at = FindName(body, blockName, 0); at != std::string::npos;
         at = FindName(body, blockName, at + 1)) {
        result.append(body, end, at - end).append(to);
        end = at + blockName.size() + 1; // and the dot
    }
    return result.append(body, end);
}

} // namespace VornPlatform
