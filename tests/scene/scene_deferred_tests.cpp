// SPDX-License-Identifier: MIT
#include "scene_world.hpp"

namespace {

using namespace SceneTests;

class SceneRequests : public SceneTest {
protected:
    enum Kind { Add, Remove, Destroy };

    static void Ask(Vorn::Scene& scene, Kind kind, Vorn::Entity* entity) {
        switch (kind) {
        case Add:
            scene.AddEntity(entity, false);
            break;
        case Remove:
            scene.RemoveEntity(entity, false);
            break;
        case Destroy:
            scene.DestroyEntity(entity, false);
            break;
        }
    }
};

TEST_F(SceneRequests, AreServedAfterAllUpdatesInTheOrderAddRemoveDestroy) {
    LoggingScene scene("S");
    Fill(scene, {"a", "b", "c"});
    Vorn::Entity* added = Make("d");
    Once("Update a", [&] {
        scene.DestroyEntity(scene.GetEntity("c"), false);
        scene.RemoveEntity(scene.GetEntity("b"), false);
        scene.AddEntity(added, false);
        EXPECT_EQ(Names(scene), (Log{"a", "b", "c"}));
    });
    scene.Update(1.0f);
    EXPECT_EQ(Take(),
              (Log{"S.Update 1", "Update a", "S.DestroyEntity c later", "S.RemoveEntity b later",
                   "S.AddEntity d later", "Update b", "Update c", "S.AddEntity d now",
                   "S.initEntity d", "Init d", "S.RemoveEntity b now", "S.deinitEntity b", "Init b",
                   "S.DestroyEntity c now", "S.deinitEntity c", "Init c", "thing.Return c"}));
    scene.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"S.Update 1", "Update a", "Update d"}));
}

TEST_F(SceneRequests, OnAListThatIsServedOrStillToComeAreServedAndOthersDropped) {
    for (const Kind serving : {Add, Remove, Destroy}) {
        for (const Kind asked : {Add, Remove, Destroy}) {
            SCOPED_TRACE("serving " + std::to_string(serving) + ", asked " + std::to_string(asked));
            Vorn::Scene scene;
            Fill(scene, {"keeper"});
            Vorn::Entity* server = Make("server");
            Vorn::Entity* target = Make("target");
            if (serving != Add)
                scene.AddEntity(server, true);
            if (asked != Add)
                scene.AddEntity(target, true);
            const bool listedBefore = asked != Add;
            Take();

            Ask(scene, serving, server);
            Once("Init server", [&] { Ask(scene, asked, target); });
            scene.Update(1.0f);
            // Once more: what was dropped does not come up later.
            scene.Update(1.0f);

            const bool served = asked >= serving;
            const auto& list = scene.EntityList();
            const auto times = std::count(list.begin(), list.end(), target);
            EXPECT_EQ(times, served != listedBefore ? 1 : 0);
            EXPECT_EQ(target->Scene(), times ? &scene : nullptr);
            const Log log = Take();
            EXPECT_EQ(std::count(log.begin(), log.end(), "Init target"), served ? 1 : 0);
            EXPECT_EQ(std::count(log.begin(), log.end(), "thing.Return target"),
                      served && asked == Destroy ? 1 : 0);
        }
    }
}

TEST_F(SceneRequests, MadeByAPoolThatTakesAnEntityBackAreServedToo) {
    Vorn::Scene scene;
    Fill(scene, {"a", "b", "c"});
    scene.DestroyEntity(scene.GetEntity("a"), false);
    Once("thing.Return a", [&] {
        scene.DestroyEntity(scene.GetEntity("c"), false);
        scene.RemoveEntity(scene.GetEntity("b"), false);
    });
    scene.Update(1.0f);
    EXPECT_EQ(Names(scene), (Log{"b"}));
    scene.Update(1.0f);
    EXPECT_EQ(Names(scene), (Log{"b"}));
}

