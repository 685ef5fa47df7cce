// SPDX-License-Identifier: MIT
//
// One playable level: the description of its entities, the live entities, and those that wait to be
// added, removed or destroyed at the end of the frame.
//
//   Vorn::Scene meadow;
//   meadow.DeserializePath("data/scene/meadow.scene");
//   Vorn::SceneManager::Instance()->SetScene(&meadow);
//
// The host owns the scene; the pools behind EntityFactory own the entities, which a scene only
// holds and hands back. docs/scene_file.md describes the file. A scene is described
// (Deserialize...), loaded (Load), running (Init, Update), and after Deinit it is described again:
// Init rebuilds the same start state.
//
// From within an entity's Update the scene is best changed through the deferred lists (`immediate`
// false). An entity added at once is updated in the same walk; one that is removed at once, also
// the one that is being updated, is not visited any more.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/scene/fwd.hpp"

#include <json/value.h>

#include <concepts>
#include <cstdint>
#include <list>
#include <string>
#include <unordered_map>
#include <vector>

namespace Vorn {

class VORN_API Scene {
public:
    Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// Describes the scene by a text; nothing is created. A text that does not parse describes an
    /// empty scene, or what was read of it. Raises DataError for a value of the wrong type; the old
    /// description then stays.
    virtual void Deserialize(const std::string& text);
    /// The same with the text of a file, whose path is kept. Raises as MemoryFromFile does for a
    /// file that cannot be read; the old description then stays.
    virtual void DeserializePath(const std::string& path);
    /// Reads the file that DeserializePath read last once more.
    virtual void Redeserialize();
    /// The description as a scene file. The running entities are not in it: call SerializeEntities
    /// first.
    virtual std::string Serialize() const;
    virtual void SerializePath(const std::string& path) const;
    /// Takes over "ResourcePack" and "Entities". When Deserialize calls it, "Entities" is moved and
    /// not copied: what `root` holds under it afterwards is null.
    virtual void DeserializeValue(const Json::Value& root);
    virtual void SerializeValue(Json::Value& root) const;
    /// Replaces the description's entities by the live ones, with all of their parameters.
    virtual void SerializeEntities();

    /// Before the first Init: loads everything that the resource pack lists, in this one call; the
    /// empty name loads nothing. Raises as RscPackManager::LoadRscPack does, and as the stores do;
    /// what was loaded before stays. Nothing of it goes when the scene does.
    virtual void Load();
    /// Creates an entity for each element of the description: fetched from the pool of its "Type"
    /// as its "Variant", overridden by the element, entered in the list. Then, when all are there,
    /// `initEntity` for each. If an element raises, its entity has gone back to the pool, and those
    /// before it stay in the list for Deinit. The text of a DataError ends with the element's index
    /// and, if the description is a file's, with that file.
    virtual void Init();
    /// `Update` of each entity in the order of the list, then the deferred requests: first those to
    /// add, then to remove, then to destroy, each list in the order of the requests. A request put
    /// on a list that is being served is served; one put on a list that was served already is
    /// dropped at the end. If an exception leaves Update, the requests that were served are off
    /// their lists, the one that raised too, and the others wait for the next Update.
    virtual void Update(float dt);
    /// `Deinit` of each entity and its way back to its pool; then the list is empty. Waiting
    /// requests stay. If an entity raises, it and those before it are out of the scene, and a
    /// further call goes on behind it.
    virtual void Deinit();
    virtual void Unload();

    /// Fetches an entity from the pool of `type` as `variant` and adds it. Without `immediate` it
    /// is not in the scene before the end of the frame. Raises as EntityFactory::FetchEntity does.
    virtual Entity* CreateEntity(const std::string& type, const std::string& variant,
                                 bool immediate);
    /// A variant by its alias.
    virtual Entity* CreateEntity(const std::string& name, bool immediate);
    /// Two texts need the third argument: the second would become the bool.
    template <std::convertible_to<const char*> Text>
    Entity* CreateEntity(const std::string& type, Text variant) = delete;
    /// Takes the entity out of the scene and hands it back to its pool.
    virtual void DestroyEntity(Entity* entity, bool immediate);
    /// At once: appends it to the list, also if it stands there already, and runs `initEntity`.
    virtual void AddEntity(Entity* entity, bool immediate);
    /// At once: takes it out of the list and runs `deinitEntity`. It does not go back to its pool.
    virtual void RemoveEntity(Entity* entity, bool immediate);
    /// The entity of that name that was added first, null if there is none. When an entity of a
    /// name leaves, the name is free, also if it was another one's.
    virtual Entity* GetEntity(const std::string& name) const;

    void ResourcePack(const std::string& name) { mResourcePack = name; }
    const std::string& ResourcePack() const { return mResourcePack; }
    /// The file that DeserializePath read last, or tried to; empty without one.
    const std::string& Path() const { return mPath; }
    const Json::Value& EntitiesValue() const { return mEntitiesValue; }
    const std::list<Entity*>& EntityList() const { return mEntityList; }

protected:
    /// Both run `Init` of the physics component, of the entity, and of the graphics component; yes,
    /// both: leaving a scene is announced like entering it.
    virtual void initEntity(Entity* entity);
    virtual void deinitEntity(Entity* entity);

public:
    /// Leaves the entities alone, whose pools may be gone: call Deinit before to hand them back.
    virtual ~Scene();

protected:
    /// Appends to the list, sets the entity's scene, enters the name unless it is taken.
    void addEntity(Entity* entity);
    /// Erases every entry of the list, clears the entity's scene, frees the name.
    void removeEntity(Entity* entity);

    /// The description's "Entities", an array or null; for derived classes that make their own.
    Json::Value mEntitiesValue;

private:
    /// Where a walk along the list stands: at the entity that it visits, or, once that one has
    /// left, at the one before it, or at the end of the list when there is none before it.
    struct Walk {
        std::list<Entity*>::iterator place;
        bool moved = false;
        Walk* outer = nullptr;

        void Move(std::list<Entity*>::iterator to) {
            place = to;
            moved = true;
        }
    };

    template <typename Visit>
    void walk(Visit visit);
    void endEntity(Entity* entity);
    void unlist(Entity* entity);
    void eraseEntry(std::list<Entity*>::iterator entry);
    void forget(std::list<Entity*>::iterator end);
    std::string describe(Json::ArrayIndex element) const;

    const std::uint64_t mSerial; // from 1; no two scenes of a process share one
    std::string mResourcePack;
    std::string mPath;
    std::string mDescribedIn; // the file that the description comes from; empty for another source
    Json::Value* mParsed =
        nullptr; // the root that Deserialize has parsed, while it calls DeserializeValue
    std::list<Entity*> mEntityList;
    Walk* mWalk = nullptr; // the innermost one that is under way
    std::unordered_map<std::string, Entity*> mEntityMap;
    std::vector<Entity*> mToAdd;
    std::vector<Entity*> mToRemove;
    std::vector<Entity*> mToDestroy;
};

} // namespace Vorn
