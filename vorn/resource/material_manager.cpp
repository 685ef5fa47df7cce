// SPDX-License-Identifier: MIT
#include "vorn/resource/material_manager.hpp"

namespace Vorn {

void MaterialManager::Load(const std::string& name) {
    const auto [entry, isNew] = mResources.try_emplace(name);
    if (!isNew)
        return;
    try {
        entry->second.Load(name);
    } catch (const std::out_of_range&) {
        throw;
    } catch (...) {
        mResources.erase(entry);
        throw;
    }
}

void MaterialManager::Unload(const std::string& name) {
    mResources.erase(name);
}

void MaterialManager::Reload() {}

void MaterialManager::Release() {}

} // namespace Vorn
