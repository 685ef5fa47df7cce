// SPDX-License-Identifier: MIT
#include "tests/entity/flock.hpp"
#include "tests/math/exact.hpp"
#include "tests/support/temp_folder.hpp"
#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace Exact;
using namespace Vorn;
using EntityTests::Parse;

const std::string Everything =
    R"({"Mass": 2.5, "Drag": false, "DynamicCheck": true, "Category": "A", "Mask": "ALL - A",
        "Type": "Sphere", "ScaleFactor": {"X": 4, "Y": 2, "Z": 3}})";
const std::string NoKey = "invalid unordered_map<K, T> key";
const std::string NotConvertible = "Type is not convertible to ";

void Load(PhysicsSystem& system, const std::string& text) {
    const Tests::TempFolder folder;
    system.LoadPhysicsInfo(folder.File("physics.json", text));
}

/// That `act` raises an Error whose text has `part` in it.
template <typename Error, typename Act>
void ExpectRaises(const std::string& part, Act act) {
    try {
        act();
        ADD_FAILURE() << "nothing raised, but expected: " << part;
    } catch (const Error& error) {
        EXPECT_NE(std::string(error.what()).find(part), std::string::npos) << error.what();
    }
}

class PhysicsCmptData : public testing::Test {
protected:
    PhysicsCmptData() {
        Load(*PhysicsSystem::Instance(), R"({"Category": ["NONE", "A", "B", "ALL"],
                                             "Volume": ["NONE", "Box", "Sphere", "Mist"]})");
        mEntity.Deserialize(R"({"PhysicsCmpt": {}})", true);
        mCmpt = mEntity.Physics();
    }
    void Read(const std::string& text, bool master) {
        mCmpt->DeserializeValue(Parse(text), master);
    }
    static Json::Value Written(const PhysicsCmpt& cmpt, bool master) {
        Json::Value out(Json::objectValue);
        cmpt.SerializeValue(out, master);
        return out;
    }
    /// The keys of the differences, joined.
    std::string Differences() const {
        std::string joined;
        for (const std::string& key : Written(*mCmpt, false).getMemberNames())
            joined += (joined.empty() ? "" : " ") + key;
        return joined;
    }
    unsigned long MaskOf(const std::string& text) {
        mCmpt->Mask(text);
        return mCmpt->Mask().to_ulong();
    }

    Entity mEntity;
    PhysicsCmpt* mCmpt = nullptr;
};

TEST(PhysicsInfo, IndexesFixBitsAndNumbersAndFirstValuesStay) {
    PhysicsSystem system;
    Load(system, R"({"Category": ["ALL", "NONE", "A", "NONE", "B"], "Volume": ["X", "Y", "Y"]})");
    Load(system, R"({"Category": ["C", "A", "all"], "Volume": ["Y", "Z"]})");
    system.AddCategory("C", 7);
    system.AddCategory("low", -1);
    const std::vector<std::pair<std::string, unsigned long>> expected = {
        {"ALL", 31}, {"NONE", 2}, {"A", 4}, {"B", 16}, {"C", 1}, {"all", 4}, {"low", 0xFFFFFFFF}};
    for (const auto& [name, bits] : expected)
        EXPECT_EQ(system.CategoryMap()->at(name).to_ulong(), bits) << name;
    EXPECT_EQ(system.VolumeMap()->at("Y"), 1u);
    EXPECT_EQ(system.VolumeMap()->at("Z"), 1u);
}

