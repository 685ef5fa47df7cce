// SPDX-License-Identifier: MIT
//
// The engine's walk over pairs against the plain one: the same pairs in the same order, whatever
// the bodies are and whatever functors do in the middle of it.
#include "tests/support/physics_names.hpp"
#include "tests/support/plain_walk.hpp"
#include "tests/support/rounds.hpp"
#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace {

using namespace Vorn;

/// What a world is made of, and what happens in it.
struct Recipe {
    unsigned int seed = 0;
    int bodies = 0;
    float edge = 0;        // of the cube that they stand in
    Vector3 form{1, 1, 1}; // by how much the cube is longer
    int far = 0;           // one in so many stands far away; 0 for none
    int odd = 0;           // one in so many bodies has a value from hell; 0 for none
    int dynamic = 0;       // one in so many has the swept test; 0 for none
    int meddle = 0;        // one in so many calls changes something; 0 for none
    int only = -1;         // the one kind of change; -1 for all
    bool rebuild = false;  // changes take bodies in and out, and run steps of their own
    bool part = false;     // each hit moves the two apart
};

/// Bodies with functors that write down whom they met, and meddle. With a system its walk is under
/// test; without one the plain walk runs.
class WalkedWorld {
public:
    WalkedWorld(const Recipe& recipe, PhysicsSystem* system)
        : mRecipe(recipe), mSystem(system), mRandom(recipe.seed) {
        for (int i = 0; i < recipe.bodies; ++i)
            add();
    }
    WalkedWorld(const WalkedWorld&) = delete;
    WalkedWorld& operator=(const WalkedWorld&) = delete;
    ~WalkedWorld() {
        for (const auto& entity : mEntities)
            unregisterBody(*entity->Physics());
    }

    /// The hits of a step: who heard of whom.
    std::vector<std::pair<int, int>> Step() {
        step();
        std::erase(mList, nullptr);
        return std::exchange(mLog, {});
    }

private:
    struct Response : FunctorBase1 {
        WalkedWorld* world = nullptr;
        int id = 0;
        void operator()(CollisionData* data) override { world->heard(id, data->other); }
    };

    int dice(int sides) { return static_cast<int>(mRandom() % static_cast<unsigned int>(sides)); }
    bool oneIn(int n) { return n > 0 && dice(n) == 0; }
    float number(float low, float high) {
        return low + (high - low) * static_cast<float>(dice(10001)) * 1e-4f;
    }
    Vector3 vector(float reach) {
        const float x = number(-reach, reach), y = number(-reach, reach);
        return {x, y, number(-reach, reach)};
    }
    Vector3 place() {
        const Vector3 at = vector(mRecipe.edge / 2), form = mRecipe.form;
        const Vector3 inside(at.x * form.x, at.y * form.y, at.z * form.z);
        return oneIn(mRecipe.far) ? inside * number(10, 3000) : inside;
    }

    void add() {
        Entity& entity = *mEntities.emplace_back(std::make_unique<Entity>());
        entity.Deserialize(R"({"PhysicsCmpt": {}})", true);
        mResponses.push_back(std::make_unique<Response>());
        mResponses.back()->world = this;
        mResponses.back()->id = static_cast<int>(mEntities.size()) - 1;
        PhysicsCmpt& body = *entity.Physics();
        body.RegisterCollisionResponse(mResponses.back().get());
        body.ClearMask();
        body.Drag(false);
        body.Category(dice(2) ? "A" : "B");
        body.VolumeType(dice(2) ? "Box" : "Sphere");
        body.UseDynamicCollisionCheck(oneIn(mRecipe.dynamic));
        body.LinearVelocity(vector(0.3f));
        entity.Alive(dice(20) > 0);
        entity.Position(place());
        entity.Orientation(vector(1));
        entity.Angle(number(-4, 4));
        // Small and large ones, the large ones few.
        const float size = dice(30) ? number(0.5f, 1.5f) : number(1, 12);
        entity.Scale(size, size * number(0.3f, 1), size);
        if (oneIn(mRecipe.odd))
            makeOdd(entity);
        registerBody(body);
    }

