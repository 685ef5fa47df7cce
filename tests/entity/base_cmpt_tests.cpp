// SPDX-License-Identifier: MIT
#include "layer_twin.hpp"

#include <gtest/gtest.h>

#include <set>

namespace {

using namespace EntityTests;
using Vorn::BaseCmpt;
using Vorn::Vector3;

/// A component of a host, with a parameter of each kind.
class LampCmpt : public BaseCmpt {
public:
    using BaseCmpt::BaseCmpt;

    void DeserializeValue(const Json::Value& value, bool master) override {
        dsParam(mLabel, Vorn::JsonString(value, "Label", mLabel), master);
        dsParam(mOn, Vorn::JsonBool(value, "On", mOn), master);
        dsParam(mCount, Vorn::JsonInt(value, "Count", mCount), master);
        dsParam(mMask, Vorn::JsonUInt(value, "Mask", mMask), master);
        dsParam(mPower, Vorn::JsonFloat(value, "Power", mPower), master);
        Json::Value offset = value["Offset"];
        if (!offset.isNull())
            dsParamVector3(mOffset, offset, master);
        Json::Value glow = value["Glow"];
        if (!glow.isNull())
            dsParamColor(mGlow, glow, master);
    }
    void SerializeValue(Json::Value& out, bool master) const override {
        seParam(out, "Label", mLabel, master);
        seParam(out, "On", mOn, master);
        seParam(out, "Count", mCount, master);
        seParam(out, "Mask", mMask, master);
        seParam(out, "Power", mPower, master);
        seParamVector3(out, "Offset", mOffset, master);
        seParamColor(out, "Glow", mGlow, master);
    }
    void Init() override {}
    void Deinit() override {}
    void Conform(const BaseCmpt& source) override { *this = dynamic_cast<const LampCmpt&>(source); }

    std::string mLabel = "lamp";
    bool mOn = false;
    int mCount = 0;
    unsigned int mMask = 0;
    float mPower = 1.0f;
    Vector3 mOffset;
    Vorn3DColorSigned mGlow;
};

using Channels = std::array<int, 4>;

Channels ChannelsOf(const Vorn3DColorSigned& c) {
    return {c.a, c.r, c.g, c.b};
}

/// The keys of the differences, joined; "raises" where a parameter has no flag.
std::string Differences(const LampCmpt& lamp) {
    Json::Value out;
    try {
        lamp.SerializeValue(out, false);
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "invalid map<K, T> key");
        return "raises";
    }
    std::string joined;
    if (out.isObject()) {
        for (const std::string& key : out.getMemberNames())
            joined += (joined.empty() ? "" : " ") + key;
    }
    return joined;
}

const std::string Everything =
    R"({"Label": "a", "On": true, "Count": -3, "Mask": 4294967295, "Power": 0.1,
        "Offset": {"X": 1, "Y": 2, "Z": 3}, "Glow": {"A": 4, "R": 5, "G": 6, "B": 7}})";

TEST(BaseCmpt, WritesAllOfItsParametersAndReadsThemBack) {
    LampCmpt lamp;
    lamp.DeserializeValue(Parse(Everything), true);
    EXPECT_EQ(Differences(lamp), "");
    Json::Value out;
    lamp.SerializeValue(out, true);
    EXPECT_EQ(out.toStyledString(),
              Parse(R"({"Label": "a", "On": true, "Count": -3, "Mask": 4294967295,
        "Power": 0.10000000149011612, "Offset": {"X": 1.0, "Y": 2.0, "Z": 3.0},
        "Glow": {"A": 4, "R": 5, "G": 6, "B": 7}})")
                  .toStyledString());
    EXPECT_TRUE(out["Glow"]["A"].isInt());
    EXPECT_EQ(out["Offset"]["X"].type(), Json::realValue);

    LampCmpt other;
    other.DeserializeValue(out, false);
    EXPECT_EQ(Differences(other), "Count Glow Label Mask Offset On Power");
    Json::Value again;
    other.SerializeValue(again, false);
    EXPECT_EQ(again, out);
}

