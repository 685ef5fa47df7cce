// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/value_type.hpp"

#include "platform/d3dx9/effect/lexer.hpp"

#include <cmath>
#include <utility>

namespace VornPlatform {

std::optional<NumericType> FindNumericType(std::string_view name) {
    if (name == "vector")
        return NumericType{NumberKind::Float, 1, 4};
    if (name == "matrix")
        return NumericType{NumberKind::Float, 4, 4, true};
    constexpr std::pair<std::string_view, NumberKind> Kinds[] = {
        {"float", NumberKind::Float}, {"half", NumberKind::Float}, {"double", NumberKind::Float},
        {"int", NumberKind::Int},     {"uint", NumberKind::Int},   {"dword", NumberKind::Int},
        {"DWORD", NumberKind::Int},   {"bool", NumberKind::Bool}};
    for (const auto& [word, kind] : Kinds) {
        if (name.substr(0, word.size()) != word)
            continue;
        const std::string_view size = name.substr(word.size());
        const auto isSize = [size](std::size_t at) { return size[at] >= '1' && size[at] <= '4'; };
        const auto number = [size](std::size_t at) { return static_cast<UINT>(size[at] - '0'); };
        if (size.empty())
            return NumericType{kind};
        if (size.size() == 1 && isSize(0))
            return NumericType{kind, 1, number(0)};
        if (size.size() == 3 && isSize(0) && size[1] == 'x' && isSize(2))
            return NumericType{kind, number(0), number(2), true};
    }
    return std::nullopt;
}

double ConvertNumber(double number, NumberKind kind) {
    if (kind == NumberKind::Bool)
        return number != 0;
    return kind == NumberKind::Int ? std::trunc(number) : number;
}

std::optional<ObjectType> FindObjectType(std::string_view name) {
    constexpr std::pair<std::string_view, ObjectType> Types[] = {
        {"texture", ObjectType::Texture},      {"texture1d", ObjectType::Texture},
        {"texture2d", ObjectType::Texture},    {"texture3d", ObjectType::Texture},
        {"texturecube", ObjectType::Texture},  {"sampler", ObjectType::Sampler},
        {"sampler1d", ObjectType::Sampler},    {"sampler2d", ObjectType::Sampler},
        {"sampler3d", ObjectType::Sampler},    {"samplercube", ObjectType::Sampler},
        {"samplerstate", ObjectType::Sampler}, {"string", ObjectType::String},
        {"vertexshader", ObjectType::Shader},  {"pixelshader", ObjectType::Shader},
    };
    for (const auto& [word, type] : Types)
        if (EqualBlindToCase(name, word))
            return type;
    return std::nullopt;
}

} // namespace VornPlatform
