// SPDX-License-Identifier: MIT
//
// Types of HLSL by their names.
#pragma once

#include "platform/d3dx9/effect/effect_code.hpp"

#include <map>

namespace VornPlatform {

struct HlslType {
    ValueClass valueClass = ValueClass::Object;
    ValueType type = ValueType::None;
    UINT rows = 1, columns = 1;
    const SourceStruct* structure = nullptr;
    std::vector<UINT> dimensions; // of a typedef of an array

    bool isNumeric() const { return valueClass != ValueClass::Object; }
    /// Of one value, without arrays: 16 of float4x4.
    UINT components() const { return rows * columns; }
};

/// Samplers of all kinds, by the word of their type.
bool IsSamplerType(std::string_view name);
/// "float", "int3", "bool2x2"; half and double are float, uint and dword are int.
std::optional<HlslType> BuiltInType(std::string_view name);

/// Those of a file: its structures and typedefs, and what is built in.
class HlslTypes {
public:
    explicit HlslTypes(const EffectSource& source);

    void addTypedef(const std::string& name, const std::string& type, std::vector<UINT> dimensions);
    /// Nothing for void, textures and words that are no type.
    std::optional<HlslType> find(const std::string& name) const;
    /// Of one value; 0 for what is not numeric or too large.
    UINT componentsOf(const HlslType& type) const;

private:
    std::map<std::string, const SourceStruct*, std::less<>> structs_;
    std::map<std::string, std::pair<std::string, std::vector<UINT>>, std::less<>> typedefs_;
};

/// "xyz", "rg": components of a vector.
bool IsSwizzle(std::string_view text);

/// How many elements all dimensions make; 0 for none.
UINT ElementCount(const std::vector<UINT>& dimensions);

/// More numbers than any shader has.
constexpr UINT MaxShaderNumbers = 1u << 16;

} // namespace VornPlatform
