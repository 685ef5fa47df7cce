// SPDX-License-Identifier: MIT
//
// Gives an entity something to draw: a mesh, and a material of its own.
//
//   "GraphicsCmpt": {"Mesh": "balloon.mesh", "Material": "balloon.json"}
//
//   GraphicsCmpt& graphics = *entity->Graphics();              // after Init
//   graphics.GetMaterial().ModulationColor(0xFFFF8080);        // this balloon only
//
// Mesh and texture belong to their stores and are good for as long as their pack is loaded; a reset
// of the device changes neither.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/render/fwd.hpp"
#include "vorn/resource/material.hpp"
#include "vorn/scene/base_cmpt.hpp"
#include "vorn/scene/cmpt_list.hpp"

#include <json/value.h>

#include <string>

namespace Vorn {

class VORN_API GraphicsCmpt : public BaseCmpt {
public:
    using BaseCmpt::BaseCmpt;
    GraphicsCmpt(const GraphicsCmpt&) = default;
    GraphicsCmpt& operator=(const GraphicsCmpt& source);
    ~GraphicsCmpt() override;

    /// "Mesh" and "Material": names in their stores.
    void DeserializeValue(const Json::Value& value, bool master) override;
    /// Writes nothing.
    void SerializeValue(Json::Value& out, bool master) const override;
    /// Takes the mesh from its store and a copy of the material from its own; an empty name leaves
    /// what is there. Clears Distortion. Raises std::out_of_range, "invalid map<K, T> key", for a
    /// name that is not in the store.
    void Init() override;
    void Deinit() override;
    /// Takes over the two names.
    void Conform(const BaseCmpt& source) override;

    Mesh* GetMesh() const { return mMesh; }
    void SetMesh(Mesh* mesh) { mMesh = mesh; }
    /// The mesh is that of before until the next Init.
    void SetMeshPath(const std::string& name) { mMeshPath = name; }
    Material& GetMaterial() { return mMaterial; }
    /// Whether GraphicsSystem::BeamEffects draws it, unlit or with its bones, and not Update. To be
    /// set after Init.
    bool Distortion() const { return mDistortion; }
    void Distortion(bool distortion) { mDistortion = distortion; }

private:
    friend class CmptList<GraphicsCmpt>;
    friend class Registration<GraphicsCmpt>;

    std::string mMeshPath;
    std::string mMaterialName;
    Mesh* mMesh = nullptr;
    Material mMaterial;
    bool mDistortion = false;
    Registration<GraphicsCmpt> mRegistration;
};

} // namespace Vorn
