// SPDX-License-Identifier: MIT
#include "dev/scene_reload.hpp"

#include "dev/entity_patch.hpp"
#include "dev/json_file.hpp"
#include "dev/resource_reload.hpp"
#include "vorn/core/data_error.hpp"
#include "vorn/core/json.hpp"
#include "vorn/render/emitter_cmpt.hpp"
#include "vorn/scene/entity.hpp"
#include "vorn/scene/entity_factory.hpp"
#include "vorn/scene/scene.hpp"
#include "vorn/scene/scene_manager.hpp"

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>
#include <vector>

namespace Vorn::Dev {

namespace {

std::string TypeOf(const Json::Value& object) {
    return JsonString(object, "Type", "");
}

// As the factory tells it: all behind the first point, or the whole name.
std::string ExtensionOf(const std::string& path) {
    const std::string name = std::filesystem::path(path).filename();
    return name.substr(name.find('.') + 1);
}

void ShowOnLiving(const std::string& type, const std::string& variant, const Json::Value& before,
                  const Json::Value& after) {
    const Scene* scene = SceneManager::Instance()->CurrentScene();
    if (!scene)
        return;
    const Json::Value patch = Difference(before, after, DefaultsOf(type, variant));
    if (patch.empty())
        return;
    const Json::Value& elements = scene->EntitiesValue();
    const std::vector<Entity*> described = EntitiesOf(*scene, elements);
    for (Entity* entity : scene->EntityList()) {
        if (entity->Type() != type || entity->Variant() != variant)
            continue;
        const auto place = std::find(described.begin(), described.end(), entity);
        const auto index = static_cast<Json::ArrayIndex>(place - described.begin());
        Apply(*entity, place == described.end() ? patch : Without(patch, elements[index]));
    }
}

/// An element of a scene file beside its old form.
struct Pair {
    const Json::Value* before = nullptr;
    Entity* entity = nullptr; // of the old one
    const Json::Value* after = nullptr;
};

std::string KindOf(const Json::Value& element) {
    return JsonString(element, "Type", "typeless") + '\n' +
           JsonString(element, "Variant", "master") + '\n' + JsonString(element, "Name", "");
}

// Of those that are alike in kind and name, equal ones belong together, and the rest in order.
std::vector<Pair> PairUp(const Json::Value& before, const std::vector<Entity*>& entities,
                         const Json::Value& after) {
    std::vector<Pair> pairs;
    std::multimap<std::string, Json::ArrayIndex> old;
    for (Json::ArrayIndex i = 0; i < before.size(); ++i)
        old.emplace(KindOf(before[i]), i);
    std::vector<const Json::Value*> rest;
    const auto pair = [&](const Json::Value& element, auto mayBe) {
        const auto [begin, end] = old.equal_range(KindOf(element));
        const auto found = std::find_if(begin, end, [&](const auto& e) { return mayBe(e.second); });
        if (found == end)
            return false;
        pairs.push_back({&before[found->second], entities[found->second], &element});
        old.erase(found);
        return true;
    };
    for (const Json::Value& element : after)
        if (!pair(element, [&](Json::ArrayIndex i) { return before[i] == element; }))
            rest.push_back(&element);
    for (const Json::Value* element : rest)
        if (!pair(*element, [](Json::ArrayIndex) { return true; }))
            pairs.push_back({nullptr, nullptr, element});
    // First, so that their names are free for others.
    for (const auto& [kind, i] : old)
        pairs.insert(pairs.begin(), {&before[i], entities[i], nullptr});
    return pairs;
}

void Create(Scene& scene, const Json::Value& element) {
    EntityFactory& factory = *EntityFactory::Instance();
    NeedResources(element);
    Entity* entity = factory.FetchEntity(JsonString(element, "Type", "typeless"),
                                         JsonString(element, "Variant", "master"));
    try {
        entity->DeserializeValue(element, false);
    } catch (...) {
        factory.ReturnEntity(entity);
        throw;
    }
    scene.AddEntity(entity, true);
    if (entity->Emitter())
        entity->Emitter()->Init();
}

void Follow(Scene& scene, const Pair& pair) {
    if (!pair.before)
        return Create(scene, *pair.after);
    if (!pair.entity)
        return; // it has gone in the course of the game
    if (!pair.after)
        return scene.DestroyEntity(pair.entity, true);
    if (*pair.before != *pair.after)
        Apply(*pair.entity, Difference(*pair.before, *pair.after,
                                       DefaultsOf(pair.entity->Type(), pair.entity->Variant())));
}

} // namespace

bool EntityFiles::Is(const std::string& path) {
    const std::string extension = ExtensionOf(path);
    return extension == "ent" || extension == "var";
}

void EntityFiles::Learn(const std::string& path) {
    try {
        mKnown[path] = ReadWhole(path);
    } catch (const std::exception&) {
        mKnown[path] = Json::Value();
    }
}

Json::Value EntityFiles::masterOf(const std::string& type) const {
    for (const auto& [path, object] : mKnown)
        if (ExtensionOf(path) == "ent" && TypeOf(object) == type)
            return object;
    return {};
}

void EntityFiles::Reload(const std::string& path) {
    const Json::Value after = ReadWhole(path);
    const std::string type = TypeOf(after), variant = JsonString(after, "Variant", "");
    const bool isMaster = ExtensionOf(path) == "ent";
    // For those, too, that are fetched later.
    NeedResources(Difference(mKnown[path], after, {}));
    if (isMaster)
        EntityFactory::Instance()->LoadEntity(path.c_str());
    else
        EntityFactory::Instance()->LoadVariant(path.c_str());
    const Json::Value before = std::exchange(mKnown[path], after);
    if (TypeOf(before) != type || JsonString(before, "Variant", "") != variant)
        return; // another template, which nothing living has
    if (isMaster)
        return reloadMaster(before, after);
    const Json::Value master = masterOf(type);
    ShowOnLiving(type, variant, Layered(master, before), Layered(master, after));
}

void EntityFiles::reloadMaster(const Json::Value& before, const Json::Value& after) {
    const std::string type = TypeOf(after);
    // A variant keeps the master that it was loaded over.
    for (const auto& [path, object] : mKnown)
        if (ExtensionOf(path) == "var" && TypeOf(object) == type)
            EntityFactory::Instance()->LoadVariant(path.c_str());
    ShowOnLiving(type, JsonString(after, "Variant", "master"), before, after);
    for (const auto& [path, object] : mKnown)
        if (ExtensionOf(path) == "var" && TypeOf(object) == type)
            ShowOnLiving(type, JsonString(object, "Variant", ""), Layered(before, object),
                         Layered(after, object));
}

void ReloadScene(Scene& scene) {
    const Json::Value root = ReadWhole(scene.Path());
    for (const Json::Value& element : JsonMember(root, "Entities"))
        if (!element.isObject())
            throw DataError("an element of \"Entities\" is no object");
    const Json::Value before = scene.EntitiesValue();
    const std::vector<Entity*> entities = EntitiesOf(scene, before);
    scene.Redeserialize();

    std::string faults;
    for (const Pair& pair : PairUp(before, entities, scene.EntitiesValue())) {
        try {
            Follow(scene, pair);
        } catch (const std::exception& error) {
            faults += (faults.empty() ? "" : "\n") + std::string(error.what());
        }
    }
    if (!faults.empty())
        throw DataError(faults);
}

} // namespace Vorn::Dev
