// SPDX-License-Identifier: MIT
#include "tests/resource/model_file.hpp"

#include <array>
#include <cstdio>
#include <map>
#include <stdexcept>
#include <utility>

namespace {

using ResourceTests::Floats;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;
using testing::ThrowsMessage;
using Tests::Text;
using Vorn::Material;

using Traits = std::map<std::string, std::string>;

std::string Hex(unsigned int number) {
    char text[16];
    std::snprintf(text, sizeof text, "%08X", number);
    return text;
}

Traits Of(Material& m) {
    return {{"Transparency", m.HasTransparency() ? "1" : "0"},
            {"Lighting", m.HasLighting() ? "1" : "0"},
            {"Ambient", Text(Floats(m.Ambient()))},
            {"Diffuse", Text(Floats(m.Diffuse()))},
            {"Emissive", Text(Floats(m.Emissive()))},
            {"Specular", Text(Floats(m.Specular()))},
            {"Shininess", Text({m.Shininess()})},
            {"ModulationColor", Hex(m.ModulationColor())},
            {"AdditiveColor", Hex(m.AdditiveColor())},
            {"Texture", m.TexturePath()}};
}
const Traits Default = {{"Transparency", "0"},
                        {"Lighting", "1"},
                        {"Ambient", "0 0 0 0"},
                        {"Diffuse", "0 0 0 0"},
                        {"Emissive", "0 0 0 0"},
                        {"Specular", "0 0 0 0"},
                        {"Shininess", "1"},
                        {"ModulationColor", "FFFFFFFF"},
                        {"AdditiveColor", "00000000"},
                        {"Texture", "t"}};

class Materials : public Tests::RecorderTest {
protected:
    Materials() {
        Open();
        folder.File("data/img/t", Tests::Tga(0xFF000000));
        textures.Load("t");
    }
    void Write(const std::string& keys, const std::string& name = "m") {
        folder.File("data/mat/" + name,
                    R"({"Texture": "t")" + (keys.empty() ? "" : ", " + keys) + "}");
    }
};

TEST_F(Materials, TakesEachKeyAndDefaultsForTheRest) {
    using Row = std::pair<std::string, std::string>;
    struct Rows {
        std::vector<std::string> keys;
        std::vector<Row> values;
    };
    const std::vector<Rows> table = {
        {{"Transparency", "Lighting"},
         {{"true", "1"},
          {"false", "0"},
          {"null", "0"},
          {"0", "0"},
          {"1", "1"},
          {"-7", "1"},
          {"0.0", "0"},
          {"0.1", "1"},
          {R"("")", "0"},
          {R"("false")", "1"},
          {"[]", "0"},
          {"[false]", "1"},
          {"{}", "0"},
          {R"({"a": 0})", "1"},
          {"18446744073709551615", "1"}}},
        {{"Ambient", "Diffuse", "Emissive", "Specular"},
         {{"[1, 2.5, -3, 0.125]", "1 2.5 -3 0.125"},
          {"[0.5, 0.5]", "0.5 0.5 0 0"},
          {"[]", "0 0 0 0"},
          {"[1, 2, 3, 4, 5, [6]]", "1 2 3 4"},
          {"[true, null, 1e40, -1e-60]", "1 0 inf -0"},
          {"7", "0 0 0 0"},
          {R"("1")", "0 0 0 0"},
          {R"({"0": 1})", "0 0 0 0"},
          {"null", "0 0 0 0"}}},
        {{"Shininess"}, {{"7.5", "7.5"}, {"true", "1"}, {"null", "0"}, {"-2", "-2"}}},
        {{"ModulationColor", "AdditiveColor"},
         {{"[1, 2, 3, 4]", "01020304"},
          {"[0, 300, 0, 0]", "012C0000"}, // carries
          {"[255, 255, 255, 256]", "00000000"},
          {"[0, 0, 0, -1]", "FFFFFFFF"},
          {"[1, 0, -2, 3]", "00FFFE03"},
          {"[2147483647, 0, 0, 2147483647]", "7EFFFFFF"},
          {"[-2147483648, 1, 1, 1]", "00010101"},
          {"[1, 2]", "01020000"},
          {"[]", "00000000"},
          {"[1, 2, 3, 4, 5]", "01020304"},
          {"[true, null, 2.9, 7.0]", "01000207"}}}};
    for (const auto& [keys, values] : table)
        for (const std::string& key : keys)
            for (const auto& [json, expected] : values) {
                Write("\"" + key + "\": " + json);
                materials.Load("m");
                Traits traits = Default;
                traits[key] = expected;
                EXPECT_EQ(Of(*materials.Get("m")), traits) << key << ": " << json;
                materials.Unload("m");
            }
    for (const std::string json : {"3", R"("a")", "{}", "null"}) {
        Write(R"("ModulationColor": )" + json + R"(, "AdditiveColor": )" + json);
        materials.Load("m");
        EXPECT_EQ(Of(*materials.Get("m")), Default) << json;
        materials.Unload("m");
    }
}

TEST_F(Materials, KnowsItsPathAndItsTextureAndIsReadOnce) {
    Write("");
    materials.Load("m");
    Material* const material = materials.Get("m");
    EXPECT_EQ(material->Path(), "m");
    EXPECT_EQ(material->Texture(), textures.Get("t"));
    Write(R"("Shininess": 9)");
    materials.Load("m");
    materials.Release();
    materials.Reload();
    EXPECT_EQ(materials.Get("m"), material);
    EXPECT_EQ(Of(*material), Default);
    materials.Unload("unknown");
    materials.Unload("m");
    materials.Load("m");
    EXPECT_EQ(materials.Get("m")->Shininess(), 9);
}

TEST_F(Materials, AWrongTypeRaisesAndNamesItsKey) {
    const std::vector<std::vector<std::string>> rows = {
        {"Ambient", "double", R"(["x"])"},       {"Diffuse", "double", "[0, [1]]"},
        {"Emissive", "double", "[0, 0, 0, {}]"}, {"Specular", "double", R"([0, 0, "1"])"},
        {"Shininess", "double", R"("x")"},       {"Shininess", "double", "[1]"},
        {"Shininess", "double", "{}"},           {"ModulationColor", "int", R"(["1"])"},
        {"AdditiveColor", "int", "[0, 0, []]"},  {"ModulationColor", "int", "[0, 0, 0, {}]"}};
    for (const auto& row : rows) {
        Write("\"" + row[0] + "\": " + row[2]);
        EXPECT_THAT([&] { materials.Load("m"); },
                    ThrowsMessage<std::runtime_error>(AllOf(
                        StartsWith("Type is not convertible to " + row[1]), HasSubstr(row[0]))))
            << row[0] << row[2];
        materials.Unload("m");
    }
    for (const char* texture : {"[1]", "{}"}) {
        folder.File("data/mat/m", std::string(R"({"Texture": )") + texture + "}");
        EXPECT_THAT([&] { materials.Load("m"); },
                    ThrowsMessage<std::runtime_error>(AllOf(
                        StartsWith("Type is not convertible to string"), HasSubstr("Texture"))));
        materials.Unload("m");
    }
    for (const char* beyond : {"[3e9]", "[0, -2147483649]"}) {
        Write(std::string(R"("AdditiveColor": )") + beyond);
        EXPECT_THROW(materials.Load("m"), std::runtime_error) << beyond;
        materials.Unload("m");
    }
}

TEST_F(Materials, WithoutALoadedTextureItStaysHalfFilled) {
    for (const char* text : {R"({"Lighting": false})", R"({"Texture": "u", "Lighting": false})",
                             "no material", "", "[1]"}) {
        folder.File("data/mat/m", text);
        EXPECT_THAT([&] { materials.Load("m"); },
                    ThrowsMessage<std::out_of_range>("invalid map<K, T> key"));
        ASSERT_NO_THROW(materials.Get("m")) << text;
        EXPECT_EQ(materials.Get("m")->Texture(), nullptr);
        EXPECT_EQ(materials.Get("m")->HasLighting(), *text != '{');
        materials.Load("m"); // it is there
        materials.Unload("m");
    }
    EXPECT_THROW(textures.Get("u"), std::out_of_range);
}

TEST_F(Materials, AFileThatCannotBeReadLeavesNoEntry) {
    folder.Folder("data/mat/folder");
    for (const std::string name : {"none", "folder"}) {
        EXPECT_THAT([&] { materials.Load(name); }, ThrowsMessage<std::runtime_error>(StartsWith(
                                                       "cannot open file: data/mat/" + name)));
        EXPECT_THROW(materials.Get(name), std::out_of_range);
    }
}

TEST_F(Materials, AssigningCopiesAllAndTheCopyConstructorLeavesLightingAndRampsBehind) {
    folder.File("data/mat/full", R"({"Texture": "t", "Transparency": true, "Lighting": false,
        "Ambient": [1, 2, 3, 4], "Diffuse": [5, 6, 7, 8], "Emissive": [9, 10, 11, 12],
        "Specular": [13, 14, 15, 16], "Shininess": 17, "ModulationColor": [18, 19, 20, 21],
        "AdditiveColor": [22, 23, 24, 25]})");
    Material source;
    source.Load("full");
    source.mAdditiveRamp.mRate = Vorn3DColorSigned(1, 2, 3, 4);
    source.mModulationRamp.mEnd = Vorn3DColorSigned(5, 6, 7, 8);
    const Traits all = Of(source);
    EXPECT_EQ(all.at("Specular"), "13 14 15 16");

