// SPDX-License-Identifier: MIT
#include "flock.hpp"

#include <cmath>

namespace {

using namespace EntityTests;

TEST(EntityTransform, TheWorldMatrixScalesThenTurnsThenMoves) {
    const float quarter = std::acos(0.0f);
    for (const auto& [orientation, angle, corner] :
         {std::tuple(Vector3(0, 0, 5), 0.0f, Vector3(2, 3, 4)),
          std::tuple(Vector3(0, 0, 5), quarter, Vector3(-3, 2, 4)),
          std::tuple(Vector3(1, 0, 0), 0.0f, Vector3(4, 3, -2)),
          std::tuple(Vector3(1, 0, 0), quarter, Vector3(4, 2, 3)),
          std::tuple(Vector3(0, 0, -3), 0.0f, Vector3(-2, 3, -4))}) {
        Entity entity;
        entity.Parent(&entity); // of no effect, like the offset
        entity.RotationOffset(7, 8, 9);
        entity.Orientation(orientation);
        entity.Angle(angle);
        entity.Scale(2, 3, 4);
        entity.Position(10, 20, 30);
        const Vector3 place = entity.GetWorld() * Vector3(1, 1, 1);
        EXPECT_LT(place.Distance(Vector3(10, 20, 30) + corner), 1e-4f) << orientation.x << angle;
    }
}

TEST(EntityTransform, PositionsFollowTheParentsInAnyOrderOfCalls) {
    constexpr std::size_t None = 6;
    struct Plain {
        Vector3 position;
        Vector3 local;
        std::size_t parent = None;
    };
    Random random(3);
    std::array<Entity, None> entities;
    std::array<Plain, None + 1> plain;
    for (int step = 0; step < 5000; ++step) {
        SCOPED_TRACE(step);
        const std::size_t i = random.Below(None);
        Plain& twin = plain[i];
        const Vector3 to(static_cast<float>(random.Below(100)), random.Within(1), 1);
        const Vector3 from = plain[twin.parent].position;
        const std::size_t action = random.Below(9);
        if (action < 3) {
            entities[i].Update(0.1f);
            twin.position = from + twin.local;
        } else if (action < 5) {
            entities[i].Position(to);
            twin = {to, to - from, twin.parent};
        } else if (action < 7) {
            entities[i].LocalPosition(to);
            twin = {from + to, to, twin.parent};
        } else if (action == 7) { // recomputes nothing
            twin.parent = (i + 1 + random.Below(5)) % None;
            entities[i].Parent(&entities[twin.parent]);
        } else {
            entities[i].Deinit();
            twin.parent = None;
        }
        ASSERT_EQ(entities[i].Position(), twin.position);
        ASSERT_EQ(entities[i].LocalPosition(), twin.local);
        ASSERT_EQ(entities[i].Parent(), twin.parent == None ? nullptr : &entities[twin.parent]);
    }
}

struct EntityCopy : testing::Test {
    EntityCopy() {
        source.Deserialize(Whole, true);
        source.Parent(&parent);
        source.LocalPosition(local);
        source.RotationOffset(offset);
        source.Alive(true);
        scene.AddEntity(&source, true);
    }
    ~EntityCopy() override { scene.RemoveEntity(&source, true); }

    static auto State(const Entity& e) {
        return std::tuple(e.Scene(), e.IsAlive(), e.Parent(), e.Variant(), e.Angle(),
                          e.LocalPosition(), e.RotationOffset());
    }
    static std::array<const Entity*, 3> All(const Entity* owner) { return {owner, owner, owner}; }

    const Vector3 zero;
    const Vector3 local{11, 12, 13};
    const Vector3 offset{14, 15, 16};
    const Entity bare;
    Vorn::Scene scene;
    Entity parent;
    Entity source;
};

TEST_F(EntityCopy, ConstructionTakesSceneScaleAndComponentsOnly) {
    const Entity copy(source);
    EXPECT_EQ(State(copy), std::tuple(&scene, false, nullptr, "", 0.0f, zero, zero));
    Entity expected;
    expected.Scale(8, 9, 10);
    Json::Value written = Write(expected, true);
    written["PhysicsCmpt"] = Write(source, true)["PhysicsCmpt"];
    EXPECT_EQ(Write(copy, true), written);
    EXPECT_EQ(Write(copy, false), "raises");
    EXPECT_EQ(Owners(copy), All(&copy));
    EXPECT_EQ(Owners(source), All(&source));
    EXPECT_EQ(Owners(Entity(bare)), All(nullptr));
}

TEST_F(EntityCopy, AssignmentTakesEveryFieldAndSharesTheComponents) {
    Entity copy;
    copy.Deserialize(Whole, true);
    copy = source; // what it owned before is freed
    EXPECT_EQ(State(copy), std::tuple(&scene, true, &parent, "v", 7.0f, local, offset));
    EXPECT_EQ(Write(copy, true), Write(source, true));
    EXPECT_EQ(Write(copy, false), "raises"); // neither its own flags nor those of the source
    EXPECT_EQ(Owners(copy), All(&source));
    // What a system takes in, through whoever shares it, leaves any other list.
    Vorn::CmptList<Vorn::PhysicsCmpt> other;
    other.Add(source.Physics());
    copy.RegisterCmpts();
    EXPECT_TRUE(other.Cmpts().empty());
    copy.UnregisterCmpts();

    // However the share ends, the owner keeps its components; a sanitizer tells.
    copy.Deserialize("{}", true);
    copy = source;
    copy.Conform(&bare);
    copy = source;
    copy = bare;
    EXPECT_EQ(Owners(copy), All(nullptr));
    copy.Deserialize(Whole, false);
    EXPECT_EQ(Owners(copy), All(&copy)); // its own from here on
    copy = source;
    source = copy; // gets back what it owns
    const Entity& same = source;
    source = same;
    EXPECT_EQ(Owners(source), All(&source));
    copy = *std::make_unique<Entity>(source);
    copy = source; // forgets pointers that dangle by now
    EXPECT_EQ(Owners(copy), All(&source));
}

TEST_F(EntityCopy, ConformTakesTheValuesAndKeepsIdentityAndFlags) {
    Entity own;
    own.Deserialize(R"({"Name": "own", "Position": {}, "Orientation": {}, "Scale": {},
                        "GraphicsCmpt": {}, "PhysicsCmpt": {"ScaleFactor": {}}})",
                    true);
    own.Deserialize(R"({"Scale": {"Y": 3}, "PhysicsCmpt": {"Mask": "A", "Drag": false}})", false);
    own.Parent(&source);
    const auto* const graphics = own.Graphics();
    own.Conform(&source);
    EXPECT_EQ(State(own), std::tuple(nullptr, false, &source, "v", 7.0f, zero, offset));
    Json::Value expected = Write(source, true);
    expected["Name"] = "own";
    EXPECT_EQ(Write(own, true), expected);
    for (const char* key : {"Name", "Position", "Orientation"})
        expected.removeMember(key);
    expected["PhysicsCmpt"] = Parse(R"({"Mask": "ALL - A", "Drag": false})");
    EXPECT_EQ(Write(own, false), expected);
    EXPECT_EQ(own.Graphics(), graphics); // reused
    EXPECT_EQ(Owners(own), All(&own));
    own.Conform(&bare);
    EXPECT_EQ(Owners(own), All(nullptr));
}

} // namespace
