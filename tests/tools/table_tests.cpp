// SPDX-License-Identifier: MIT
//
// The table against the engine's readers, from both sides: each key of the table is fed to them,
// and what they ask for is looked up in it.
#include "tests/support/temp_folder.hpp"
#include "tools/check/table.hpp"

#include "vorn/vorn.hpp"

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <string>

namespace {

using testing::AllOf;
using testing::HasSubstr;
using Names = std::set<std::string>;

/// The engine's readers, by the record that they read.
class ReaderTest : public testing::Test {
protected:
    ReaderTest() {
        auto& physics = *Vorn::PhysicsSystem::Instance();
        physics.AddCategory("NONE", 1);
        physics.AddCategory("ALL", 3);
        physics.AddVolume("NONE", 0);
        physics.AddVolume("ALL", 7);
        Vorn::EntityFactory::Instance()->Register("typeless", &mPool);
        Vorn::EntityFactory::Instance()->Register("", &mPool);
        mPool.LoadMaster("{}", 0);
        Vorn::TextureManager::Instance()->Load(""); // no device, so no file
        Vorn::TextureManager::Instance()->Load("ALL");
    }
    ~ReaderTest() override {
        Vorn::TextureManager::Instance()->Unload("ALL");
        Vorn::TextureManager::Instance()->Unload("");
    }

    /// Reads `object` as the record, and gives all that there is to see of the result.
    std::string Read(const std::string& record, const Json::Value& object) {
        static const std::map<std::string, std::pair<const char*, const char*>> inside = {
            {"Vector", {nullptr, "Position"}},           {"Direction", {nullptr, "Orientation"}},
            {"Factor", {"PhysicsCmpt", "ScaleFactor"}},  {"Color", {"EmitterCmpt", "Color0"}},
            {"GraphicsCmpt", {nullptr, "GraphicsCmpt"}}, {"PhysicsCmpt", {nullptr, "PhysicsCmpt"}},
            {"EmitterCmpt", {nullptr, "EmitterCmpt"}}};
        const auto place = inside.find(record);
        if (place != inside.end()) {
            Json::Value entity;
            Json::Value& holder = place->second.first ? entity[place->second.first] : entity;
            holder[place->second.second] = object;
            return ReadEntity(entity);
        }
        const std::string text = Vorn::WriteJson(object);
        if (record == "Entity") {
            Vorn::EntityFactory::Instance()->LoadEntity(mFolder.File("x.ent", text).c_str());
            return ReadEntity(object);
        }
        if (record == "Scene") {
            Vorn::Scene scene;
            scene.Deserialize(text);
            scene.Init();
            return scene.ResourcePack();
        }
        if (record == "PhysicsInfo")
            Vorn::PhysicsSystem::Instance()->LoadPhysicsInfo(mFolder.File("x.json", text));
        if (record == "Pack")
            Vorn::RscPackManager::Instance()->LoadRscPack(mFolder.File("x.pack", text));
        if (record == "Trigger")
            delete Vorn::Trigger::Trigger::FromText(text);
        return record == "Material" ? ReadMaterial(text) : "";
    }

    static std::string ReadEntity(const Json::Value& object) {
        Vorn::Entity entity;
        entity.DeserializeValue(object, true);
        std::string text;
        entity.Serialize(text, true);
        return text + entity.Variant() + std::to_string(entity.Angle());
    }
    static std::string ReadMaterial(const std::string& text) {
        Vorn::Material m;
        m.FromText(text);
        std::string seen = std::to_string(m.HasTransparency()) + std::to_string(m.HasLighting()) +
                           m.TexturePath() + std::to_string(m.Shininess()) + ' ' +
                           std::to_string(m.AdditiveColor()) + ' ' +
                           std::to_string(m.ModulationColor());
        for (const Vorn::Vector4& light : {m.Ambient(), m.Diffuse(), m.Emissive(), m.Specular()})
            seen += ' ' + std::to_string(light.x) + ' ' + std::to_string(light.w);
        return seen;
    }

