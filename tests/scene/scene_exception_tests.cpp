// SPDX-License-Identifier: MIT
#include "scene_world.hpp"

#include "vorn/scene/entity_pool.hpp"

namespace {

using namespace SceneTests;

struct Fault : std::runtime_error {
    Fault() : std::runtime_error("fault") {}
};

class SceneFaults : public SceneTest {
protected:
    static void FaultAt(const std::string& event) {
        Once(event, [] { throw Fault(); });
    }
    static std::string Entities(const std::string& elements) {
        return "{\"Entities\": [" + elements + "]}";
    }
};

TEST_F(SceneFaults, OfAnElementGiveItsEntityBackAndKeepThoseBefore) {
    LoggingScene current("A");
    LoggingScene next("B");
    manager.SetScene(&current);
    manager.Update(0.0f);
    next.Deserialize(Entities(R"({"Type": "thing", "Name": "a"}, {"Type": "thing", "Name": "b"},
                                 {"Type": "thing", "Name": "c", "Position": {"X": "far"}},
                                 {"Type": "thing", "Name": "d"})"));
    manager.SetScene(&next);
    Take();
    const std::string text = Raised<std::runtime_error>([&] { manager.Update(1.0f); });
    EXPECT_TRUE(text.starts_with("Type is not convertible to double")) << text;
    EXPECT_NE(text.find("\"X\""), std::string::npos) << text;
    EXPECT_EQ(Names(next), (Log{"a", "b"}));
    EXPECT_EQ(things.fetched.size(), 3u);
    EXPECT_EQ(things.returned, (std::vector<Vorn::Entity*>{things.fetched[2]}));
    EXPECT_EQ(manager.CurrentScene(), &current);
    const Log log = Take();
    EXPECT_EQ(std::count(log.begin(), log.end(), "Init a"), 0);
    EXPECT_EQ(log.back(), "thing.Return c");

    // The change is still pending: with the fault mended, the next update carries it out.
    next.Deinit();
    Describe(next, {"e"});
    manager.Update(1.0f);
    EXPECT_EQ(Take(),
              (Log{"B.Deinit", "A.Deinit", "A.Unload", "B.Load", "B.Init", "thing.Fetch master",
                   "B.initEntity e", "Init e", "B.Update 1", "Update e"}));
    EXPECT_EQ(manager.CurrentScene(), &next);
    EXPECT_EQ(things.returned.size(), 3u);
}

TEST_F(SceneFaults, OfARestartAreMendedByTheNextUpdate) {
    LoggingScene scene("A");
    Describe(scene, {"a", "b"});
    manager.SetScene(&scene);
    manager.Update(0.0f);
    FaultAt("Init b");
    manager.Restart();
    EXPECT_THROW(manager.Update(0.0f), Fault);
    EXPECT_EQ(Names(scene), (Log{"a", "b"}));
    Take();
    manager.Update(1.0f);
    EXPECT_EQ(Take(),
              (Log{"A.Deinit", "Deinit a", "thing.Return a", "Deinit b", "thing.Return b", "A.Init",
                   "thing.Fetch master", "thing.Fetch master", "A.initEntity a", "Init a",
                   "A.initEntity b", "Init b", "A.Update 1", "Update a", "Update b"}));
    EXPECT_EQ(things.fetched.size(), things.returned.size() + 2);
}

TEST_F(SceneFaults, AnyStageOfAChangeLeavesItPending) {
    for (const char* stage : {"A.Deinit", "Deinit x", "thing.Return x", "A.Unload", "B.Load",
                              "B.Init", "thing.Fetch master", "B.initEntity y", "Init y"}) {
        SCOPED_TRACE(stage);
        LoggingScene a("A");
        LoggingScene b("B");
        Describe(a, {"x"});
        Describe(b, {"y"});
        manager.SetScene(&a);
        manager.Update(0.0f);
        manager.SetScene(&b);
        FaultAt(stage);
        EXPECT_THROW(manager.Update(0.0f), Fault);
        EXPECT_EQ(manager.CurrentScene(), &a);
        b.Deinit();
        manager.Update(0.0f);
        EXPECT_EQ(manager.CurrentScene(), &b);
        EXPECT_EQ(Names(b), (Log{"y"}));
        EXPECT_TRUE(a.EntityList().empty());
        manager = Vorn::SceneManager();
    }
}

TEST_F(SceneFaults, InTheFirstUpdateComeAfterTheChange) {
    LoggingScene a("A");
    Describe(a, {"x"});
    manager.SetScene(&a);
    FaultAt("Update x");
    EXPECT_THROW(manager.Update(0.0f), Fault);
    EXPECT_EQ(manager.CurrentScene(), &a);
    Take();
    manager.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"A.Update 1", "Update x"}));
}