TEST(PhysicsInfo, FaultyFilesAndMoreThanThirtyTwoCategoriesRaise) {
    PhysicsSystem system;
    for (const char* text : {"", "nonsense", "[1]", "{}"})
        EXPECT_NO_THROW(Load(system, text)) << text;
    EXPECT_TRUE(system.CategoryMap()->empty() && system.VolumeMap()->empty());
    ExpectRaises<std::runtime_error>("cannot open file: no/such.file",
                                     [&] { system.LoadPhysicsInfo("no/such.file"); });
    ExpectRaises<std::runtime_error>(NotConvertible,
                                     [&] { Load(system, R"({"Category": [{}]})"); });
    Json::Value root;
    root["Category"][0] = "ALL";
    for (Json::ArrayIndex i = 1; i < 32; ++i)
        root["Category"][i] = "c" + std::to_string(i);
    Load(system, root.toStyledString());
    EXPECT_EQ(system.CategoryMap()->at("ALL").to_ulong(), 0xFFFFFFFFul);
    EXPECT_EQ(system.CategoryMap()->at("c31").to_ulong(), 0x80000000ul);
    root["Category"][32] = "more";
    ExpectRaises<std::length_error>("physics.json", [&] { Load(system, root.toStyledString()); });
}

TEST_F(PhysicsCmptData, MaskExpressionsAreReadFromLeftToRight) {
    // An expression that ends in an operator ends there, and two characters behind an operator the
    // next name begins, whatever they are.
    const char* const texts[] = {
        "",         "A",           "ALL", "A + B", "ALL - A", "ALL - A - B", "A - A",
        "A + NONE", "A - ALL + B", "A +", "B - ",  "A +xB",   "A +B"};
    const unsigned long masks[] = {0, 2, 15, 6, 13, 9, 0, 3, 4, 2, 4, 6, 2};
    for (std::size_t i = 0; i < std::size(texts); ++i)
        EXPECT_EQ(MaskOf(texts[i]), masks[i]) << '"' << texts[i] << '"';
    MaskOf("A + B");
    for (const char* text :
         {"C", "a", "A  + B", "A +  B", "A+ B", "+ A", " - A", "A ", " A", "A B", "A + - B"})
        ExpectRaises<std::out_of_range>(NoKey, [&] { mCmpt->Mask(text); });
    EXPECT_EQ(mCmpt->Mask().to_ulong(), 6u) << "a faulty expression changes nothing";
    ExpectRaises<std::out_of_range>(NoKey, [&] { mCmpt->Category("C"); });
    ExpectRaises<std::out_of_range>(NoKey, [&] { mCmpt->VolumeType("A"); });
}

TEST_F(PhysicsCmptData, SetsAreWrittenAsASumOrAsWhatAllLacks) {
    for (unsigned long set = 0; set < 16; ++set) {
        std::string sum, rest; // in the order of the table
        for (const auto& [name, bits] : *PhysicsSystem::Instance()->CategoryMap()) {
            if (name != "ALL" && (set & bits.to_ulong()))
                sum += (sum.empty() ? "" : " + ") + name;
            else if (name != "ALL")
                rest += (rest.empty() ? "ALL - " : " - ") + name;
        }
        ASSERT_EQ(MaskOf(set == 15 ? "ALL" : set > 7 ? rest : sum), set);
        EXPECT_EQ(Written(*mCmpt, true)["Mask"].asString(), set > 7 ? rest : sum);
    }
}

TEST_F(PhysicsCmptData, AnEmptyObjectSelectsNoneAndKeepsTheRest) {
    const std::string start = R"({"Category": "NONE", "DynamicCheck": false, "Drag": true,
        "Mask": "NONE", "Mass": 1.0, "ScaleFactor": {"X": 1.0, "Y": 1.0, "Z": 1.0}, "Type": 0})";
    EXPECT_EQ(Written(*mCmpt, true).toStyledString(), Parse(start).toStyledString());
    Read(Everything, true);
    Read("{}", false);
    EXPECT_EQ(Written(*mCmpt, false).toStyledString(),
              Parse(R"({"Category": "NONE", "Mask": "NONE", "Type": 0})").toStyledString());
    EXPECT_EQ(mCmpt->Mass(), 2.5f);
    Read(R"({"Mask": "", "ScaleFactor": {}})", false);
    EXPECT_EQ(mCmpt->Mask().to_ulong(), 0u);
    EXPECT_EQ(mCmpt->ScaleFactor(), Vector3(1, 1, 1)) << "an axis left out is 1, not what it was";
}

