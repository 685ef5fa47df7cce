// SPDX-License-Identifier: MIT
#include "vorn/resource/rsc_pack_manager.hpp"

#include "vorn/core/data_error.hpp"
#include "vorn/core/file.hpp"
#include "vorn/core/json.hpp"
#include "vorn/resource/material_manager.hpp"
#include "vorn/resource/mesh_manager.hpp"
#include "vorn/resource/texture_manager.hpp"
#include "vorn/sound/sound_loader.hpp"

#include <utility>

namespace Vorn {

namespace {

std::vector<std::string> ReadNames(const Json::Value& root, const std::string& key) {
    std::vector<std::string> names;
    const Json::Value& list = JsonMember(root, key);
    if (!list.isArray())
        return names;
    names.reserve(list.size());
    for (Json::ArrayIndex i = 0; i < list.size(); ++i)
        ReadingIn([&key] { return '"' + key + '"'; },
                  [&] { names.push_back(JsonString(&list[i], std::to_string(i), "")); });
    return names;
}

} // namespace

RscPack* RscPackManager::LoadRscPack(const std::string& name) {
    const auto found = mPacks.find(name);
    if (found != mPacks.end())
        return &found->second;

    const std::string text = TextFromFile(name);
    std::vector<std::string> meshes, textures, materials, audio;
    ReadingIn([&name] { return name; },
              [&] {
                  const Json::Value root = ParseJson(text);
                  meshes = ReadNames(root, "Mesh");
                  textures = ReadNames(root, "Texture");
                  materials = ReadNames(root, "Material");
                  audio = ReadNames(root, "Audio");
              });
    // Filled in its place: a filled pack that goes takes the resources with it.
    RscPack& pack = mPacks[name];
    pack.mMeshes = std::move(meshes);
    pack.mTextures = std::move(textures);
    pack.mMaterials = std::move(materials);
    pack.mAudio = std::move(audio);
    return &pack;
}

void RscPackManager::UnloadRscPack(const std::string& name) {
    mPacks.erase(name);
}

RscPack* RscPackManager::Get(const std::string& name) {
    return &mPacks[name];
}

void RscPackManager::Free() {
    mPacks.clear();
}

void RscPackManager::Release() {
    MeshManager::Instance()->Release();
    TextureManager::Instance()->Release();
    MaterialManager::Instance()->Release();
    SoundLoader::Instance()->Release();
}

void RscPackManager::Reload() {
    MeshManager::Instance()->Reload();
    TextureManager::Instance()->Reload();
    MaterialManager::Instance()->Reload();
    SoundLoader::Instance()->Reload();
}

} // namespace Vorn
