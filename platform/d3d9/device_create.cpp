// SPDX-License-Identifier: MIT
#include "platform/d3d9/device.hpp"
#include "platform/d3d9/guarded.hpp"
#include "platform/d3d9/pixel_format.hpp"
#include "platform/d3d9/recorder/call_log.hpp"
#include "platform/window/window.hpp"

#include <utility>

namespace VornPlatform {

namespace {

// Beside WRITEONLY and DYNAMIC, hints of Direct3D that mean nothing here: software processing,
// no clipping, points, patches.
constexpr DWORD BufferUsages =
    D3DUSAGE_WRITEONLY | D3DUSAGE_DYNAMIC | 0x10 | 0x20 | 0x40 | 0x80 | 0x100;
constexpr DWORD TextureUsages = D3DUSAGE_RENDERTARGET | D3DUSAGE_DYNAMIC | D3DUSAGE_AUTOGENMIPMAP;

bool IsBufferCall(UINT length, DWORD usage, D3DPOOL pool) {
    const bool dynamicAndKept = (usage & D3DUSAGE_DYNAMIC) && pool == D3DPOOL_MANAGED;
    return length > 0 && length <= MaxBufferSize && (usage & ~BufferUsages) == 0 &&
           pool <= D3DPOOL_SYSTEMMEM && !dynamicAndKept;
}

bool IsTextureCall(UINT w, UINT h, UINT levels, DWORD usage, const PixelFormat* format,
                   D3DPOOL pool) {
    if (!IsTextureSize(w, h) || levels > FullLevels(w, h) || (usage & ~TextureUsages) || !format ||
        format->use != PixelUse::Color || pool > D3DPOOL_SYSTEMMEM)
        return false;
    const bool target = usage & D3DUSAGE_RENDERTARGET, dynamic = usage & D3DUSAGE_DYNAMIC;
    if (target && (pool != D3DPOOL_DEFAULT || dynamic || !format->renderTarget))
        return false;
    if (dynamic && pool == D3DPOOL_MANAGED)
        return false;
    // Levels that are made need a machine that makes them, of pixels that it can take the mean of.
    return !(usage & D3DUSAGE_AUTOGENMIPMAP) ||
           (pool != D3DPOOL_SYSTEMMEM && format->blockSide == 1 && levels <= 1);
}

// What is needed of one kind of buffer, or the error.
struct BufferParts {
    std::unique_ptr<GpuBuffer> gpu;
    Memory memory;
};
HRESULT MakeBuffer(Backend& backend, BufferKind kind, UINT length, D3DPOOL pool,
                   BufferParts& parts) {
    if (pool != D3DPOOL_DEFAULT) {
        parts.memory = MakeMemory(length);
        if (!parts.memory)
            return D3DERR_OUTOFVIDEOMEMORY;
    }
    parts.gpu = backend.CreateBuffer(kind, length);
    return parts.gpu ? D3D_OK : D3DERR_OUTOFVIDEOMEMORY;
}

} // namespace

HRESULT Device::creationError(D3DPOOL pool) const {
    if (mWindow && !LiveWindow(mWindow))
        return D3DERR_NOTAVAILABLE;
    return pool == D3DPOOL_DEFAULT && mStatus != D3D_OK ? D3DERR_DEVICELOST : D3D_OK;
}

std::unique_ptr<GpuTexture> Device::makeTarget(const D3DSURFACE_DESC& desc) {
    return mBackend->CreateTexture({desc.Width, desc.Height, 1, desc.Format, true});
}

HRESULT Device::CreateVertexBuffer(UINT length, DWORD usage, DWORD fvf, D3DPOOL pool,
                                   IDirect3DVertexBuffer9** buffer, HANDLE* /*shared*/) {
    const CallScope call("CreateVertexBuffer", length, usage, fvf, pool);
    if (!buffer || !IsBufferCall(length, usage, pool))
        return D3DERR_INVALIDCALL;
    return Guarded([&]() -> HRESULT {
        HRESULT result = creationError(pool);
        BufferParts parts;
        if (SUCCEEDED(result))
            result = MakeBuffer(*mBackend, BufferKind::Vertices, length, pool, parts);
        if (FAILED(result))
            return result;
        auto* made = new VertexBuffer(*this, pool, length, usage, std::move(parts.gpu),
                                      std::move(parts.memory));
        made->Hold();
        *buffer = made;
        return D3D_OK;
    });
}

HRESULT Device::CreateIndexBuffer(UINT length, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                                  IDirect3DIndexBuffer9** buffer, HANDLE* /*shared*/) {
    const CallScope call("CreateIndexBuffer", length, usage, format, pool);
    const bool wide = format == D3DFMT_INDEX32;
    if (!buffer || !IsBufferCall(length, usage, pool) || (!wide && format != D3DFMT_INDEX16))
        return D3DERR_INVALIDCALL;
    return Guarded([&]() -> HRESULT {
        HRESULT result = creationError(pool);
        BufferParts parts;
        if (SUCCEEDED(result))
            result = MakeBuffer(*mBackend, BufferKind::Indices, length, pool, parts);
        if (FAILED(result))
            return result;
        auto* made = new IndexBuffer(*this, pool, length, usage, wide, std::move(parts.gpu),
                                     std::move(parts.memory));
        made->Hold();
        *buffer = made;
        return D3D_OK;
    });
}

HRESULT Device::CreateOffscreenPlainSurface(UINT w, UINT h, D3DFORMAT format, D3DPOOL pool,
                                            IDirect3DSurface9** surface, HANDLE* /*shared*/) {
    const CallScope call("CreateOffscreenPlainSurface", w, h, format, pool);
    const PixelFormat* known = FindPixelFormat(format);
    if (!surface || !IsTextureSize(w, h) || !known || known->use != PixelUse::Color ||
        (pool != D3DPOOL_DEFAULT && pool != D3DPOOL_SYSTEMMEM))
        return D3DERR_INVALIDCALL;
    return Guarded([&]() -> HRESULT {
        if (const HRESULT error = creationError(pool); FAILED(error))
            return error;
        PixelMemory memory(*known, w, h);
        if (!memory.IsThere())
            return D3DERR_OUTOFVIDEOMEMORY;
        const D3DSURFACE_DESC desc = {format, D3DRTYPE_SURFACE, 0, pool, D3DMULTISAMPLE_NONE, 0, w,
                                      h};
        auto* made =
            new PlainSurface(*this, PlainSurface::Use::OfHost, desc, nullptr, std::move(memory));
        made->Hold();
        *surface = made;
        return D3D_OK;
    });
}

HRESULT Device::CreateTexture(UINT w, UINT h, UINT levels, DWORD usage, D3DFORMAT format,
                              D3DPOOL pool, IDirect3DTexture9** texture, HANDLE* /*shared*/) {
    const CallScope call("CreateTexture", w, h, levels, usage, format, pool);
    const PixelFormat* known = FindPixelFormat(format);
    if (!texture || !IsTextureCall(w, h, levels, usage, known, pool))
        return D3DERR_INVALIDCALL;
    return Guarded([&]() -> HRESULT {
        if (const HRESULT error = creationError(pool); FAILED(error))
            return error;

        const bool makesMips = usage & D3DUSAGE_AUTOGENMIPMAP;
        const UINT existing = levels && !makesMips ? levels : FullLevels(w, h);
        Texture::Parts parts;
        parts.desc = {format, D3DRTYPE_SURFACE, usage, pool, D3DMULTISAMPLE_NONE, 0, w, h};
        parts.levels = makesMips ? 1 : existing;
        if (pool != D3DPOOL_SYSTEMMEM) {
            const bool target = usage & D3DUSAGE_RENDERTARGET;
            parts.gpu = mBackend->CreateTexture({w, h, existing, format, target});
            if (!parts.gpu)
                return D3DERR_OUTOFVIDEOMEMORY;
        }
        if (pool != D3DPOOL_DEFAULT || (usage & D3DUSAGE_DYNAMIC))
            for (UINT level = 0; level < parts.levels; ++level) {
                parts.memory.emplace_back(*known, LevelSide(w, level), LevelSide(h, level));
                if (!parts.memory.back().IsThere())
                    return D3DERR_OUTOFVIDEOMEMORY;
            }
        auto* made = new Texture(*this, std::move(parts));
        made->Hold();
        *texture = made;
        return D3D_OK;
    });
}

HRESULT Device::CreateDepthStencilSurface(UINT w, UINT h, D3DFORMAT format,
                                          D3DMULTISAMPLE_TYPE multiSample, DWORD quality,
                                          BOOL discard, IDirect3DSurface9** surface,
                                          HANDLE* /*shared*/) {
    const CallScope call("CreateDepthStencilSurface", w, h, format, multiSample, quality, discard);
    const PixelFormat* known = FindPixelFormat(format);
    if (!surface || !IsTextureSize(w, h) || !known || known->use != PixelUse::Depth ||
        multiSample != D3DMULTISAMPLE_NONE)
        return D3DERR_INVALIDCALL;
    return Guarded([&]() -> HRESULT {
        if (const HRESULT error = creationError(D3DPOOL_DEFAULT); FAILED(error))
            return error;
        const D3DSURFACE_DESC desc = {format,
                                      D3DRTYPE_SURFACE,
                                      D3DUSAGE_DEPTHSTENCIL,
                                      D3DPOOL_DEFAULT,
                                      D3DMULTISAMPLE_NONE,
                                      0,
                                      w,
                                      h};
        std::unique_ptr<GpuTexture> gpu = makeTarget(desc);
        if (!gpu)
            return D3DERR_OUTOFVIDEOMEMORY;
        auto* made =
            new PlainSurface(*this, PlainSurface::Use::OfHost, desc, std::move(gpu), std::nullopt);
        made->Hold();
        *surface = made;
        return D3D_OK;
    });
}

HRESULT Device::CreateVertexDeclaration(const D3DVERTEXELEMENT9* elements,
                                        IDirect3DVertexDeclaration9** declaration) {
    const ElementRows rows = {elements, elements ? CountSound(elements) : 0};
    const CallScope call("CreateVertexDeclaration", rows);
    if (!elements || !declaration)
        return D3DERR_INVALIDCALL;
    return Guarded([&]() -> HRESULT {
        auto layout = LayoutOfElements(elements);
        if (!layout)
            return D3DERR_INVALIDCALL;
        if (const HRESULT error = creationError(D3DPOOL_MANAGED); FAILED(error))
            return error;
        auto* made = new VertexDeclaration(*this, std::move(*layout));
        made->Hold();
        *declaration = made;
        return D3D_OK;
    });
}

} // namespace VornPlatform