TEST_F(PhysicsCmptData, EachParameterHasAFlagOfItsOwn) {
    // So far no file named the scale factor.
    ExpectRaises<std::out_of_range>("invalid map<K, T> key", [&] { Differences(); });
    const Json::Value changes = Parse(
        R"({"Mass": 3, "Drag": true, "DynamicCheck": false, "Category": "B", "Mask": "A",
            "Type": "Box", "ScaleFactor": {"Y": 4}})");
    for (const std::string& key : changes.getMemberNames()) {
        Json::Value over = Parse(Everything);
        Read(Everything, true);
        Read(Everything, false);
        EXPECT_EQ(Differences(), "");
        over[key] = changes[key];
        mCmpt->DeserializeValue(over, false);
        EXPECT_EQ(Differences(), key);
        // Written out whole it can be read again, "Type" as a number.
        const Json::Value written = Written(*mCmpt, true);
        Read("{}", true);
        mCmpt->DeserializeValue(written, true);
        EXPECT_EQ(Written(*mCmpt, true), written);
    }
}

TEST_F(PhysicsCmptData, AFaultLeavesWhatWasReadBeforeIt) {
    const std::vector<std::pair<const char*, const char*>> faults = {
        {"Category", "C"}, {"Mask", "A+B"}, {"Type", "Cone"}};
    for (std::size_t fault = 0; fault < 3; ++fault) {
        Read("{}", true);
        Json::Value root = Parse(Everything);
        root[faults[fault].first] = faults[fault].second;
        ExpectRaises<std::out_of_range>(NoKey, [&] { mCmpt->DeserializeValue(root, true); });
        EXPECT_EQ(mCmpt->Mass(), 2.5f);
        EXPECT_EQ(mCmpt->Category().to_ulong(), fault > 0 ? 2u : 1u);
        EXPECT_EQ(mCmpt->Mask().to_ulong(), fault > 1 ? 13u : 1u);
        EXPECT_EQ(mCmpt->VolumeType(), 0u);
        EXPECT_EQ(mCmpt->ScaleFactor(), Vector3(1, 1, 1));
    }
    for (const char* text : {R"({"Mass": "3"})", R"({"Drag": []})", R"({"Category": {}})",
                             R"({"ScaleFactor": {"X": {}}})", R"({"ScaleFactor": 5})"})
        ExpectRaises<std::runtime_error>(NotConvertible, [&] { Read(text, true); });
}

struct CountHits : FunctorBase1 {
    void operator()(CollisionData* data) override { others.push_back(data->other); }
    std::vector<PhysicsCmpt*> others;
};

TEST_F(PhysicsCmptData, ConformTakesTheParametersAndNothingOfTheMotion) {
    Read(Everything, true);
    CountHits response;
    mCmpt->RegisterCollisionResponse(&response);
    mCmpt->LinearVelocity(Vector3(4, 5, 6));
    PhysicsCmpt source(&mEntity);
    source.DeserializeValue(Parse(R"({"Mass": 9, "Category": "B", "ScaleFactor": {"X": 7}})"),
                            true);
    source.LinearVelocity(Vector3(7, 8, 9));
    mCmpt->Conform(source);
    EXPECT_EQ(Written(*mCmpt, true), Written(source, true));
    EXPECT_EQ(Differences(), "") << "the flags stay";
    PhysicsCmpt copy(*mCmpt); // takes over all of it
    CollisionData data{&source};
    for (PhysicsCmpt* cmpt : {mCmpt, &copy, &source}) {
        EXPECT_EQ(cmpt->LinearVelocity() == Vector3(4, 5, 6), cmpt != &source);
        cmpt->HandleCollision(&data);
        cmpt->UnregisterCollisionCallback();
        cmpt->HandleCollision(&data);
    }
    EXPECT_EQ(response.others, (std::vector<PhysicsCmpt*>{&source, &source}));
}

