// SPDX-License-Identifier: MIT
//
// The surfaces: levels of textures (texture.hpp), and those here that stand for themselves: back
// buffer, depth buffers, and plain ones that only hold pixels.
#pragma once

#include "platform/d3d9/backend.hpp"
#include "platform/d3d9/child.hpp"
#include "platform/d3d9/pixel_memory.hpp"

#include <optional>

namespace VornPlatform {

class Surface : public IDirect3DSurface9 {
public:
    HRESULT GetDesc(D3DSURFACE_DESC* description) override;
    HRESULT LockRect(D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) override;
    HRESULT UnlockRect() override;
    HRESULT GetDevice(IDirect3DDevice9** device) override;

    const D3DSURFACE_DESC& Desc() const { return mDesc; }
    /// Draws may go to it, as colour.
    bool IsTarget() const { return (mDesc.Usage & D3DUSAGE_RENDERTARGET) != 0; }
    bool IsDepth() const { return (mDesc.Usage & D3DUSAGE_DEPTHSTENCIL) != 0; }

    /// What a binding keeps.
    virtual Child& Owner() = 0;
    /// Null where the pixels are in memory alone.
    virtual GpuTexture* Gpu() = 0;
    virtual UINT Level() const { return 0; }
    /// Null if the pixels cannot be locked.
    virtual PixelMemory* Memory() = 0;
    /// It is the first level of a texture with levels that are made of it.
    virtual bool MakesMips() const { return false; }

protected:
    Surface() = default;
    ~Surface() override = default;

    virtual void OnWritten() {}

    D3DSURFACE_DESC mDesc = {};
};

/// One that is no level. In the default pool it is in the way of a reset while a host holds it.
class PlainSurface final : public CountedChild<Surface> {
public:
    enum class Use { OfHost, OfDevice };

    PlainSurface(Device& device, Use use, const D3DSURFACE_DESC& desc,
                 std::unique_ptr<GpuTexture> gpu, std::optional<PixelMemory> memory);

    Child& Owner() override { return *this; }
    GpuTexture* Gpu() override { return mGpu.get(); }
    PixelMemory* Memory() override { return mMemory ? &*mMemory : nullptr; }

    /// After a reset the same object stands for other pixels.
    void Renew(const D3DSURFACE_DESC& desc, std::unique_ptr<GpuTexture> gpu);

private:
    std::unique_ptr<GpuTexture> mGpu;
    std::optional<PixelMemory> mMemory;
};

} // namespace VornPlatform
