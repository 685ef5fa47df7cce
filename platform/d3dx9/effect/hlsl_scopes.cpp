// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/hlsl_scopes.hpp"

#include <algorithm>
#include <utility>

namespace VornPlatform {

using Kind = HlslValue::Kind;

const char* NameOf(Kind kind) {
    constexpr const char* Names[] = {"something", "numbers",   "a structure",
                                     "an array",  "a sampler", "nothing"};
    return Names[static_cast<std::size_t>(kind)];
}

HlslScopes::HlslScopes(const ShaderText& text) : text_(text), scopes_(1) {
    for (const SourceStruct& structure : text.source.structs)
        for (const SourceParameter& member : structure.members)
            requireFloats(member.type, member.place);
    for (const HlslVariable& variable : text.variables) {
        requireFloats(variable.type, PlaceOf(text.source, text.words[variable.nameWord].line));
        std::size_t dimensions = 0;
        for (std::size_t i = variable.dimensions.begin; i < variable.dimensions.end; ++i)
            dimensions += text.words[i].is("[");
        declare(variable.name, valueOf(variable.type, dimensions));
    }
    for (const HlslSampler& sampler : text.samplers)
        declare(sampler.name, valueOf("sampler", 0));
}

void HlslScopes::declare(const std::string& name, const HlslValue& value) {
    HlslValue& declared = scopes_.back()[name];
    declared = value;
    declared.isPlace = true;
}

const HlslValue* HlslScopes::find(std::string_view name) const {
    for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope)
        if (const auto known = scope->find(name); known != scope->end())
            return &known->second;
    return nullptr;
}

bool HlslScopes::isStaticVariable(const std::string& name) const {
    const auto outermost = scopes_[0].find(name);
    const auto isIt = [&](const HlslVariable& v) { return v.isStatic && v.name == name; };
    return outermost != scopes_[0].end() && find(name) == &outermost->second &&
           std::any_of(text_.variables.begin(), text_.variables.end(), isIt);
}

bool HlslScopes::isType(const std::string& word) const {
    if (word.empty() || find(word))
        return false;
    if (word == "void" || types_.contains(word))
        return true;
    const auto type = text_.types.find(word);
    if (!type || type->structure)
        return type.has_value();
    // Of the words of types those that were used as such have their modern spelling by now. The
    // others are names: "hl_vector", "Matrix".
    return !word.starts_with("hl_") &&
           (!BuiltInType(word) || LowerCase(word) == word || IsSamplerType(word));
}

HlslValue HlslScopes::valueOf(const std::string& typeName, std::size_t dimensions) const {
    HlslValue value;
    value.dimensions = dimensions;
    if (typeName == "void")
        value.kind = Kind::Nothing;
    else if (IsSamplerType(typeName))
        value.kind = Kind::Sampler;
    else if (const auto type = text_.types.find(typeName)) {
        value.structure = type->structure;
        value.dimensions += type->dimensions.size();
        value.kind = type->structure ? Kind::Structure : Kind::Numbers;
    }
    if (value.dimensions > 0 && value.kind != Kind::Unknown)
        value.element = std::exchange(value.kind, Kind::Array);
    return value;
}

void HlslScopes::requireFloats(const std::string& typeName, const SourcePlace& place) const {
    const auto type = text_.types.find(typeName);
    if (type && type->valueClass == ValueClass::Matrix && type->type != ValueType::Float)
        throw EffectError(place, "'" + typeName + "': a matrix must be of floats");
}

} // namespace VornPlatform
