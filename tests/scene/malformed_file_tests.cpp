// SPDX-License-Identifier: MIT
//
// Entity, variant and scene files that are broken in every way: they go on with defaults or raise,
// and leave factory, pool and scene as sound as before.
#include "scene_world.hpp"

#include "vorn/scene/entity_pool.hpp"

#include <random>

namespace {

using namespace SceneTests;

const std::string GoodEntity = R"({"Type": "sheep", "Pool": 4, "Name": "dolly",
 "Position": {"X": 1, "Y": 2, "Z": 3}, "Orientation": {"X": 0, "Y": 0, "Z": 1, "Angle": 0.5},
 "Scale": {"X": 4, "Y": 4, "Z": 4}, "GraphicsCmpt": {}, "PhysicsCmpt": {}, "EmitterCmpt": {}})";
const std::string GoodVariant = R"({"Type": "sheep", "Variant": "black", "Name": "molly",
 "Position": {"X": 7}, "Orientation": {"Y": 1, "Angle": 1}, "Scale": {"Z": 9},
 "PhysicsCmpt": {}})";
const std::string GoodScene = R"({"ResourcePack": "meadow", "Entities": [
 {"Type": "sheep", "Variant": "master", "Name": "a", "Position": {"X": 5, "Y": 6, "Z": 7},
  "Orientation": {"X": 1, "Angle": 2}, "Scale": {"X": 8}, "PhysicsCmpt": {}},
 {"Type": "black", "Variant": "black", "Name": "b", "EmitterCmpt": {}},
 {"Type": "sheep", "Name": "c"}]})";

class MalformedFile : public SceneTest {
protected:
    MalformedFile() {
        factory.Register("sheep", &sheep);
        dir.Write("good.ent", GoodEntity);
        dir.Write("good.var", GoodVariant);
        loadGood();
        sound();
    }

    void TryEntity(const std::string& text) {
        const Log keys = Keys();
        const bool raised = raises([&] { factory.LoadEntity(dir.Write("x", text).c_str()); });
        EXPECT_EQ(Keys(), keys);
        if (raised)
            sound();
        handsOut("sheep", "master");
        loadGood();
        sound();
    }
    void TryVariant(const std::string& text) {
        const Log keys = Keys();
        const bool raised = raises([&] { factory.LoadVariant(dir.Write("x", text).c_str()); });
        Log added;
        const Log after = Keys();
        std::set_difference(after.begin(), after.end(), keys.begin(), keys.end(),
                            std::back_inserter(added));
        if (raised) {
            EXPECT_EQ(added, Log());
            sound();
        }
        EXPECT_LE(added.size(), 1u);
        for (const std::string& key : added)
            handsOut(key, key);
        loadGood();
        sound();
    }
    void TryScene(const std::string& text) {
        const Log keys = Keys();
        Vorn::Scene scene;
        scene.Deserialize(GoodScene);
        const Json::Value before = scene.EntitiesValue();
        if (raises([&] { scene.DeserializePath(dir.Write("x", text)); })) {
            EXPECT_EQ(scene.ResourcePack(), "meadow");
            EXPECT_EQ(scene.EntitiesValue(), before);
        }
        raises([&] { scene.Init(); });
        for (const Vorn::Entity* entity : scene.EntityList()) {
            EXPECT_EQ(entity->Scene(), &scene);
            EXPECT_TRUE(entity->IsAlive());
        }
        EXPECT_EQ(sheep.Size() - sheep.Idle(), scene.EntityList().size());
        scene.Update(1.0f);
        scene.Deinit();
        EXPECT_EQ(Keys(), keys);
        sound();
    }

    /// Each piece of `good` that a value can stand for, replaced by `@`.
    static std::vector<std::string> Holes(const std::string& good) {
        Json::Value root;
        std::istringstream(good) >> root;
        std::vector<std::string> holes;
        dig(root, root, holes);
        return holes;
    }

