// SPDX-License-Identifier: MIT
//
// All that a draw depends on, as plain data. A setter of the device stores a value here and, if it
// differs, marks its group as changed; a draw hands both to the backend, which resolves the groups:
//
//   if (state.blend.source != value) {
//       state.blend.source = value;
//       changed |= Changed::Blend;
//   }
//
// The numbers are those of Direct3D. Nothing here is owned.
#pragma once

#include "platform/d3d9/limits.hpp"

#include <d3d9.h>

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

namespace VornPlatform {

class GpuBuffer;
class GpuTexture;

/// The elements of a vertex, made of an FVF or a declaration.
struct VertexFormat {
    unsigned int id;                         // no two have the same, not even after one is gone
    DWORD fvf;                               // 0 for a declaration
    std::vector<D3DVERTEXELEMENT9> elements; // without the end mark
};

/// What a draw writes to.
struct Target {
    GpuTexture* color = nullptr;
    GpuTexture* depth = nullptr; // null: no depth test
    UINT width = 0, height = 0;

    bool operator==(const Target&) const = default;
};

struct RasterState {
    DWORD fill = D3DFILL_SOLID;
    DWORD cull = D3DCULL_CCW;
};
struct DepthState {
    DWORD enable = TRUE;
    DWORD write = TRUE;
    DWORD function = D3DCMP_LESSEQUAL;
};
struct BlendState {
    DWORD enable = FALSE;
    DWORD source = D3DBLEND_ONE;
    DWORD destination = D3DBLEND_ZERO;
    DWORD operation = D3DBLENDOP_ADD;
    D3DCOLOR factor = 0xffffffff;
    DWORD writeMask = 0xf; // bit 0 red, 1 green, 2 blue, 3 alpha
};
struct AlphaTest {
    DWORD enable = FALSE;
    DWORD function = D3DCMP_ALWAYS;
    DWORD reference = 0; // 0 to 255
};
struct TextureStage {
    DWORD colorOp = D3DTOP_MODULATE;
    DWORD colorArg1 = D3DTA_TEXTURE;
    DWORD colorArg2 = D3DTA_CURRENT;
    DWORD alphaOp = D3DTOP_SELECTARG1;
    DWORD alphaArg1 = D3DTA_TEXTURE;
    DWORD alphaArg2 = D3DTA_CURRENT;
    DWORD transformFlags = D3DTTFF_DISABLE;
};
struct Sampler {
    DWORD addressU = D3DTADDRESS_WRAP;
    DWORD addressV = D3DTADDRESS_WRAP;
    D3DCOLOR border = 0;
    DWORD magFilter = D3DTEXF_POINT;
    DWORD minFilter = D3DTEXF_POINT;
    DWORD mipFilter = D3DTEXF_NONE;
};
struct Light {
    D3DLIGHT9 values = {};
    bool on = false;
};

struct ShaderCode;

struct ShaderState {
    const ShaderCode* code = nullptr; // null: the fixed function
    // For who keeps it beyond the draw.
    const std::shared_ptr<const ShaderCode>* holder = nullptr;
    const std::byte* constants = nullptr; // its block, all of its size; null without a block
    unsigned int version = 0;             // of those bytes: others have another
};

inline constexpr D3DMATRIX IdentityMatrix = {{{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}}};

struct State {
    Target target;
    D3DVIEWPORT9 viewport = {};

    D3DMATRIX world = IdentityMatrix;
    D3DMATRIX view = IdentityMatrix;
    D3DMATRIX projection = IdentityMatrix;
    D3DMATRIX textureMatrix = IdentityMatrix; // of stage 0

    RasterState raster;
    DepthState depth;
    BlendState blend;
    AlphaTest alphaTest;

    DWORD lighting = TRUE;
    D3DCOLOR ambient = 0;
    std::array<Light, MaxLights> lights;

    TextureStage stage; // 0; the others are off
    std::array<GpuTexture*, MaxTextures> textures = {};
    std::array<Sampler, MaxTextures> samplers;

    // Both read the same bytes, at the same address, if they are an effect's.
    ShaderState vertexShader, pixelShader;

    const VertexFormat* format = nullptr;
    GpuBuffer* vertices = nullptr;
    UINT vertexOffset = 0, stride = 0; // (unit: bytes)
    GpuBuffer* indices = nullptr;
    bool wideIndices = true; // 32 bits each, else 16
};

/// Groups of the state, one bit each.
namespace Changed {
enum : unsigned int {
    Target = 1u << 0,
    Viewport = 1u << 1,
    World = 1u << 2, // and view
    Projection = 1u << 3,
    TextureMatrix = 1u << 4,
    Raster = 1u << 5,
    Depth = 1u << 6,
    Blend = 1u << 7,
    AlphaTest = 1u << 8,
    Lights = 1u << 9, // lighting on or off, the ambient light, each light
    Stage = 1u << 10,
    Textures = 1u << 11,
    Samplers = 1u << 12,
    Format = 1u << 13,
    Vertices = 1u << 14,
    Indices = 1u << 15,
    Shaders = 1u << 16,
    Constants = 1u << 17, // the bytes of either block
    All = 0xffffffffu
};
} // namespace Changed

} // namespace VornPlatform
