// SPDX-License-Identifier: MIT
//
// What an effect file has declared so far, by name.
#pragma once

#include "platform/d3dx9/effect/effect_source.hpp"
#include "platform/d3dx9/effect/value.hpp"

#include <map>

namespace VornPlatform {

/// Components that a parameter may have.
constexpr std::uint64_t MaxParameterNumbers = 1u << 20;

class Declarations {
public:
    /// False if the name is taken.
    bool add(SourceParameter parameter);
    void add(SourceStruct structure);
    void addAlias(const std::string& name, const std::string& type);

    const SourceParameter* parameter(std::string_view name) const;
    const SourceStruct* structure(std::string_view name) const;
    /// What a typedef stands for; other names stay.
    std::string resolveAlias(const std::string& type) const;

    /// All numbers of a type; 0 for a type that is unknown, more than MaxParameterNumbers for what
    /// is larger.
    std::uint64_t components(std::string_view type, const std::vector<UINT>& dimensions) const;
    /// Numbers become those of their components' types: 2.7 of an int is 2.
    void convert(std::vector<double>& numbers, std::string_view type,
                 const std::vector<UINT>& dimensions) const;

    /// A parameter by its name, a constant as its numbers if it has a value and is
    /// `static const`, or `const` where `anyConstant` is set. Nothing if there is none.
    std::optional<Value> value(std::string_view name, bool anyConstant) const;
    /// `a.b`. Nothing if `a` is no structure or has no such member.
    std::optional<Value> member(const Value& value, std::string_view name) const;

    std::vector<SourceParameter> parameters;
    std::vector<SourceStruct> structs;

private:
    void convert(std::vector<double>& numbers, std::size_t& at, std::string_view type,
                 const std::vector<UINT>& dimensions) const;

    std::map<std::string, std::size_t, std::less<>> parameterIndex_, structIndex_;
    std::map<std::string, std::uint64_t, std::less<>> structComponents_;
    std::map<std::string, std::string, std::less<>> aliases_;
};

} // namespace VornPlatform
