// SPDX-License-Identifier: MIT
#include "tests/math/exact.hpp"
#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace {

using Exact::Random;
using namespace Vorn;
using Hits = std::vector<std::pair<int, int>>;

constexpr float Step = 0.016666668f;
constexpr const char* Types[] = {"NONE", "Box", "Sphere", "Mist"};

/// Bodies at rest that nothing masks, and the log of who was called about whom.
struct World {
    struct Response : FunctorBase1 {
        void operator()(CollisionData* data) override {
            world->log.emplace_back(id, world->ids.at(data->other));
            if (world->onHit)
                world->onHit();
        }
        World* world = nullptr;
        int id = 0;
    };

    PhysicsCmpt& Add(int type, const Vector3& position) {
        Entity& entity = *entities.emplace_back(std::make_unique<Entity>());
        entity.Deserialize(R"({"PhysicsCmpt": {"Mask": "", "Drag": false}})", true);
        entity.Alive(true);
        entity.Position(position);
        entity.Orientation(0, 0, 1);
        PhysicsCmpt& body = *entity.Physics();
        body.VolumeType(Types[type]);
        Response& response = *responses.emplace_back(std::make_unique<Response>());
        response.world = this;
        response.id = ids[&body] = static_cast<int>(entities.size()) - 1;
        body.RegisterCollisionResponse(&response);
        return body;
    }
    PhysicsCmpt& Body(std::size_t i) { return *entities[i]->Physics(); }

    std::vector<std::unique_ptr<Entity>> entities;
    std::vector<std::unique_ptr<Response>> responses;
    std::map<PhysicsCmpt*, int> ids;
    Hits log;
    std::function<void()> onHit;
};

class PhysicsSteps : public testing::Test {
protected:
    PhysicsSteps() {
        for (const auto& [name, bits] : {std::pair("NONE", 1), {"A", 2}, {"B", 4}, {"ALL", 15}})
            mSystem.AddCategory(name, bits);
        for (unsigned int i = 0; i < 4; ++i)
            mSystem.AddVolume(Types[i], i);
        mSystem.Init();
    }
    ~PhysicsSteps() override {
        for (const auto& [body, id] : mWorld.ids)
            mSystem.Unregister(body);
    }
    PhysicsCmpt& Add(int type, const Vector3& position = {}) {
        PhysicsCmpt& body = mWorld.Add(type, position);
        mSystem.Register(&body);
        return body;
    }
    Hits StepOnce() {
        mSystem.Update(1);
        return std::exchange(mWorld.log, {});
    }

    PhysicsSystem& mSystem = *PhysicsSystem::Instance();
    World mWorld;
};

TEST_F(PhysicsSteps, AtMostOneStepAFrameAndNoTimeIsCarriedOver) {
    PhysicsCmpt& body = Add(0);
    body.LinearVelocity(Vector3(1, 0, 0));
    const auto stepsOf = [&](const std::vector<float>& frames) {
        mSystem.Init();
        body.Position(Vector3());
        for (const float dt : frames)
            mSystem.Update(dt);
        return body.Position().x;
    };
    EXPECT_EQ(stepsOf({0.01f, 0.01f, 0.01f}), 1.0f) << "back at the full step";
    EXPECT_EQ(stepsOf({0.03f, 0.016f}), 1.0f) << "what lay below zero is lost";
    EXPECT_EQ(stepsOf({1.0f}), 1.0f);
    EXPECT_EQ(stepsOf({Step, 0}), 0.0f) << "exactly 0 is no step";
    Random random(61);
    std::vector<float> frames;
    float timer = Step, steps = 0;
    for (int frame = 0; frame < 3000; ++frame) {
        timer -= frames.emplace_back(random.Float(0, 0.03f));
        if (timer < 0)
            timer = Step, ++steps;
    }
    EXPECT_EQ(stepsOf(frames), steps);
}

/// Force, final force, acceleration, velocity, angular velocity and position.
using Motion = std::array<Vector3, 6>;

Motion MotionOf(PhysicsCmpt& body) {
    return {body.Force(),          body.FinalForce(),      body.LinearAcceleration(),
            body.LinearVelocity(), body.AngularVelocity(), body.Position()};
}

void SetMotion(PhysicsCmpt& body, Random& random) {
    body.Force(random.Place(50));
    body.FinalForce(random.Place(9));
    body.LinearAcceleration(random.Place(9));
    body.LinearVelocity(random.Place(2));
    body.AngularVelocity(random.Place(9));
}

/// The law of motion, the plain way.
void Integrate(Motion& motion, float mass, bool drag, float size) {
    auto& [force, finalForce, acceleration, velocity, angular, position] = motion;
    finalForce = (finalForce + force) * 0.98f;
    acceleration = finalForce / mass * 0.98f;
    velocity = velocity + (force / mass + acceleration) * Step;
    if (drag)
        velocity *= 0.98f;
    angular = size == 0 ? Vector3() : velocity / size;
    force = Vector3();
    position += velocity;
}