TEST_F(SceneRequests, CanChainAsLongAsTheyLike) {
    constexpr int Count = 500;
    Vorn::Scene scene;
    std::vector<Vorn::Entity*> entities;
    for (int i = 0; i < Count; ++i)
        entities.push_back(Make(std::to_string(i)));
    const auto chain = [&](Kind kind) {
        for (int i = 0; i + 1 < Count; ++i) {
            Once("Init " + std::to_string(i), [&scene, &entities, kind, i] {
                Ask(scene, kind, entities[static_cast<std::size_t>(i) + 1]);
            });
        }
        Ask(scene, kind, entities[0]);
        scene.Update(1.0f);
    };
    for (const Kind takingOut : {Remove, Destroy}) {
        chain(Add);
        EXPECT_EQ(scene.EntityList().size(), std::size_t{Count});
        EXPECT_TRUE(std::equal(entities.begin(), entities.end(), scene.EntityList().begin(),
                               scene.EntityList().end()));
        chain(takingOut);
        EXPECT_TRUE(scene.EntityList().empty());
    }
    EXPECT_EQ(things.returned, entities);
}

TEST_F(SceneRequests, OfOneEntitySeveralTimesAreServedSeveralTimes) {
    Vorn::Scene scene;
    Vorn::Entity* entity = Make("a");
    scene.AddEntity(entity, false);
    scene.AddEntity(entity, false);
    scene.Update(1.0f);
    EXPECT_EQ(Names(scene), (Log{"a", "a"}));
    scene.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"Init a", "Init a", "Update a", "Update a"}));

    scene.RemoveEntity(entity, false);
    scene.RemoveEntity(entity, false);
    scene.Update(1.0f);
    EXPECT_TRUE(scene.EntityList().empty());
    EXPECT_EQ(Take(), (Log{"Update a", "Update a", "Init a", "Init a"}));

    scene.DestroyEntity(entity, false);
    scene.RemoveEntity(entity, false);
    scene.DestroyEntity(entity, false);
    scene.AddEntity(entity, false);
    scene.Update(1.0f);
    EXPECT_TRUE(scene.EntityList().empty());
    EXPECT_EQ(Take(),
              (Log{"Init a", "Init a", "Init a", "thing.Return a", "Init a", "thing.Return a"}));
}

TEST_F(SceneRequests, ToAddAndDestroyInOneFrameRunThroughTheWholeLife) {
    Vorn::Scene scene;
    Vorn::Entity* entity = scene.CreateEntity("thing", "master", false);
    Rename(*entity, "fly");
    Take();
    scene.DestroyEntity(entity, false);
    Once("Init fly", [&] { EXPECT_EQ(scene.GetEntity("fly"), entity); });
    scene.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"Init fly", "Init fly", "thing.Return fly"}));
    EXPECT_TRUE(scene.EntityList().empty());
    EXPECT_EQ(scene.GetEntity("fly"), nullptr);
    EXPECT_EQ(entity->Scene(), nullptr);
}

TEST_F(SceneRequests, OutliveADeinit) {
    Vorn::Scene scene;
    Fill(scene, {"a", "b"});
    Vorn::Entity* late = Make("late");
    scene.AddEntity(late, false);
    scene.RemoveEntity(scene.GetEntity("a"), false);
    scene.DestroyEntity(scene.GetEntity("b"), false);
    scene.Deinit();
    Take();
    scene.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"Init late", "Init a", "Init b", "thing.Return b"}));
    EXPECT_EQ(Names(scene), (Log{"late"}));
}

class SceneNames : public SceneTest {};

TEST_F(SceneNames, TheFirstOfANameIsFoundAndAnyOfThemFreesIt) {
    for (const std::size_t leaving : {std::size_t{0}, std::size_t{1}}) {
        Vorn::Scene scene;
        const std::vector<Vorn::Entity*> twins = {Make("twin"), Make("twin")};
        scene.AddEntity(twins[0], true);
        scene.AddEntity(twins[1], true);
        EXPECT_EQ(scene.GetEntity("twin"), twins[0]);
        EXPECT_EQ(scene.GetEntity("Twin"), nullptr);
        scene.RemoveEntity(twins[leaving], true);
        EXPECT_EQ(scene.GetEntity("twin"), nullptr);
        EXPECT_EQ(Names(scene), (Log{"twin"}));
        // The name is free for the next.
        Vorn::Entity* third = Make("twin");
        scene.AddEntity(third, true);
        EXPECT_EQ(scene.GetEntity("twin"), third);
        scene.Deinit();
    }
}