TEST(BaseCmpt, EachParameterHasAFlagOfItsOwn) {
    const Json::Value everything = Parse(Everything);
    const Json::Value changed = Parse(
        R"({"Label": "b", "On": false, "Count": -4, "Mask": 1, "Power": 0.2, "Offset": {"Z": 4},
                  "Glow": {"B": 8}})");
    for (const std::string& key : changed.getMemberNames()) {
        SCOPED_TRACE(key);
        Json::Value one;
        one[key] = changed[key];
        LampCmpt lamp;
        LampCmpt untouched;
        lamp.DeserializeValue(everything, true);
        untouched.DeserializeValue(everything, true);
        lamp.DeserializeValue(one, false);
        EXPECT_EQ(Differences(lamp), key);
        lamp.DeserializeValue(everything, false);
        EXPECT_EQ(Differences(lamp), key);
        lamp.DeserializeValue(one, true);
        EXPECT_EQ(Differences(lamp), "");
        EXPECT_EQ(Differences(untouched), "");
    }
    LampCmpt fresh;
    EXPECT_EQ(Differences(fresh), "raises");
    fresh.DeserializeValue(Parse("{}"), true); // names neither offset nor glow
    EXPECT_EQ(Differences(fresh), "raises");
}

TEST(BaseCmpt, ColoursAreComparedPacked) {
    LampCmpt lamp;
    lamp.DeserializeValue(Parse(Everything), true);
    const auto glow = [&](const char* channels) {
        lamp.DeserializeValue(Parse(std::string(R"({"Glow": )") + channels + "}"), false);
        return Differences(lamp);
    };
    // The same number in 32 bits, however the channels spill: no difference, and the new channels
    // are kept.
    EXPECT_EQ(glow(R"({"G": 5, "B": 263})"), "");
    EXPECT_EQ(ChannelsOf(lamp.mGlow), (Channels{4, 5, 5, 263}));
    EXPECT_EQ(glow(R"({"A": 260})"), "");
    EXPECT_EQ(glow(R"({"A": -252, "R": 5, "G": 6, "B": 7})"), "");
    EXPECT_EQ(glow(R"({"A": 3, "R": 261})"), "");
    EXPECT_EQ(ChannelsOf(lamp.mGlow), (Channels{3, 261, 6, 7}));
    EXPECT_EQ(glow(R"({"R": 2147483647, "B": -2147483648})"), "Glow");
    EXPECT_EQ(ChannelsOf(lamp.mGlow), (Channels{3, 2147483647, 6, -2147483647 - 1}));
    Json::Value out;
    lamp.SerializeValue(out, false);
    EXPECT_EQ(out["Glow"], Parse(R"({"A": 3, "R": 2147483647, "G": 6, "B": -2147483648})"));
}

TEST(BaseCmpt, RandomColoursAgreeWithTheTwin) {
    std::mt19937 random(8);
    const auto below = [&](unsigned int count) {
        return std::uniform_int_distribution<unsigned int>(0, count - 1)(random);
    };
    LampCmpt lamp;
    lamp.DeserializeValue(Parse(Everything), true);
    std::array<long long, 4> channels = {4, 5, 6, 7};
    bool master = true;
    const auto packed = [](const std::array<long long, 4>& c) {
        return (((c[0] * 256 + c[1]) * 256 + c[2]) * 256 + c[3]) & 0xFFFFFFFFll;
    };
    for (int step = 0; step < 4000; ++step) {
        SCOPED_TRACE(step);
        Json::Value root;
        root["Glow"] = Json::Value(Json::objectValue);
        const auto before = channels;
        constexpr std::array<const char*, 4> keys = {"A", "R", "G", "B"};
        for (std::size_t i = 0; i < 4; ++i) {
            if (below(3) == 0) {
                channels[i] = static_cast<long long>(below(3)) * 256 - 256 + below(2);
                root["Glow"][keys[i]] = static_cast<int>(channels[i]);
            }
        }
        const bool asMaster = below(4) == 0;
        if (asMaster)
            master = true;
        else if (packed(channels) != packed(before))
            master = false;
        lamp.DeserializeValue(root, asMaster);
        for (std::size_t i = 0; i < 4; ++i)
            ASSERT_EQ(ChannelsOf(lamp.mGlow)[i], channels[i]);
        ASSERT_EQ(Differences(lamp), master ? "" : "Glow");
    }
}

