// SPDX-License-Identifier: MIT
#include "vorn/core/delta_clock.hpp"
#include "vorn/core/singleton.hpp"
#include "vorn/physics/physics_system.hpp"
#include "vorn/render/emitter_system.hpp"
#include "vorn/render/graphics_system.hpp"
#include "vorn/scene/entity_factory.hpp"
#include "vorn/scene/scene_manager.hpp"

#include <gtest/gtest.h>

#include <set>
#include <type_traits>

namespace {

int livingRankings = 0;

class Ranking : public Vorn::Singleton<Ranking> {
public:
    Ranking() { ++livingRankings; }
    Ranking(const Ranking& ranking) : Singleton(ranking), mPoints(ranking.mPoints) {
        ++livingRankings;
    }
    Ranking& operator=(const Ranking&) = default;
    ~Ranking() { --livingRankings; }

    int mPoints = 0;
};

// Naming the instance is what brings it into the program, used or not.
const Ranking* const taken = Ranking::Instance();

TEST(Singleton, OfAHostIsThereBeforeAnyoneAsks) {
    EXPECT_EQ(livingRankings, 1);
    EXPECT_EQ(Ranking::Instance(), taken);
    EXPECT_EQ(Ranking::Instance(), &Ranking::mSingleton);
    EXPECT_EQ(livingRankings, 1);
}

TEST(Singleton, CopyingAndAssigningLeaveTheInstance) {
    Ranking::Instance()->mPoints = 5;
    {
        Ranking copy = *Ranking::Instance();
        EXPECT_EQ(copy.mPoints, 5);
        copy.mPoints = 6;
        EXPECT_EQ(Ranking::Instance()->mPoints, 5);
        *Ranking::Instance() = copy;
        EXPECT_EQ(Ranking::Instance()->mPoints, 6);
        EXPECT_EQ(Ranking::Instance(), taken);
    }
    EXPECT_EQ(livingRankings, 1);
    Ranking::Instance()->mPoints = 0;
}

template <typename T>
const void* AddressOf() {
    static_assert(std::is_base_of_v<Vorn::Singleton<T>, T>);
    EXPECT_EQ(T::Instance(), &T::mSingleton);
    EXPECT_EQ(T::Instance(), Vorn::Singleton<T>::Instance());
    return T::Instance();
}

TEST(Singleton, EachManagerHasItsOwnInstance) {
    const std::set<const void*> instances{
        AddressOf<Vorn::DeltaClock>(),    AddressOf<Vorn::EntityFactory>(),
        AddressOf<Vorn::SceneManager>(),  AddressOf<Vorn::GraphicsSystem>(),
        AddressOf<Vorn::PhysicsSystem>(), AddressOf<Vorn::EmitterSystem>(),
    };
    EXPECT_EQ(instances.size(), 6u);
}

} // namespace
