// SPDX-License-Identifier: MIT
#include "vorn/physics/physics_cmpt.hpp"
#include "vorn/physics/physics_system.hpp"
#include "vorn/render/emitter_cmpt.hpp"
#include "vorn/render/emitter_system.hpp"
#include "vorn/render/graphics_cmpt.hpp"
#include "vorn/render/graphics_system.hpp"
#include "vorn/scene/system.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <list>
#include <memory>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace {

struct Graphics {
    using Cmpt = Vorn::GraphicsCmpt;
    using System = Vorn::GraphicsSystem;
    static constexpr bool ErasesAll = false;
};
struct Physics {
    using Cmpt = Vorn::PhysicsCmpt;
    using System = Vorn::PhysicsSystem;
    static constexpr bool ErasesAll = true;
};
struct Emitters {
    using Cmpt = Vorn::EmitterCmpt;
    using System = Vorn::EmitterSystem;
    static constexpr bool ErasesAll = false;
};

struct KindNames {
    template <typename Kind>
    static std::string GetName(int) {
        if (std::is_same_v<Kind, Graphics>)
            return "Graphics";
        return std::is_same_v<Kind, Physics> ? "Physics" : "Emitters";
    }
};

using Ids = std::vector<int>;

/// Writes its number into a log whenever its system's walk comes by.
template <typename Kind>
class Probe : public Kind::Cmpt {
public:
    Probe(Ids& inits, Ids& deinits, int id) : mInits(&inits), mDeinits(&deinits), mId(id) {}
    void Init() override { mInits->push_back(mId); }
    void Deinit() override { mDeinits->push_back(mId); }

    Ids* mInits;
    Ids* mDeinits;
    int mId;
};

template <typename Kind>
class ComponentSystem : public testing::Test {
protected:
    using Base = Vorn::System<typename Kind::System, typename Kind::Cmpt>;

    std::unique_ptr<Probe<Kind>> Make(int id) {
        return std::make_unique<Probe<Kind>>(mInits, mDeinits, id);
    }

    void Enter(std::initializer_list<Probe<Kind>*> probes) {
        for (Probe<Kind>* probe : probes)
            mSystem.Register(probe);
    }

    /// The numbers of what is registered, in order.
    Ids Walk() {
        mInits.clear();
        mDeinits.clear();
        mSystem.Init();
        EXPECT_TRUE(mDeinits.empty());
        mSystem.Deinit();
        EXPECT_EQ(mInits, mDeinits);
        return mInits;
    }

    Ids mInits;
    Ids mDeinits;
    Base& mSystem = *Kind::System::Instance();
};

using Kinds = testing::Types<Graphics, Physics, Emitters>;
TYPED_TEST_SUITE(ComponentSystem, Kinds, KindNames);

TYPED_TEST(ComponentSystem, DoesNothingWithAnEmptyList) {
    EXPECT_EQ(this->Walk(), Ids{});
    this->mSystem.Update(0.1f);
    const auto stranger = this->Make(1);
    this->mSystem.Unregister(stranger.get());
    EXPECT_EQ(this->Walk(), Ids{});
}

TYPED_TEST(ComponentSystem, WalksInOrderOfRegistration) {
    const auto a = this->Make(1);
    const auto b = this->Make(2);
    const auto c = this->Make(3);
    this->Enter({c.get(), a.get(), b.get()});
    EXPECT_EQ(this->Walk(), (Ids{3, 1, 2}));
    EXPECT_EQ(this->Walk(), (Ids{3, 1, 2})) << "a walk takes nobody out";
    this->mSystem.Unregister(a.get());
    this->mSystem.Register(a.get());
    EXPECT_EQ(this->Walk(), (Ids{3, 2, 1}));
    this->mSystem.Unregister(c.get());
    EXPECT_EQ(this->Walk(), (Ids{2, 1}));
}

TYPED_TEST(ComponentSystem, DuplicatesAreWalkedTwiceAndTakenOutByKind) {
    const auto a = this->Make(1);
    const auto b = this->Make(2);
    this->Enter({a.get(), b.get(), a.get(), b.get(), a.get()});
    EXPECT_EQ(this->Walk(), (Ids{1, 2, 1, 2, 1}));
    this->mSystem.Unregister(a.get());
    EXPECT_EQ(this->Walk(), TypeParam::ErasesAll ? (Ids{2, 2}) : (Ids{2, 1, 2, 1}));
    this->mSystem.Unregister(b.get());
    EXPECT_EQ(this->Walk(), TypeParam::ErasesAll ? Ids{} : (Ids{1, 2, 1}));
    this->mSystem.Unregister(a.get());
    EXPECT_EQ(this->Walk(), TypeParam::ErasesAll ? Ids{} : (Ids{2, 1}));
}

TYPED_TEST(ComponentSystem, StrangersLeaveTheListAlone) {
    const auto a = this->Make(1);
    const auto b = this->Make(2);
    const auto stranger = this->Make(3);
    this->mSystem.Register(a.get());
    this->mSystem.Register(b.get());
    this->mSystem.Unregister(stranger.get());
    EXPECT_EQ(this->Walk(), (Ids{1, 2}));
    this->mSystem.Unregister(b.get());
    this->mSystem.Unregister(b.get());
    EXPECT_EQ(this->Walk(), Ids{1});
}

