// SPDX-License-Identifier: MIT
#include "layer_twin.hpp"

#include <gtest/gtest.h>

namespace {

using namespace EntityTests;
using Vorn::Entity;

const std::string Full =
    R"({"Type": "t", "Variant": "v", "Name": "n", "Position": {"X": 1, "Y": 2, "Z": 3},
    "Orientation": {"X": 4, "Y": 5, "Z": 6, "Angle": 7}, "Scale": {"X": 8, "Y": 9, "Z": 10},
    "GraphicsCmpt": {}, "PhysicsCmpt": {}, "EmitterCmpt": {}})";

/// Virtual calls into each component: a sanitizer tells if one is gone.
void Touch(Entity& entity) {
    for (Vorn::BaseCmpt* cmpt : std::initializer_list<Vorn::BaseCmpt*>{
             entity.Graphics(), entity.Physics(), entity.Emitter()}) {
        if (!cmpt)
            continue;
        Json::Value out;
        cmpt->SerializeValue(out, true);
        cmpt->Parent();
    }
}

void TouchSystems() {
    Vorn::GraphicsSystem::Instance()->Init();
    Vorn::PhysicsSystem::Instance()->Init();
    Vorn::EmitterSystem::Instance()->Init();
}

struct EntityCopy : testing::Test {
    EntityCopy() {
        parent.Position(100, 0, 0);
        source.Deserialize(Full, true);
        source.Parent(&parent);
        source.LocalPosition(Vorn::Vector3(11, 12, 13));
        source.RotationOffset(14, 15, 16);
        source.Alive(true);
        scene.AddEntity(&source, true);
    }
    ~EntityCopy() override { scene.RemoveEntity(&source, true); }

    Vorn::Scene scene;
    Entity parent;
    Entity source;
};

TEST_F(EntityCopy, ConstructionTakesSceneScaleAndComponentsOnly) {
    ASSERT_EQ(source.Scene(), &scene);
    Entity copy(source);
    EXPECT_EQ(copy.Scene(), &scene);
    EXPECT_FALSE(copy.IsAlive());
    EXPECT_EQ(copy.Parent(), nullptr);
    EXPECT_EQ(AxesOf(copy.RotationOffset()), Axes{});
    Twin twin;
    twin.variant.value.clear(); // not "master"
    twin.scale.value = {8, 9, 10};
    twin.cmpts = {true, true, true};
    ExpectSame(copy, twin);
    EXPECT_NE(copy.Graphics(), source.Graphics());
    EXPECT_NE(copy.Physics(), source.Physics());
    EXPECT_NE(copy.Emitter(), source.Emitter());
    EXPECT_EQ(source.Physics()->Parent(), &source);
    ExpectNoFlag(copy);
    EXPECT_EQ(Write(source, false), Parse(R"({"Type": "t"})"));
}

TEST_F(EntityCopy, AConstructedCopyOutlivesItsSource) {
    auto first = std::make_unique<Entity>(source);
    const Entity second(*first);
    const Entity third(second);
    first.reset();
    EXPECT_EQ(second.Graphics()->Parent(), &second);
    EXPECT_EQ(third.Graphics()->Parent(), &third);

    Entity bare;
    const Entity copy(bare);
    EXPECT_FALSE(copy.Graphics() || copy.Physics() || copy.Emitter());
}

TEST_F(EntityCopy, AssignmentTakesEveryFieldAndSharesTheComponents) {
    Entity copy;
    copy.Deserialize(Full, true);
    copy = source; // what it owned before is freed
    EXPECT_EQ(copy.Scene(), &scene);
    EXPECT_TRUE(copy.IsAlive());
    EXPECT_EQ(copy.Parent(), &parent);
    EXPECT_EQ(copy.Variant(), "v");
    EXPECT_EQ(copy.Angle(), 7.0f);
    EXPECT_EQ(AxesOf(copy.LocalPosition()), (Axes{11, 12, 13}));
    EXPECT_EQ(AxesOf(copy.Position()), (Axes{111, 12, 13}));
    EXPECT_EQ(AxesOf(copy.RotationOffset()), (Axes{14, 15, 16}));
    EXPECT_EQ(Write(copy, true), Write(source, true));
    EXPECT_EQ(copy.Graphics(), source.Graphics());
    EXPECT_EQ(copy.Physics(), source.Physics());
    EXPECT_EQ(copy.Emitter(), source.Emitter());
    EXPECT_EQ(copy.Physics()->Parent(), &source);
    ExpectNoFlag(copy); // neither its own flags nor those of the source
    EXPECT_EQ(Write(source, false), Parse(R"({"Type": "t"})"));
}