    Tests::TempFolder mFolder;
    Vorn::EntityPool<Vorn::Entity> mPool;
    const Check::Table mTable = Check::EngineTable();
};

Json::Value Parse(const std::string& json) {
    return Vorn::ParseJson("{\"v\":" + json + "}")["v"];
}

struct Wrong {
    std::string value, type; // and what the reader says that it should be
};
Wrong WrongFor(const Check::Key& key) {
    switch (key.type) {
    case Check::Type::Text:
        return {"[]", "string"};
    case Check::Type::Number:
        return {"[]", "double"};
    case Check::Type::Whole:
        return {"[]", "int"};
    case Check::Type::Flag:
        return {"[]", "bool"};
    case Check::Type::Numbers:
        return {"[[]]", "double"};
    case Check::Type::Wholes:
        return {"[[]]", "int"};
    case Check::Type::Texts:
        return {"[{}]", "string"};
    case Check::Type::Objects:
        return {"[3]", "object"};
    case Check::Type::Object:
        return {"3", "object"};
    case Check::Type::Any:
        break;
    }
    return {};
}

// A reader that asks for the key, and for that type, refuses this; one that does not knows nothing.
TEST_F(ReaderTest, ReadersAskForEachKeyAndItsType) {
    for (const Check::Record& record : mTable.records)
        for (const Check::Key& key : record.keys) {
            const Wrong wrong = WrongFor(key);
            if (wrong.value.empty())
                continue;
            Json::Value object;
            object[key.name] = Parse(wrong.value);
            const std::string place =
                key.type == Check::Type::Objects ? key.name : '"' + key.name + '"';
            try {
                Read(record.name, object);
                ADD_FAILURE() << key.name << " of " << record.name << " is not read";
            } catch (const std::runtime_error& error) {
                EXPECT_THAT(error.what(), AllOf(HasSubstr("not convertible to"),
                                                HasSubstr(wrong.type), HasSubstr(place)));
            }
        }
}

// And where the default can be seen, it is the one that the table says.
TEST_F(ReaderTest, ReadersHaveTheDefaultsOfTheTable) {
    const auto other = [](const Check::Key& key) -> Json::Value {
        switch (key.type) {
        case Check::Type::Flag:
        case Check::Type::Any:
            return key.fallback != "true";
        case Check::Type::Text:
            return "ALL";
        case Check::Type::Object:
            return Parse("{\"X\": 7}");
        case Check::Type::Wholes:
        case Check::Type::Numbers:
            return Parse("[7, 7, 7, 7]");
        default:
            return 7;
        }
    };
    std::size_t seen = 0;
    for (const char* name : {"Direction", "Factor", "PhysicsCmpt", "Entity", "Material"})
        for (const Check::Key& key : mTable.Find(name)->keys) {
            if (key.fallback.empty() || key.onlyInEntityFile)
                continue;
            const Json::Value none(Json::objectValue);
            Json::Value same(Json::objectValue), changed(Json::objectValue);
            same[key.name] = Parse(key.fallback);
            changed[key.name] = other(key);
            EXPECT_EQ(Read(name, same), Read(name, none)) << key.name << " of " << name;
            EXPECT_NE(Read(name, changed), Read(name, none)) << key.name << " of " << name;
            ++seen;
        }
    EXPECT_GE(seen, 20u);
}

Names Matches(const std::string& text, const std::string& pattern) {
    const std::regex regex(pattern);
    Names names;
    for (std::sregex_iterator at(text.begin(), text.end(), regex), end; at != end; ++at)
        names.insert((*at)[1]);
    return names;
}

// What stands in the sources of all readers and looks like a key is one.
TEST(SourceTest, HoldsNoKeyThatTheTableLacks) {
    const Check::Table table = Check::EngineTable();
    Names known;
    for (const Check::Record& record : table.records)
        for (const Check::Key& key : record.keys) {
            known.insert(key.name);
            known.insert(key.choices.begin(), key.choices.end());
        }
    Names read;
    for (const auto& entry : std::filesystem::recursive_directory_iterator("vorn")) {
        if (entry.path().extension() != ".cpp" || entry.path().filename() == "json.cpp")
            continue;
        const std::string text = Vorn::TextFromFile(entry.path().string());
        if (text.find("#include \"vorn/core/json.hpp\"") == std::string::npos &&
            entry.path().filename() != "master_flags.cpp")
            continue;
        for (const std::string& key :
             Matches(text, "\"([A-Z]|[A-Z][A-Za-z0-9_]*[a-z][A-Za-z0-9_]*)\"")) {
            EXPECT_EQ(known.count(key), 1u) << key << " in " << entry.path();
            read.insert(key);
        }
    }
    known.erase("Condition"); // read over
    EXPECT_EQ(read, known);
}

TEST(SourceTest, HasTheLinesAndNamesOfTheTable) {
    const Check::Table table = Check::EngineTable();
    Names events, commands, font, effects;
    for (const Check::Line& line : table.events)
        events.insert(line.word);
    for (const Check::Line& line : table.commands) {
        commands.insert(line.word);
        for (const std::string& argument : line.arguments)
            if (argument == "POSITION")
                commands.insert(argument);
    }
    for (const Check::Record& line : table.fontLines) {
        font.insert(line.name);
        for (const Check::Key& key : line.keys)
            font.insert(key.name);
    }
    for (const Check::EffectName& name : table.effectNames)
        effects.insert(name.name);
    for (const Check::EffectFile& effect : table.effects)
        for (const std::string& technique : {effect.technique, effect.secondTechnique})
            if (effect.profile.empty() && !technique.empty())
                effects.insert(technique);

    const auto source = [](const char* path) { return Vorn::TextFromFile(path); };
    EXPECT_EQ(Matches(source("vorn/trigger/event_type.cpp"), "mName = \"(\\w+)\""), events);
    EXPECT_EQ(Matches(source("vorn/trigger/trigger_manager.cpp"), "mWord [!=]= \"(\\w+)\""),
              commands);
    EXPECT_EQ(Matches(source("vorn/render/bm_font.cpp"), "(?:first == |key == |\\{)\"(\\w+)\""),
              font);
    EXPECT_EQ(Matches(source("vorn/render/graphic_paths.cpp"), "\"([A-Za-z][\\w.]*)\""), effects);
    const std::string shaders = source("vorn/render/graphic_shaders.cpp");
    for (const Check::EffectFile& effect : table.effects)
        EXPECT_THAT(shaders,
                    HasSubstr("\"data/shaders/" + effect.name + "\"" +
                              (effect.profile.empty() ? ""
                                                      : ", \"" + effect.technique + "\", \"" +
                                                            effect.profile + "\"")));
}

} // namespace