TEST(BaseCmpt, WrongTypesRaiseWithTheKey) {
    const auto expect = [](const std::string& text, const std::string& type,
                           const std::string& key) {
        SCOPED_TRACE(text);
        LampCmpt lamp;
        lamp.DeserializeValue(Parse(Everything), true);
        const std::string start = "Type is not convertible to " + type;
        try {
            lamp.DeserializeValue(Parse(text), false);
            ADD_FAILURE() << "read";
        } catch (const std::runtime_error& error) {
            const std::string what = error.what();
            EXPECT_EQ(what.substr(0, start.size()), start);
            EXPECT_NE(what.find('"' + key + '"', start.size()), std::string::npos) << what;
        }
        EXPECT_EQ(Differences(lamp), "");
        EXPECT_EQ(AxesOf(lamp.mOffset), (Axes{1, 2, 3}));
        EXPECT_EQ(ChannelsOf(lamp.mGlow), (Channels{4, 5, 6, 7}));
    };
    expect(R"({"Label": {}})", "string", "Label");
    expect(R"({"On": []})", "bool", "On");
    expect(R"({"Count": "3"})", "int", "Count");
    expect(R"({"Power": "3"})", "double", "Power");
    expect(R"({"Offset": {"X": 9, "Y": {}}})", "double", "Y");
    for (const std::string channel : {"A", "R", "G", "B"}) {
        for (const std::string wrong : {"\"1\"", "[]", "{}", "4294967296", "2147483648", "-1e10"})
            expect("{\"Glow\": {\"" + channel + "\": " + wrong + "}}", "int", channel);
    }
}

TEST(BaseCmpt, NullIsZero) {
    LampCmpt lamp;
    lamp.DeserializeValue(Parse(Everything), true);
    lamp.DeserializeValue(Parse(R"({"Label": null, "On": null, "Count": null, "Power": null,
                                    "Offset": {"Y": null}, "Glow": {"R": null}})"),
                          false);
    EXPECT_EQ(lamp.mLabel, "");
    EXPECT_FALSE(lamp.mOn);
    EXPECT_EQ(lamp.mCount, 0);
    EXPECT_EQ(lamp.mPower, 0.0f);
    EXPECT_EQ(AxesOf(lamp.mOffset), (Axes{1, 0, 3}));
    EXPECT_EQ(ChannelsOf(lamp.mGlow), (Channels{4, 0, 6, 7}));
    EXPECT_EQ(Differences(lamp), "Count Glow Label Offset On Power");
}

TEST(BaseCmpt, ParentAndFlagsBelongToTheObject) {
    Vorn::Entity first;
    Vorn::Entity second;
    EXPECT_EQ(LampCmpt().Parent(), nullptr);
    LampCmpt lamp(&first);
    lamp.DeserializeValue(Parse(Everything), true);
    lamp.DeserializeValue(Parse(R"({"Count": 9})"), false);

    const LampCmpt copy(lamp);
    EXPECT_EQ(copy.Parent(), &first);
    EXPECT_EQ(copy.mCount, 9);
    EXPECT_EQ(Differences(copy), "raises");

    LampCmpt other(&second);
    other.DeserializeValue(Parse(Everything), true);
    other.DeserializeValue(Parse(R"({"Power": 9})"), false);
    other = lamp;
    EXPECT_EQ(other.Parent(), &second);
    EXPECT_EQ(other.mCount, 9);
    EXPECT_EQ(other.mPower, 0.1f);
    EXPECT_EQ(Differences(other), "Power");
    EXPECT_EQ(Differences(lamp), "Count");
    const LampCmpt& same = other;
    other = same;
    EXPECT_EQ(Differences(other), "Power");
}

} // namespace