TEST_F(SceneFaults, Restart2PendsBeforeItLeaves) {
    LoggingScene a("A");
    Describe(a, {"x"});
    manager.SetScene(&a);
    manager.Update(0.0f);
    FaultAt("A.Deinit");
    EXPECT_THROW(manager.Restart2(), Fault);
    Take();
    manager.Update(0.0f);
    const Log log = Take();
    EXPECT_EQ(log[0], "A.Deinit");
    EXPECT_EQ(Names(a), (Log{"x"}));
}

TEST_F(SceneFaults, InAnUpdateLeaveTheRequestsForTheNext) {
    Vorn::Scene scene;
    Fill(scene, {"a", "b", "c"});
    Vorn::Entity* added = Make("d");
    Once("Update a", [&] {
        scene.AddEntity(added, false);
        scene.RemoveEntity(scene.GetEntity("b"), false);
        scene.DestroyEntity(scene.GetEntity("c"), false);
    });
    FaultAt("Update b");
    EXPECT_THROW(scene.Update(1.0f), Fault);
    EXPECT_EQ(Take(), (Log{"Update a", "Update b"}));
    EXPECT_EQ(Names(scene), (Log{"a", "b", "c"}));
    scene.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"Update a", "Update b", "Update c", "Init d", "Init b", "Init c",
                           "thing.Return c"}));
    EXPECT_EQ(Names(scene), (Log{"a", "d"}));

    // The walk that was broken off leaves no trace in the next ones.
    scene.RemoveEntity(scene.GetEntity("a"), true);
    scene.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"Init a", "Update d"}));
}

TEST_F(SceneFaults, InARequestTakeItOffAndLeaveTheRest) {
    const auto ask = [](Vorn::Scene& scene, int kind, Vorn::Entity* entity) {
        if (kind == 0)
            scene.AddEntity(entity, false);
        else if (kind == 1)
            scene.RemoveEntity(entity, false);
        else
            scene.DestroyEntity(entity, false);
    };
    for (int kind = 0; kind < 3; ++kind) {
        for (std::size_t faulty = 0; faulty < 3; ++faulty) {
            SCOPED_TRACE("list " + std::to_string(kind) + ", request " + std::to_string(faulty));
            Vorn::Scene scene;
            const std::vector<Probe*> targets = {Make("x"), Make("y"), Make("z")};
            for (Probe* target : targets) {
                if (kind != 0)
                    scene.AddEntity(target, true);
                ask(scene, kind, target);
            }
            Vorn::Entity* last = Make("last");
            scene.AddEntity(last, true);
            scene.DestroyEntity(last, false);
            FaultAt("Init " + targets[faulty]->Name());
            Take();

            EXPECT_THROW(scene.Update(1.0f), Fault);
            Log log = Take();
            std::erase_if(log, [](const std::string& event) { return !event.starts_with("Init"); });
            EXPECT_EQ(log.size(), faulty + 1);

            // Each of those after it is served once, and then there is nothing left to serve.
            scene.Update(1.0f);
            log = Take();
            std::erase_if(log, [](const std::string& event) { return !event.starts_with("Init"); });
            Log expected;
            for (std::size_t i = faulty + 1; i < 3; ++i)
                expected.push_back("Init " + targets[i]->Name());
            expected.push_back("Init last");
            EXPECT_EQ(log, expected);
            EXPECT_EQ(Names(scene), kind == 0 ? (Log{"x", "y", "z"}) : Log());
            scene.Update(1.0f);
            log = Take();
            EXPECT_TRUE(std::all_of(log.begin(), log.end(), [](const std::string& event) {
                return event.starts_with("Update");
            }));
        }
    }
}