TEST(PhysicsCmpt, WithoutAnEntityItStandsNowhere) {
    PhysicsCmpt cmpt(nullptr);
    cmpt.Position(Vector3(5, 5, 5));
    EXPECT_FALSE(cmpt.IsAlive());
    EXPECT_EQ(cmpt.Position() + cmpt.Scale(), Vector3());
    EXPECT_EQ(cmpt.BoundingSphere().radius, 0.0f);
    EXPECT_EQ(cmpt.BoundingAABB().halfExtents, Vector3());
    EXPECT_EQ(cmpt.BoundingOBB().Position() + cmpt.BoundingOBB().extents, Vector3());
}

void ExpectVolumes(Entity& entity) {
    PhysicsCmpt& cmpt = *entity.Physics();
    const Vector3 s = entity.Scale(), f = cmpt.ScaleFactor();
    const Vec center = Of(entity.Position()),
              half = Of(Vector3(s.x * f.x / 2, s.y * f.y / 2, s.z * f.z / 2));
    ExpectNear(cmpt.BoundingAABB().center, center, 0);
    ExpectNear(cmpt.BoundingAABB().halfExtents, half, 1e-5);
    ExpectNear(cmpt.BoundingSphere().center, center, 0);
    ExpectNear(cmpt.BoundingSphere().radius, Length(half), 1e-5);

    // The box's Z lies along the orientation and its X is level, after a spin about the orientation
    // against the angle: the transpose of the whole product turns it back.
    const Vec z = Unit(Of(entity.Orientation()));
    const Vec x = Unit(Cross({0, 1, 0}, z)), y = Cross(z, x);
    const auto turned = [&](const Vec& v) {
        const Vec spun = Rotate(v, z, -static_cast<double>(entity.Angle()));
        return spun.x * x + spun.y * y + spun.z * z;
    };
    const OBB box = cmpt.BoundingOBB();
    Vector3 corners[8];
    box.GetVertices(corners);
    ExpectNear(corners[6], center + turned(half), 1e-4);
    ExpectNear(corners[0], center + turned({-half.x, half.y, -half.z}), 1e-4);
    ExpectNear(corners[3], center + turned({half.x, -half.y, -half.z}), 1e-4);
    ExpectNear(box.normals[3], turned({0, 0, 1}), 1e-3);
}

TEST_F(PhysicsCmptData, VolumesFollowTheEntityAtOnce) {
    Exact::Random random(51);
    Entity parent;
    mEntity.Parent(&parent);
    mEntity.Orientation(0, 0, 1);
    for (int step = 0; step < 1000 && !HasFailure(); ++step) {
        const Vector3 v = random.Place(2);
        const int change = random.Int(0, 6);
        SCOPED_TRACE(change);
        if (change == 0)
            mEntity.Position(v);
        else if (change == 1)
            mEntity.Orientation(To(3 * random.Axis()));
        else if (change == 2)
            mEntity.Angle(v.x);
        else if (change == 3)
            mEntity.Scale(v.x + 3, 2, v.z + 3);
        else if (change == 4)
            mCmpt->ScaleFactor(Vector3(v.x + 3, 1, 2));
        else if (change == 5)
            mEntity.Deserialize(R"({"Scale": {"Y": 3}})", false);
        else
            parent.Position(v), mEntity.Update(1);
        ExpectVolumes(mEntity);
    }
    mCmpt->Position(Vector3(5, 5, 5));
    EXPECT_EQ(mEntity.LocalPosition(), Vector3(5, 5, 5) - parent.Position());
    mEntity.Orientation(0, 0, 0);
    Vector3 corners[8];
    mCmpt->BoundingOBB().GetVertices(corners);
    EXPECT_EQ(corners[0], corners[7]) << "without a direction the box falls together";
}

} // namespace
