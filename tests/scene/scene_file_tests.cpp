// SPDX-License-Identifier: MIT
#include "scene_world.hpp"

#include "vorn/scene/entity_pool.hpp"

#include <json/writer.h>

#include <random>

namespace {

using namespace SceneTests;

// Json::StyledWriter is the form of all our files, and deprecated.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
std::string Styled(const Json::Value& value) {
    return Json::StyledWriter().write(value);
}
#pragma GCC diagnostic pop

class SceneFile : public SceneTest {
protected:
    const std::string good = R"({"ResourcePack": "meadow.pack",
                                 "Entities": [{"Type": "thing", "Name": "a", "Depth": [1, {}]}]})";
};

TEST_F(SceneFile, IsReadWithoutCreatingAnything) {
    Vorn::Scene scene;
    EXPECT_EQ(scene.ResourcePack(), "");
    EXPECT_TRUE(scene.EntitiesValue().isNull());
    scene.Deserialize(good);
    EXPECT_EQ(scene.ResourcePack(), "meadow.pack");
    EXPECT_EQ(scene.EntitiesValue()[0]["Depth"][0].asInt(), 1);
    EXPECT_TRUE(scene.EntityList().empty());
    EXPECT_EQ(Take(), Log());

    // What a second text leaves out has its default again.
    scene.Deserialize(R"({"Other": 1})");
    EXPECT_EQ(scene.ResourcePack(), "");
    EXPECT_TRUE(scene.EntitiesValue().isNull());
    for (const char* text : {"", "[1, 2]", "nonsense", "17", "\"text\"", "null"}) {
        SCOPED_TRACE(text);
        scene.Deserialize(good);
        scene.Deserialize(text);
        EXPECT_EQ(scene.ResourcePack(), "");
        EXPECT_TRUE(scene.EntitiesValue().isNull());
        scene.Init();
        scene.Update(1.0f);
        EXPECT_TRUE(scene.EntityList().empty());
    }
}

TEST_F(SceneFile, GoesThroughTheOperationsThatAGameMayReplace) {
    const TempDir dir;
    const std::string path = dir.Write("a.scene", good);
    LoggingScene scene("S");
    scene.DeserializePath(path);
    const Log reading = {"S.DeserializePath " + path, "S.Deserialize", "S.DeserializeValue"};
    EXPECT_EQ(Take(), reading);
    EXPECT_EQ(scene.ResourcePack(), "meadow.pack");
    scene.Redeserialize();
    Log again = Take();
    EXPECT_EQ(again.front(), "S.Redeserialize");
    again.erase(again.begin());
    EXPECT_EQ(again, reading);
    scene.SerializePath(dir.Path("b.scene"));
    EXPECT_EQ(Take(),
              (Log{"S.SerializePath " + dir.Path("b.scene"), "S.Serialize", "S.SerializeValue"}));
}

TEST_F(SceneFile, IsWrittenStyledAndReadsBackTheSame) {
    Vorn::Scene scene;
    scene.Deserialize(good);
    Json::Value expected(Json::objectValue);
    expected["ResourcePack"] = scene.ResourcePack();
    expected["Entities"] = scene.EntitiesValue();
    EXPECT_EQ(scene.Serialize(), Styled(expected));

    Vorn::Scene copy;
    copy.Deserialize(scene.Serialize());
    EXPECT_EQ(copy.ResourcePack(), "meadow.pack");
    EXPECT_EQ(copy.EntitiesValue(), scene.EntitiesValue());

    // Writing into a value leaves what else is there.
    Json::Value root(Json::objectValue);
    root["Author"] = "me";
    root["Entities"] = 1;
    scene.ResourcePack("other");
    scene.SerializeValue(root);
    expected["ResourcePack"] = "other";
    expected["Author"] = "me";
    EXPECT_EQ(root, expected);

    Json::Value empty(Json::objectValue);
    empty["ResourcePack"] = "";
    empty["Entities"] = Json::Value();
    EXPECT_EQ(Vorn::Scene().Serialize(), Styled(empty));
    copy.Deserialize(Vorn::Scene().Serialize());
    EXPECT_TRUE(copy.EntitiesValue().isNull());
}

TEST_F(SceneFile, ReplacesAFileByteForByteAndPassesOverAPathThatCannotBe) {
    const TempDir dir;
    const std::string path = dir.Write("long.scene", std::string(5000, 'x'));
    Vorn::Scene scene;
    scene.Deserialize(good);
    scene.SerializePath(path);
    EXPECT_EQ(ReadAll(path), scene.Serialize());
    EXPECT_NO_THROW(scene.SerializePath(dir.Path("no/such/dir.scene")));
    EXPECT_NO_THROW(scene.SerializePath(dir.Path()));
}