TEST_F(SceneFaults, ADestroyedEntityWithoutAPoolIsOutOfTheSceneAllTheSame) {
    Vorn::Scene scene;
    Vorn::Entity* stray = Make("stray");
    scene.AddEntity(stray, true);
    stray->DeserializeValue(Element("nowhere", "stray"), false);
    const std::string text = Raised<std::out_of_range>([&] { scene.DestroyEntity(stray, true); });
    EXPECT_NE(text.find("nowhere"), std::string::npos) << text;
    EXPECT_TRUE(scene.EntityList().empty());
    EXPECT_EQ(scene.GetEntity("stray"), nullptr);
    EXPECT_EQ(stray->Scene(), nullptr);
    EXPECT_EQ(Keys(), (Log{"thing"}));
}

TEST_F(SceneFaults, DeinitGoesOnBehindTheOneThatRaised) {
    for (const char* stage : {"Deinit b", "thing.Return b"}) {
        SCOPED_TRACE(stage);
        Vorn::Scene scene;
        Fill(scene, {"a", "b", "c"});
        FaultAt(stage);
        EXPECT_THROW(scene.Deinit(), Fault);
        EXPECT_EQ(Names(scene), (Log{"c"}));
        Take();
        scene.Deinit();
        EXPECT_EQ(Take(), (Log{"Deinit c", "thing.Return c"}));
        EXPECT_TRUE(scene.EntityList().empty());
        EXPECT_EQ(scene.GetEntity("a"), nullptr);
    }
}

TEST_F(SceneFaults, UnknownTypesAndMissingTemplatesAreNamed) {
    Vorn::Scene scene;
    scene.Deserialize(Entities(R"({"Type": "thing", "Name": "a"}, {"Type": "unicorn"})"));
    const std::string unknown = Raised<std::out_of_range>([&] { scene.Init(); });
    EXPECT_NE(unknown.find("unicorn"), std::string::npos) << unknown;
    EXPECT_EQ(Names(scene), (Log{"a"}));
    scene.Deinit();
    EXPECT_EQ(things.returned, things.fetched);

    EXPECT_THROW(scene.CreateEntity("unicorn", "master", true), std::out_of_range);
    EXPECT_THROW(scene.CreateEntity("unicorn", false), std::out_of_range);
    things.handsOutNull = true;
    const std::string null =
        Raised<std::runtime_error>([&] { scene.CreateEntity("thing", "red", true); });
    EXPECT_NE(null.find("thing"), std::string::npos) << null;
    EXPECT_NE(null.find("red"), std::string::npos) << null;
    scene.Update(1.0f);
    EXPECT_TRUE(scene.EntityList().empty());
    EXPECT_EQ(Keys(), (Log{"thing"}));
}

TEST_F(SceneFaults, WithAPoolOfComponentsNothingStaysOut) {
    Vorn::EntityPool<Probe> sheep;
    sheep.LoadMaster(R"({"Type": "sheep", "PhysicsCmpt": {}, "EmitterCmpt": {}})", 2);
    factory.Register("sheep", &sheep);
    Vorn::Scene scene;
    for (const char* fault :
         {R"({"Type": "sheep", "Scale": {"Y": []}})", R"({"Type": "sheep", "Variant": "pink"})",
          R"({"Type": "sheep", "Name": {}})", R"({"Type": []})",
          R"({"Type": "sheep", "Variant": {}})",
          R"({"Type": "sheep", "GraphicsCmpt": {}, "Orientation": {"Angle": "steep"}})"}) {
        SCOPED_TRACE(fault);
        scene.Deserialize(Entities(R"({"Type": "sheep"}, )" + std::string(fault)));
        EXPECT_THROW(scene.Init(), std::runtime_error);
        EXPECT_EQ(scene.EntityList().size(), 1u);
        EXPECT_EQ(sheep.Size() - sheep.Idle(), 1u);
        scene.Deinit();
        EXPECT_EQ(sheep.Idle(), sheep.Size());
    }
    EXPECT_EQ(sheep.Size(), 2u);
}

} // namespace
