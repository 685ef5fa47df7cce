// SPDX-License-Identifier: MIT
//
// Two scenes that share their entities, driven by random orders, also in the middle of whatever
// they do, beside the same with plain lists.
#include "scene_world.hpp"
#include "tests/support/rounds.hpp"

#include <array>
#include <deque>
#include <optional>
#include <random>

namespace {

using namespace SceneTests;

class PlainScene : public Vorn::Scene {
public:
    const std::vector<Probe*>& EntityList() const { return mList; }
    void Init() override {
        walk([](Probe* entity) { entity->Init(); });
    }
    void Update(float dt) override {
        walk([dt](Probe* entity) { entity->Update(dt); });
        for (std::size_t kind = 0; kind < 3; ++kind) {
            while (!mRequests[kind].empty()) {
                Probe* const entity = mRequests[kind].front();
                mRequests[kind].pop_front();
                serve(kind, entity);
            }
        }
        mRequests = {};
    }
    void Deinit() override {
        walk([this](Probe* entity) {
            try {
                thenReturn(entity, [=, this] {
                    const std::shared_ptr<void> left(nullptr, [=, this](void*) {
                        entity->holder = entity->holder == this ? nullptr : entity->holder;
                    });
                    entity->Deinit();
                });
            } catch (const Fault&) {
                forget(*mWalks.back());
                throw;
            }
        });
        forget(mList.size());
    }
    void AddEntity(Vorn::Entity* entity, bool now) override { ask(0, entity, now); }
    void RemoveEntity(Vorn::Entity* entity, bool now) override { ask(1, entity, now); }
    void DestroyEntity(Vorn::Entity* entity, bool now) override { ask(2, entity, now); }
    Vorn::Entity* GetEntity(const std::string& name) const override {
        return mNames.contains(name) ? mNames.at(name) : nullptr;
    }

private:
    void ask(std::size_t kind, Vorn::Entity* entity, bool now) {
        auto* const probe = dynamic_cast<Probe*>(entity);
        now ? serve(kind, probe) : mRequests[kind].push_back(probe);
    }
    void serve(std::size_t kind, Probe* entity) {
        if (kind == 0) {
            mList.push_back(entity);
            mNames.emplace(entity->Name(), entity);
            entity->holder = this;
            return entity->Init();
        }
        for (std::size_t i = mList.size(); i-- > 0;) {
            if (mList[i] != entity)
                continue;
            mList.erase(mList.begin() + static_cast<std::ptrdiff_t>(i));
            for (std::size_t* next : mWalks)
                *next -= i < *next ? 1 : 0;
        }
        mNames.erase(entity->Name());
        entity->holder = nullptr;
        if (kind == 2)
            thenReturn(entity, [entity] { entity->Init(); });
        else
            entity->Init();
    }
    // Whatever the last words raise.
    template <typename Words>
    void thenReturn(Probe* entity, Words words) {
        try {
            words();
        } catch (const Fault&) {
            Vorn::EntityFactory::Instance()->ReturnEntity(entity);
            throw;
        }
        Vorn::EntityFactory::Instance()->ReturnEntity(entity);
    }
    void forget(std::size_t count) {
        mList.erase(mList.begin(), mList.begin() + static_cast<std::ptrdiff_t>(count));
        for (std::size_t* next : mWalks)
            *next = 0;
        mNames.clear();
        for (Probe* entity : mList)
            mNames.emplace(entity->Name(), entity);
    }
    template <typename Visit>
    void walk(Visit visit) {
        std::size_t next = 0;
        mWalks.push_back(&next);
        const std::shared_ptr<void> end(nullptr, [this](void*) { mWalks.pop_back(); });
        while (next < mList.size())
            visit(mList[next++]);
    }

