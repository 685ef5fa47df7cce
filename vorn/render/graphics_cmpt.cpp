// SPDX-License-Identifier: MIT
#include "vorn/render/graphics_cmpt.hpp"

#include "vorn/core/json.hpp"
#include "vorn/resource/material_manager.hpp"
#include "vorn/resource/mesh_manager.hpp"

namespace Vorn {

GraphicsCmpt& GraphicsCmpt::operator=(const GraphicsCmpt& source) {
    if (this == &source)
        return *this;
    BaseCmpt::operator=(source);
    mMeshPath = source.mMeshPath;
    mMaterialName = source.mMaterialName;
    mMesh = source.mMesh;
    mMaterial = source.mMaterial;
    mDistortion = source.mDistortion;
    // The ramps would drive the colours of the source, which may die before this component.
    if (mMaterial.mAdditiveRamp.mTarget)
        mMaterial.AdditiveColor();
    if (mMaterial.mModulationRamp.mTarget)
        mMaterial.ModulationColor();
    return *this;
}

GraphicsCmpt::~GraphicsCmpt() = default;

void GraphicsCmpt::DeserializeValue(const Json::Value& value, bool master) {
    dsParam(mMeshPath, JsonString(value, "Mesh", mMeshPath), master);
    dsParam(mMaterialName, JsonString(value, "Material", mMaterialName), master);
}

void GraphicsCmpt::SerializeValue(Json::Value&, bool) const {}

void GraphicsCmpt::Init() {
    if (!mMeshPath.empty())
        mMesh = MeshManager::Instance()->Get(mMeshPath);
    if (!mMaterialName.empty())
        mMaterial = *MaterialManager::Instance()->Get(mMaterialName);
    mDistortion = false;
}

void GraphicsCmpt::Deinit() {}

void GraphicsCmpt::Conform(const BaseCmpt& source) {
    const auto& other = dynamic_cast<const GraphicsCmpt&>(source);
    mMeshPath = other.mMeshPath;
    mMaterialName = other.mMaterialName;
}

} // namespace Vorn
