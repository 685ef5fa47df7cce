// SPDX-License-Identifier: MIT
#include "platform/d3d9/surface.hpp"

#include "platform/d3d9/device.hpp"

#include <utility>

namespace VornPlatform {

HRESULT Surface::GetDesc(D3DSURFACE_DESC* description) {
    const CallScope call("GetDesc");
    if (!description)
        return D3DERR_INVALIDCALL;
    *description = mDesc;
    return D3D_OK;
}

HRESULT Surface::LockRect(D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) {
    const CallScope call("LockRect", rect, flags);
    PixelMemory* memory = Memory();
    return memory ? memory->Lock(locked, rect, flags) : D3DERR_INVALIDCALL;
}

HRESULT Surface::UnlockRect() {
    const CallScope call("UnlockRect");
    PixelMemory* memory = Memory();
    const HRESULT result = memory ? memory->Unlock() : D3DERR_INVALIDCALL;
    if (SUCCEEDED(result))
        OnWritten();
    return result;
}

HRESULT Surface::GetDevice(IDirect3DDevice9** device) {
    const CallScope call("GetDevice");
    if (!device)
        return D3DERR_INVALIDCALL;
    *device = &Owner().MadeBy();
    (*device)->AddRef();
    return D3D_OK;
}

PlainSurface::PlainSurface(Device& device, Use use, const D3DSURFACE_DESC& desc,
                           std::unique_ptr<GpuTexture> gpu, std::optional<PixelMemory> memory)
    : CountedChild(device, ObjectKind::Surface,
                   desc.Pool == D3DPOOL_DEFAULT ? Resets::IsInTheWay : Resets::Survives,
                   use == Use::OfDevice ? Part::OfDevice : Part::OfHost),
      mGpu(std::move(gpu)), mMemory(std::move(memory)) {
    mDesc = desc;
}

void PlainSurface::Renew(const D3DSURFACE_DESC& desc, std::unique_ptr<GpuTexture> gpu) {
    mDesc = desc;
    mGpu = std::move(gpu);
}

} // namespace VornPlatform