    std::vector<Probe*> mList;
    std::map<std::string, Probe*> mNames;
    std::array<std::deque<Probe*>, 3> mRequests;
    std::vector<std::size_t*> mWalks; // where each goes on
};

struct Order {
    std::size_t kind; // of Acts
    std::size_t scene;
    std::size_t entity;
    bool now;
    std::string name;
};

using Act = void (*)(Vorn::Scene&, Vorn::Entity*, const Order&);
constexpr Act Acts[] = {
    [](auto& scene, auto* entity, auto& order) { scene.AddEntity(entity, order.now); },
    [](auto& scene, auto* entity, auto& order) { scene.RemoveEntity(entity, order.now); },
    [](auto& scene, auto* entity, auto& order) { scene.DestroyEntity(entity, order.now); },
    [](auto&, auto* entity, auto& order) {
        entity->Deserialize(R"({"Name": ")" + order.name + "\"}", false);
    },
    [](auto& scene, auto*, auto&) { scene.Init(); },
    [](auto& scene, auto*, auto&) { scene.Deinit(); },
    [](auto&, auto*, auto&) { throw Fault(); },
    [](auto& scene, auto*, auto&) { scene.Update(1.0f); }};

using Script = std::map<std::string, std::vector<Order>>; // by the event at which they are given

template <typename S>
class World {
public:
    World() {
        for (std::size_t i = 0; i < 10; ++i)
            mPool.Make("")->label = std::to_string(i);
        Renew(0);
        Renew(1);
    }

    /// A new scene at the address of one that is gone: those that it held mean nothing to it, and
    /// they are not told.
    void Renew(std::size_t scene) {
        mScenes[scene].emplace();
        mScenes[scene]->Deserialize(R"({"Entities": []})");
    }

    /// What happens, and what is there in the end.
    std::string Play(const Order& first, const Script& script) {
        for (const auto& [event, orders] : script)
            recorder.Once(event, [this, &orders = orders] {
                for (const Order& order : orders)
                    obey(order);
            });
        try {
            obey(first);
        } catch (const Fault&) {
            recorder.Note("raised");
        }
        for (const std::optional<S>& each : mScenes) {
            const S& scene = *each;
            recorder.Note("list");
            for (const Vorn::Entity* entity : scene.EntityList())
                recorder.Note(dynamic_cast<const Probe*>(entity)->label);
            for (const char* name : {"", "p", "q", "r", "s"})
                if (const Vorn::Entity* entity = scene.GetEntity(name))
                    recorder.Note(name + ("=" + dynamic_cast<const Probe*>(entity)->label));
            for (const auto& entity : mPool.made)
                if (&scene == (std::is_same_v<S, PlainScene> ? entity->holder : entity->Scene()))
                    recorder.Note("holds=" + entity->label);
        }
        return recorder.Take();
    }

private:
    void obey(const Order& order) {
        Acts[order.kind](*mScenes[order.scene], mPool.made[order.entity].get(), order);
    }

    LoggingPool mPool{"thing"};
    std::array<std::optional<S>, 2> mScenes;
};

class SceneTwin : public SceneTest {};

TEST_F(SceneTwin, RandomOrdersGiveTheSameEventsListsAndNames) {
    std::mt19937 random(1);
    const auto below = [&](std::size_t end) { return random() % end; };
    const auto any = [&](const std::string& event) {
        // As many ways in as out, so that lists grow to some length and become empty again. An
        // update in the midst of the requests is nobody's business.
        constexpr std::array kinds = {0u, 0u, 0u, 0u, 1u, 1u, 2u, 3u, 4u, 5u, 6u, 7u};
        const std::size_t rare = below(4) > 0 ? 0 : event == "Update:" ? 4 : 3;
        return Order{kinds[below(8 + rare)], below(2), below(10), below(2) == 0,
                     std::string(1, static_cast<char>('p' + below(4)))};
    };
    World<Vorn::Scene> real;
    World<PlainScene> plain;
    std::size_t length = 0;
    for (std::size_t step = 0; step < Tests::Rounds(20'000) && !HasFatalFailure(); ++step) {
        SCOPED_TRACE(step);
        Script script;
        for (std::size_t count = below(20); count > 0; --count) {
            const std::string event =
                std::array{"Update:", "Init:", "Deinit:", "thing.Return:"}[below(4)];
            script[event + std::to_string(below(10))].push_back(any(event));
        }
        Order order = any("Update:");
        if (below(2) == 0)
            order.kind = 7;
        const std::string log = real.Play(order, script);
        ASSERT_EQ(log, plain.Play(order, script));
        length += log.size();
        if (below(100) == 0) {
            real.Renew(step % 2);
            plain.Renew(step % 2);
        }
    }
    EXPECT_GT(length, Tests::Rounds(1'000'000)); // the worlds were not empty
}

} // namespace
