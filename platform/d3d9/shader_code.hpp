// SPDX-License-Identifier: MIT
//
// A compiled shader as plain data: what D3DX makes of HLSL, and the backend links into programs.
//
//   std::vector<DWORD> code = Pack(shader);               // what a host gets and hands back
//   std::shared_ptr<const ShaderCode> same = Unpack(code.data());
//
// The text is GLSL without an end: `body` holds a function `shader_main` and the global variables
// through which its values come in and go out. The backend writes the rest around it, so that any
// two stages fit together, and either of them with the fixed function: it fills the inputs, calls
// `shader_main` and takes the outputs, matching them by usage and index. What the vertex stage does
// not write is 0 for the pixel stage. A vertex stage always has POSITION 0 among its outputs, in
// Direct3D's clip space; the half pixel and the direction of Y are the backend's.
#pragma once

#include <d3d9.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace VornPlatform {

enum class ShaderStage : std::uint8_t { Vertex, Pixel };
enum class SamplerKind : std::uint8_t { Flat, Cube, Volume };

struct ShaderVariable {
    std::string name; // of the global in the body, which declares it as a plain one
    std::string type; // of GLSL: "float", "vec2" to "vec4", "int", "ivec4", "bool" and the like
    BYTE usage = 0;   // D3DDECLUSAGE; of a pixel stage's outputs COLOR or DEPTH
    BYTE index = 0;

    bool operator==(const ShaderVariable&) const = default;
};

/// `uniform sampler2D NAME;` and the like stands in the body, without a binding.
struct ShaderSampler {
    std::string name; // of the body
    UINT index = 0;   // of the device's sampler
    SamplerKind kind = SamplerKind::Flat;

    bool operator==(const ShaderSampler&) const = default;
};

/// A run of at most four numbers of the block that a register of the device fills.
struct RegisterCopy {
    UINT registerIndex = 0;
    UINT offset = 0; // in the block (unit: bytes)
    std::uint8_t count = 4;
    enum Type : std::uint8_t { Float, Int, Bool } type = Float; // in the block

    bool operator==(const RegisterCopy&) const = default;
};

/// The constants are one block of bytes in the layout std140.
struct ShaderCode {
    ShaderStage stage = ShaderStage::Vertex;
    DWORD version = 0;     // 0xfffe0300 of vs_3_0, 0xffff0300 of ps_3_0
    std::string structs;   // what the members of the block are made of
    std::string members;   // of the block, as they stand between its braces; empty without a block
    std::string blockName; // the body reads a member as blockName.member
    UINT blockSize = 0;    // (unit: bytes) a multiple of 16; 0 without a block
    /// Blocks may stand in an array one behind the other: no member is laid out column by column.
    bool blocksInArray = false;
    std::string body;
    std::vector<ShaderVariable> inputs, outputs;
    std::vector<ShaderSampler> samplers;
    /// Of a shader that a host makes. That of an effect has none: both stages read the effect's
    /// block.
    std::vector<RegisterCopy> registers;

    bool operator==(const ShaderCode&) const = default;
};

/// What all else relies on: offsets, indices and usages within their bounds, the stage that of the
/// version. Of the text nothing is said.
bool IsSound(const ShaderCode& shader);
/// Equal shaders are one object for as long as somebody holds it.
std::shared_ptr<const ShaderCode> TheOne(std::shared_ptr<const ShaderCode> shader);

/// One stream of words that begins with the version and tells its own length.
std::vector<DWORD> Pack(const ShaderCode& shader);
/// Null for what Pack has not made. The same words give the same object for as long as somebody
/// holds it, so that nobody links a program twice.
std::shared_ptr<const ShaderCode> Unpack(const DWORD* code);

} // namespace VornPlatform
