// SPDX-License-Identifier: MIT
//
// The states that a pass or a sampler of an effect file sets, by the names that they have there.
//
//   if (const StateInfo* info = FindState("SrcBlend"))       // blind to case
//       FindStateValue(info->values, "InvSrcAlpha");         // 6
#pragma once

#include <d3d9.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace VornPlatform {

enum class StateKind : std::uint8_t {
    Render,         // SetRenderState(number, value)
    Stage,          // SetTextureStageState(index, number, value)
    Sampler,        // SetSamplerState(index, number, value)
    Texture,        // SetTexture(index, value)
    SamplerObject,  // `Sampler[0] = <s>`
    VertexShader,   // SetVertexShader
    PixelShader,    // SetPixelShader
    Transform,      // SetTransform(number + index, value)
    LightEnable,    // LightEnable(index, value)
    Light,          // a member of the light `index`; number: which, from 0
    Material,       // a member of the material; number: which, from 0
    ShaderConstant, // constants by their register; number: 0 of the vertex shader, 1 of the pixel's
    Other           // what no device of today has
};

/// Which names a value may have. TRUE and FALSE are known to all.
enum class StateValues : std::uint8_t {
    Plain, // numbers only
    FillMode,
    ShadeMode,
    DepthBuffer,
    Compare,
    Blend,
    Cull,
    Fog,
    StencilOperation,
    MaterialSource,
    VertexBlend,
    BlendOperation,
    ColorWrite,
    ClipPlanes,
    Wrap,
    PatchEdge,
    Degree,
    Filter,
    Address,
    TextureOperation,
    TextureArgument,
    TextureCoordinates,
    TextureTransform,
    LightType
};

struct StateInfo {
    std::string_view name;
    StateKind kind = StateKind::Other;
    DWORD number = 0;
    StateValues values = StateValues::Plain;
    bool isFloat = false; // Direct3D takes the bits of a float
};

/// Null for a name that is none.
const StateInfo* FindState(std::string_view name);
/// The number that a name stands for in one kind of values.
std::optional<DWORD> FindStateValue(StateValues values, std::string_view name);
/// All names of one kind in a row, for messages: "NONE, CW, CCW".
std::string NamesOf(StateValues values);

} // namespace VornPlatform
