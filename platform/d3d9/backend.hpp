// SPDX-License-Identifier: MIT
//
// What the device asks of the machine. There are two of it: gl/ draws, recorder/ writes down. All
// rules of Direct3D that need no pixel (what is refused, counts, pools, states and their defaults)
// are the device's; a backend gets valid arguments only.
//
//   std::unique_ptr<Backend> backend = MakeGlBackend();
//   auto texture = backend->CreateTexture({.width = 4, .height = 4, .format = D3DFMT_A8R8G8B8});
//   texture->Write(0, {0, 0, 4, 4}, pixels, 16);
//   backend->Draw(state, Changed::All, primitive);
//
// Pictures follow Direct3D 9: row 0 is the top, pixel centres lie at whole numbers, depth runs from
// 0 to 1. Textures and buffers go before their backend.
#pragma once

#include "platform/d3d9/shader_code.hpp"
#include "platform/d3d9/state.hpp"

#include <d3d9.h>

#include <memory>

namespace VornPlatform {

struct TextureDesc {
    UINT width = 1, height = 1;
    UINT levels = 1; // that exist, mips that are made included
    D3DFORMAT format = D3DFMT_A8R8G8B8;
    bool target = false; // colour or depth buffer, by its format
};

/// Pixels of a level; left and top are in, right and bottom are not. In a compressed format the
/// edges lie at multiples of 4 or at the level's own edge.
class GpuTexture {
public:
    virtual ~GpuTexture() = default;
    /// `pitch` is the distance of rows, or of rows of blocks (unit: bytes).
    virtual void Write(UINT level, const RECT& rect, const void* pixels, UINT pitch) = 0;
    /// The bytes that Write takes; X bytes are 0xff. False of compressed and depth formats, and
    /// where the machine is gone.
    virtual bool Read(UINT level, const RECT& rect, void* pixels, UINT pitch) = 0;
    /// All levels below the first, from the first.
    virtual void GenerateMips() = 0;
};

enum class BufferKind { Vertices, Indices };

class GpuBuffer {
public:
    virtual ~GpuBuffer() = default;
    /// Memory of the range, for reading and writing, until Unmap. Draws that came before keep the
    /// old content. With `discard` the content of the whole buffer is of no more use.
    /// @return null if the machine cannot
    virtual void* Map(UINT offset, UINT size, bool discard) = 0;
    virtual void Unmap() = 0;
    virtual void Write(UINT offset, UINT size, const void* data) = 0;
};

struct Primitive {
    D3DPRIMITIVETYPE type = D3DPT_TRIANGLELIST;
    UINT count = 0; // of primitives, above 0
    bool indexed = false;
    UINT start = 0;     // the first index, or the first vertex
    INT baseVertex = 0; // what is added to each index
    // Vertices in the host's memory, `stride` apart, in place of State::vertices; or null.
    const void* userVertices = nullptr;
    UINT userStride = 0;
};

class Backend {
public:
    virtual ~Backend() = default;

    /// Null if the machine has no more memory.
    virtual std::unique_ptr<GpuTexture> CreateTexture(const TextureDesc&) = 0;
    virtual std::unique_ptr<GpuBuffer> CreateBuffer(BufferKind, UINT size) = 0;

    /// Whether the machine compiles the shader. What it refuses only with another stage draws
    /// nothing.
    virtual bool Takes(const ShaderCode&) { return true; }

    /// The rectangle is cut to the viewport already; no state of `State` has a say.
    virtual void Clear(const Target&, const RECT&, DWORD flags, D3DCOLOR, float z) = 0;
    /// `changed` holds all groups in which the state differs from that of the draw before.
    virtual void Draw(const State&, unsigned int changed, const Primitive&) = 0;
    /// Shows the target, stretched to the client area of the window, which may be gone by now.
    virtual void Present(GpuTexture& backBuffer, UINT width, UINT height, HWND window,
                         bool waitForDisplay) = 0;
};

/// Null if the machine has no OpenGL 4.5.
std::unique_ptr<Backend> MakeGlBackend();
/// Needs no machine: textures and buffers keep what is written to them, Clear fills the target,
/// draws leave the pixels alone.
std::unique_ptr<Backend> MakeRecorderBackend();

} // namespace VornPlatform
