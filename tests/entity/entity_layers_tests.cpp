// SPDX-License-Identifier: MIT
#include "layer_twin.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace {

using namespace EntityTests;
using Vorn::Entity;

void Read(Entity& entity, const std::string& text, bool master) {
    entity.DeserializeValue(Parse(text), master);
}

std::set<std::string> Keys(const Json::Value& value) {
    const Json::Value::Members names = value.getMemberNames();
    return {names.begin(), names.end()};
}

TEST(EntityLayers, RandomLayersAgreeWithTheTwin) {
    for (unsigned int seed = 0; seed < 600; ++seed) {
        SCOPED_TRACE(seed);
        RandomObjects random(seed);
        Entity entity;
        Twin twin;
        for (unsigned int layer = 0, layers = 1 + random.Below(6); layer < layers; ++layer) {
            SCOPED_TRACE(layer);
            const bool master = random.OneIn(3);
            const Json::Value root = random.OneIn(3) ? random.Master() : random.Over(twin);
            entity.DeserializeValue(root, master);
            twin.Read(root, master);
            ExpectSame(entity, twin);
            ExpectWrites(entity, twin);
        }
        if (HasFailure())
            return;
    }
}

TEST(EntityLayers, DifferencesOverTheTemplateGiveTheObjectBack) {
    for (unsigned int seed = 0; seed < 400; ++seed) {
        SCOPED_TRACE(seed);
        RandomObjects random(seed + 5000);
        const Json::Value master = random.Master();
        Twin held;
        held.Read(master, true);
        Entity first;
        first.DeserializeValue(master, true);
        Twin over = held;
        for (int layer = 0; layer < 2; ++layer) {
            const Json::Value root = random.Over(over);
            over.Read(root, false);
            first.DeserializeValue(root, false);
        }

        // Through the text, so that the digits of each number must hold too.
        std::string text;
        first.Serialize(text, false);
        Entity second;
        second.DeserializeValue(master, true);
        second.Deserialize(text, false);

        EXPECT_EQ(Write(second, true), Write(first, true));
        std::set<std::string> differing = {"Type"};
        if (second.Name() != held.name.value)
            differing.insert("Name");
        if (AxesOf(second.Position()) != held.position.value)
            differing.insert("Position");
        if (AxesOf(second.Orientation()) != held.orientation.value)
            differing.insert("Orientation");
        if (AxesOf(second.Scale()) != held.scale.value)
            differing.insert("Scale");
        EXPECT_EQ(Keys(Write(second, false)), differing);
        if (HasFailure())
            return;
    }
}

TEST(EntityLayers, ASceneObjectOverATemplate) {
    Entity entity;
    Read(entity, R"({"Type": "tree", "Name": "elm", "Scale": {"X": 2, "Y": 2, "Z": 2},
                     "Orientation": {"Z": 1}})",
         true);
    ExpectNoFlag(entity); // no file has named a position so far
    Read(entity, R"({"Name": "elm", "Scale": {"X": 3}, "Position": {"X": 5, "Y": 5, "Z": 5}})",
         false);
    EXPECT_EQ(Write(entity, false),
              Parse(R"({"Type": "tree", "Scale": {"X": 3.0, "Y": 2.0, "Z": 2.0},
                                              "Position": {"X": 5.0, "Y": 5.0, "Z": 5.0}})"));
    EXPECT_EQ(Write(entity, true), Parse(R"({"Type": "tree", "Name": "elm",
                                             "Scale": {"X": 3.0, "Y": 2.0, "Z": 2.0},
                                             "Orientation": {"X": 0.0, "Y": 0.0, "Z": 1.0},
                                             "Position": {"X": 5.0, "Y": 5.0, "Z": 5.0}})"));
}