    Material assigned;
    assigned = source;
    EXPECT_EQ(assigned.Path(), "full");
    EXPECT_EQ(assigned.Texture(), source.Texture());
    EXPECT_EQ(assigned.mAdditiveRamp.mRate.b, 4);
    EXPECT_EQ(assigned.mModulationRamp.mEnd.a, 5);
    EXPECT_EQ(Of(assigned), all);

    Material copied(source);
    Traits part = all;
    for (const char* key : {"Ambient", "Diffuse", "Emissive", "Specular"})
        part[key] = "0 0 0 0";
    part["Shininess"] = "0"; // not set
    EXPECT_EQ(copied.Path(), "full");
    EXPECT_EQ(copied.Texture(), source.Texture());
    EXPECT_EQ(static_cast<unsigned long>(copied.mAdditiveRamp.mRate), 0u);
    EXPECT_EQ(static_cast<unsigned long>(copied.mModulationRamp.mEnd), 0u);
    EXPECT_EQ(Of(copied), part);
}

TEST_F(Materials, ARampDrivesItsOwnMaterialOnceAGetterHasPutItRight) {
    Material source, copy;
    Vorn3DColorSigned* const additive = source.mAdditiveRamp.mTarget;
    Vorn3DColorSigned* const modulation = source.mModulationRamp.mTarget;
    ASSERT_TRUE(additive && modulation);
    *additive = Vorn3DColorSigned(0, 1, 2, 3);
    *modulation = Vorn3DColorSigned(4, 5, 6, 7);
    EXPECT_EQ(source.AdditiveColor(), 0x00010203u);
    EXPECT_EQ(source.ModulationColor(), 0x04050607u);
    copy = source;
    EXPECT_EQ(copy.mAdditiveRamp.mTarget, additive);
    EXPECT_EQ(copy.AdditiveColor(), 0x00010203u);
    EXPECT_EQ(copy.ModulationColor(), 0x04050607u);
    EXPECT_NE(copy.mAdditiveRamp.mTarget, additive);
    EXPECT_NE(copy.mModulationRamp.mTarget, modulation);
    *copy.mAdditiveRamp.mTarget = Vorn3DColorSigned(9);
    EXPECT_EQ(copy.AdditiveColor(), 0x09000000u);
    EXPECT_EQ(source.AdditiveColor(), 0x00010203u);
    const Material constructed(source);
    EXPECT_NE(constructed.mAdditiveRamp.mTarget, additive);
}

