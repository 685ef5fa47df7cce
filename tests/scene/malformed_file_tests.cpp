// SPDX-License-Identifier: MIT
//
// Entity, variant and scene files that are broken in every way: they go on with defaults or raise,
// and leave factory, pool and scene as sound as before.
#include "scene_world.hpp"

namespace {

using namespace SceneTests;

const std::string GoodEntity = R"({"Type": "sheep", "Pool": 4, "Name": "dolly",
 "Position": {"X": 1, "Y": 2, "Z": 3}, "Orientation": {"Z": 1, "Angle": 0.5},
 "Scale": {"X": 4, "Y": 4, "Z": 4}, "GraphicsCmpt": {}, "EmitterCmpt": {}})";
const std::string GoodVariant = R"({"Type": "sheep", "Variant": "black", "Name": "molly",
 "Position": {"X": 7}, "Orientation": {"Y": 1, "Angle": 1},
 "PhysicsCmpt": {"Mask": "ALL - A", "Type": "Box", "Drag": false, "ScaleFactor": {"Y": 2}}})";
const std::string GoodScene = R"({"ResourcePack": "meadow", "Entities": [
 {"Type": "sheep", "Variant": "master", "Name": "a", "Position": {"X": 5},
  "PhysicsCmpt": {"Mass": 3, "Category": "B"},
  "Orientation": {"X": 1, "Angle": 2}},
 {"Type": "black", "Variant": "black", "Name": "b", "EmitterCmpt": {}}]})";

class MalformedFile : public SceneTest {
protected:
    MalformedFile() {
        factory.Register("sheep", &sheep);
        LoadGood();
        sound = State();
    }

    void LoadGood() {
        factory.LoadEntity(Write("good.ent", GoodEntity).c_str());
        factory.LoadVariant(Write("good.var", GoodVariant).c_str());
    }
    /// Of the good scene after a frame; then everything comes back.
    std::string State() {
        Vorn::Scene scene;
        scene.Deserialize(GoodScene);
        scene.Init();
        scene.Update(1.0f);
        scene.SerializeEntities();
        EXPECT_EQ(sheep.Size() - sheep.Idle(), 2u);
        scene.Deinit();
        EXPECT_EQ(sheep.Idle(), sheep.Size());
        recorder.Take();
        return scene.Serialize();
    }

    /// `good` cut at each byte, with each key misspelled, and with other values before each value,
    /// which stands under another key then.
    static void EachFault(const std::string& good,
                          const std::function<void(const std::string&)>& tryText) {
        std::string deepObject = "1";
        for (int i = 0; i < 10'000; ++i)
            deepObject = "{\"X\":" + std::move(deepObject) + "}";
        std::vector<std::string> values = {"", std::string(10'000, '['), deepObject};
        std::istringstream words(
            R"(null true -1 1.5 1e300 1e999 18446744073709551616 NaN "12" "" [] [17] {} @
               [null,{"Type":"sheep"}] {"X":"a"} "a\u0000b")");
        for (std::string word; words >> word;)
            values.push_back(word);
        for (std::size_t at = 0; at < good.size(); ++at) {
            tryText(good.substr(0, at));
            if (good[at] == ':')
                tryText(std::string(good).insert(at - 1, "x"));
            for (const std::string& value : values)
                if (good[at] == ':' || good[at] == '[')
                    tryText(std::string(good).insert(at + 1,
                                                     value + (good[at] == ':' ? ",\"x\":" : ",")));
        }
    }
    static bool Raises(const std::function<void()>& act) {
        try {
            act();
            return false;
        } catch (const std::exception&) {
            return true;
        }
    }
    void ExpectDefaultsOrFaults(const std::string& good,
                                void (Vorn::EntityFactory::*load)(const char*)) {
        EachFault(good, [&](const std::string& text) {
            SCOPED_TRACE(text.substr(0, 300));
            const auto keys = Keys();
            const std::string path = Write("x", text);
            if (Raises([&] { (factory.*load)(path.c_str()); })) {
                EXPECT_EQ(Keys(), keys);
                EXPECT_EQ(State(), sound);
            }
            // Whatever the templates hold by now, their entities find their way back.
            for (const std::string& key : Keys())
                factory.ReturnEntity(factory.FetchEntity(key, key == "sheep" ? "master" : key));
            EXPECT_EQ(sheep.Idle(), sheep.Size());
            LoadGood();
            EXPECT_EQ(State(), sound);
        });
    }

    Vorn::EntityPool<Probe> sheep;
    std::string sound;
};

TEST_F(MalformedFile, OfAnEntityIsDefaultedOrRaises) {
    ExpectDefaultsOrFaults(GoodEntity, &Vorn::EntityFactory::LoadEntity);
}

TEST_F(MalformedFile, OfAVariantIsDefaultedOrRaises) {
    ExpectDefaultsOrFaults(GoodVariant, &Vorn::EntityFactory::LoadVariant);
}

TEST_F(MalformedFile, OfASceneIsDefaultedOrRaises) {
    const auto keys = Keys();
    EachFault(GoodScene, [&](const std::string& text) {
        SCOPED_TRACE(text.substr(0, 300));
        Vorn::Scene scene;
        scene.Deserialize(GoodScene);
        const std::string before = scene.Serialize();
        const bool raised = Raises([&] { scene.Deserialize(text); });
        EXPECT_TRUE(!raised || scene.Serialize() == before);
        Raises([&] { scene.Init(); });
        EXPECT_EQ(sheep.Size() - sheep.Idle(), scene.EntityList().size());
        scene.Update(1.0f);
        scene.Deinit();
        EXPECT_EQ(Keys(), keys);
        EXPECT_EQ(State(), sound);
    });
}

} // namespace