    template <typename Try>
    static void EachTruncation(const std::string& good, Try&& tryText) {
        for (std::size_t size = 0; size < good.size(); ++size) {
            SCOPED_TRACE("cut to " + std::to_string(size));
            tryText(good.substr(0, size));
        }
    }
    template <typename Try>
    static void EachWrongValue(const std::string& good, Try&& tryText) {
        const std::string deep(10000, '[');
        const std::string deepObject = [] {
            std::string text;
            for (int i = 0; i < 10000; ++i)
                text += "{\"X\":";
            return text + "1" + std::string(10000, '}');
        }();
        const std::string closed = deep + std::string(10000, ']');
        const std::string values[] = {"null",
                                      "true",
                                      "0",
                                      "-1",
                                      "1.5",
                                      "1e300",
                                      "-1e300",
                                      "1e999",
                                      "18446744073709551616",
                                      "99999999999999999999999999",
                                      "-9223372036854775809",
                                      "1e-999",
                                      "NaN",
                                      "Infinity",
                                      "\"text\"",
                                      "\"\"",
                                      "\"a\\u0000b\"",
                                      "\"\\ud800\"",
                                      "\"12\"",
                                      "[]",
                                      "[1]",
                                      "[[], {}]",
                                      "[null, {\"Type\": \"sheep\"}]",
                                      "{}",
                                      "{\"X\": \"a\"}",
                                      "{\"X\": {}}",
                                      "{\"Angle\": []}",
                                      "{\"0\": {}}",
                                      "",
                                      "@",
                                      deep,
                                      closed,
                                      deepObject};
        for (const std::string& hole : Holes(good)) {
            const std::size_t at = hole.find("\"@\"");
            for (const std::string& value : values) {
                SCOPED_TRACE(hole + " with " + value.substr(0, 30));
                tryText(hole.substr(0, at) + value + hole.substr(at + 3));
            }
        }
    }
    template <typename Try>
    static void RandomDamage(const std::string& good, Try&& tryText) {
        std::mt19937 random(11);
        for (int i = 0; i < 1500; ++i) {
            SCOPED_TRACE("damage " + std::to_string(i));
            std::string text = good;
            for (std::size_t n = random() % 3 + 1; n > 0; --n) {
                static constexpr char Bytes[] = "{}[]\",:-9eE. \\/*\0\xff\x80x";
                text[random() % text.size()] = Bytes[random() % (sizeof Bytes - 1)];
            }
            tryText(text);
        }
    }
    /// With one key of the good file left out, at any depth.
    template <typename Try>
    static void EachMissingKey(const std::string& good, Try&& tryText) {
        for (const std::string& hole : Holes(good)) {
            Json::Value root;
            std::istringstream(hole) >> root;
            remove(root);
            tryText(root.toStyledString());
        }
    }

    Vorn::EntityPool<Probe> sheep;
    TempDir dir;

private:
    template <typename Act>
    static bool raises(Act&& act) {
        try {
            act();
        } catch (const std::exception&) {
            return true;
        }
        return false;
    }

    void loadGood() {
        factory.LoadEntity(dir.Path("good.ent").c_str());
        factory.LoadVariant(dir.Path("good.var").c_str());
    }

    /// Whatever the template holds by now, its entity finds its way back.
    void handsOut(const std::string& key, const std::string& variant) {
        Vorn::Entity* entity = factory.FetchEntity(key, variant);
        EXPECT_EQ(entity->Type(), "sheep");
        EXPECT_TRUE(entity->IsAlive());
        factory.ReturnEntity(entity);
        EXPECT_FALSE(entity->IsAlive());
        EXPECT_EQ(sheep.Idle(), sheep.Size());
    }

    /// The good scene runs on the good templates, and everything comes back.
    void sound() {
        EXPECT_EQ(sheep.Idle(), sheep.Size());
        Vorn::Scene scene;
        scene.Deserialize(GoodScene);
        scene.Init();
        scene.Update(1.0f);
        ASSERT_EQ(Names(scene), (Log{"a", "b", "c"}));
        const Vorn::Entity& a = *scene.GetEntity("a");
        EXPECT_EQ(a.Position(), Vorn::Vector3(5, 6, 7));
        EXPECT_EQ(a.Scale(), Vorn::Vector3(8, 4, 4));
        EXPECT_EQ(a.Orientation(), Vorn::Vector3(1, 0, 1));
        EXPECT_EQ(a.Angle(), 2.0f);
        EXPECT_TRUE(a.Graphics() && a.Physics() && a.Emitter());
        const Vorn::Entity& b = *scene.GetEntity("b");
        EXPECT_EQ(b.Position(), Vorn::Vector3(7, 2, 3));
        EXPECT_EQ(b.Scale(), Vorn::Vector3(4, 4, 9));
        EXPECT_EQ(b.Variant(), "black");
        const Vorn::Entity& c = *scene.GetEntity("c");
        EXPECT_EQ(c.Position(), Vorn::Vector3(1, 2, 3));
        EXPECT_EQ(c.Angle(), 0.5f);
        EXPECT_EQ(c.Scene(), &scene);
        scene.Deinit();
        EXPECT_EQ(sheep.Idle(), sheep.Size());
        Take();
    }

