// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"
#include "vorn/resource/rsc_manager.hpp"
#include "vorn/resource/texture.hpp"

namespace Vorn {

/// The images of "data/img/", as textures of the device (DDS, TGA, PNG, JPG, BMP).
class VORN_API TextureManager : public RscManager<Texture>, public Singleton<TextureManager> {
public:
    /// An image that cannot be read, or one that is loaded without a device, is entered with an
    /// empty slot, which draws as white; nothing is reported.
    void Load(const std::string& name) override;
    void Unload(const std::string& name) override;
    /// Reads all images again: nothing keeps their pixels.
    void Reload() override;
    void Release() override;
};

template <>
VORN_API TextureManager Singleton<TextureManager>::mSingleton;

} // namespace Vorn