TEST(EntityLayers, EachParameterWithoutAFlagRaises) {
    const std::array<const char*, 3> vectors = {"Position", "Orientation", "Scale"};
    for (const char* missing : vectors) {
        SCOPED_TRACE(missing);
        Json::Value root;
        for (const char* key : vectors)
            root[key] = Json::Value(Json::objectValue);
        root.removeMember(missing);
        Entity entity;
        entity.DeserializeValue(root, true);
        ExpectNoFlag(entity);

        // What a host sets is no reading, and neither is an equal value over nothing.
        entity.Position(1, 2, 3);
        entity.Orientation(1, 2, 3);
        entity.Scale(4, 5, 6);
        ExpectNoFlag(entity);
        root[missing] = ToJson(missing == vectors[2] ? Axes{4, 5, 6} : Axes{1, 2, 3});
        entity.DeserializeValue(root, false);
        ExpectNoFlag(entity);
        root[missing]["Y"] = 7;
        entity.DeserializeValue(root, false);
        EXPECT_EQ(Write(entity, false)[missing]["Y"], Json::Value(7.0));
    }

    Entity unnamed;
    Read(unnamed, R"({"Position": {"X": 9}, "Orientation": {"X": 9}, "Scale": {"X": 9}})", false);
    ExpectNoFlag(unnamed);
    Read(unnamed, R"({"Name": "a"})", false);
    EXPECT_EQ(Keys(Write(unnamed, false)),
              (std::set<std::string>{"Type", "Name", "Position", "Orientation", "Scale"}));
}

TEST(EntityLayers, AFlagFollowsTheLastReadingThatChangedIt) {
    Entity entity;
    const std::string whole =
        R"({"Name": "a", "Position": {"X": 1}, "Orientation": {"Z": 1}, "Scale": {"X": 2}})";
    Read(entity, whole, true);
    EXPECT_EQ(Keys(Write(entity, false)), std::set<std::string>{"Type"});

    // Overridden, then read back to the template's value: it stays overridden until a master is
    // read.
    Read(entity, R"({"Name": "b", "Scale": {"X": 3}})", false);
    Read(entity, whole, false);
    EXPECT_EQ(Keys(Write(entity, false)), (std::set<std::string>{"Type", "Name", "Scale"}));
    Read(entity, R"({"Scale": {"X": 4}})", true);
    EXPECT_EQ(Keys(Write(entity, false)), std::set<std::string>{"Type"});

    // What is compared is the field as it stands now, not as a file left it.
    entity.Position(7, 0, 0);
    Read(entity, R"({"Position": {"X": 7}})", false);
    EXPECT_EQ(Keys(Write(entity, false)), std::set<std::string>{"Type"});
    Read(entity, R"({"Position": {"X": 1}})", false);
    EXPECT_EQ(Keys(Write(entity, false)), (std::set<std::string>{"Type", "Position"}));
}

TEST(EntityLayers, NumbersAreComparedAsTheFloatsThatAreStored) {
    Entity entity;
    Read(entity,
         R"({"Position": {"X": 0.1, "Y": 0.0, "Z": 16777217}, "Orientation": {}, "Scale": {}})",
         true);
    EXPECT_EQ(entity.Position().x, 0.1f);
    EXPECT_EQ(entity.Position().z, 16777216.0f);
    Read(entity, R"({"Position": {"X": 0.10000000149011612, "Y": -0.0, "Z": 16777216.4}})", false);
    EXPECT_FALSE(Write(entity, false).isMember("Position"));
    EXPECT_TRUE(std::signbit(entity.Position().y)); // equal, and stored all the same
    Read(entity, R"({"Position": {"X": 0.10000001}})", false);
    EXPECT_TRUE(Write(entity, false).isMember("Position"));
}

TEST(EntityLayers, AMissingAngleIsZeroAndAMissingOrientationLeavesIt) {
    for (const bool master : {false, true}) {
        Entity entity;
        Read(entity, R"({"Orientation": {"X": 1, "Y": 2, "Z": 3, "Angle": 0.5}})", master);
        Read(entity, R"({"Angle": 4, "Name": "a"})", master);
        EXPECT_EQ(entity.Angle(), 0.5f);
        Read(entity, R"({"Orientation": {"Y": 7}})", master);
        EXPECT_EQ(entity.Angle(), 0.0f);
        EXPECT_EQ(AxesOf(entity.Orientation()), (Axes{1, 7, 3}));
    }
}

