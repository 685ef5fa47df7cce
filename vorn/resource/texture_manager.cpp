// SPDX-License-Identifier: MIT
#include "vorn/resource/texture_manager.hpp"

#include "vorn/render/graphic.hpp"
#include "vorn/resource/device_object.hpp"

#include <d3dx9.h>

namespace Vorn {

namespace {

void ReadImage(Texture& texture) {
    ReleaseObject(*texture.mTexture);
    IDirect3DDevice9* const device = Graphic::LiveDevice();
    if (device &&
        FAILED(D3DXCreateTextureFromFileA(device, texture.mPath.c_str(), texture.mTexture)))
        *texture.mTexture = nullptr;
}

} // namespace

void TextureManager::Load(const std::string& name) {
    const auto [entry, isNew] = mResources.try_emplace(name);
    if (!isNew)
        return;
    try {
        Texture& texture = entry->second;
        texture.mPath = "data/img/" + name;
        texture.mTexture = new IDirect3DTexture9*(nullptr);
        ReadImage(texture);
    } catch (...) {
        mResources.erase(entry);
        throw;
    }
}

void TextureManager::Unload(const std::string& name) {
    mResources.erase(name);
}

void TextureManager::Reload() {
    for (auto& [name, texture] : mResources)
        if (texture.mTexture)
            ReadImage(texture);
}

void TextureManager::Release() {
    for (auto& [name, texture] : mResources)
        if (texture.mTexture)
            ReleaseObject(*texture.mTexture);
}

} // namespace Vorn
