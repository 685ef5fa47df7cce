// SPDX-License-Identifier: MIT
#include "layer_twin.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <locale>

namespace {

using namespace EntityTests;
using Vorn::Entity;

constexpr float Infinity = std::numeric_limits<float>::infinity();
const std::string Whole =
    R"({"Type": "t", "Variant": "v", "Name": "n", "Position": {"X": 1, "Y": 2, "Z": 3},
    "Orientation": {"X": 4, "Y": 5, "Z": 6, "Angle": 7}, "Scale": {"X": 8, "Y": 9, "Z": 10},
    "GraphicsCmpt": {}, "EmitterCmpt": {}})";

void ExpectNotConvertible(const Json::Value& root, const std::string& type,
                          const std::string& key) {
    SCOPED_TRACE(root.toStyledString());
    const std::string start = "Type is not convertible to " + type;
    for (const bool master : {false, true}) {
        Entity entity;
        try {
            entity.DeserializeValue(root, master);
            ADD_FAILURE() << "read";
        } catch (const std::runtime_error& error) {
            const std::string text = error.what();
            EXPECT_EQ(text.substr(0, start.size()), start);
            EXPECT_NE(text.find('"' + key + '"', start.size()), std::string::npos) << text;
        }
        EXPECT_THROW(entity.Deserialize(root.toStyledString(), master), std::runtime_error);
    }
}

TEST(EntityJson, WrongTypesRaiseWithTheKey) {
    for (const char* key : {"Type", "Variant", "Name"}) {
        for (const char* wrong : {"[]", "{}", "[\"a\"]"}) {
            Json::Value root;
            root[key] = Parse(wrong);
            ExpectNotConvertible(root, "string", key);
        }
    }
    for (const char* vector : {"Position", "Orientation", "Scale"}) {
        for (const char* wrong : {"\"1\"", "\"\"", "[]", "[1]", "{}"}) {
            for (const char* axis : AxisKeys) {
                Json::Value root;
                root[vector][axis] = Parse(wrong);
                ExpectNotConvertible(root, "double", axis);
            }
        }
        for (const char* wrong : {"\"1\"", "\"\"", "5", "0", "1.5", "true", "false", "[]", "[1]"}) {
            Json::Value root;
            root[vector] = Parse(wrong);
            ExpectNotConvertible(root, "", vector);
        }
    }
    for (const char* wrong : {"\"1\"", "[]", "{}"}) {
        Json::Value root;
        root["Orientation"]["Angle"] = Parse(wrong);
        ExpectNotConvertible(root, "double", "Angle");
    }
}

TEST(EntityJson, AComponentThatIsNoObjectRaisesWithItsKey) {
    for (const char* key : CmptKeys) {
        for (const char* wrong : {"\"1\"", "5", "true", "[1]"}) {
            Json::Value root;
            root[key] = Parse(wrong);
            ExpectNotConvertible(root, "", key);
        }
    }
}

TEST(EntityJson, AFaultyVectorIsNotTakenInPart) {
    Entity entity;
    entity.Deserialize(Whole, true);
    EXPECT_THROW(entity.Deserialize(
                     R"({"Name": "m", "Position": {"X": 7}, "Scale": {"X": 0, "Z": "a"}})", false),
                 std::runtime_error);
    EXPECT_EQ(AxesOf(entity.Scale()), (Axes{8, 9, 10}));
    // What stands before it in the order of reading has been read, flags included.
    EXPECT_EQ(Write(entity, false),
              Parse(R"({"Type": "t", "Name": "m", "Position": {"X": 7.0, "Y": 2.0, "Z": 3.0}})"));
}

TEST(EntityJson, NullAtAKeyIsNoValueForVectorsAndZeroForNumbersAndTexts) {
    Entity entity;
    entity.Deserialize(Whole, true);
    entity.Deserialize(
        R"({"Position": null, "Orientation": null, "Scale": null, "GraphicsCmpt": null})", false);
    EXPECT_EQ(AxesOf(entity.Position()), (Axes{1, 2, 3}));
    EXPECT_EQ(entity.Angle(), 7.0f);
    EXPECT_TRUE(entity.Graphics());
    EXPECT_EQ(Write(entity, false), Parse(R"({"Type": "t"})"));

    entity.Deserialize(R"({"Name": null, "Position": {"Y": null}, "Orientation": {"Angle": null}})",
                       false);
    EXPECT_EQ(entity.Name(), "");
    EXPECT_EQ(AxesOf(entity.Position()), (Axes{1, 0, 3}));
    EXPECT_EQ(entity.Angle(), 0.0f);
    EXPECT_EQ(Write(entity, false), Parse(R"({"Type": "t", "Name": "",
                                              "Position": {"X": 1.0, "Y": 0.0, "Z": 3.0}})"));

    Entity fresh;
    fresh.Deserialize(R"({"Position": null, "Orientation": {}, "Scale": {}})", true);
    ExpectNoFlag(fresh); // a null names nothing
}

