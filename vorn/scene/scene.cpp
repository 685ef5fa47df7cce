// SPDX-License-Identifier: MIT
#include "vorn/scene/scene.hpp"

#include "vorn/core/data_error.hpp"
#include "vorn/core/file.hpp"
#include "vorn/core/json.hpp"
#include "vorn/physics/physics_cmpt.hpp"
#include "vorn/render/graphics_cmpt.hpp"
#include "vorn/scene/entity.hpp"
#include "vorn/scene/entity_factory.hpp"

#include <algorithm>
#include <cassert>
#include <typeinfo>
#include <utility>

namespace Vorn {

namespace {

// Serves the requests in order, those too that come up meanwhile.
template <typename Serve>
void ServeRequests(std::vector<Entity*>& requests, Serve serve) {
    std::size_t served = 0;
    try {
        while (served < requests.size())
            serve(requests[served++]);
    } catch (...) {
        requests.erase(requests.begin(), requests.begin() + static_cast<std::ptrdiff_t>(served));
        throw;
    }
}

void InitParts(Entity* entity) {
    if (entity->Physics())
        entity->Physics()->Init();
    entity->Init();
    if (entity->Graphics())
        entity->Graphics()->Init();
}

} // namespace

Scene::Scene() : mNext(mEntityList.end()) {}

Scene::~Scene() = default;

void Scene::Deserialize(const std::string& text) {
    Json::Value root = ParseJson(text);
    if (typeid(*this) != typeid(Scene)) {
        // A derived class may look at the value after it has called the operation of this one.
        DeserializeValue(root);
        return;
    }
    mResourcePack = JsonString(root, "ResourcePack", "");
    mEntitiesValue = Json::Value();
    if (!root.isNull())
        mEntitiesValue.swap(root["Entities"]);
}

void Scene::DeserializePath(const std::string& path) {
    mPath = path;
    const std::string text = TextFromFile(path);
    ReadingIn([&path] { return path; }, [&] { Deserialize(text); });
}

void Scene::Redeserialize() {
    DeserializePath(std::string(mPath));
}

std::string Scene::Serialize() const {
    Json::Value root;
    SerializeValue(root);
    return WriteJson(root);
}

void Scene::SerializePath(const std::string& path) const {
    const std::string text = Serialize();
    SaveToFile(path, text.data(), static_cast<unsigned int>(text.size()));
}

void Scene::DeserializeValue(const Json::Value& root) {
    mResourcePack = JsonString(root, "ResourcePack", "");
    mEntitiesValue = JsonMember(root, "Entities");
}

void Scene::SerializeValue(Json::Value& root) const {
    root["ResourcePack"] = mResourcePack;
    root["Entities"] = mEntitiesValue;
}

void Scene::SerializeEntities() {
    Json::Value entities(Json::arrayValue);
    for (const Entity* entity : mEntityList) {
        Json::Value item;
        entity->SerializeValue(item, true);
        entities.append(std::move(item));
    }
    mEntitiesValue = std::move(entities);
}

void Scene::Load() {}

void Scene::Init() {
    if (mEntitiesValue.isNull())
        return;
    if (!mEntitiesValue.isArray())
        throw DataError("Type is not convertible to array: \"Entities\" in " + mPath);

    EntityFactory& factory = *EntityFactory::Instance();
    for (Json::ArrayIndex i = 0; i < mEntitiesValue.size(); ++i) {
        const Json::Value& element = std::as_const(mEntitiesValue)[i];
        ReadingIn([this, i] { return describe(i); }, [&] {
            const std::string type = JsonString(element, "Type", "typeless");
            const std::string variant = JsonString(element, "Variant", "master");
            Entity* entity = factory.FetchEntity(type, variant);
            try {
                entity->DeserializeValue(element, false);
            } catch (...) {
                factory.ReturnEntity(entity);
                throw;
            }
            addEntity(entity);
        });
    }
    walk([this](Entity* entity) { initEntity(entity); });
}

void Scene::Update(float dt) {
    walk([dt](Entity* entity) { entity->Update(dt); });

    ServeRequests(mToAdd, [this](Entity* entity) { AddEntity(entity, true); });
    ServeRequests(mToRemove, [this](Entity* entity) { RemoveEntity(entity, true); });
    ServeRequests(mToDestroy, [this](Entity* entity) { DestroyEntity(entity, true); });
    mToAdd.clear();
    mToRemove.clear();
    mToDestroy.clear();
}

void Scene::Deinit() {
    const auto clear = [this](std::list<Entity*>::iterator end) {
        mEntityList.erase(mEntityList.begin(), end);
        mEntityMap.clear();
        for (Entity* entity : mEntityList)
            mEntityMap.try_emplace(entity->mName, entity);
        mNext = mEntityList.end();
    };
    try {
        walk([this](Entity* entity) {
            entity->Deinit();
            leave(entity);
            EntityFactory::Instance()->ReturnEntity(entity);
        });
    } catch (...) {
        clear(mNext);
        throw;
    }
    clear(mEntityList.end());
}

void Scene::Unload() {}

Entity* Scene::CreateEntity(const std::string& type, const std::string& variant, bool immediate) {
    Entity* entity = EntityFactory::Instance()->FetchEntity(type, variant);
    AddEntity(entity, immediate);
    return entity;
}

Entity* Scene::CreateEntity(const std::string& name, bool immediate) {
    return CreateEntity(name, name, immediate);
}

void Scene::DestroyEntity(Entity* entity, bool immediate) {
    assert(entity && "an entity is destroyed");
    if (!immediate) {
        mToDestroy.push_back(entity);
        return;
    }
    removeEntity(entity);
    deinitEntity(entity);
    EntityFactory::Instance()->ReturnEntity(entity);
}

void Scene::AddEntity(Entity* entity, bool immediate) {
    assert(entity && "an entity is added");
    if (!immediate) {
        mToAdd.push_back(entity);
        return;
    }
    addEntity(entity);
    initEntity(entity);
}

void Scene::RemoveEntity(Entity* entity, bool immediate) {
    assert(entity && "an entity is removed");
    if (!immediate) {
        mToRemove.push_back(entity);
        return;
    }
    removeEntity(entity);
    deinitEntity(entity);
}

Entity* Scene::GetEntity(const std::string& name) const {
    const auto found = mEntityMap.find(name);
    return found == mEntityMap.end() ? nullptr : found->second;
}

void Scene::initEntity(Entity* entity) {
    InitParts(entity);
}

void Scene::deinitEntity(Entity* entity) {
    InitParts(entity);
}

void Scene::addEntity(Entity* entity) {
    const auto entry = mEntityList.insert(mEntityList.end(), entity);
    Entity::Place& place = entity->mPlace;
    if (place.times == 0)
        place = {this, entry, 1};
    else if (place.scene == this && place.times != Entity::Place::Unknown)
        ++place.times;
    else
        place.times = Entity::Place::Unknown;
    entity->mScene = this;
    mEntityMap.try_emplace(entity->mName, entity);
}

void Scene::removeEntity(Entity* entity) {
    const Entity::Place& place = entity->mPlace;
    if (place.times == 1 && place.scene == this) {
        eraseEntry(place.entry);
    } else if (place.times != 0) {
        for (auto entry = mEntityList.begin(); entry != mEntityList.end();) {
            const auto here = entry++;
            if (*here == entity)
                eraseEntry(here);
        }
    }
    leave(entity);
    mEntityMap.erase(entity->mName);
}

void Scene::leave(Entity* entity) {
    Entity::Place& place = entity->mPlace;
    if (place.scene == this && place.times != Entity::Place::Unknown)
        place = {};
    entity->mScene = nullptr;
}

// Visits the entities in the order of the list, those too that are appended meanwhile. An entity may leave the list,
// and the list may be emptied, during the visit.
template <typename Visit>
void Scene::walk(Visit visit) {
    mNext = mEntityList.begin();
    while (mNext != mEntityList.end()) {
        Entity* entity = *mNext++;
        visit(entity);
    }
}

void Scene::eraseEntry(std::list<Entity*>::iterator entry) {
    if (entry == mNext)
        ++mNext;
    mEntityList.erase(entry);
}

std::string Scene::describe(Json::ArrayIndex element) const {
    std::string place = "Entities[" + std::to_string(element) + ']';
    return mPath.empty() ? place : place + " in " + mPath;
}

} // namespace Vorn