using Channels = std::array<int, 4>;

Vorn3DColorSigned ColourOf(const Channels& c) {
    return {c[0], c[1], c[2], c[3]};
}
Channels Of(const Vorn3DColorSigned& c) {
    return {c.a, c.r, c.g, c.b};
}

TEST(ColorRamps, AdvanceChannelByChannelAndStopByTheirSums) {
    ResourceTests::Random random(52);
    int stops = 0;
    for (int i = 0; i < 3000; ++i) {
        const int reach = i % 2 ? 3 : 300;
        Channels start, end, rate, expected;
        for (Channels* channels : {&start, &end, &rate, &expected})
            for (int& c : *channels)
                c = random.Int(-reach, reach);
        Vorn3DColorSigned colour = ColourOf(expected);
        Vorn::ColorRamp ramp{ColourOf(start), ColourOf(end), ColourOf(rate), &colour};
        const auto sum = [](const Channels& c) { return c[0] + c[1] + c[2] + c[3]; };
        for (int frame = 0; frame < 5; ++frame) {
            const double dt = random.Int(0, 3) ? random(0, 2) : 0.5;
            for (std::size_t c = 0; c < 4; ++c)
                expected[c] += static_cast<int>(rate[c] * dt);
            const bool up = sum(start) < sum(end);
            if (up ? sum(expected) > sum(end) : sum(expected) < sum(end))
                expected = end, ++stops;
            ramp.Advance(dt);
            ASSERT_EQ(Of(colour), expected) << i << '/' << frame;
        }
    }
    EXPECT_GT(stops, 1000);
    Vorn::ColorRamp none{{}, {}, ColourOf({9, 9, 9, 9}), nullptr};
    none.Advance(1);
}

TEST_F(Materials, ColoursAreTakenInTheirLow32Bits) {
    Material m;
    m.AdditiveColor(0x7700000001020304ul);
    m.ModulationColor(0xFFFFFFFF80FF007Ful);
    EXPECT_EQ(m.AdditiveColor(), 0x01020304u);
    EXPECT_EQ(m.ModulationColor(), 0x80FF007Fu);
    EXPECT_EQ(m.mModulationRamp.mTarget->g, 0);
    // Channels out of range spill over when they are packed.
    *m.mAdditiveRamp.mTarget = Vorn3DColorSigned(1, 300, -1, 0);
    EXPECT_EQ(m.AdditiveColor(), 0x022BFF00u);
}

} // namespace