TYPED_TEST(ComponentSystem, WhatDiesLeavesWithAllItsEntries) {
    const auto a = this->Make(1);
    auto b = this->Make(2);
    this->Enter({b.get(), a.get(), b.get(), a.get(), b.get()});
    b.reset();
    EXPECT_EQ(this->Walk(), (Ids{1, 1}));
}

TYPED_TEST(ComponentSystem, CopiesAreNotRegistered) {
    auto a = this->Make(1);
    const auto b = this->Make(2);
    this->mSystem.Register(a.get());
    {
        Probe<TypeParam> copy(*a);
        copy.mId = 3;
        EXPECT_EQ(this->Walk(), Ids{1});
        this->mSystem.Unregister(&copy);
        EXPECT_EQ(this->Walk(), Ids{1});
        this->mSystem.Register(&copy);
        EXPECT_EQ(this->Walk(), (Ids{1, 3}));
    }
    EXPECT_EQ(this->Walk(), Ids{1});
    *a = *b;
    EXPECT_EQ(this->Walk(), Ids{2}) << "still registered, with the other's number";
}

TYPED_TEST(ComponentSystem, RunsLikeAPlainList) {
    std::mt19937 random(1300);
    std::array<std::unique_ptr<Probe<TypeParam>>, 12> probes;
    int nextId = 0;
    for (auto& probe : probes)
        probe = this->Make(nextId++);
    std::list<int> plain;

    for (int step = 0; step < 20'000; ++step) {
        SCOPED_TRACE(step);
        auto& probe = probes[random() % probes.size()];
        const auto dice = random() % 100;
        if (dice < 55) {
            this->mSystem.Register(probe.get());
            plain.push_back(probe->mId);
        } else if (dice < 93) {
            this->mSystem.Unregister(probe.get());
            const auto found = std::find(plain.begin(), plain.end(), probe->mId);
            if (TypeParam::ErasesAll)
                plain.remove(probe->mId);
            else if (found != plain.end())
                plain.erase(found);
        } else if (dice < 97) {
            plain.remove(probe->mId);
            probe.reset();
            probe = this->Make(nextId++);
        } else {
            const Probe<TypeParam> copy(*probe);
        }
        ASSERT_EQ(this->Walk(), Ids(plain.begin(), plain.end()));
    }
    for (auto& probe : probes)
        probe.reset();
    EXPECT_EQ(this->Walk(), Ids{});
}

template <typename Kind>
bool Serves() {
    Ids inits, deinits;
    Probe<Kind> probe(inits, deinits, 7);
    auto* system = Kind::System::Instance();
    system->Register(&probe);
    system->Init();
    system->Unregister(&probe);
    system->Deinit();
    return inits == Ids{7} && deinits.empty();
}

const bool servedBeforeMain = Serves<Graphics>() && Serves<Physics>() && Serves<Emitters>();

TEST(ComponentSystems, ServeBeforeMain) {
    EXPECT_TRUE(servedBeforeMain);
}

TEST(ComponentSystems, KeepTheirListsApart) {
    Ids inits, deinits;
    Probe<Graphics> graphics(inits, deinits, 1);
    Probe<Physics> physics(inits, deinits, 2);
    Probe<Emitters> emitter(inits, deinits, 3);
    Vorn::GraphicsSystem::Instance()->Register(&graphics);
    Vorn::PhysicsSystem::Instance()->Register(&physics);
    Vorn::EmitterSystem::Instance()->Register(&emitter);
    Vorn::PhysicsSystem::Instance()->Init();
    EXPECT_EQ(inits, Ids{2});
    Vorn::EmitterSystem::Instance()->Init();
    EXPECT_EQ(inits, (Ids{2, 3}));
    Vorn::GraphicsSystem::Instance()->Deinit();
    EXPECT_EQ(deinits, Ids{1});
}

struct Lamp {
    int lit = 0;
};

/// A host's own kind, in the same frame as the engine's.
class LampSystem : public Vorn::System<LampSystem, Lamp> {
public:
    void Init() override {}
    void Update(float dt) override { mTime += dt; }
    void Deinit() override {}
    void Register(Lamp* lamp) override { ++lamp->lit; }
    void Unregister(Lamp* lamp) override { --lamp->lit; }

    float mTime = 0.0f;
};

TEST(ComponentSystems, TakeAHostsOwnKind) {
    static_assert(std::is_abstract_v<Vorn::System<LampSystem, Lamp>>);
    static_assert(std::has_virtual_destructor_v<Vorn::System<LampSystem, Lamp>>);
    Lamp lamp;
    Vorn::System<LampSystem, Lamp>& system = *LampSystem::Instance();
    system.Register(&lamp);
    system.Register(&lamp);
    system.Unregister(&lamp);
    system.Update(0.5f);
    EXPECT_EQ(lamp.lit, 1);
    EXPECT_EQ(LampSystem::mSingleton.mTime, 0.5f);
}

} // namespace