    void makeOdd(Entity& entity) {
        constexpr float infinity = std::numeric_limits<float>::infinity();
        const float values[] = {0,     -0.0f, 1e-8f,    -1,        1e9f,
                                1e30f, 3e38f, infinity, -infinity, std::nanf("")};
        const auto odd = [&] { return values[dice(10)]; };
        const Vector3 old = entity.Position();
        switch (dice(8)) {
        case 0:
            entity.Position(odd(), old.y, old.z);
            break;
        case 1:
            entity.Scale(1, odd(), 1);
            break;
        case 2:
            entity.Scale(odd(), odd(), odd());
            break;
        case 3:
            entity.Orientation(0, odd(), 0);
            break;
        case 4:
            entity.Orientation(odd(), 1, odd());
            break;
        case 5:
            entity.Angle(odd());
            break;
        case 6:
            entity.Physics()->LinearVelocity(Vector3(odd(), 0, 0));
            break;
        default:
            entity.Physics()->ScaleFactor(Vector3(odd(), 1, 1));
        }
    }

    void registerBody(PhysicsCmpt& body) {
        if (mSystem)
            mSystem->Register(&body);
        else
            mList.push_back(&body);
    }
    void unregisterBody(PhysicsCmpt& body) {
        if (mSystem)
            return mSystem->Unregister(&body);
        body.ClearProperties();
        for (PhysicsCmpt*& entry : mList)
            if (entry == &body)
                entry = nullptr;
    }

    void step() {
        if (mSystem)
            return mSystem->Update(1);
        for (std::size_t i = 0; i < mList.size(); ++i)
            if (mList[i] && mList[i]->IsAlive())
                mList[i]->Position(mList[i]->Position() + mList[i]->LinearVelocity());
        Tests::PlainWalk(mList);
    }

    void heard(int id, PhysicsCmpt* other) {
        for (int i = 0; i < static_cast<int>(mEntities.size()); ++i)
            if (mEntities[static_cast<std::size_t>(i)]->Physics() == other)
                mLog.emplace_back(id, i);
        if (mLog.size() > 3000)
            return; // enough has happened
        if (mRecipe.part) {
            Entity& self = *mEntities[static_cast<std::size_t>(id)];
            self.Position(self.Position() + (self.Position() - other->Position()) * 0.6f);
        }
        if (oneIn(mRecipe.meddle))
            meddle();
    }

    void meddle() {
        Entity& entity = *mEntities[mRandom() % mEntities.size()];
        PhysicsCmpt& body = *entity.Physics();
        const bool rebuild = mRecipe.rebuild && mRebuilt++ < 20;
        switch (mRecipe.only >= 0 ? mRecipe.only : dice(rebuild ? 17 : 13)) {
        case 0:
            entity.Position(place());
            break;
        case 1:
            entity.LocalPosition(place());
            break;
        case 2:
            entity.Orientation(vector(1));
            break;
        case 3:
            entity.Angle(number(-4, 4));
            break;
        case 4:
            entity.Scale(number(0, 2), number(0, 2), number(0, 2));
            break;
        case 5:
            body.ScaleFactor(vector(2));
            break;
        case 6:
            entity.Alive(dice(2));
            break;
        case 7:
            body.Mask(dice(2) ? "A" : "B");
            break;
        case 8:
            body.Category(dice(2) ? "A" : "B");
            break;
        case 9:
            body.VolumeType(dice(4) ? (dice(2) ? "Box" : "Sphere") : "NONE");
            break;
        case 10:
            body.UseDynamicCollisionCheck(oneIn(3 * mRecipe.dynamic));
            break;
        case 11:
            body.LinearVelocity(vector(2));
            break;
        case 12:
            entity.Conform(mEntities[mRandom() % mEntities.size()].get());
            break;
        case 13:
            add();
            break;
        case 14:
            unregisterBody(body);
            break;
        case 15:
            registerBody(body);
            break;
        default:
            if (!std::exchange(mInner, true)) {
                step();
                mInner = false;
            }
        }
    }

    const Recipe mRecipe;
    PhysicsSystem* const mSystem;
    std::mt19937 mRandom;
    std::vector<std::unique_ptr<Entity>> mEntities;
    std::vector<std::unique_ptr<Response>> mResponses;
    std::vector<PhysicsCmpt*> mList; // of the plain walk
    std::vector<std::pair<int, int>> mLog;
    bool mInner = false;
    int mRebuilt = 0;
};

class PairWalks : public testing::Test {
protected:
    PairWalks() { Tests::EnterPhysicsNames(); }

