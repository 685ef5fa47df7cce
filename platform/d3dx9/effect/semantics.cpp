// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/semantics.hpp"

#include "platform/d3dx9/effect/lexer.hpp"

namespace VornPlatform {

namespace {

using enum Semantic::Kind;

struct Name {
    std::string_view word;
    Semantic::Kind kind;
    BYTE usage, index;
};

// D3DDECLUSAGE by number: the header names only those that the layer handles.
constexpr Name Names[] = {
    {"position", Usage, 0, 0},     {"positiont", Usage, 9, 0},    {"blendweight", Usage, 1, 0},
    {"blendweights", Usage, 1, 0}, {"blendindices", Usage, 2, 0}, {"normal", Usage, 3, 0},
    {"psize", Usage, 4, 0},        {"texcoord", Usage, 5, 0},     {"tangent", Usage, 6, 0},
    {"binormal", Usage, 7, 0},     {"tessfactor", Usage, 8, 0},   {"color", Usage, 10, 0},
    {"diffuse", Usage, 10, 0},     {"specular", Usage, 10, 1},    {"fog", Usage, 11, 0},
    {"depth", Usage, 12, 0},       {"sample", Usage, 13, 0},      {"sv_position", Usage, 0, 0},
    {"sv_target", Usage, 10, 0},   {"sv_depth", Usage, 12, 0},    {"vpos", PixelPlace, 0, 0},
    {"vface", Face, 0, 0}};

} // namespace

std::optional<Semantic> ReadSemantic(std::string_view word) {
    std::string name = LowerCase(word);
    if (name.ends_with("_centroid"))
        name.resize(name.size() - 9);
    const std::size_t letters = name.find_last_not_of("0123456789") + 1;
    const std::string digits = name.substr(letters);
    if (digits.size() > 2)
        return std::nullopt;
    const int index = digits.empty() ? 0 : std::stoi(digits);
    name.resize(letters);
    for (const Name& known : Names)
        if (known.word == name && index + known.index <= 15)
            return Semantic{known.kind, known.usage, static_cast<BYTE>(index + known.index)};
    return std::nullopt;
}

} // namespace VornPlatform
