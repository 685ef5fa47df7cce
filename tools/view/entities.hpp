// SPDX-License-Identifier: MIT
//
// The entities of any game, without its code: each type that has an entity file becomes a plain
// entity, with whatever mesh, body and emitter its files give it. Keys of the game's own classes
// are passed over.
#pragma once

#include "tools/view/subject.hpp"

#include "vorn/scene/entity.hpp"
#include "vorn/scene/entity_pool.hpp"

#include <json/value.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace View {

struct EntityFile {
    std::filesystem::path path;
    std::string type, variant; // "master" for the type itself
    Json::Value root;
};

/// `over` laid over `base`, objects key by key.
Json::Value Layered(Json::Value base, const Json::Value& over);

class EntityTypes {
public:
    /// Reads all files of the folders. One that is broken is noted, and the type is there without.
    explicit EntityTypes(const std::vector<std::filesystem::path>& folders);

    /// What the files say of a variant, without the code's defaults; null for no such type.
    Json::Value Merged(const std::string& type, const std::string& variant) const;
    bool Knows(const std::string& type, const std::string& variant) const;
    const std::vector<EntityFile>& Files() const { return mFiles; }
    const Problems& Faults() const { return mProblems; }
    /// The material that entities wear with that mesh; empty if there is none.
    std::string MaterialWith(const std::string& mesh) const;

    /// With the factory, in place of what was registered there. A type without a file is made.
    void Register();
    void Make(const std::string& type);
    /// Raises DataError where the values do not fit.
    Vorn::Entity* Fetch(const std::string& type, const std::string& variant);

private:
    std::vector<EntityFile> mFiles;
    std::map<std::string, std::unique_ptr<Vorn::EntityPool<Vorn::Entity>>> mPools;
    Problems mProblems;
};

/// The tables of bodies know every name that the value has in a body, as they know those of the
/// game's physics info file.
void LearnPhysicsNames(const Stage& stage);
void LearnPhysicsNames(const Json::Value& entity);

/// An entity with what it wears, which stays good while files are edited.
struct Dressed {
    Vorn::Entity* entity = nullptr;
    Vorn::Mesh* mesh = nullptr;
    Vorn::Material* material = nullptr;
    bool wasFlat = false; // its orientation was 0 0 0, in which nothing is seen
};
/// `values` are the entity's by its files. Readies its emitter too.
Dressed Dress(Vorn::Entity& entity, const Json::Value& values, Resources& resources);
/// Its particles are gone, and its life is as it was.
void StartEmitter(Vorn::EmitterCmpt& emitter);
std::vector<Part> PartsOf(const std::vector<Dressed>& dressed);
/// The body of an entity; the mesh's bounds where it has none.
void AddVolume(const Dressed& dressed, Lines& lines);
void DescribeEmitter(const Vorn::Entity& entity, Numbers& numbers);

} // namespace View
