// SPDX-License-Identifier: MIT
//
// The one road by which entities come into being: a directory of pools.
//
//   auto* factory = Vorn::EntityFactory::Instance();
//   factory->Register("sheep", &sheepPool);
//   factory->LoadEntities("data/entity");
//   Vorn::Entity* sheep = factory->FetchEntity("sheep", "master");
//   factory->ReturnEntity(sheep);
//
// A key is the name of a type or of a variant, whose name is an alias for its type's pool; both
// share one key space, and a variant named like a type takes that key over. The factory does not
// own the pools.
//
// Every operation that looks a key up raises std::out_of_range, with the key in its text, and the
// file if there is one, when no pool is registered under it. Faults in files raise DataError or
// what the pool raises; nothing is registered under a new key then.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"
#include "vorn/scene/fwd.hpp"

#include <string>
#include <unordered_map>
#include <vector>

namespace Vorn {

class VORN_API EntityFactory : public Singleton<EntityFactory> {
public:
    /// A second registration under one key replaces the first.
    void Register(const std::string& type, EntityPoolBase* pool);

    /// Loads the files of a directory: those with the extension "ent" first, in the order of the
    /// file system, then those with "var". The extension is all that follows the first "." of a
    /// name, or the whole name without one.
    void LoadEntities(const char* directory);
    void LoadEntity(const char* path);
    void LoadVariant(const char* path);

    /// Raises DataError that names key and variant when the pool hands out null.
    Entity* FetchEntity(const std::string& type, const std::string& variant);
    /// The entity of a variant by its alias: `name` is the key and the variant.
    Entity* FetchEntity(const std::string& name) { return FetchEntity(name, name); }
    /// To the pool under the entity's `Type`.
    void ReturnEntity(Entity* entity);

    /// Appends every key, types and aliases alike, in no particular order.
    void GetEntityList(std::vector<std::string>& out) const;
    /// Does nothing.
    void Debug() {}

private:
    /// `file` is where the key stands, for the text of an error.
    EntityPoolBase& pool(const std::string& key, const char* file = nullptr) const;

    std::unordered_map<std::string, EntityPoolBase*> mPools;
};

template <>
VORN_API EntityFactory Singleton<EntityFactory>::mSingleton;

} // namespace Vorn
