// SPDX-License-Identifier: MIT
#include "scene_world.hpp"

#include "vorn/scene/entity_pool.hpp"

namespace {

using namespace SceneTests;

class SceneInit : public SceneTest {};

// Two texts must not end up as a name and a true.
template <typename S>
concept TakesTwoTexts = requires(S& scene) {
    scene.CreateEntity("type", "variant");
};
static_assert(!TakesTwoTexts<Vorn::Scene>);
template <typename S>
concept TakesZeroAsFalse = requires(S& scene) {
    scene.CreateEntity("alias", 0);
};
static_assert(TakesZeroAsFalse<Vorn::Scene>);

TEST_F(SceneInit, InitialisesOnlyWhenAllEntitiesExist) {
    Vorn::Scene scene;
    Describe(scene, {"a", "b", "c"});
    for (const char* name : {"a", "b", "c"}) {
        Once(std::string("Init ") + name, [&scene, name] {
            EXPECT_EQ(Names(scene), (Log{"a", "b", "c"}));
            EXPECT_EQ(scene.GetEntity("c"), scene.EntityList().back());
            EXPECT_EQ(scene.GetEntity(name)->Scene(), &scene);
        });
    }
    scene.Init();
    EXPECT_EQ(Take(), (Log{"thing.Fetch master", "thing.Fetch master", "thing.Fetch master",
                           "Init a", "Init b", "Init c"}));
}

TEST_F(SceneInit, AsksForTypelessAndMasterWhereAnElementDoesNotSay) {
    LoggingPool typeless("typeless");
    factory.Register("typeless", &typeless);
    Vorn::Scene scene;
    scene.Deserialize(R"({"Entities": [{}, {"Variant": "red"}, {"Type": "thing"},
                          {"Type": "thing", "Variant": "blue"}]})");
    scene.Init();
    const Log log = Take();
    EXPECT_EQ(Log(log.begin(), log.begin() + 4), (Log{"typeless.Fetch master", "typeless.Fetch red",
                                                      "thing.Fetch master", "thing.Fetch blue"}));
    EXPECT_EQ(scene.EntityList().size(), 4u);
}

TEST_F(SceneInit, LaysTheElementOverTheTemplate) {
    Vorn::EntityPool<Probe> sheep;
    factory.Register("sheep", &sheep);
    sheep.LoadMaster(R"({"Type": "sheep", "Name": "dolly", "Position": {"X": 1, "Y": 2, "Z": 3},
                         "Scale": {"X": 2, "Y": 2, "Z": 2}})",
                     0);
    Vorn::Scene scene;
    scene.Deserialize(R"({"Entities": [{"Type": "sheep", "Position": {"Y": 7}},
                                       {"Type": "sheep", "Name": "x", "Scale": {"X": 2}}]})");
    scene.Init();
    const Vorn::Entity& first = *scene.EntityList().front();
    const Vorn::Entity& second = *scene.EntityList().back();
    EXPECT_EQ(first.Name(), "dolly");
    EXPECT_EQ(first.Position(), Vorn::Vector3(1, 7, 3));
    EXPECT_EQ(first.LocalPosition(), Vorn::Vector3(1, 7, 3));
    EXPECT_EQ(second.Position(), Vorn::Vector3(1, 2, 3));

    // Only what differs from the template is a difference.
    Json::Value differences;
    first.SerializeValue(differences, false);
    EXPECT_TRUE(differences.isMember("Position"));
    EXPECT_FALSE(differences.isMember("Name"));
    EXPECT_FALSE(differences.isMember("Scale"));
    differences = Json::Value();
    second.SerializeValue(differences, false);
    EXPECT_FALSE(differences.isMember("Position"));
    EXPECT_FALSE(differences.isMember("Scale"));
    EXPECT_EQ(differences["Name"], "x");
    scene.Deinit();
}

TEST_F(SceneInit, TouchesNothingWithoutEntitiesButPassesOverAnEmptyList) {
    Vorn::Scene scene;
    Fill(scene, {"a"});
    scene.Deserialize(R"({"ResourcePack": "meadow"})");
    scene.Init();
    scene.Deserialize(R"({"Entities": null})");
    scene.Init();
    EXPECT_EQ(Take(), Log());
    // An empty array is a description: who is there already is initialised.
    scene.Deserialize(R"({"Entities": []})");
    scene.Init();
    EXPECT_EQ(Take(), (Log{"Init a"}));
    scene.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"Update a"}));
}

