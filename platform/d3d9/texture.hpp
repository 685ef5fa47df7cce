// SPDX-License-Identifier: MIT
//
// A texture, its levels, and where their pixels are: in memory where a host may lock them, and on
// the machine unless the pool is system memory. What was written goes to the machine before the
// next draw that uses it.
#pragma once

#include "platform/d3d9/surface.hpp"

#include <vector>

namespace VornPlatform {

class TextureLevel;

class Texture final : public CountedChild<IDirect3DTexture9> {
public:
    struct Parts {
        D3DSURFACE_DESC desc = {};       // of the first level
        UINT levels = 1;                 // that a host sees
        std::unique_ptr<GpuTexture> gpu; // null: in system memory alone
        std::vector<PixelMemory> memory; // a level each; none: cannot be locked
    };
    Texture(Device& device, Parts parts);
    ~Texture() override;

    DWORD GetLevelCount() override;
    HRESULT GetLevelDesc(UINT level, D3DSURFACE_DESC* description) override;
    HRESULT GetSurfaceLevel(UINT level, IDirect3DSurface9** surface) override;
    HRESULT LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) override;
    HRESULT UnlockRect(UINT level) override;

    GpuTexture* Gpu() { return mParts.gpu.get(); }
    PixelMemory* Memory(UINT level);
    bool MakesMips() const { return (mParts.desc.Usage & D3DUSAGE_AUTOGENMIPMAP) != 0; }

    /// Something was written that the machine does not have yet.
    bool IsBehind() const { return mBehind; }
    void OnWritten();
    void Upload();

private:
    D3DSURFACE_DESC levelDesc(UINT level) const;
    TextureLevel& levelObject(UINT level);

    Parts mParts;
    std::vector<std::unique_ptr<TextureLevel>> mLevels; // null before somebody asks
    bool mBehind = false;
};

/// Shares the count of its texture.
class TextureLevel final : public Surface, public LiveObject {
public:
    TextureLevel(Texture& texture, UINT level, const D3DSURFACE_DESC& desc);

    ULONG AddRef() override;
    ULONG Release() override;

    Child& Owner() override { return mTexture; }
    GpuTexture* Gpu() override { return mTexture.Gpu(); }
    UINT Level() const override { return mLevel; }
    PixelMemory* Memory() override { return mTexture.Memory(mLevel); }
    bool MakesMips() const override { return mTexture.MakesMips(); }

private:
    void OnWritten() override { mTexture.OnWritten(); }

    Texture& mTexture;
    UINT mLevel;
};

} // namespace VornPlatform