TEST_F(SceneNames, ByWhichAnEntityLeavesIsTheOneItHasThen) {
    Vorn::Scene scene;
    Fill(scene, {"a", "b"});
    Vorn::Entity* a = scene.GetEntity("a");
    Rename(*a, "b");
    EXPECT_EQ(scene.GetEntity("a"), a);
    EXPECT_NE(scene.GetEntity("b"), a);
    scene.RemoveEntity(a, true);
    EXPECT_EQ(scene.GetEntity("b"), nullptr);
    EXPECT_EQ(scene.GetEntity("a"), a);
}

TEST_F(SceneNames, AnEmptyNameIsAName) {
    Vorn::Scene scene;
    EXPECT_EQ(scene.GetEntity(""), nullptr);
    Fill(scene, {"", "x", ""});
    EXPECT_EQ(scene.GetEntity(""), scene.EntityList().front());
    scene.RemoveEntity(scene.EntityList().back(), true);
    EXPECT_EQ(scene.GetEntity(""), nullptr);
}

TEST_F(SceneNames, AreFreedEvenByAnEntityThatIsNotThere) {
    Vorn::Scene scene;
    Fill(scene, {"a"});
    Vorn::Entity* stranger = Make("a");
    scene.RemoveEntity(stranger, true);
    EXPECT_EQ(Take(), (Log{"Init a"}));
    EXPECT_EQ(Names(scene), (Log{"a"}));
    EXPECT_EQ(scene.GetEntity("a"), nullptr);
}

class TwoScenes : public SceneTest {};

TEST_F(TwoScenes, CanListOneEntity) {
    Vorn::Scene first;
    Vorn::Scene second;
    Fill(first, {"a"});
    Fill(second, {"b"});
    Vorn::Entity* shared = Make("s");
    first.AddEntity(shared, true);
    second.AddEntity(shared, true);
    EXPECT_EQ(shared->Scene(), &second);
    first.AddEntity(shared, true);
    EXPECT_EQ(shared->Scene(), &first);
    EXPECT_EQ(Names(first), (Log{"a", "s", "s"}));
    EXPECT_EQ(Names(second), (Log{"b", "s"}));

    // Leaving one of them clears the scene, and the other still lists it.
    second.RemoveEntity(shared, true);
    EXPECT_EQ(shared->Scene(), nullptr);
    EXPECT_EQ(second.GetEntity("s"), nullptr);
    EXPECT_EQ(first.GetEntity("s"), shared);
    EXPECT_EQ(Names(first), (Log{"a", "s", "s"}));
    EXPECT_EQ(Names(second), (Log{"b"}));
    second.AddEntity(shared, true);
    first.DestroyEntity(shared, true);
    EXPECT_EQ(Names(first), (Log{"a"}));
    EXPECT_EQ(Names(second), (Log{"b", "s"}));
    EXPECT_EQ(shared->Scene(), nullptr);
    second.RemoveEntity(shared, true);
    EXPECT_EQ(Names(second), (Log{"b"}));
}

TEST_F(TwoScenes, OneEndsWhileTheOtherGoesOnWithTheSharedEntity) {
    Vorn::Scene first;
    Vorn::Scene second;
    Vorn::Entity* shared = Make("s");
    first.AddEntity(shared, true);
    second.AddEntity(shared, true);
    first.Deinit();
    EXPECT_EQ(Names(second), (Log{"s"}));
    first.AddEntity(shared, true);
    second.RemoveEntity(shared, true);
    EXPECT_EQ(Names(first), (Log{"s"}));
    EXPECT_TRUE(second.EntityList().empty());
    first.RemoveEntity(shared, true);
    EXPECT_TRUE(first.EntityList().empty());
}

TEST_F(TwoScenes, TheSceneThatTookASharedEntityLastKeepsItWhenTheOtherEnds) {
    Vorn::Scene first;
    Vorn::Scene second;
    Vorn::Entity* shared = Make("s");
    first.AddEntity(shared, true);
    second.AddEntity(shared, true);
    first.Deinit();
    EXPECT_EQ(shared->Scene(), &second);
}

} // namespace
