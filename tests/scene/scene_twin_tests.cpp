// SPDX-License-Identifier: MIT
//
// Two scenes that share their entities, driven by random requests, beside a twin of vectors and
// maps.
#include "scene_world.hpp"

#include <array>
#include <cstddef>
#include <random>

namespace {

using namespace SceneTests;

constexpr int Entities = 14;
constexpr int Scenes = 2;

struct Order {
    enum Kind { Add, Remove, Destroy, NewName };
    Kind kind;
    std::size_t scene;
    std::size_t entity;
    bool now;
    std::string name;
};

/// Orders that are given when an event happens, once each.
using Script = std::map<std::string, std::vector<Order>>;

std::vector<Order> TakeOrders(Script& script, const std::string& event) {
    const auto found = script.find(event);
    if (found == script.end())
        return {};
    std::vector<Order> orders = std::move(found->second);
    script.erase(found);
    return orders;
}

std::string Event(const char* what, std::size_t entity) {
    return what + std::to_string(entity);
}

class Twin {
public:
    struct TwinScene {
        std::vector<std::size_t> list;
        std::map<std::string, std::size_t> names;
        std::vector<std::size_t> toAdd;
        std::vector<std::size_t> toRemove;
        std::vector<std::size_t> toDestroy;
        std::size_t next = 0; // of the walk
    };
    static constexpr int Nobody = -1;
    static constexpr int Unsettled = -2;

    Script script;
    Log log;
    std::array<TwinScene, Scenes> scenes;
    std::vector<std::string> names = std::vector<std::string>(Entities);
    std::vector<int> holder = std::vector<int>(Entities, Nobody);

    void Obey(const Order& order) {
        TwinScene& scene = scenes[order.scene];
        switch (order.kind) {
        case Order::NewName:
            names[order.entity] = order.name;
            break;
        case Order::Add:
            if (order.now)
                addNow(order.scene, order.entity);
            else
                scene.toAdd.push_back(order.entity);
            break;
        case Order::Remove:
            if (order.now)
                removeNow(order.scene, order.entity);
            else
                scene.toRemove.push_back(order.entity);
            break;
        case Order::Destroy:
            if (order.now)
                destroyNow(order.scene, order.entity);
            else
                scene.toDestroy.push_back(order.entity);
            break;
        }
    }

    void Update(std::size_t index) {
        TwinScene& scene = scenes[index];
        for (scene.next = 0; scene.next < scene.list.size();)
            note(Event("Update ", scene.list[scene.next++]));
        for (std::size_t i = 0; i < scene.toAdd.size(); ++i)
            addNow(index, scene.toAdd[i]);
        for (std::size_t i = 0; i < scene.toRemove.size(); ++i)
            removeNow(index, scene.toRemove[i]);
        for (std::size_t i = 0; i < scene.toDestroy.size(); ++i)
            destroyNow(index, scene.toDestroy[i]);
        scene.toAdd.clear();
        scene.toRemove.clear();
        scene.toDestroy.clear();
    }

    void Deinit(std::size_t index) {
        for (const std::size_t entity : scenes[index].list) {
            note(Event("Deinit ", entity));
            note(Event("Return ", entity));
            holder[entity] = Unsettled;
        }
        scenes[index].list.clear();
        scenes[index].names.clear();
    }

    void Init(std::size_t index) {
        for (const std::size_t entity : scenes[index].list)
            note(Event("Init ", entity));
    }

private:
    void note(const std::string& event) {
        log.push_back(event);
        for (const Order& order : TakeOrders(script, event))
            Obey(order);
    }
    void addNow(std::size_t index, std::size_t entity) {
        scenes[index].list.push_back(entity);
        holder[entity] = static_cast<int>(index);
        scenes[index].names.emplace(names[entity], entity);
        note(Event("Init ", entity));
    }
    void leave(std::size_t index, std::size_t entity) {
        TwinScene& scene = scenes[index];
        for (std::size_t i = scene.list.size(); i-- > 0;) {
            if (scene.list[i] != entity)
                continue;
            scene.list.erase(scene.list.begin() + static_cast<std::ptrdiff_t>(i));
            if (i < scene.next)
                --scene.next;
        }
        holder[entity] = Nobody;
        scene.names.erase(names[entity]);
        note(Event("Init ", entity));
    }
    void removeNow(std::size_t index, std::size_t entity) { leave(index, entity); }
    void destroyNow(std::size_t index, std::size_t entity) {
        leave(index, entity);
        note(Event("Return ", entity));
    }
};

class Engine;
Engine* engine = nullptr;

class Numbered : public Vorn::Entity {
public:
    std::size_t number = 0;
    void Init() override;
    void Update(float dt) override;
    void Deinit() override;
};

class NumberedPool : public Vorn::EntityPoolBase {
public:
    void LoadMaster(const std::string&, unsigned int) override {}
    Vorn::Entity* Fetch(const std::string&) override { return nullptr; }
    void Return(Vorn::Entity* entity) override;
    Vorn::Entity* LoadVariant(const std::string&) override { return nullptr; }
};

class Engine {
public:
    Script script;
    Log log;
    std::vector<Numbered> entities = std::vector<Numbered>(Entities);
    std::array<Vorn::Scene, Scenes> scenes;

