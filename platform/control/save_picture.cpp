// SPDX-License-Identifier: MIT
#include "platform/control/vorn_picture.hpp"

#include <d3dx9.h>

#include <stdexcept>

namespace VornPlatform {

void SavePicture(IDirect3DDevice9* device, const std::string& path) {
    IDirect3DSurface9* surface = nullptr;
    if (device)
        device->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, &surface);
    SaveAndRelease(surface, path);
}

void SaveAndRelease(IDirect3DSurface9* surface, const std::string& path) {
    const HRESULT result =
        D3DXSaveSurfaceToFileA(path.c_str(), D3DXIFF_PNG, surface, nullptr, nullptr);
    if (surface)
        surface->Release();
    if (FAILED(result))
        throw std::runtime_error("cannot write " + path);
}

} // namespace VornPlatform
