// SPDX-License-Identifier: MIT
//
// The text of a program: around the body of each shader what it reads and writes, so that any
// vertex stage fits any pixel stage, and either of them the fixed function.
//
//   const ProgramParts parts = {vertexCode, pixelCode, key};
//   const GLuint name = LinkProgram(VertexSourceOf(parts), PixelSourceOf(parts));
//
// What is written here begins with vp_, as no name of a body does.
#pragma once

#include "platform/d3d9/gl/fixed_function.hpp"
#include "platform/d3d9/shader_code.hpp"

namespace VornPlatform {

/// What programs differ in. A null shader is the fixed function.
struct ProgramParts {
    const ShaderCode* vertex = nullptr;
    const ShaderCode* pixel = nullptr;
    FixedFunctionKey fixed; // and the alpha test
    UINT blocks = 0;        // of as many draws, in an array; 0: one by itself

    bool operator==(const ProgramParts&) const = default;
};

/// Bindings of the blocks of constants.
namespace Block {
enum : unsigned int { Vertex = 0, Pixel = 1 };
} // namespace Block
/// Both shaders are of one effect, and their blocks are one.
bool ShareBlock(const ProgramParts& parts);
/// The pair of an effect, whose pixel stage reads little of the block; or none: what the fixed
/// function needs of each draw is a matrix, as long as nothing is lit and no coordinates move.
bool MayMerge(const ProgramParts& parts);
/// Of what each of the draws has for itself. (unit: bytes)
UINT BlockSizeOf(const ProgramParts& parts);
/// Else points are one pixel large.
bool SetsPointSize(const ProgramParts& parts);

std::string VertexSourceOf(const ProgramParts& parts);
std::string PixelSourceOf(const ProgramParts& parts);

/// The uniform that a sampler of either stage is in the text.
std::string SamplerName(ShaderStage stage, UINT index);

} // namespace VornPlatform
