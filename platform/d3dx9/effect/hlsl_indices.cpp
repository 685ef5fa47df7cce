// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/hlsl_indices.hpp"

namespace VornPlatform {

namespace {

// `TYPE name[2]`, whose bracket holds a size.
bool IsDeclarator(const ShaderText& text, std::size_t name) {
    const std::size_t type = PreviousWord(text.words, name);
    return type < text.words.size() && text.words[type].isName() &&
           text.types.find(text.words[type].text).has_value();
}

bool NeedsCast(const ShaderText& text, std::size_t open) {
    const Words& words = text.words;
    const std::size_t before = PreviousWord(words, open), close = Closing(words, open);
    if (before >= words.size() || close >= words.size())
        return false;
    const bool isIndex = words[before].isName() ? !IsDeclarator(text, before)
                                                : words[before].is("]") || words[before].is(")");
    const std::string index = JoinWords(words, {open + 1, close});
    return isIndex && index.find_first_not_of("0123456789") != std::string::npos;
}

} // namespace

void CastIndices(ShaderText& text) {
    const Words& words = text.words;
    Words cast;
    cast.reserve(words.size());
    std::vector<std::size_t> ends;
    const auto put = [&](std::uint32_t line, std::string_view part) {
        for (const Token& token : Lex(part))
            if (token.kind != TokenKind::End)
                cast.push_back({token.kind, line, std::string(token.text)});
    };
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (!ends.empty() && ends.back() == i) {
            ends.pop_back();
            put(words[i].line, ")");
        }
        cast.push_back(words[i]);
        if (words[i].is("[") && NeedsCast(text, i)) {
            ends.push_back(Closing(words, i));
            put(words[i].line, "(int)(");
        }
    }
    text.words = std::move(cast);
}

} // namespace VornPlatform