TEST_F(EntityCopy, ACopyThatGoesOrChangesLeavesTheSharedComponentsToTheirOwner) {
    {
        Entity copy;
        copy = source;
    }
    Touch(source);

    Entity copy;
    copy = source;
    copy.Deserialize("{}", true); // a master without components
    EXPECT_FALSE(copy.Graphics() || copy.Physics() || copy.Emitter());
    Touch(source);
    EXPECT_EQ(source.Emitter()->Parent(), &source);

    copy = source;
    const Entity bare;
    copy.Conform(&bare);
    EXPECT_FALSE(copy.Graphics() || copy.Physics() || copy.Emitter());
    Touch(source);

    copy = source;
    copy = bare;
    EXPECT_FALSE(copy.Graphics() || copy.Physics() || copy.Emitter());
    copy.Deserialize(Full, false); // owns its own from here on
    EXPECT_NE(copy.Graphics(), source.Graphics());
    EXPECT_EQ(copy.Graphics()->Parent(), &copy);
    Touch(source);
}

TEST_F(EntityCopy, ASourceMayGoBeforeItsCopy) {
    Entity copy;
    {
        Entity brief;
        brief.Deserialize(Full, true);
        copy = brief;
    }
    copy = source; // forgets pointers that are dangling by now
    Touch(copy);

    Entity last;
    auto brief = std::make_unique<Entity>();
    brief->Deserialize(Full, true);
    last = *brief;
    brief.reset();
}

TEST_F(EntityCopy, AssigningToItselfOrBackFreesNothing) {
    Entity& same = source;
    source = same;
    ASSERT_TRUE(source.Graphics());
    Touch(source);
    EXPECT_EQ(source.Graphics()->Parent(), &source);
    EXPECT_EQ(source.Name(), "n");
    EXPECT_EQ(Write(source, false), Parse(R"({"Type": "t"})"));

    Entity copy;
    copy = source;
    Entity owner;
    owner.Deserialize(Full, true);
    Entity sharer;
    sharer = owner;
    owner = sharer; // gets back what it owns: freed once, and not before it dies
    ASSERT_EQ(owner.Graphics(), sharer.Graphics());
    Touch(owner);
    EXPECT_EQ(owner.Graphics()->Parent(), &owner);

    Entity third;
    third = sharer; // a share of a share
    Touch(third);
}

TEST_F(EntityCopy, ConformTakesTheValuesAndKeepsIdentityAndFlags) {
    Entity own;
    Entity other;
    own.Deserialize(
        R"({"Type": "o", "Name": "own", "Position": {"X": 50}, "Orientation": {}, "Scale": {},
                        "GraphicsCmpt": {}})",
        true);
    own.Deserialize(R"({"Scale": {"Y": 3}})", false);
    own.Parent(&other);
    const auto* const graphics = own.Graphics();
    own.Conform(&source);

    EXPECT_EQ(own.Type(), "t");
    EXPECT_EQ(own.Variant(), "v");
    EXPECT_EQ(AxesOf(own.Position()), (Axes{111, 12, 13}));
    EXPECT_EQ(AxesOf(own.Orientation()), (Axes{4, 5, 6}));
    EXPECT_EQ(own.Angle(), 7.0f);
    EXPECT_EQ(AxesOf(own.RotationOffset()), (Axes{14, 15, 16}));
    EXPECT_EQ(AxesOf(own.Scale()), (Axes{8, 9, 10}));
    EXPECT_EQ(own.Name(), "own");
    EXPECT_EQ(AxesOf(own.LocalPosition()), (Axes{50, 0, 0}));
    EXPECT_EQ(own.Parent(), &other);
    EXPECT_EQ(own.Scene(), nullptr);
    EXPECT_FALSE(own.IsAlive());
    EXPECT_EQ(Write(own, false),
              Parse(R"({"Type": "t", "Scale": {"X": 8.0, "Y": 9.0, "Z": 10.0}})"));

    EXPECT_EQ(own.Graphics(), graphics); // reused
    ASSERT_TRUE(own.Physics() && own.Emitter());
    EXPECT_EQ(own.Physics()->Parent(), &own);
    EXPECT_EQ(own.Emitter()->Parent(), &own);
    EXPECT_NE(own.Physics(), source.Physics());

    Entity partial;
    partial.Deserialize(R"({"EmitterCmpt": {}})", true);
    own.Conform(&partial);
    EXPECT_FALSE(own.Graphics() || own.Physics());
    EXPECT_TRUE(own.Emitter());
    EXPECT_EQ(own.Variant(), "master");
}

TEST(EntityComponents, SystemsForgetWhatIsGone) {
    {
        Entity entity;
        entity.Deserialize(Full, true);
        entity.RegisterCmpts();
        entity.RegisterCmpts(); // twice in the list
        entity.Deserialize(R"({"GraphicsCmpt": {}})", true);
        TouchSystems();
        Entity shared;
        shared = entity;
        shared.UnregisterCmpts();
        entity.Deserialize("{}", true);
        TouchSystems();
        entity.Deserialize(Full, false);
        entity.RegisterCmpts();
        Entity copy(entity);
        copy.UnregisterCmpts(); // was never in
        TouchSystems();
    }
    TouchSystems();
}

} // namespace