    /// Runs both walks and tells how many calls there were.
    static std::size_t Compare(const Recipe& recipe, int steps) {
        SCOPED_TRACE(testing::Message() << "seed " << recipe.seed);
        PhysicsSystem system;
        WalkedWorld fast(recipe, &system), plain(recipe, nullptr);
        std::size_t calls = 0;
        for (int step = 0; step < steps; ++step) {
            const auto expected = plain.Step();
            const auto actual = fast.Step();
            const auto [a, e] =
                std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
            EXPECT_TRUE(a == actual.end() && e == expected.end())
                << "step " << step << ", call " << a - actual.begin() << " of " << expected.size();
            calls += expected.size();
        }
        return calls;
    }
};

TEST_F(PairWalks, OfSmallWorldsComeOutAsThePlainWalkWhateverHappensInThem) {
    std::size_t calls = 0;
    for (unsigned int seed = 0; seed < Tests::Rounds(2000) && !HasFailure(); ++seed) {
        Recipe recipe;
        recipe.seed = seed;
        recipe.bodies = 2 + static_cast<int>(seed % 37);
        recipe.edge = seed % 5 ? 5.0f : 1.0f;
        recipe.odd = seed % 3 ? 0 : 6;
        recipe.dynamic = seed % 4 ? 0 : 4;
        recipe.meddle = seed % 7 ? 2 : 0;
        recipe.rebuild = seed % 2;
        recipe.part = seed % 11 == 0;
        calls += Compare(recipe, 2);
    }
    EXPECT_GT(calls, Tests::Rounds(50'000));
}

TEST_F(PairWalks, OfLargeWorldsComeOutAsThePlainWalkWhateverHappensInThem) {
    std::size_t calls = 0;
    // A cube, a plain, two lines, a wall.
    const Vector3 forms[] = {
        {1, 1, 1}, {4, 0.1f, 4}, {30, 0.2f, 0.2f}, {0.2f, 0.2f, 30}, {0.1f, 4, 4}};
    for (unsigned int round = 0; round < Tests::Rounds(24) && !HasFailure(); ++round) {
        const unsigned int seed = round * 11 % 24; // the first few have something of everything
        Recipe recipe;
        recipe.seed = 10'000 + seed;
        recipe.bodies = 560 + static_cast<int>(seed) * 20;
        recipe.form = forms[seed < 8 ? 0 : seed % 5];
        recipe.far = seed % 7 == 6 ? 30 : 0;
        recipe.edge = seed % 8 == 7 ? 3.0f : seed % 2 ? 12.0f : 30.0f;
        recipe.odd = seed % 3 ? 0 : 40;
        recipe.dynamic = seed % 4 == 1 ? 60 : 0;
        recipe.meddle = seed % 5 ? (seed % 2 ? 5 : 300) : 0;
        recipe.rebuild = seed % 4 == 3;
        recipe.part = seed % 3 == 1;
        calls += Compare(recipe, 2);
    }
    EXPECT_GT(calls, Tests::Rounds(20'000));
}

TEST_F(PairWalks, OfLargeWorldsFollowEachKindOfChangeAlone) {
    for (int kind = 0; kind < 13 && !HasFailure(); ++kind) {
        SCOPED_TRACE(testing::Message() << "kind " << kind);
        Recipe recipe;
        recipe.seed = 20'000 + static_cast<unsigned int>(kind);
        recipe.bodies = 900;
        recipe.edge = 20;
        recipe.meddle = 12;
        recipe.only = kind;
        EXPECT_GT(Compare(recipe, 2), 1000u);
    }
}

TEST_F(PairWalks, ANumberFromHellDoesNotUpsetThePairsOfOthers) {
    PhysicsSystem system;
    Recipe recipe;
    recipe.bodies = 600;
    recipe.edge = 20;
    WalkedWorld world(recipe, &system);
    const auto before = world.Step().size();
    Entity strange;
    strange.Deserialize(R"({"PhysicsCmpt": {"Type": "Sphere"}})", true);
    strange.Alive(true);
    strange.Position(std::nanf(""), 0, 0);
    system.Register(strange.Physics());
    EXPECT_GT(before, 100u);
    EXPECT_NEAR(static_cast<double>(world.Step().size()), static_cast<double>(before),
                static_cast<double>(before) / 4);
    system.Unregister(strange.Physics());
}

} // namespace
