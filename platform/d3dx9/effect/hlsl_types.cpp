// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/hlsl_types.hpp"

#include "platform/d3dx9/effect/lexer.hpp"

#include <algorithm>

namespace VornPlatform {

namespace {

constexpr int DeepestType = 32;

// "4", "3x2"; nothing else.
bool ReadShape(std::string_view text, HlslType& type) {
    const auto size = [](char c) { return c >= '1' && c <= '4' ? static_cast<UINT>(c - '0') : 0; };
    if (text.empty()) {
        type.valueClass = ValueClass::Scalar;
        return true;
    }
    type.columns = size(text[0]);
    type.valueClass = ValueClass::Vector;
    if (text.size() == 3 && text[1] == 'x') {
        type.valueClass = ValueClass::Matrix;
        type.rows = type.columns;
        type.columns = size(text[2]);
    } else if (text.size() != 1)
        return false;
    return type.rows != 0 && type.columns != 0;
}

} // namespace

bool IsSamplerType(std::string_view name) {
    for (const char* word :
         {"sampler", "sampler1d", "sampler2d", "sampler3d", "samplercube", "samplerstate"})
        if (EqualBlindToCase(name, word))
            return true;
    return false;
}

std::optional<HlslType> BuiltInType(std::string_view name) {
    constexpr std::pair<std::string_view, ValueType> Bases[] = {
        {"float", ValueType::Float},  {"half", ValueType::Float}, {"double", ValueType::Float},
        {"int", ValueType::Int},      {"uint", ValueType::Int},   {"dword", ValueType::Int},
        {"unsigned", ValueType::Int}, {"bool", ValueType::Bool}};
    HlslType type;
    if (EqualBlindToCase(name, "vector") || EqualBlindToCase(name, "matrix")) {
        const bool isMatrix = EqualBlindToCase(name, "matrix");
        type.type = ValueType::Float;
        type.valueClass = isMatrix ? ValueClass::Matrix : ValueClass::Vector;
        type.rows = isMatrix ? 4 : 1;
        type.columns = 4;
        return type;
    }
    for (const auto& [word, base] : Bases)
        if (EqualBlindToCase(name.substr(0, word.size()), word) &&
            ReadShape(name.substr(word.size()), type)) {
            type.type = base;
            return type;
        }
    if (IsSamplerType(name)) {
        type.type = ValueType::Sampler;
        return type;
    }
    return std::nullopt;
}

HlslTypes::HlslTypes(const EffectSource& source) {
    for (const SourceStruct& structure : source.structs)
        structs_.emplace(structure.name, &structure);
}

void HlslTypes::addTypedef(const std::string& name, const std::string& type,
                           std::vector<UINT> dimensions) {
    typedefs_.insert_or_assign(name, std::pair(type, std::move(dimensions)));
}

std::optional<HlslType> HlslTypes::find(const std::string& name) const {
    std::string word = name;
    std::vector<UINT> dimensions;
    // A typedef may stand for another one, or for itself in a broken file.
    for (int depth = 0; depth < DeepestType; ++depth) {
        std::optional<HlslType> found;
        if (const auto known = structs_.find(word); known != structs_.end()) {
            found.emplace();
            found->valueClass = ValueClass::Struct;
            found->structure = known->second;
        } else if (const auto alias = typedefs_.find(word); alias != typedefs_.end()) {
            dimensions.insert(dimensions.end(), alias->second.second.begin(),
                              alias->second.second.end());
            word = alias->second.first;
            continue;
        } else
            found = BuiltInType(word);
        if (!found && word.starts_with("hl_")) { // a structure whose name has been made safe
            word.erase(0, 3);
            continue;
        }
        if (found)
            found->dimensions = dimensions;
        return found;
    }
    return std::nullopt;
}

UINT HlslTypes::componentsOf(const HlslType& type) const {
    if (type.valueClass != ValueClass::Struct)
        return type.isNumeric() ? type.components() : 0;
    std::uint64_t sum = 0;
    for (const SourceParameter& member : type.structure->members) {
        // Of itself or of something that the file declares later: no value.
        const std::optional<HlslType> inner = find(member.type);
        if (!inner || inner->structure >= type.structure)
            return 0;
        const UINT one = componentsOf(*inner);
        std::uint64_t count = one;
        for (const std::vector<UINT>* dimensions : {&member.dimensions, &inner->dimensions})
            for (const UINT dimension : *dimensions)
                count = std::min<std::uint64_t>(count * dimension, MaxShaderNumbers + 1);
        sum += count;
        if (count == 0 || sum > MaxShaderNumbers)
            return 0;
    }
    return static_cast<UINT>(sum);
}

bool IsSwizzle(std::string_view text) {
    return text.size() <= 4 && (text.find_first_not_of("xyzw") == std::string_view::npos ||
                                text.find_first_not_of("rgba") == std::string_view::npos);
}

UINT ElementCount(const std::vector<UINT>& dimensions) {
    if (dimensions.empty())
        return 0;
    std::uint64_t count = 1;
    for (const UINT dimension : dimensions)
        count = std::min<std::uint64_t>(count * dimension, MaxShaderNumbers + 1);
    return static_cast<UINT>(count);
}

} // namespace VornPlatform
