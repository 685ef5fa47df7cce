// SPDX-License-Identifier: MIT
#include "flock.hpp"
#include "tests/support/rounds.hpp"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace {

using namespace EntityTests;
using testing::ThrowsMessage;

TEST(EntityLayers, RandomLayersAgreeWithTheTwin) {
    for (unsigned int seed = 0; seed < Tests::Rounds(600) && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Random random(seed);
        Sheep sheep;
        Entity& entity = sheep;
        Twin twin;
        ExpectSame(entity, twin);
        for (std::size_t layer = random.Below(6) + 1; layer > 0; --layer) {
            // What a host sets marks nothing, and the next reading is compared with it.
            if (random.OneIn(4)) {
                entity.Scale(4, 5, 6);
                twin.held["Scale"] = Parse(R"({"X": 4.0, "Y": 5.0, "Z": 6.0})");
            }
            const auto* const graphics = entity.Graphics();
            const bool master = random.OneIn(3);
            const Json::Value root = random.OneIn(3) ? random.Master() : random.Over(twin);
            entity.DeserializeValue(root, master);
            twin.DeserializeValue(root, master);
            ExpectSame(entity, twin);
            EXPECT_TRUE(!graphics || !entity.Graphics() || entity.Graphics() == graphics);
        }
    }
}

TEST(EntityLayers, NumbersAreComparedAsTheFloatsThatAreStored) {
    Entity entity;
    entity.Deserialize(R"({"Position": {"X": 0.1, "Y": 0.0}, "Orientation": {}})", true);
    Json::Value out;
    EXPECT_THAT([&] { entity.SerializeValue(out, false); }, // nobody named a scale
                ThrowsMessage<std::out_of_range>("invalid map<K, T> key"));
    entity.Deserialize(R"({"Scale": {}})", true);
    entity.Deserialize(R"({"Position": {"X": 0.10000000149011612, "Y": -0.0}})", false);
    EXPECT_FALSE(Write(entity, false).isMember("Position"));
    EXPECT_TRUE(std::signbit(entity.Position().y)); // equal, and stored all the same
    // A NaN differs from itself, even where only another axis is named.
    entity.Scale(std::numeric_limits<float>::quiet_NaN(), 1, 1);
    entity.Deserialize(R"({"Scale": {"Y": 1}})", false);
    EXPECT_TRUE(Write(entity, false).isMember("Scale"));
}

TEST(EntityLayers, WrongTypesRaiseWithTheKeyAndTakeNothingOfTheirVector) {
    Entity entity;
    entity.Deserialize(Whole, true);
    const Json::Value before = Write(entity, true);
    for (const auto& [text, error] : std::map<std::string, std::string>{
             {R"({"Type": []})", R"(string: "Type")"},
             {R"({"Variant": {}})", R"(string: "Variant")"},
             {R"({"Position": {"X": 9, "Y": "1"}})", R"(double: "Y" in "Position")"},
             {R"({"Scale": {"X": 9, "Z": []}})", R"(double: "Z" in "Scale")"},
             {R"({"Orientation": {"Angle": ""}})", R"(double: "Angle" in "Orientation")"},
             {R"({"Orientation": 0})", R"(object: "Orientation")"},
             {R"({"PhysicsCmpt": {"Mass": "1"}})", R"(double: "Mass" in "PhysicsCmpt")"},
             {R"({"GraphicsCmpt": true})", R"(object: "GraphicsCmpt")"},
             {R"({"EmitterCmpt": [1]})", R"(object: "EmitterCmpt")"}}) {
        EXPECT_THAT(([&entity, &bad = text] { entity.Deserialize(bad, false); }),
                    ThrowsMessage<std::runtime_error>("Type is not convertible to " + error));
        EXPECT_EQ(Write(entity, true), before);
    }
}

TEST(MasterFlags, WriteADoubleLikeAFloatWhereJsonHasNoNumberForIt) {
    const std::pair<double, Json::Value> cases[] = {
        {HUGE_VAL, 1e308}, {-HUGE_VAL, -1e308}, {0.1, 0.1}, {std::nan(""), {}}};
    for (const auto& [field, written] : cases) {
        Json::Value out;
        Vorn::MasterFlags().Write(out, "Field", field, true);
        EXPECT_EQ(out["Field"], written);
    }
}

// Two colours of the same number in 32 bits do not differ, however the channels spill.
TEST(MasterFlags, RandomColoursAreComparedPacked) {
    Random random(8);
    Vorn::MasterFlags flags;
    Vorn3DColorSigned colour;
    Json::Value held = Parse(R"({"A": 0, "R": 0, "G": 0, "B": 0})");
    bool master = true;
    for (int step = 0; step < 4000; ++step) {
        const auto packed = [&] {
            return ((((held["A"].asInt64() * 256 + held["R"].asInt64()) * 256) +
                     held["G"].asInt64()) *
                        256 +
                    held["B"].asInt64()) &
                   0xFFFFFFFFll;
        };
        Json::Value root(Json::objectValue);
        const long long before = packed();
        for (const char* key : {"A", "R", "G", "B"})
            if (random.OneIn(3))
                held[key] = root[key] =
                    random.OneIn(20) ? -2147483647 - 1 : static_cast<int>(random.Below(3) * 128);
        const bool asMaster = step == 0 || random.OneIn(4);
        if (asMaster || packed() != before)
            master = asMaster;
        flags.ReadColor(colour, root, asMaster);
        flags.Write(root, "Colour", colour, true);
        ASSERT_EQ(root["Colour"], held);
        ASSERT_EQ(flags.IsMaster(&colour), master);
    }
    // Flags belong to their object, and so does the parent of a component.
    EXPECT_THROW(Vorn::MasterFlags(flags).IsMaster(&colour), std::out_of_range);
    Entity parents[2];
    Vorn::PhysicsCmpt first(&parents[0]);
    Vorn::PhysicsCmpt second(&parents[1]);
    second = first;
    EXPECT_EQ(second.Parent(), &parents[1]);
    EXPECT_EQ(Vorn::PhysicsCmpt(first).Parent(), &parents[0]);
}

} // namespace
