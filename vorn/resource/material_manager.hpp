// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"
#include "vorn/resource/material.hpp"
#include "vorn/resource/rsc_manager.hpp"

namespace Vorn {

/// The materials of "data/mat/". Their textures are loaded before them.
class VORN_API MaterialManager : public RscManager<Material>, public Singleton<MaterialManager> {
public:
    /// Raises as Material::Load does. A material whose texture is not there stays in the store,
    /// with no texture; after another exception the name is free.
    void Load(const std::string& name) override;
    void Unload(const std::string& name) override;
    /// Nothing: a material points at a Texture, which stays.
    void Reload() override;
    void Release() override;
};

template <>
VORN_API MaterialManager Singleton<MaterialManager>::mSingleton;

} // namespace Vorn