TEST(EntityLayers, AMasterDecidesOnComponentsAndWhatLiesOverItOnlyAdds) {
    Entity entity;
    Read(entity, R"({"GraphicsCmpt": {}, "PhysicsCmpt": {}, "EmitterCmpt": {}})", true);
    const auto* const graphics = entity.Graphics();
    const auto* const physics = entity.Physics();
    const auto* const emitter = entity.Emitter();
    ASSERT_TRUE(graphics && physics && emitter);

    Read(entity, R"({"GraphicsCmpt": null, "Name": "a"})", false);
    Read(entity, R"({"GraphicsCmpt": {}, "PhysicsCmpt": {}, "EmitterCmpt": {}})", false);
    Read(entity, R"({"GraphicsCmpt": {}, "PhysicsCmpt": {}, "EmitterCmpt": {}})", true);
    EXPECT_EQ(entity.Graphics(), graphics); // kept, not made anew
    EXPECT_EQ(entity.Physics(), physics);
    EXPECT_EQ(entity.Emitter(), emitter);

    Read(entity, R"({"GraphicsCmpt": null, "EmitterCmpt": {}})", true);
    EXPECT_FALSE(entity.Graphics());
    EXPECT_FALSE(entity.Physics());
    EXPECT_EQ(entity.Emitter(), emitter);
    Read(entity, R"({"PhysicsCmpt": {}})", false);
    EXPECT_TRUE(entity.Physics());
    EXPECT_EQ(entity.Physics()->Parent(), &entity);
}

TEST(EntityLayers, AbsentComponentsStandAsNullAndAreNotMadeByReadingThat) {
    Entity entity;
    Json::Value out;
    entity.SerializeValue(out, true);
    for (const char* key : CmptKeys) {
        EXPECT_TRUE(out.isMember(key));
        EXPECT_TRUE(out[key].isNull());
    }
    EXPECT_FALSE(out.isMember("Variant"));
    EXPECT_FALSE(out["Orientation"].isMember("Angle"));
    for (const bool master : {false, true}) {
        Entity other;
        other.DeserializeValue(out, master);
        EXPECT_FALSE(other.Graphics() || other.Physics() || other.Emitter());
    }

    // Graphics and emitter have nothing to write, wherever they come from.
    Read(entity, R"({"GraphicsCmpt": {}, "EmitterCmpt": {}})", true);
    entity.SerializeValue(out, true);
    EXPECT_TRUE(out["GraphicsCmpt"].isNull());
    EXPECT_TRUE(out["EmitterCmpt"].isNull());
}

TEST(EntityLayers, ReadingPutsTheLocalPositionAtThePositionParentOrNot) {
    Entity parent;
    parent.Position(10, 20, 30);
    Entity entity;
    entity.Parent(&parent);
    entity.Position(11, 22, 33);
    Read(entity, R"({"Name": "a"})", false);
    EXPECT_EQ(AxesOf(entity.LocalPosition()), (Axes{11, 22, 33}));
    EXPECT_EQ(AxesOf(entity.Position()), (Axes{11, 22, 33}));
    Read(entity, R"({"Position": {"Y": 1}})", false);
    EXPECT_EQ(AxesOf(entity.LocalPosition()), (Axes{11, 1, 33}));
    entity.Update(0);
    EXPECT_EQ(AxesOf(entity.Position()), (Axes{21, 21, 63}));
}

TEST(EntityLayers, KeysAreSpelledAsTheyAre) {
    Entity entity;
    Read(entity, R"({"type": "a", "NAME": "b", "position": {"X": 1}, "Scale": {"x": 5, "W": 6},
                     "graphicsCmpt": {}, "Pool": "many"})",
         true);
    EXPECT_EQ(entity.Type() + entity.Name(), "");
    EXPECT_EQ(AxesOf(entity.Position()), Axes{});
    EXPECT_EQ(AxesOf(entity.Scale()), (Axes{1, 1, 1}));
    EXPECT_FALSE(entity.Graphics());
}

} // namespace
