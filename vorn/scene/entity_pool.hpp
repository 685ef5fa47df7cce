// SPDX-License-Identifier: MIT
//
// The pool that most hosts need: it hands out entities of one class, derived from Entity and
// default-constructible.
//
//   Vorn::EntityPool<Sheep> pool;
//   Vorn::EntityFactory::Instance()->Register("sheep", &pool);
//
// An entity that is out is alive and its components are registered with their systems, those that a
// scene object adds later too. One that is idle is neither, and waits under the template that it
// was handed out as: once a template has been fetched as often as the game will have it out at one
// time, Fetch and Return allocate nothing, unless a scene object gave an entity a component that
// its template lacks.
//
// The pool owns its entities and templates and frees them when it dies, those that are out too: it
// lives longer than the scenes that hold them.
#pragma once

#include "vorn/core/data_error.hpp"
#include "vorn/core/json.hpp"
#include "vorn/scene/entity.hpp"
#include "vorn/scene/entity_pool_base.hpp"

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace Vorn {

template <typename T>
class EntityPool : public EntityPoolBase {
    static_assert(std::is_base_of_v<Entity, T>, "EntityPool<T> pools a class derived from Entity");

public:
    /// However many entities a file asks for, no more are made ahead; the pool grows when they are
    /// out.
    static constexpr std::size_t MaxPreallocated = 1u << 18;

    EntityPool() = default;
    EntityPool(const EntityPool&) = delete;
    EntityPool& operator=(const EntityPool&) = delete;
    ~EntityPool() override;

    /// A second master replaces the first; variants keep what they were loaded with, and entities
    /// that are out keep their values. If the text raises, nothing has changed.
    void LoadMaster(const std::string& text, unsigned int poolSize) override;
    /// An idle entity of the template; else one that is idle as master; else a new one.
    Entity* Fetch(const std::string& variant) override;
    /// An entity that is not out is passed over: two requests of one frame may destroy the same
    /// one. Raises std::invalid_argument for an entity of another pool.
    void Return(Entity* entity) override;
    /// The variant's values are laid over the master's. A second variant of a name replaces the
    /// first. Raises DataError for a variant without a name of its own; if the text raises, nothing
    /// has changed.
    Entity* LoadVariant(const std::string& text) override;

    /// Entities made so far, and how many of them are idle.
    std::size_t Size() const { return mSize; }
    std::size_t Idle() const { return mIdle; }

private:
    struct Template;

    // What an update touches stands at the start of an entity, and there within one line of the
    // cache.
    struct alignas(64) Pooled final : T {
        EntityPool* pool = nullptr;
        Template* home = nullptr; // while out: the template that it was fetched as
        Pooled* next = nullptr;   // while idle: the next one below
    };

    struct Template {
        std::unique_ptr<T> prototype;
        Pooled* idle = nullptr; // a stack
    };

    using Templates = std::map<std::string, Template, std::less<>>;

    Pooled* takeIdle(Template& from);
    void putIdle(Template& to, Pooled* entity);
    void grow(std::size_t count);

    Templates mTemplates;
    std::vector<std::unique_ptr<Pooled[]>> mChunks;
    std::size_t mSize = 0;
    std::size_t mIdle = 0;
};

template <typename T>
EntityPool<T>::~EntityPool() = default;

template <typename T>
void EntityPool<T>::LoadMaster(const std::string& text, unsigned int poolSize) {
    auto prototype = std::make_unique<T>();
    static_cast<Entity&>(*prototype).Deserialize(text, true);
    const std::size_t ready = std::min<std::size_t>(poolSize, MaxPreallocated);
    Template& master = mTemplates["master"];
    master.prototype.swap(prototype);
    try {
        if (ready > mSize)
            grow(ready - mSize);
    } catch (...) {
        master.prototype.swap(prototype);
        throw;
    }
}

template <typename T>
Entity* EntityPool<T>::Fetch(const std::string& variant) {
    const auto found = mTemplates.find(variant);
    if (found == mTemplates.end() || !found->second.prototype)
        return nullptr;
    Template& home = found->second;
    Pooled* pooled = takeIdle(home);
    if (!pooled) {
        Template& master = mTemplates["master"];
        if (!master.idle)
            grow(std::clamp<std::size_t>(mSize / 2, 16, 4096));
        pooled = takeIdle(master);
    }
    // Virtual operations go through Entity: a class may have made its own private.
    Entity& entity = *pooled;
    try {
        entity.TakeOver(*home.prototype);
        entity.RegisterCmpts();
    } catch (...) {
        entity.UnregisterCmpts();
        putIdle(home, pooled);
        throw;
    }
    entity.RegisterNewCmpts(true);
    entity.Alive(true);
    pooled->home = &home;
    return &entity;
}

template <typename T>
void EntityPool<T>::Return(Entity* entity) {
    auto* pooled = dynamic_cast<Pooled*>(entity);
    if (!pooled || pooled->pool != this)
        throw std::invalid_argument("EntityPool::Return: an entity of another pool");
    if (!pooled->home)
        return;
    entity->UnregisterCmpts();
    entity->RegisterNewCmpts(false);
    entity->Alive(false);
    entity->Parent(nullptr);
    putIdle(*pooled->home, pooled);
    pooled->home = nullptr;
}

template <typename T>
Entity* EntityPool<T>::LoadVariant(const std::string& text) {
    auto prototype = std::make_unique<T>();
    Entity& entity = *prototype;
    const auto master = mTemplates.find("master");
    if (master != mTemplates.end() && master->second.prototype)
        entity.TakeOver(*master->second.prototype);
    entity.Deserialize(text, false);

    const std::string name = entity.Variant();
    if (name.empty() || name == "master")
        throw DataError("a variant needs a name of its own under \"Variant\"");
    mTemplates[name].prototype = std::move(prototype);
    return &entity;
}

template <typename T>
typename EntityPool<T>::Pooled* EntityPool<T>::takeIdle(Template& from) {
    Pooled* entity = from.idle;
    if (entity) {
        from.idle = entity->next;
        --mIdle;
    }
    return entity;
}

template <typename T>
void EntityPool<T>::putIdle(Template& to, Pooled* entity) {
    entity->next = to.idle;
    to.idle = entity;
    ++mIdle;
}

template <typename T>
void EntityPool<T>::grow(std::size_t count) {
    mChunks.reserve(mChunks.size() + 1);
    Template& master = mTemplates["master"];
    Pooled* chunk = mChunks.emplace_back(std::make_unique<Pooled[]>(count)).get();
    mSize += count;
    // The last goes on the stack first, so that they are handed out, and later walked, in the order
    // of memory.
    for (std::size_t i = count; i-- > 0;) {
        chunk[i].pool = this;
        putIdle(master, &chunk[i]);
    }
    // So the master's components are there before the first of them is fetched.
    for (std::size_t i = 0; i < count && master.prototype; ++i)
        static_cast<Entity&>(chunk[i]).TakeOver(*master.prototype);
}

} // namespace Vorn
