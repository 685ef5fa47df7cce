// SPDX-License-Identifier: MIT
#include "platform/d3d9/texture.hpp"
#include "platform/d3d9/device.hpp"
#include "platform/d3d9/guarded.hpp"

#include <utility>

namespace VornPlatform {

Texture::Texture(Device& device, Parts parts)
    : CountedChild(device, ObjectKind::Texture,
                   parts.desc.Pool == D3DPOOL_DEFAULT ? Resets::IsInTheWay : Resets::Survives),
      mParts(std::move(parts)), mLevels(mParts.levels) {
    // What nobody writes reaches the machine too, as the zeros that it is in memory.
    for (PixelMemory& memory : mParts.memory)
        memory.NoteAllWritten();
    mBehind = mParts.gpu && !mParts.memory.empty();
}

Texture::~Texture() = default;

DWORD Texture::GetLevelCount() {
    const CallScope call("GetLevelCount");
    return mParts.levels;
}

HRESULT Texture::GetLevelDesc(UINT level, D3DSURFACE_DESC* description) {
    const CallScope call("GetLevelDesc", level);
    if (level >= mParts.levels || !description)
        return D3DERR_INVALIDCALL;
    *description = levelDesc(level);
    return D3D_OK;
}

HRESULT Texture::GetSurfaceLevel(UINT level, IDirect3DSurface9** surface) {
    const CallScope call("GetSurfaceLevel", level);
    if (level >= mParts.levels || !surface)
        return D3DERR_INVALIDCALL;
    return Guarded([&] {
        *surface = &levelObject(level);
        Hold();
        return D3D_OK;
    });
}

HRESULT Texture::LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) {
    const CallScope call("LockRect", level, rect, flags);
    PixelMemory* memory = Memory(level);
    return memory ? memory->Lock(locked, rect, flags) : D3DERR_INVALIDCALL;
}

HRESULT Texture::UnlockRect(UINT level) {
    const CallScope call("UnlockRect", level);
    PixelMemory* memory = Memory(level);
    const HRESULT result = memory ? memory->Unlock() : D3DERR_INVALIDCALL;
    if (SUCCEEDED(result))
        OnWritten();
    return result;
}

PixelMemory* Texture::Memory(UINT level) {
    return level < mParts.memory.size() ? &mParts.memory[level] : nullptr;
}

void Texture::OnWritten() {
    if (!mParts.gpu)
        return;
    mBehind = true;
    mDevice.OnWritten();
}

void Texture::Upload() {
    bool any = false;
    for (UINT level = 0; level < mParts.memory.size(); ++level) {
        PixelMemory& memory = mParts.memory[level];
        if (!memory.IsWritten())
            continue;
        const RECT& rect = memory.Written();
        mParts.gpu->Write(level, rect, memory.At(rect.left, rect.top), memory.Pitch());
        memory.ForgetWritten();
        any = true;
    }
    if (any && MakesMips())
        mParts.gpu->GenerateMips();
    mBehind = false;
}

D3DSURFACE_DESC Texture::levelDesc(UINT level) const {
    D3DSURFACE_DESC desc = mParts.desc;
    desc.Width = LevelSide(desc.Width, level);
    desc.Height = LevelSide(desc.Height, level);
    return desc;
}

TextureLevel& Texture::levelObject(UINT level) {
    auto& object = mLevels[level];
    if (!object)
        object = std::make_unique<TextureLevel>(*this, level, levelDesc(level));
    return *object;
}

TextureLevel::TextureLevel(Texture& texture, UINT level, const D3DSURFACE_DESC& desc)
    : LiveObject(ObjectKind::Surface, false), mTexture(texture), mLevel(level) {
    mDesc = desc;
}

ULONG TextureLevel::AddRef() {
    const CallScope call("AddRef");
    return mTexture.Hold();
}

ULONG TextureLevel::Release() {
    const CallScope call("Release");
    return mTexture.LetGo();
}

} // namespace VornPlatform