    Engine() {
        for (std::size_t i = 0; i < entities.size(); ++i) {
            entities[i].number = i;
            entities[i].DeserializeValue(Element("numbered", ""), true);
        }
        // With an empty array, not null, Init passes over who is there.
        for (Vorn::Scene& scene : scenes)
            scene.Deserialize(R"({"Entities": []})");
    }

    void Obey(const Order& order) {
        Vorn::Scene& scene = scenes[order.scene];
        Vorn::Entity* entity = &entities[order.entity];
        switch (order.kind) {
        case Order::NewName:
            Rename(*entity, order.name);
            break;
        case Order::Add:
            scene.AddEntity(entity, order.now);
            break;
        case Order::Remove:
            scene.RemoveEntity(entity, order.now);
            break;
        case Order::Destroy:
            scene.DestroyEntity(entity, order.now);
            break;
        }
    }
    void Note(const std::string& event) {
        log.push_back(event);
        for (const Order& order : TakeOrders(script, event))
            Obey(order);
    }
};

void Numbered::Init() {
    engine->Note(Event("Init ", number));
}
void Numbered::Update(float) {
    engine->Note(Event("Update ", number));
}
void Numbered::Deinit() {
    engine->Note(Event("Deinit ", number));
}
void NumberedPool::Return(Vorn::Entity* entity) {
    engine->Note(Event("Return ", static_cast<Numbered*>(entity)->number));
}

class Dice {
public:
    explicit Dice(unsigned int seed) : mRandom(seed) {}

    std::size_t Below(std::size_t end) { return static_cast<std::size_t>(mRandom() % end); }
    std::string Name() { return std::string(1, static_cast<char>('p' + Below(5))); }
    Order Any() {
        // As many ways in as out, so that lists grow to some length and become empty again.
        static constexpr Order::Kind Kinds[] = {Order::Add,    Order::Add,     Order::Add,
                                                Order::Remove, Order::Destroy, Order::NewName};
        return {Kinds[Below(std::size(Kinds))], Below(Scenes), Below(Entities), Below(2) == 0,
                Name()};
    }
    Script Scenario() {
        static constexpr const char* Events[] = {"Update ", "Update ", "Init ", "Return "};
        Script script;
        for (std::size_t count = Below(5); count > 0; --count) {
            auto& orders = script[Event(Events[Below(std::size(Events))], Below(Entities))];
            for (std::size_t i = Below(4) + 1; i > 0; --i)
                orders.push_back(Any());
        }
        return script;
    }

private:
    std::mt19937 mRandom;
};

void Compare(const Engine& real, const Twin& twin) {
    ASSERT_EQ(real.log, twin.log);
    for (std::size_t s = 0; s < Scenes; ++s) {
        std::vector<std::size_t> list;
        for (const Vorn::Entity* entity : real.scenes[s].EntityList())
            list.push_back(static_cast<const Numbered*>(entity)->number);
        ASSERT_EQ(list, twin.scenes[s].list);
        for (const std::string name : {"", "p", "q", "r", "s", "t"}) {
            const auto found = twin.scenes[s].names.find(name);
            const Vorn::Entity* expected =
                found == twin.scenes[s].names.end() ? nullptr : &real.entities[found->second];
            ASSERT_EQ(real.scenes[s].GetEntity(name), expected) << "name " << name;
        }
    }
    for (std::size_t e = 0; e < Entities; ++e) {
        if (twin.holder[e] == Twin::Unsettled)
            continue;
        const Vorn::Scene* expected =
            twin.holder[e] < 0 ? nullptr : &real.scenes[static_cast<std::size_t>(twin.holder[e])];
        ASSERT_EQ(real.entities[e].Scene(), expected) << "entity " << e;
    }
}

void Frame(Dice& dice, Engine& real, Twin& twin) {
    real.script = twin.script = dice.Scenario();
    for (std::size_t i = dice.Below(5); i > 0; --i) {
        const Order order = dice.Any();
        real.Obey(order);
        twin.Obey(order);
    }
    const std::size_t scene = dice.Below(Scenes);
    real.scenes[scene].Update(1.0f);
    twin.Update(scene);
    real.script.clear();
    twin.script.clear();

    // Now and then a scene ends, or starts over with who is there.
    const std::size_t turn = dice.Below(40);
    if (turn == 0) {
        real.scenes[scene].Deinit();
        twin.Deinit(scene);
    } else if (turn == 1) {
        real.scenes[scene].Init();
        twin.Init(scene);
    }
}

TEST(SceneTwin, RandomRequestsGiveTheSameEventsListsAndNames) {
    NumberedPool pool;
    auto& factory = *Vorn::EntityFactory::Instance();
    factory.Register("numbered", &pool);
    std::size_t events = 0;
    for (unsigned int seed = 1; seed <= 12 && !HasFatalFailure(); ++seed) {
        Dice dice(seed);
        Engine real;
        engine = &real;
        Twin twin;
        for (int frame = 0; frame < 500 && !HasFatalFailure(); ++frame) {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", frame " + std::to_string(frame));
            real.log.clear();
            twin.log.clear();
            Frame(dice, real, twin);
            Compare(real, twin);
            events += twin.log.size();
        }
    }
    // The worlds were not empty.
    EXPECT_GT(events, 50000u);
    engine = nullptr;
    factory = Vorn::EntityFactory();
}

} // namespace
