// SPDX-License-Identifier: MIT
#include "dev/resource_reload.hpp"

#include "dev/json_file.hpp"
#include "vorn/core/json.hpp"
#include "vorn/render/graphic.hpp"
#include "vorn/render/graphics_cmpt.hpp"
#include "vorn/resource/device_object.hpp"
#include "vorn/resource/material_manager.hpp"
#include "vorn/resource/mesh_manager.hpp"
#include "vorn/resource/texture_manager.hpp"
#include "vorn/scene/entity.hpp"
#include "vorn/scene/scene.hpp"
#include "vorn/scene/scene_manager.hpp"

#include <d3dx9.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <tuple>

namespace Vorn::Dev {

namespace {

template <typename T>
T* Find(RscManager<T>& store, const std::string& name) {
    try {
        return store.Get(name);
    } catch (const std::out_of_range&) {
        return nullptr;
    }
}

template <typename T>
void Need(RscManager<T>& store, const char* folder, const std::string& name) {
    if (name.empty() || Find(store, name))
        return;
    if (!std::filesystem::is_regular_file(folder + name))
        throw std::runtime_error("there is no file " + (folder + name));
    store.Load(name);
}

void NeedTexture(const std::string& name) {
    Need(*TextureManager::Instance(), "data/img/", name);
}

void NeedMaterial(const std::string& name) {
    if (name.empty() || Find(*MaterialManager::Instance(), name))
        return;
    NeedTexture(JsonString(ReadWhole("data/mat/" + name), "Texture", ""));
    MaterialManager::Instance()->Load(name);
}

/// All but the clock, which stays so that an animation does not leap.
auto Content(Mesh& mesh) {
    return std::tie(mesh.mVertices, mesh.mIndices, mesh.mBones, mesh.mRoots, mesh.mBoneCount,
                    mesh.mDuration, mesh.mFinalTransforms, mesh.mIndexCount, mesh.mVertexCount,
                    mesh.mSkinned, mesh.mVertexBuffer, mesh.mIndexBuffer);
}

void Swap(Mesh& a, Mesh& b) {
    auto content = Content(a), other = Content(b);
    content.swap(other); // what they refer to
    if (a.mTime > a.mDuration)
        a.mTime = 0.0f;
}

void CheckIndices(const Mesh& mesh) {
    const bool good = std::all_of(mesh.mIndices, mesh.mIndices + mesh.mIndexCount,
                                  [&](unsigned int index) { return index < mesh.mVertexCount; });
    if (!good)
        throw std::runtime_error("an index points beyond the vertices");
}

/// What `old` and `material` have alike becomes as in `fresh`.
void TakeOver(Material& material, Material& old, const Material& fresh) {
    const ColorRamp additive = material.mAdditiveRamp, modulation = material.mModulationRamp;
    const unsigned int colors[] = {material.AdditiveColor(), material.ModulationColor()};
    const bool own[] = {colors[0] != old.AdditiveColor(), colors[1] != old.ModulationColor()};
    material = fresh;
    if (own[0])
        material.AdditiveColor(std::uint64_t{colors[0]});
    if (own[1])
        material.ModulationColor(std::uint64_t{colors[1]});
    // Assigning has put the targets on the colours of `fresh`, which goes.
    material.mAdditiveRamp = additive;
    material.mModulationRamp = modulation;
    if (additive.mTarget)
        material.AdditiveColor();
    if (modulation.mTarget)
        material.ModulationColor();
}

void CheckShader(const char* path, const char* entry, const char* profile) {
    ID3DXBuffer *code = nullptr, *errors = nullptr;
    const HRESULT result = D3DXCompileShaderFromFileA(path, nullptr, nullptr, entry, profile, 0,
                                                      &code, &errors, nullptr);
    std::string text = "cannot be read";
    if (errors)
        text = static_cast<const char*>(errors->GetBufferPointer());
    ReleaseObject(code);
    ReleaseObject(errors);
    if (FAILED(result))
        throw std::runtime_error(text);
}

} // namespace

bool ReloadTexture(const std::string& name) {
    const Texture* texture = Find(*TextureManager::Instance(), name);
    IDirect3DDevice9* const device = Graphic::LiveDevice();
    if (!texture || !texture->mTexture || !device)
        return false;
    IDirect3DTexture9* fresh = nullptr;
    if (FAILED(D3DXCreateTextureFromFileA(device, texture->mPath.c_str(), &fresh)))
        throw std::runtime_error("it cannot be read as a picture");
    ReleaseObject(*texture->mTexture);
    *texture->mTexture = fresh;
    return true;
}

bool ReloadMesh(const std::string& name) {
    Mesh* mesh = Find(*MeshManager::Instance(), name);
    if (!mesh)
        return false;
    ModelLoader loader;
    Mesh fresh;
    const auto release = [&loader](Mesh* spare) { loader.Release(*spare); };
    const std::unique_ptr<Mesh, decltype(release)> releaser(&fresh, release);
    loader.Open("data/mesh/" + name, fresh);
    if (!loader.Whole())
        throw std::runtime_error("the model ends early, or cannot be read");
    CheckIndices(fresh);
    Swap(*mesh, fresh);
    return true;
}

bool ReloadMaterial(const std::string& name) {
    Material* const stored = Find(*MaterialManager::Instance(), name);
    if (!stored)
        return false;
    NeedTexture(JsonString(ReadWhole("data/mat/" + name), "Texture", ""));
    Material fresh, old;
    fresh.Load(name);
    old = *stored;
    TakeOver(*stored, old, fresh);
    if (const Scene* scene = SceneManager::Instance()->CurrentScene())
        for (Entity* entity : scene->EntityList())
            if (GraphicsCmpt* graphics = entity->Graphics())
                if (graphics->GetMaterial().Path() == name)
                    TakeOver(graphics->GetMaterial(), old, fresh);
    return true;
}

void ReloadShaders() {
    if (!Graphic::LiveDevice())
        return;
    for (const char* path : {"data/shaders/twodbasicshader.fx", "data/shaders/basicshader.fx",
                             "data/shaders/vornlight.fx", "data/shaders/distortionshader.fx",
                             "data/shaders/shadow.fx"})
        CheckEffect(path);
    CheckShader("data/shaders/skel.vsh", "VertexBlend", "vs_3_0");
    CheckShader("data/shaders/skel.psh", "ps_main", "ps_3_0");
    Graphic::Instance()->InitShaders();
}

void CheckEffect(const std::string& path) {
    ID3DXEffect* effect = nullptr;
    if (!Graphic::LoadShader(path.c_str(), effect) && Graphic::LiveDevice())
        throw std::runtime_error("cannot read " + path);
    ReleaseObject(effect);
}

void NeedResources(const Json::Value& entity) {
    const Json::Value &graphics = JsonObject(entity, "GraphicsCmpt"),
                      &emitter = JsonObject(entity, "EmitterCmpt");
    Need(*MeshManager::Instance(), "data/mesh/", JsonString(graphics, "Mesh", ""));
    NeedMaterial(JsonString(graphics, "Material", ""));
    NeedTexture(JsonString(emitter, "TexturePath", ""));
}

} // namespace Vorn::Dev