TEST_F(PhysicsSteps, LiveBodiesFollowTheLawAndOthersKeepTheirState) {
    Random random(62);
    Entity parent;
    for (int i = 0; i < 4; ++i)
        Add(0);
    const Entity& child = *mWorld.entities[1];
    mWorld.entities[1]->Parent(&parent);
    mSystem.Register(&mWorld.Body(0)); // moves twice a step
    for (int step = 0; step < 3000 && !HasFailure(); ++step) {
        std::vector<Motion> expected;
        for (const auto& entity : mWorld.entities) {
            PhysicsCmpt& body = *entity->Physics();
            if (random.Int(0, 2) == 0)
                body.Force(random.Place(50));
            if (random.Int(0, 9) == 0) {
                SetMotion(body, random);
                body.Mass(random.Float(0.2f, 5));
                body.Drag(random.Int(0, 2) > 0);
                entity->Alive(random.Int(0, 3) > 0);
                const float scale = random.Int(0, 3) ? random.Float(0.5f, 3) : 0;
                entity->Scale(scale, -scale, 2 * scale);
            }
            Motion& motion = expected.emplace_back(MotionOf(body));
            for (int pass = expected.size() > 1; entity->IsAlive() && pass < 2; ++pass)
                Integrate(motion, body.Mass(), body.Drag(), entity->Scale().Length());
        }
        parent.Position(random.Place(9));
        mSystem.Update(random.Float(0.02f, 2)); // a step is as long as a step, whatever the frame
        for (std::size_t i = 0; i < 4; ++i)
            for (std::size_t field = 0; field < 6; ++field) {
                const Exact::Vec value = Exact::Of(expected[i][field]);
                SCOPED_TRACE(testing::Message() << "body " << i << " field " << field);
                Exact::ExpectNear(MotionOf(mWorld.Body(i))[field], value,
                                  2e-6 * (1 + Exact::Length(value)));
            }
        EXPECT_TRUE(!child.IsAlive() ||
                    child.LocalPosition() == child.Position() - parent.Position());
    }
}

TEST_F(PhysicsSteps, UnregisteringBringsABodyToRestEvenAStranger) {
    Random random(63);
    PhysicsCmpt& body = mWorld.Add(2, {});
    for (int entries = 0; entries < 3; ++entries) {
        for (int i = 0; i < entries; ++i)
            mSystem.Register(&body);
        SetMotion(body, random);
        mSystem.Unregister(&body);
        EXPECT_EQ(MotionOf(body), Motion());
        body.LinearVelocity(Vector3(1, 0, 0));
        StepOnce();
        EXPECT_EQ(body.Position(), Vector3()) << "every entry of it is gone";
    }
}

TEST_F(PhysicsSteps, BothBodiesOfAHitAreToldInOrderOfRegistration) {
    PhysicsCmpt &first = Add(2), &second = Add(2);
    Add(2);
    const Hits all = {{0, 1}, {1, 0}, {0, 2}, {2, 0}, {1, 2}, {2, 1}};
    EXPECT_EQ(StepOnce(), all);
    EXPECT_EQ(StepOnce(), all) << "again in each step";
    mWorld.entities[2]->Alive(false);
    mWorld.onHit = [&] { second.RegisterCollisionResponse(mWorld.responses[2].get()); };
    EXPECT_EQ(StepOnce(), (Hits{{0, 1}, {2, 0}})) << "the functor is read when it is called";
    mWorld.onHit = [&] { second.UnregisterCollisionCallback(); };
    EXPECT_EQ(StepOnce(), (Hits{{0, 1}}));
    mSystem.Register(&first); // a second entry meets the first one
    EXPECT_EQ(StepOnce(), (Hits{{0, 1}, {0, 0}, {0, 0}, {0, 1}}));
}

TEST_F(PhysicsSteps, TheMaskOfTheEarlierBodyDecides) {
    PhysicsCmpt &first = Add(2), &second = Add(2);
    first.Mask("A");
    second.Category("B");
    second.Mask("ALL");
    EXPECT_EQ(StepOnce().size(), 2u) << "the later one's mask plays no part";
    mSystem.Unregister(&first);
    mSystem.Register(&first);
    EXPECT_TRUE(StepOnce().empty()) << "the same two the other way round";
    for (PhysicsCmpt* body : {&first, &second})
        body->DeserializeValue(Json::objectValue, true), body->VolumeType("Sphere");
    EXPECT_TRUE(StepOnce().empty()) << "bodies that name nothing mask each other";
}

TEST_F(PhysicsSteps, DebugHandsOutTheEdgesOfLivingBodiesInEveryFrame) {
    auto& lines = *GraphicsSystem::Instance();
    lines.ClearLine();
    PhysicsCmpt &box = Add(1), &sphere = Add(2);
    Add(0);
    mWorld.entities[2]->Alive(false);
    mSystem.Debug(true);
    mSystem.Update(0); // no step
    const std::vector<Line> drawn = lines.LineContainer();
    ASSERT_EQ(drawn.size(), 12u + 48u);
    Vector3 corners[8];
    box.BoundingOBB().GetVertices(corners);
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_EQ(drawn[i].color, 0xFFC50BDFu);
        EXPECT_NE(std::find(corners, corners + 8, drawn[i].start), corners + 8);
        EXPECT_NE(std::find(corners, corners + 8, drawn[i].end), corners + 8);
    }
    const Sphere ball = sphere.BoundingSphere();
    for (std::size_t i = 12; i < drawn.size(); ++i) {
        EXPECT_NEAR(ball.center.Distance(drawn[i].start), ball.radius, 1e-4f);
        // A circle is closed, and its three planes take turns.
        const std::size_t next = i + 3 < drawn.size() ? i + 3 : 12 + i % 3;
        EXPECT_NEAR(drawn[i].end.Distance(drawn[next].start), 0, 1e-4f) << i;
    }
    lines.Update(0);
    EXPECT_TRUE(lines.LineContainer().empty());
}

} // namespace