TEST(EntityJson, ATextThatIsNoObjectCountsAsAnEmptyOne) {
    const std::string deep = std::string(3000, '[') + std::string(3000, ']');
    for (const std::string& text :
         {std::string(), std::string("nonsense"), std::string("[1, 2]"), std::string("5"),
          std::string("\"Name\""), std::string("null"), std::string("\0\xff{", 3), deep,
          "{\"Position\": " + deep + "}"}) {
        SCOPED_TRACE(text.substr(0, 40));
        Entity entity;
        entity.Deserialize(Whole, true);
        EXPECT_NO_THROW(entity.Deserialize(text, false));
        EXPECT_TRUE(entity.Graphics() && entity.Emitter());
        EXPECT_EQ(Write(entity, false), Parse(R"({"Type": "t"})"));
        EXPECT_NO_THROW(entity.Deserialize(text, true));
        EXPECT_FALSE(entity.Graphics() || entity.Emitter()); // a master that names none
        EXPECT_EQ(entity.Name(), "n");
        EXPECT_EQ(AxesOf(entity.Scale()), (Axes{8, 9, 10}));
    }
}

TEST(EntityJson, ANaNDiffersFromItself) {
    Json::Value root = Parse(Whole);
    root["Scale"]["Y"] = std::numeric_limits<double>::quiet_NaN();
    Entity entity;
    entity.DeserializeValue(root, true);
    EXPECT_TRUE(std::isnan(entity.Scale().y));
    EXPECT_FALSE(Write(entity, false).isMember("Scale"));
    // Even where only another axis is named: the whole vector is compared.
    entity.DeserializeValue(Parse(R"({"Scale": {"X": 8}})"), false);
    EXPECT_TRUE(Write(entity, false).isMember("Scale"));
}

TEST(EntityJson, NumbersBeyondAFloatAreWrittenAsTextThatCanBeRead) {
    Entity entity;
    entity.Deserialize(R"({"Position": {"X": 1e39, "Y": -1e300, "Z": 1e-40},
                           "Orientation": {"X": 18446744073709551615, "Y": 3.4028235e38,
                                           "Z": 1e-320}})",
                       true);
    EXPECT_EQ(AxesOf(entity.Position()), (Axes{Infinity, -Infinity, 1e-40f}));
    EXPECT_EQ(AxesOf(entity.Orientation()),
              (Axes{18446744073709551616.0f, std::numeric_limits<float>::max(), 0.0f}));
    entity.Scale(std::numeric_limits<float>::quiet_NaN(), Infinity, -0.0f);

    std::string text;
    entity.Serialize(text, true);
    const Json::Value strict = Parse(text);
    EXPECT_EQ(strict["Position"]["Z"].asFloat(), 1e-40f);
    Entity other;
    other.Deserialize(text, true);
    EXPECT_EQ(AxesOf(other.Position()), AxesOf(entity.Position()));
    EXPECT_EQ(AxesOf(other.Orientation()), AxesOf(entity.Orientation()));
    EXPECT_EQ(AxesOf(other.Scale()), (Axes{0.0f, Infinity, 0.0f}));
    EXPECT_TRUE(std::signbit(other.Scale().z));
}

TEST(EntityJson, NamesComeBackWhateverIsInThem) {
    const std::string name = std::string("quote \" back \\ line \n tab \t Sch\xc3\xa4"
                                         "fer \xf0\x9f\x90\x91 nul ") +
                             std::string("\0/end", 5);
    Json::Value root;
    root["Type"] = root["Name"] = name;
    Entity entity;
    entity.DeserializeValue(root, true);
    ASSERT_EQ(entity.Name(), name);
    std::string text = "is replaced";
    entity.Serialize(text, true);
    Entity other;
    other.Deserialize(text, false);
    EXPECT_EQ(other.Name(), name);
    EXPECT_EQ(other.Type(), name);
}

TEST(EntityJson, TheTextIsStyled) {
    Entity entity;
    entity.Deserialize(Whole, true);
    std::string text;
    entity.Serialize(text, true);
    Json::Value value;
    entity.SerializeValue(value, true);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    EXPECT_EQ(text, Json::StyledWriter().write(value));
#pragma GCC diagnostic pop
}

TEST(EntityJson, TheHostsLocaleChangesNoNumber) {
    struct Commas : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new Commas));
    Entity entity;
    std::string text;
    entity.Deserialize(R"({"Position": {"X": 1.5, "Y": 1234567, "Z": -2.5e3}})", true);
    entity.Serialize(text, true);
    std::locale::global(before);
    EXPECT_EQ(AxesOf(entity.Position()), (Axes{1.5f, 1234567.0f, -2500.0f}));
    EXPECT_EQ(Parse(text)["Position"], ToJson(Axes{1.5f, 1234567.0f, -2500.0f}));
}

} // namespace
