// SPDX-License-Identifier: MIT
#include "tools/view/resources.hpp"

#include "tools/view/shapes.hpp"

#include "vorn/render/graphic.hpp"
#include "vorn/resource/material_manager.hpp"
#include "vorn/resource/mesh_manager.hpp"
#include "vorn/resource/texture_manager.hpp"

#include <array>
#include <stdexcept>

namespace View {
namespace {

constexpr std::array<const char*, 3> ShapeNames = {" sphere", " cube", " plane"};

/// What a texture's name is missing from raises in the end; all else has been read by then.
void ReadMaterial(Vorn::Material& material, const std::string& text) {
    try {
        material.FromText(text);
    } catch (const std::out_of_range&) {
    }
}

} // namespace

Resources::Resources() {
    ReadMaterial(mPlain, R"({"Ambient": [0.75, 0.75, 0.75, 1], "Diffuse": [0.7, 0.7, 0.7, 1],
                             "Specular": [0.12, 0.12, 0.12, 1], "Shininess": 20})");
}

Resources::~Resources() {
    for (const auto& [path, entry] : mEntries) {
        if (entry.store == Store::Material)
            Vorn::MaterialManager::Instance()->Unload(entry.name);
        else if (entry.store == Store::Mesh)
            Vorn::MeshManager::Instance()->Unload(entry.name);
        else
            Vorn::TextureManager::Instance()->Unload(entry.name);
    }
    for (const char* name : ShapeNames)
        Vorn::MeshManager::Instance()->Unload(name);
}

Vorn::Mesh* Resources::Mesh(const std::string& name) {
    const Entry& entry = enter(Store::Mesh, "data/mesh/", name);
    return entry.loaded ? Vorn::MeshManager::Instance()->Get(name) : nullptr;
}

Vorn::Mesh* Resources::Mesh(Shape shape) {
    const char* const name = ShapeNames.at(static_cast<std::size_t>(shape));
    auto& store = *Vorn::MeshManager::Instance();
    if (Vorn::Mesh* const mesh = store.CreateMesh(name)) {
        MakeShape(shape, *mesh);
        mLoader.Reload(*mesh);
    }
    return store.Get(name);
}

Vorn::Material* Resources::Material(const std::string& name) {
    const Entry& entry = enter(Store::Material, "data/mat/", name);
    return entry.loaded ? Vorn::MaterialManager::Instance()->Get(name) : nullptr;
}

Vorn::Texture* Resources::Texture(const std::string& name) {
    enter(Store::Texture, "data/img/", name);
    return Vorn::TextureManager::Instance()->Get(name);
}

Resources::Entry& Resources::enter(Store store, const std::string& folder,
                                   const std::string& name) {
    const std::string path = folder + name;
    const auto [found, isNew] = mEntries.try_emplace(path, Entry{store, name, {}});
    Entry& entry = found->second;
    if (!isNew)
        return entry;
    // A texture is there for those who name it, whatever its file is like.
    if (store == Store::Texture)
        Vorn::TextureManager::Instance()->Load(name);
    read(path, entry);
    return entry;
}

bool Resources::read(const std::string& path, Entry& entry) {
    entry.stamp = StampOf(path);
    mProblems.erase(path);
    try {
        if (entry.store == Store::Mesh)
            readMesh(path, entry);
        else if (entry.store == Store::Material)
            readMaterial(path, entry);
        else
            readTexture(path, entry);
        entry.loaded = true;
        return true;
    } catch (const std::exception& error) {
        mProblems[path] = entry.stamp == Stamp{} ? "there is no such file" : error.what();
        return false;
    }
}

void Resources::readMesh(const std::string& path, const Entry& entry) {
    CheckModel(path);
    auto& store = *Vorn::MeshManager::Instance();
    if (!entry.loaded)
        return store.Load(entry.name);
    Vorn::Mesh& mesh = *store.Get(entry.name);
    mLoader.Release(mesh);
    mLoader.Open(path, mesh);
}

void Resources::readMaterial(const std::string& path, const Entry& entry) {
    const Json::Value root = ReadJson(path);
    const Json::Value& texture = root["Texture"];
    if (texture.isString())
        Texture(texture.asString());
    auto& store = *Vorn::MaterialManager::Instance();
    Vorn::Material fresh;
    try {
        fresh.Load(entry.name);
    } catch (const std::out_of_range&) {
        // Shown without one.
        mProblems[path] = "it names no texture";
    }
    if (!entry.loaded) {
        try {
            store.Load(entry.name);
        } catch (const std::out_of_range&) {
        }
    }
    Vorn::Material& material = *store.Get(entry.name);
    material = fresh;
    // The ramps drive the material's own colours again.
    material.AdditiveColor();
    material.ModulationColor();
}

void Resources::readTexture(const std::string& path, const Entry& entry) {
    const Vorn::Texture& texture = *Vorn::TextureManager::Instance()->Get(entry.name);
    IDirect3DTexture9*& slot = *texture.mTexture;
    if (!entry.loaded && slot)
        return;
    IDirect3DTexture9* fresh = nullptr;
    if (FAILED(D3DXCreateTextureFromFileA(Vorn::Graphic::LiveDevice(), path.c_str(), &fresh)))
        throw std::runtime_error("it is no picture that the engine reads");
    if (slot)
        slot->Release();
    slot = fresh;
}

bool Resources::Update() {
    bool changed = false;
    // By index of a copy: a material that changes may enter a texture.
    std::map<std::string, Stamp> stamps;
    for (const auto& [path, entry] : mEntries)
        stamps.emplace(path, entry.stamp);
    for (const auto& [path, stamp] : stamps)
        if (StampOf(path) != stamp) {
            read(path, mEntries.at(path));
            changed = true;
        }
    return changed;
}

} // namespace View
