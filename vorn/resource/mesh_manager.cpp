// SPDX-License-Identifier: MIT
#include "vorn/resource/mesh_manager.hpp"

#include <iostream>

namespace Vorn {

void MeshManager::Load(const std::string& name) {
    const auto [entry, isNew] = mResources.try_emplace(name);
    if (!isNew)
        return;
    try {
        mLoader.Open("data/mesh/" + name, entry->second);
    } catch (...) {
        mLoader.Release(entry->second);
        mResources.erase(entry);
        throw;
    }
    std::cout << "Loaded " << name << '\n';
}

void MeshManager::Unload(const std::string& name) {
    const auto found = mResources.find(name);
    if (found == mResources.end())
        return;
    mLoader.Release(found->second);
    mResources.erase(found);
}

void MeshManager::Reload() {
    // What was not released before does no harm.
    Release();
    for (auto& [name, mesh] : mResources)
        mLoader.Reload(mesh);
}

void MeshManager::Release() {
    for (auto& [name, mesh] : mResources)
        mLoader.Release(mesh);
}

Mesh* MeshManager::CreateMesh(const std::string& name) {
    const auto [entry, isNew] = mResources.try_emplace(name);
    if (!isNew)
        return nullptr;
    std::cout << "Loaded " << name << '\n';
    return &entry->second;
}

} // namespace Vorn