    static void dig(Json::Value& root, Json::Value& at, std::vector<std::string>& holes) {
        const Json::Value kept = at;
        at = "@";
        holes.push_back(root.toStyledString());
        at = kept;
        if (at.isObject()) {
            for (const std::string& key : at.getMemberNames())
                dig(root, at[key], holes);
        } else if (at.isArray()) {
            for (Json::Value& item : at)
                dig(root, item, holes);
        }
    }
    static void remove(Json::Value& at) {
        if (at.isObject()) {
            for (const std::string& key : at.getMemberNames()) {
                if (at[key] == "@")
                    at.removeMember(key);
                else
                    remove(at[key]);
            }
        } else if (at.isArray()) {
            for (Json::Value& item : at)
                remove(item);
        }
    }
};

TEST_F(MalformedFile, OfAnEntityTypeIsDefaultedOrRaises) {
    const auto tryText = [this](const std::string& text) { TryEntity(text); };
    EachTruncation(GoodEntity, tryText);
    EachMissingKey(GoodEntity, tryText);
    EachWrongValue(GoodEntity, tryText);
    RandomDamage(GoodEntity, tryText);
}

TEST_F(MalformedFile, OfAVariantIsDefaultedOrRaises) {
    const auto tryText = [this](const std::string& text) { TryVariant(text); };
    EachTruncation(GoodVariant, tryText);
    EachMissingKey(GoodVariant, tryText);
    EachWrongValue(GoodVariant, tryText);
    RandomDamage(GoodVariant, tryText);
}

TEST_F(MalformedFile, OfASceneIsDefaultedOrRaises) {
    const auto tryText = [this](const std::string& text) { TryScene(text); };
    EachTruncation(GoodScene, tryText);
    EachMissingKey(GoodScene, tryText);
    EachWrongValue(GoodScene, tryText);
    RandomDamage(GoodScene, tryText);
}

TEST_F(MalformedFile, NestedBeyondAllMeasureCountsAsUnreadable) {
    const std::string deep = std::string(10000, '[') + std::string(10000, ']');
    Vorn::Scene scene;
    scene.Deserialize(GoodScene);
    scene.Deserialize(R"({"Deep": )" + deep + "}");
    EXPECT_EQ(scene.ResourcePack(), "");
    EXPECT_TRUE(scene.EntitiesValue().isNull());
    const std::string path = dir.Write("deep", R"({"Deep": )" + deep + R"(, "Type": "sheep"})");
    EXPECT_THROW(factory.LoadEntity(path.c_str()), std::out_of_range);
}

TEST_F(MalformedFile, WhatIsNotAnArrayOfObjectsMakesNoEntities) {
    for (const char* entities : {"17", "\"text\"", "[17]", "[[]]", "[\"sheep\"]", "[true]"}) {
        SCOPED_TRACE(entities);
        TryScene(R"({"Entities": )" + std::string(entities) + "}");
    }
}

TEST_F(MalformedFile, AskingForBillionsOfEntitiesGetsNoMoreThanThePoolMakesAhead) {
    // An entity that is small, for there will be many of them.
    Vorn::EntityPool<Vorn::Entity> flies;
    factory.Register("fly", &flies);
    const std::string path = dir.Write("fly.ent", R"({"Type": "fly", "Pool": 4294967295})");
    factory.LoadEntity(path.c_str());
    EXPECT_EQ(flies.Size(), Vorn::EntityPool<Vorn::Entity>::MaxPreallocated);
    EXPECT_EQ(flies.Idle(), flies.Size());
}

} // namespace
