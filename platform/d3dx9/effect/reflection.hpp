// SPDX-License-Identifier: MIT
//
// Where the numeric parameters of a file lie: std140, in the order of their declaration.
#pragma once

#include "platform/d3dx9/effect/hlsl_types.hpp"

namespace VornPlatform {

struct Reflection {
    std::vector<ShaderConstant> parameters; // of the file, without static ones
    std::vector<std::byte> start;
    std::vector<UINT> blockMembers; // index of `parameters` for each member of the block
};

/// Raises EffectError for types that are none and for more than a block holds. With `keepRowMajor`
/// as RewriteHlsl was called.
Reflection Reflect(const EffectSource& source, const HlslTypes& types, bool keepRowMajor);

/// Name, type and start value, without a place.
ShaderConstant ReflectAnnotation(const SourceParameter& annotation);

/// Lays registers out from `first` on: a constant has one for each element of a scalar or vector,
/// and one for each column of a matrix, or row with rowMajor.
UINT RegisterCount(const ShaderConstant& constant);
void AppendRegisters(const ShaderConstant& constant, UINT first, std::vector<RegisterCopy>& copies);

} // namespace VornPlatform
