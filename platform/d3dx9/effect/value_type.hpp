// SPDX-License-Identifier: MIT
//
// The types of effect files by their names.
#pragma once

#include <d3d9.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace VornPlatform {

enum class NumberKind : std::uint8_t { Float, Int, Bool };

/// "float4" has 1 row and 4 columns, "float4x3" 4 rows and 3 columns.
struct NumericType {
    NumberKind kind = NumberKind::Float;
    UINT rows = 1, columns = 1;
    bool isMatrix = false; // "float1x4" too

    UINT components() const { return rows * columns; }
};
/// Nothing for a structure, an object, or no type at all. Case counts.
std::optional<NumericType> FindNumericType(std::string_view name);
double ConvertNumber(double number, NumberKind kind);

enum class ObjectType : std::uint8_t { Texture, Sampler, String, Shader };
/// By the name in any case: "texture2D", "samplerCUBE", "VertexShader".
std::optional<ObjectType> FindObjectType(std::string_view name);

} // namespace VornPlatform
