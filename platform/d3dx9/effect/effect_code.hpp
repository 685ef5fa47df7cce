// SPDX-License-Identifier: MIT
//
// A compiled effect as plain data, for any number of ID3DXEffect objects on any device.
//
//   std::shared_ptr<const EffectCode> code = CompileEffect(path, macros, include);
//   std::vector<std::byte> block = code->start;        // an object's own values
//   std::memcpy(&block[code->parameters[0].offset], &value, sizeof value);
//
// All numeric parameters of a file lie in one block of bytes, in the layout std140, which both
// stages of every pass read. Faults raise EffectError.
#pragma once

#include "platform/d3dx9/effect/effect_source.hpp"

#include <cstddef>

namespace VornPlatform {

enum class ValueClass : std::uint8_t { Scalar, Vector, Matrix, Struct, Object };
enum class ValueType : std::uint8_t {
    None, // of structures
    Bool,
    Int,
    Float,
    String,
    Texture,
    Sampler,
    VertexShader,
    PixelShader
};

/// A parameter, a member of one, or a constant of a shader.
struct ShaderConstant {
    std::string name, semantic;
    ValueClass valueClass = ValueClass::Scalar;
    ValueType type = ValueType::Float;
    UINT rows = 1, columns = 1; // of the HLSL type; a vector has one row
    UINT elements = 0;          // of an array; 0 for none
    // Where it lies (unit: bytes). Bools and ints take four bytes, a bool is 0 or 1.
    UINT offset = 0;        // from the start of the block, members of structures included
    UINT elementStride = 0; // of arrays
    UINT vectorStride = 0;  // of a matrix: from column to column, or with rowMajor from row to row
    bool rowMajor = false;  // a matrix lies row by row, else column by column
    std::vector<ShaderConstant> members; // of a structure; of an array of them, those of its first
    // Of a shader by itself: its registers.
    UINT registerIndex = 0, registerCount = 0;
    // Of parameters:
    std::string text;                        // the start value of a string
    std::vector<ShaderConstant> annotations; // values in `numbers` and `text`
    std::vector<double> numbers;             // the value of an annotation
    int shader = -1;  // index of EffectCode::shaders: the start value of a shader parameter
    int sampler = -1; // index of EffectCode::samplers
};

/// A state that a pass or a sampler sets.
struct EffectState {
    enum class Kind : std::uint8_t {
        Render,      // SetRenderState(number, value)
        Stage,       // SetTextureStageState(index, number, value)
        Sampler,     // SetSamplerState(index, number, value)
        Texture,     // SetTexture(index, parameter `object`)
        Transform,   // SetTransform(number, parameter)
        LightEnable, // LightEnable(index, value)
        Ignored      // known to Direct3D, not to this layer
    };
    Kind kind = Kind::Render;
    DWORD number = 0;
    UINT index = 0;
    Expression value;     // a constant one has been folded into a Number
    bool isFloat = false; // the state takes the bits of a float
    int object = -1;      // index of EffectCode::parameters; -1 for null
};

struct EffectSampler {
    std::string name;
    std::vector<EffectState> states; // Sampler and Texture; their index is set by who uses it
};

struct EffectPass {
    std::string name;
    // Whether the pass says anything of them; else the device keeps what it has.
    bool setsVertexShader = false, setsPixelShader = false;
    // Indices of EffectCode::shaders; -1 for the fixed function. Or, if the pass names a parameter
    // of that kind, that parameter's index.
    int vertexShader = -1, pixelShader = -1;
    int vertexShaderParameter = -1, pixelShaderParameter = -1;
    std::vector<EffectState> states;
    std::vector<ShaderConstant> annotations;
};
struct EffectTechnique {
    std::string name;
    std::vector<EffectPass> passes;
    std::vector<ShaderConstant> annotations;
};

struct EffectShader {
    std::shared_ptr<const ShaderCode> code;
    /// For each sampler that the shader reads: the device's index and the EffectSampler.
    struct Use {
        UINT index = 0;
        int sampler = -1; // of EffectCode::samplers
    };
    std::vector<Use> samplers;
    SourcePlace place; // of its `compile`
};

struct EffectCode {
    std::vector<ShaderConstant> parameters; // in the order of the file; static ones are none
    std::vector<std::byte> start;           // the block as the file sets it
    std::vector<EffectSampler> samplers;
    std::vector<EffectShader> shaders;
    std::vector<EffectTechnique> techniques;
    std::string warnings;
    std::vector<std::pair<std::string, std::string>> files; // as in EffectSource
};

/// What a file compiles to. A file that is not there raises std::system_error. The same file, with
/// the same bytes in it and in all that it includes, is compiled once in a process.
std::shared_ptr<const EffectCode> CompileEffect(const std::string& path, const Macros& macros,
                                                const IncludeReader& include);
/// The same from a text, without a memory.
EffectCode CompileEffectText(const std::string& path, std::string_view text, const Macros& macros,
                             const IncludeReader& include);

/// A shader by itself, with registers in place of the effect's block.
struct CompiledShader {
    std::shared_ptr<const ShaderCode> code;
    std::vector<ShaderConstant> constants; // that the shader uses
    std::string warnings;
};
std::shared_ptr<const CompiledShader> CompileShader(const std::string& path, const Macros& macros,
                                                    const IncludeReader& include,
                                                    const std::string& entry,
                                                    const std::string& profile);
CompiledShader CompileShaderText(const std::string& path, std::string_view text,
                                 const Macros& macros, const IncludeReader& include,
                                 const std::string& entry, const std::string& profile);

} // namespace VornPlatform