TEST_F(SceneInit, TwiceWithoutDeinitAddsASecondSet) {
    Vorn::Scene scene;
    Describe(scene, {"a", "b"});
    scene.Init();
    const Vorn::Entity* first = scene.GetEntity("a");
    Take();
    scene.Init();
    EXPECT_EQ(Names(scene), (Log{"a", "b", "a", "b"}));
    EXPECT_EQ(scene.GetEntity("a"), first);
    EXPECT_EQ(Take(), (Log{"thing.Fetch master", "thing.Fetch master", "Init a", "Init b", "Init a",
                           "Init b"}));
}

TEST_F(SceneInit, CanChangeTheSceneAtOnce) {
    Vorn::Scene scene;
    Describe(scene, {"a", "b", "c", "d"});
    Once("Init a", [&] { scene.RemoveEntity(scene.GetEntity("a"), true); });
    Once("Init b", [&] {
        scene.DestroyEntity(scene.GetEntity("c"), true);
        scene.AddEntity(Make("e"), true);
    });
    scene.Init();
    EXPECT_EQ(Names(scene), (Log{"b", "d", "e"}));
    Take();
    scene.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"Update b", "Update d", "Update e"}));
}

TEST_F(SceneInit, DeinitEndsEachEntityAndHandsItBackBeforeTheNext) {
    Vorn::Scene scene;
    Fill(scene, {"a", "b"});
    scene.AddEntity(scene.GetEntity("a"), true);
    scene.GetEntity("a")->Parent(scene.GetEntity("b"));
    const Vorn::Entity* a = scene.GetEntity("a");
    Take();
    scene.Deinit();
    EXPECT_EQ(Take(), (Log{"Deinit a", "thing.Return a", "Deinit b", "thing.Return b", "Deinit a",
                           "thing.Return a"}));
    EXPECT_EQ(a->Parent(), nullptr);
    EXPECT_TRUE(scene.EntityList().empty());
    EXPECT_EQ(scene.GetEntity("a"), nullptr);
    scene.Deinit();
    EXPECT_EQ(Take(), Log());
}

TEST_F(SceneInit, DeinitBearsEntitiesThatDestroyOthers) {
    Vorn::Scene scene;
    Fill(scene, {"a", "b", "c", "d"});
    Once("Deinit a", [&] { scene.DestroyEntity(scene.GetEntity("b"), true); });
    Once("Deinit c", [&] { scene.RemoveEntity(scene.GetEntity("d"), true); });
    scene.Deinit();
    EXPECT_TRUE(scene.EntityList().empty());
    EXPECT_EQ(std::count_if(things.returned.begin(), things.returned.end(),
                            [](const Vorn::Entity* entity) { return entity->Name() == "b"; }),
              1);
}

TEST_F(SceneInit, CreateEntityFetchesByTypeAndVariantOrByAlias) {
    LoggingPool other("other");
    factory.Register("other", &other);
    Vorn::Scene scene;
    Vorn::Entity* now = scene.CreateEntity("thing", "red", true);
    EXPECT_EQ(Take(), (Log{"thing.Fetch red", "Init "}));
    EXPECT_EQ(now, things.fetched.back());
    EXPECT_EQ(now->Scene(), &scene);
    EXPECT_EQ(scene.EntityList().back(), now);

    Vorn::Entity* later = scene.CreateEntity("other", false);
    EXPECT_EQ(Take(), (Log{"other.Fetch other"}));
    EXPECT_EQ(later, other.fetched.back());
    EXPECT_EQ(later->Scene(), nullptr);
    EXPECT_EQ(scene.EntityList().size(), 1u);
    scene.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"Update ", "Init "}));
    EXPECT_EQ(scene.EntityList().back(), later);
    EXPECT_EQ(later->Scene(), &scene);
    scene.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"Update ", "Update "}));
}

TEST_F(SceneInit, DestroyEntityGoesByTheTypeOfTheMoment) {
    LoggingPool other("other");
    factory.Register("other", &other);
    Vorn::Scene scene;
    Vorn::Entity* entity = scene.CreateEntity("thing", "master", true);
    entity->DeserializeValue(Element("other", "turncoat"), false);
    Take();
    scene.DestroyEntity(entity, true);
    EXPECT_EQ(Take(), (Log{"Init turncoat", "other.Return turncoat"}));
    EXPECT_EQ(entity->Scene(), nullptr);
}

} // namespace
