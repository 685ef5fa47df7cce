// SPDX-License-Identifier: MIT
#include "vorn/scene/scene.hpp"

#include "vorn/core/data_error.hpp"
#include "vorn/core/file.hpp"
#include "vorn/core/json.hpp"
#include "vorn/physics/physics_cmpt.hpp"
#include "vorn/render/graphics_cmpt.hpp"
#include "vorn/resource/rsc_pack_manager.hpp"
#include "vorn/scene/entity.hpp"
#include "vorn/scene/entity_factory.hpp"
#include "vorn/sound/sound_manager.hpp"

#include <algorithm>
#include <cassert>
#include <utility>

namespace Vorn {

namespace {

// Requests that were served are off their list when the update ends, however it ends.
class Requests {
public:
    explicit Requests(std::vector<Entity*>& list) : mList(list) {}
    Requests(const Requests&) = delete;
    Requests& operator=(const Requests&) = delete;
    ~Requests() {
        const auto served = static_cast<std::ptrdiff_t>(std::min(mServed, mList.size()));
        mList.erase(mList.begin(), mList.begin() + served);
    }

    // In order, those too that come up meanwhile.
    template <typename ServeOne>
    void Serve(ServeOne serveOne) {
        while (mServed < mList.size())
            serveOne(mList[mServed++]);
    }
    void DropLate() { mServed = mList.size(); }

private:
    std::vector<Entity*>& mList;
    std::size_t mServed = 0;
};

// Runs `last` whatever `act` raises.
template <typename Act, typename Last>
void Finally(Act act, Last last) {
    try {
        act();
    } catch (...) {
        last();
        throw;
    }
    last();
}

// Whatever the entity's last words raise, it goes back to its pool.
template <typename LastWords>
void ThenReturn(Entity* entity, LastWords lastWords) {
    Finally(lastWords, [entity] { EntityFactory::Instance()->ReturnEntity(entity); });
}

std::uint64_t NextSerial() {
    static std::uint64_t last = 0;
    return ++last;
}

void InitParts(Entity* entity) {
    if (entity->Physics())
        entity->Physics()->Init();
    entity->Init();
    if (entity->Graphics())
        entity->Graphics()->Init();
}

} // namespace

Scene::Scene() : mSerial(NextSerial()) {}

Scene::~Scene() = default;

void Scene::Deserialize(const std::string& text) {
    Json::Value root = ParseJson(text);
    mParsed = &root;
    try {
        DeserializeValue(root);
    } catch (...) {
        mParsed = nullptr;
        throw;
    }
    mParsed = nullptr;
}

void Scene::DeserializePath(const std::string& path) {
    mPath = path;
    const std::string text = TextFromFile(path);
    ReadingIn([this] { return mPath; }, [&] { Deserialize(text); });
    mDescribedIn = mPath;
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
    std::string resourcePack = JsonString(root, "ResourcePack", "");
    const Json::Value& entities = JsonMember(root, "Entities");
    if (!entities.isNull() && !entities.isArray())
        throw DataError("Type is not convertible to array: \"Entities\"");

    if (&root != mParsed) {
        mEntitiesValue = entities;
    } else {
        // The entities of a large scene take longer to copy than to parse.
        mEntitiesValue = Json::Value();
        if (root.isMember("Entities"))
            mEntitiesValue.swap((*mParsed)["Entities"]);
    }
    mResourcePack = std::move(resourcePack);
    mDescribedIn.clear();
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
    mDescribedIn.clear();
}

void Scene::Load() {
    if (mResourcePack.empty())
        return;
    RscPack* const pack = RscPackManager::Instance()->LoadRscPack(mResourcePack);
    pack->InitLoad();
    while (!pack->Load(nullptr)) {
    }
}

void Scene::Init() {
    if (mEntitiesValue.isNull())
        return;

    static constexpr JsonKeys<2> keys{"Type", "Variant"};
    EntityFactory& factory = *EntityFactory::Instance();
    mEntityMap.reserve(mEntitiesValue.size());
    for (Json::ArrayIndex i = 0; i < mEntitiesValue.size(); ++i) {
        const Json::Value& element = std::as_const(mEntitiesValue)[i];
        ReadingIn([this, i] { return describe(i); },
                  [&] {
                      const auto members = JsonMembers(element, keys);
                      const std::string type = JsonString(members[0], keys[0], "typeless");
                      const std::string variant = JsonString(members[1], keys[1], "master");
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

    Requests toAdd(mToAdd);
    Requests toRemove(mToRemove);
    Requests toDestroy(mToDestroy);
    toAdd.Serve([this](Entity* entity) { AddEntity(entity, true); });
    toRemove.Serve([this](Entity* entity) { RemoveEntity(entity, true); });
    toDestroy.Serve([this](Entity* entity) { DestroyEntity(entity, true); });
    toAdd.DropLate();
    toRemove.DropLate();
    SoundManager::Instance()->Update(dt);
}

void Scene::Deinit() {
    walk([this](Entity* entity) {
        try {
            endEntity(entity);
        } catch (...) {
            const auto last = mWalk->place;
            forget(last == mEntityList.end() ? mEntityList.begin() : std::next(last));
            throw;
        }
    });
    forget(mEntityList.end());
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
    ThenReturn(entity, [&] { deinitEntity(entity); });
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
    if (place.scene == Entity::Place::Nowhere)
        place = {mSerial, entry};
    else
        place.scene = Entity::Place::Unknown;
    entity->mScene = this;
    mEntityMap.try_emplace(entity->mName, entity);
}

void Scene::removeEntity(Entity* entity) {
    if (entity->mPlace.scene == mSerial) {
        eraseEntry(entity->mPlace.entry);
    } else {
        for (auto entry = mEntityList.begin(); entry != mEntityList.end();) {
            const auto here = entry++;
            if (*here == entity)
                eraseEntry(here);
        }
    }
    unlist(entity);
    entity->mScene = nullptr;
    mEntityMap.erase(entity->mName);
}

void Scene::endEntity(Entity* entity) {
    ThenReturn(entity, [this, entity] {
        unlist(entity);
        Finally([entity] { entity->Deinit(); },
                [this, entity] {
                    if (entity->mScene == this)
                        entity->mScene = nullptr;
                });
    });
}

void Scene::unlist(Entity* entity) {
    if (entity->mPlace.scene == mSerial)
        entity->mPlace = {};
}

// Visits the entities in the order of the list, those too that are appended meanwhile. An entity
// may leave the list, and the list may be emptied, during the visit. The place is kept in a local,
// and read back only when it has moved: through the record alone each step along the list would
// wait for the one before it to be stored.
template <typename Visit>
void Scene::walk(Visit visit) {
    struct Entered : Walk {
        Scene& scene;
        explicit Entered(Scene& s) : scene(s) { outer = std::exchange(scene.mWalk, this); }
        Entered(const Entered&) = delete;
        Entered& operator=(const Entered&) = delete;
        ~Entered() { scene.mWalk = outer; }
    } walk(*this);

    auto next = mEntityList.begin();
    while (next != mEntityList.end()) {
        walk.place = next;
        visit(*next);
        if (walk.moved) {
            walk.moved = false;
            next = walk.place == mEntityList.end() ? mEntityList.begin() : std::next(walk.place);
        } else {
            ++next;
        }
    }
}

void Scene::eraseEntry(std::list<Entity*>::iterator entry) {
    for (Walk* walk = mWalk; walk; walk = walk->outer)
        if (walk->place == entry)
            walk->Move(entry == mEntityList.begin() ? mEntityList.end() : std::prev(entry));
    mEntityList.erase(entry);
}

void Scene::forget(std::list<Entity*>::iterator end) {
    mEntityList.erase(mEntityList.begin(), end);
    for (Walk* walk = mWalk; walk; walk = walk->outer)
        walk->Move(mEntityList.end());
    mEntityMap.clear();
    for (Entity* entity : mEntityList)
        mEntityMap.try_emplace(entity->mName, entity);
}

std::string Scene::describe(Json::ArrayIndex element) const {
    std::string place = "Entities[" + std::to_string(element) + ']';
    return mDescribedIn.empty() ? place : place + " in " + mDescribedIn;
}

} // namespace Vorn
