// SPDX-License-Identifier: MIT
#include "vorn/scene/entity_factory.hpp"

#include "vorn/core/data_error.hpp"
#include "vorn/core/file.hpp"
#include "vorn/core/json.hpp"
#include "vorn/scene/entity.hpp"
#include "vorn/scene/entity_pool_base.hpp"

#include <cassert>
#include <stdexcept>

namespace Vorn {

namespace {

// "enemy.old.ent" has the extension "old.ent", and "ent" is its own.
std::string Extension(const std::string& name) {
    const std::size_t dot = name.find('.');
    return dot == std::string::npos ? name : name.substr(dot + 1);
}

} // namespace

void EntityFactory::Register(const std::string& type, EntityPoolBase* pool) {
    mPools[type] = pool;
}

void EntityFactory::LoadEntities(const char* directory) {
    const std::string folder = directory;
    std::vector<std::string> names;
    FilesInDirectory((folder + "/*").c_str(), names);

    // A variant needs its master to be there.
    std::vector<std::string> variants;
    for (const std::string& name : names) {
        const std::string extension = Extension(name);
        if (extension == "ent")
            LoadEntity((folder + "/" + name).c_str());
        else if (extension == "var")
            variants.push_back(name);
    }
    for (const std::string& name : variants)
        LoadVariant((folder + "/" + name).c_str());
}

void EntityFactory::LoadEntity(const char* path) {
    const std::string text = TextFromFile(path);
    ReadingIn([path] { return path; },
              [&] {
                  const Json::Value root = ParseJson(text);
                  const std::string type = JsonString(root, "Type", "");
                  const unsigned int poolSize = JsonUInt(root, "Pool", 0);
                  pool(type, path).LoadMaster(text, poolSize);
              });
}

void EntityFactory::LoadVariant(const char* path) {
    const std::string text = TextFromFile(path);
    ReadingIn([path] { return path; },
              [&] {
                  const std::string type = JsonString(ParseJson(text), "Type", "");
                  EntityPoolBase& home = pool(type, path);
                  const Entity* variant = home.LoadVariant(text);
                  if (!variant)
                      throw DataError("the pool \"" + type + "\" made no variant of the file");
                  mPools[variant->Variant()] = &home;
              });
}

Entity* EntityFactory::FetchEntity(const std::string& type, const std::string& variant) {
    Entity* entity = pool(type).Fetch(variant);
    if (!entity)
        throw DataError("the pool \"" + type + "\" has no entity \"" + variant + '"');
    return entity;
}

void EntityFactory::ReturnEntity(Entity* entity) {
    assert(entity && "an entity is returned");
    pool(entity->Type()).Return(entity);
}

void EntityFactory::GetEntityList(std::vector<std::string>& out) const {
    for (const auto& entry : mPools)
        out.push_back(entry.first);
}

EntityPoolBase& EntityFactory::pool(const std::string& key, const char* file) const {
    const auto found = mPools.find(key);
    if (found == mPools.end() || !found->second)
        throw std::out_of_range("invalid unordered_map<K, T> key: no pool is registered under \"" +
                                key + '"' + (file ? std::string(" in ") + file : ""));
    return *found->second;
}

} // namespace Vorn
