// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/declarations.hpp"

#include <algorithm>

namespace VornPlatform {

namespace {

// Larger arrays are no part of expressions: each mention would copy them.
constexpr std::size_t MaxConstant = 1024;

std::uint64_t Times(std::uint64_t components, const std::vector<UINT>& dimensions) {
    for (const UINT dimension : dimensions)
        components = std::min(components * dimension, MaxParameterNumbers + 1);
    return components;
}

} // namespace

bool Declarations::add(SourceParameter parameter) {
    const bool isNew = parameterIndex_.emplace(parameter.name, parameters.size()).second;
    if (isNew)
        parameters.push_back(std::move(parameter));
    return isNew;
}

void Declarations::add(SourceStruct structure) {
    std::uint64_t sum = 0;
    for (const SourceParameter& member : structure.members)
        sum = std::min(sum + components(member.type, member.dimensions), MaxParameterNumbers + 1);
    structComponents_[structure.name] = sum;
    structIndex_[structure.name] = structs.size();
    structs.push_back(std::move(structure));
}

void Declarations::addAlias(const std::string& name, const std::string& type) {
    aliases_[name] = resolveAlias(type);
}

const SourceParameter* Declarations::parameter(std::string_view name) const {
    const auto found = parameterIndex_.find(name);
    return found == parameterIndex_.end() ? nullptr : &parameters[found->second];
}

const SourceStruct* Declarations::structure(std::string_view name) const {
    const auto found = structIndex_.find(name);
    return found == structIndex_.end() ? nullptr : &structs[found->second];
}

std::string Declarations::resolveAlias(const std::string& type) const {
    const auto found = aliases_.find(type);
    return found == aliases_.end() ? type : found->second;
}

std::uint64_t Declarations::components(std::string_view type,
                                       const std::vector<UINT>& dimensions) const {
    if (const auto numeric = FindNumericType(type))
        return Times(numeric->components(), dimensions);
    const auto found = structComponents_.find(type);
    return found == structComponents_.end() ? 0 : Times(found->second, dimensions);
}

void Declarations::convert(std::vector<double>& numbers, std::string_view type,
                           const std::vector<UINT>& dimensions) const {
    std::size_t at = 0;
    convert(numbers, at, type, dimensions);
}

void Declarations::convert(std::vector<double>& numbers, std::size_t& at, std::string_view type,
                           const std::vector<UINT>& dimensions) const {
    const std::uint64_t elements = Times(1, dimensions);
    if (const auto numeric = FindNumericType(type)) {
        const std::size_t end =
            std::min<std::size_t>(numbers.size(), at + elements * numeric->components());
        for (; at < end; ++at)
            numbers[at] = ConvertNumber(numbers[at], numeric->kind);
        return;
    }
    const SourceStruct* known = structure(type);
    if (!known || components(type, {}) == 0)
        return;
    for (std::uint64_t element = 0; element < elements && at < numbers.size(); ++element)
        for (const SourceParameter& member : known->members)
            convert(numbers, at, member.type, member.dimensions);
}

std::optional<Value> Declarations::value(std::string_view name, bool anyConstant) const {
    const SourceParameter* known = parameter(name);
    if (!known)
        return std::nullopt;
    Value value;
    value.type = known->type;
    value.dimensions = known->dimensions;
    const auto numeric = FindNumericType(known->type);
    const std::uint64_t size = components(known->type, known->dimensions);
    if (numeric && known->initial && known->isConst && (known->isStatic || anyConstant) &&
        size <= MaxConstant) {
        value.numbers = known->initial->numbers;
        const bool fills = known->initial->fills && !value.numbers.empty();
        value.numbers.resize(size, fills ? value.numbers[0] : 0);
        value.isWhole = numeric->kind != NumberKind::Float;
        return value;
    }
    value.isConstant = false;
    value.expression.kind = Expression::Kind::Parameter;
    value.expression.name = name;
    return value;
}

std::optional<Value> Declarations::member(const Value& value, std::string_view name) const {
    const SourceStruct* known = structure(value.type);
    if (!known || !value.dimensions.empty() || value.isConstant ||
        value.expression.kind != Expression::Kind::Parameter)
        return std::nullopt;
    for (const SourceParameter& member : known->members)
        if (member.name == name) {
            Value found = value;
            found.expression.name += "." + member.name;
            found.type = member.type;
            found.dimensions = member.dimensions;
            return found;
        }
    return std::nullopt;
}

} // namespace VornPlatform