TEST_F(SceneFile, IsReadAgainFromItsLastPath) {
    const TempDir dir;
    const std::string path = dir.Write("a.scene", good);
    Vorn::Scene scene;
    EXPECT_THROW(scene.Redeserialize(), std::runtime_error);
    scene.DeserializePath(path);
    dir.Write("a.scene", R"({"ResourcePack": "changed"})");
    scene.Redeserialize();
    EXPECT_EQ(scene.ResourcePack(), "changed");

    // A path is kept before it is read, so that a file which comes late is found by it.
    const std::string late = dir.Path("late.scene");
    for (const std::string& missing : {dir.Path(), late}) {
        const std::string text =
            Raised<std::runtime_error>([&] { scene.DeserializePath(missing); });
        EXPECT_EQ(text, "cannot open file: " + missing);
        EXPECT_EQ(scene.ResourcePack(), "changed");
    }
    dir.Write("late.scene", R"({"ResourcePack": "late"})");
    scene.Redeserialize();
    EXPECT_EQ(scene.ResourcePack(), "late");
    scene.Deserialize(good);
    scene.Redeserialize();
    EXPECT_EQ(scene.ResourcePack(), "late");
}

TEST_F(SceneFile, KeepsTheOldDescriptionWhenAKeyHasTheWrongType) {
    Vorn::Scene scene;
    scene.Deserialize(good);
    const Json::Value entities = scene.EntitiesValue();
    const std::string text = Raised<std::runtime_error>(
        [&] { scene.Deserialize(R"({"ResourcePack": {"X": 1}, "Entities": []})"); });
    EXPECT_TRUE(text.starts_with("Type is not convertible to string")) << text;
    EXPECT_NE(text.find("ResourcePack"), std::string::npos) << text;
    EXPECT_EQ(scene.ResourcePack(), "meadow.pack");
    EXPECT_EQ(scene.EntitiesValue(), entities);
}

TEST_F(SceneFile, HoldsTheLiveEntitiesAfterSerializeEntities) {
    Vorn::Scene scene;
    scene.Deserialize(good);
    scene.SerializeEntities();
    EXPECT_TRUE(scene.EntitiesValue().isArray());
    EXPECT_EQ(scene.EntitiesValue().size(), 0u);

    scene.Deserialize(good);
    Fill(scene, {"x", "y"});
    scene.GetEntity("y")->Position(1, 2, 3);
    // The running state is not in the description by itself.
    EXPECT_EQ(scene.EntitiesValue().size(), 1u);
    Vorn::Entity* x = scene.GetEntity("x");
    scene.AddEntity(x, true);
    scene.AddEntity(Make("queued"), false);
    scene.SerializeEntities();

    Json::Value expected(Json::arrayValue);
    for (const Vorn::Entity* entity : scene.EntityList()) {
        Json::Value item;
        entity->SerializeValue(item, true);
        expected.append(item);
    }
    EXPECT_EQ(expected.size(), 3u);
    EXPECT_EQ(scene.EntitiesValue(), expected);
    EXPECT_EQ(scene.EntitiesValue()[1]["Position"]["Z"].asDouble(), 3.0);
    EXPECT_EQ(Names(scene), (Log{"x", "y", "x"}));
}

TEST_F(SceneFile, CarriesARunningStateToAnotherSceneBitForBit) {
    Vorn::EntityPool<Probe> sheep;
    sheep.LoadMaster(R"({"Type": "sheep", "PhysicsCmpt": {}})", 0);
    factory.Register("sheep", &sheep);
    std::mt19937 random(7);
    std::uniform_real_distribution<float> anywhere(-1000.0f, 1000.0f);
    const auto next = [&] { return anywhere(random); };

    Vorn::Scene first;
    for (int i = 0; i < 200; ++i) {
        Vorn::Entity* entity = first.CreateEntity("sheep", "master", true);
        Rename(*entity, std::to_string(i));
        entity->Position(next(), next(), next() * 1e-9f);
        entity->Orientation(next(), next(), next());
        entity->Scale(next(), next() * 1e20f, next());
    }
    const TempDir dir;
    first.SerializeEntities();
    first.SerializePath(dir.Path("saved.scene"));

    Vorn::Scene second;
    second.DeserializePath(dir.Path("saved.scene"));
    second.Init();
    ASSERT_EQ(Names(second), Names(first));
    auto original = first.EntityList().begin();
    for (const Vorn::Entity* entity : second.EntityList()) {
        SCOPED_TRACE(entity->Name());
        EXPECT_EQ(entity->Position(), (*original)->Position());
        EXPECT_EQ(entity->Orientation(), (*original)->Orientation());
        EXPECT_EQ(entity->Scale(), (*original)->Scale());
        EXPECT_EQ(entity->Type(), "sheep");
        EXPECT_NE(entity->Physics(), nullptr);
        ++original;
    }
    first.Deinit();
    second.Deinit();
    EXPECT_EQ(sheep.Idle(), sheep.Size());
}

} // namespace
