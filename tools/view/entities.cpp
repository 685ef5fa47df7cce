// SPDX-License-Identifier: MIT
#include "tools/view/entities.hpp"

#include "tools/view/pose.hpp"

#include "vorn/core/json.hpp"
#include "vorn/physics/physics_cmpt.hpp"
#include "vorn/physics/physics_system.hpp"
#include "vorn/render/emitter_cmpt.hpp"
#include "vorn/scene/entity_factory.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>

namespace View {
namespace {

namespace fs = std::filesystem;
using Vorn::Vector3;

constexpr std::uint32_t BodyColor = 0xFFE06CD8u;

/// Empty for anything but a text.
std::string TextOf(const Json::Value& object, const char* key) {
    const Json::Value& value = object.isObject() ? object[key] : Json::Value::nullSingleton();
    return value.isString() ? value.asString() : std::string();
}

void ReadFolder(const fs::path& folder, std::vector<EntityFile>& files, Problems& problems) {
    std::error_code none;
    std::vector<fs::path> paths;
    for (fs::directory_iterator entry(folder, none), end; !none && entry != end;
         entry.increment(none))
        if (entry->path().extension() == ".ent" || entry->path().extension() == ".var")
            paths.push_back(entry->path());
    std::sort(paths.begin(), paths.end());
    for (const fs::path& path : paths)
        try {
            EntityFile file{path, {}, "master", ReadJson(path)};
            file.type = Vorn::JsonString(file.root, "Type", "");
            if (path.extension() == ".var")
                file.variant = Vorn::JsonString(file.root, "Variant", "");
            files.push_back(std::move(file));
        } catch (const std::exception& error) {
            problems[path.string()] = error.what();
        }
}

} // namespace

Json::Value Layered(Json::Value base, const Json::Value& over) {
    if (!base.isObject() || !over.isObject())
        return over.isNull() ? base : over;
    for (const std::string& key : over.getMemberNames())
        base[key] = Layered(base[key], over[key]);
    return base;
}

EntityTypes::EntityTypes(const std::vector<fs::path>& folders) {
    for (const fs::path& folder : folders)
        ReadFolder(folder, mFiles, mProblems);
    // Nearer folders come first, and the first file of a type counts.
    for (const char* extension : {".ent", ".var"})
        for (const EntityFile& file : mFiles) {
            if (file.path.extension() != extension)
                continue;
            LearnPhysicsNames(file.root);
            const bool isNew = extension == std::string(".ent") && !mPools.contains(file.type);
            try {
                auto& pool = mPools[file.type];
                if (!pool)
                    pool = std::make_unique<Vorn::EntityPool<Vorn::Entity>>();
                const std::string text = Vorn::WriteJson(file.root);
                if (isNew)
                    pool->LoadMaster(text, 0);
                else if (extension == std::string(".var"))
                    pool->LoadVariant(text);
            } catch (const std::exception& error) {
                mProblems[file.path.string()] = error.what();
            }
        }
}

Json::Value EntityTypes::Merged(const std::string& type, const std::string& variant) const {
    Json::Value merged;
    for (const std::string& layer : {std::string("master"), variant}) {
        const auto found = std::find_if(mFiles.begin(), mFiles.end(), [&](const EntityFile& file) {
            return file.type == type && file.variant == layer;
        });
        if (found != mFiles.end())
            merged = Layered(merged, found->root);
        if (variant == "master")
            break;
    }
    return merged;
}

bool EntityTypes::Knows(const std::string& type, const std::string& variant) const {
    return std::any_of(mFiles.begin(), mFiles.end(), [&](const EntityFile& file) {
        return file.type == type && file.variant == variant;
    });
}

std::string EntityTypes::MaterialWith(const std::string& mesh) const {
    for (const EntityFile& file : mFiles) {
        const Json::Value merged = Merged(file.type, file.variant);
        const Json::Value& graphics = merged["GraphicsCmpt"];
        if (TextOf(graphics, "Mesh") == mesh)
            return TextOf(graphics, "Material");
    }
    return {};
}

void EntityTypes::Register() {
    for (const auto& [type, pool] : mPools)
        Vorn::EntityFactory::Instance()->Register(type, pool.get());
}

void EntityTypes::Make(const std::string& type) {
    auto& pool = mPools[type];
    if (!pool)
        pool = std::make_unique<Vorn::EntityPool<Vorn::Entity>>();
    Json::Value root;
    root["Type"] = type;
    pool->LoadMaster(Vorn::WriteJson(root), 0);
}

Vorn::Entity* EntityTypes::Fetch(const std::string& type, const std::string& variant) {
    const auto found = mPools.find(type);
    return found == mPools.end() ? nullptr : found->second->Fetch(variant);
}

void LearnPhysicsNames(const Stage& stage) {
    auto& physics = *Vorn::PhysicsSystem::Instance();
    std::error_code none;
    for (fs::directory_iterator entry(stage.Root() / "data", none), end; !none && entry != end;
         entry.increment(none))
        if (entry->path().extension() == ".json")
            try {
                const Json::Value root = ReadJson(entry->path());
                if (root["Category"].isArray() && root["Volume"].isArray())
                    physics.LoadPhysicsInfo(entry->path().string());
            } catch (const std::exception&) {
                // Not ours to judge: bodies learn the names that they use.
            }
    // Bits do not matter where nothing collides.
    for (const char* name : {"NONE", "ALL"})
        physics.AddCategory(name, 0);
    physics.AddVolume("NONE", 0);
    physics.AddVolume("Box", Vorn::BoxVolume);
    physics.AddVolume("Sphere", Vorn::SphereVolume);
}

void LearnPhysicsNames(const Json::Value& entity) {
    if (!entity.isObject() || !entity["PhysicsCmpt"].isObject())
        return;
    auto& physics = *Vorn::PhysicsSystem::Instance();
    const Json::Value& body = entity["PhysicsCmpt"];
    std::istringstream names(TextOf(body, "Category") + ' ' + TextOf(body, "Mask"));
    for (std::string word; names >> word;)
        if (word != "+" && word != "-")
            physics.AddCategory(word, 0);
    if (const std::string volume = TextOf(body, "Type"); !volume.empty())
        physics.AddVolume(volume, Vorn::BoxVolume);
}

Dressed Dress(Vorn::Entity& entity, const Json::Value& values, Resources& resources) {
    Dressed dressed{&entity, nullptr, nullptr, entity.Orientation() == Vector3()};
    if (dressed.wasFlat)
        entity.Orientation(0, 0, 1);
    if (values.isObject() && entity.Graphics()) {
        const std::string mesh = TextOf(values["GraphicsCmpt"], "Mesh");
        const std::string material = TextOf(values["GraphicsCmpt"], "Material");
        dressed.mesh = mesh.empty() ? nullptr : resources.Mesh(mesh);
        dressed.material = material.empty() ? nullptr : resources.Material(material);
        if (!dressed.material)
            dressed.material = &resources.Plain();
    }
    if (values.isObject() && entity.Emitter()) {
        const std::string texture = TextOf(values["EmitterCmpt"], "TexturePath");
        if (!texture.empty()) {
            resources.Texture(texture);
            StartEmitter(*entity.Emitter());
        }
    }
    return dressed;
}

void StartEmitter(Vorn::EmitterCmpt& emitter) {
    emitter.Init();
    emitter.SetEmitterLifeSpan(1.0f);
}

std::vector<Part> PartsOf(const std::vector<Dressed>& dressed) {
    std::vector<Part> parts;
    for (const Dressed& one : dressed)
        if (one.mesh)
            parts.push_back({one.mesh, one.material, one.entity->GetWorld(), one.entity->Type()});
    return parts;
}

void AddVolume(const Dressed& dressed, Lines& lines) {
    const Vorn::PhysicsCmpt* const body = dressed.entity->Physics();
    if (body && body->VolumeType() == Vorn::SphereVolume) {
        const Vorn::Sphere sphere = body->BoundingSphere();
        lines.Sphere(sphere.center, sphere.radius, BodyColor);
    } else if (body) {
        lines.Box(body->BoundingOBB(), BodyColor);
    } else if (dressed.mesh) {
        lines.Box(dressed.entity->GetWorld(), BoundsOf(*dressed.mesh, false), 0x60FFFFFFu);
    }
}

void DescribeEmitter(const Vorn::Entity& entity, Numbers& numbers) {
    const Vorn::EmitterCmpt* const emitter = entity.Emitter();
    if (!emitter)
        return;
    const auto living =
        std::count_if(emitter->mParticles.begin(), emitter->mParticles.end(),
                      [](const Vorn::Particle& particle) { return particle.alive; });
    numbers.emplace_back("Particles", fmt::format("{} of {}", living, emitter->mParticles.size()));
}

} // namespace View
