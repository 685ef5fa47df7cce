// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"
#include "vorn/resource/mesh.hpp"
#include "vorn/resource/model_loader.hpp"
#include "vorn/resource/rsc_manager.hpp"

namespace Vorn {

/// The models of "data/mesh/", and those that a game makes itself.
class VORN_API MeshManager : public RscManager<Mesh>, public Singleton<MeshManager> {
public:
    /// Reads a model file and writes "Loaded ", the name and a line end to standard output. A file
    /// that cannot be opened gives an empty mesh and the same line.
    void Load(const std::string& name) override;
    void Unload(const std::string& name) override;
    /// From memory: no file is read.
    void Reload() override;
    void Release() override;
    /// An empty mesh for the caller to fill, and the same line; null if the name is taken. Reload
    /// brings it to the device, with all others.
    Mesh* CreateMesh(const std::string& name);

private:
    ModelLoader mLoader;
};

template <>
VORN_API MeshManager Singleton<MeshManager>::mSingleton;

} // namespace Vorn
