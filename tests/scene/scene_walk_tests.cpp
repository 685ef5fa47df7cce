// SPDX-License-Identifier: MIT
#include "scene_world.hpp"

#include "vorn/scene/entity_pool.hpp"

namespace {

using namespace SceneTests;

/// Entities that change their scene at once, in the middle of its walk along them.
class SceneWalk : public SceneTest {
protected:
    SceneWalk() { Fill(scene, {"a", "b", "c", "d"}); }

    Vorn::Entity* At(const char* name) { return scene.GetEntity(name); }
    /// What one frame updates when `act` runs in the update of the entity `name`.
    Log Walk(const char* name, std::function<void()> act) {
        Once(std::string("Update ") + name, std::move(act));
        Take();
        scene.Update(1.0f);
        Log updates;
        for (const std::string& event : Take()) {
            if (event.starts_with("Update "))
                updates.push_back(event.substr(7));
        }
        return updates;
    }

    Vorn::Scene scene;
};

TEST_F(SceneWalk, BearsTheRemovalOfAnyOneOfThem) {
    const Log all = {"a", "b", "c", "d"};
    for (const std::string& actor : all) {
        for (const std::string& target : all) {
            for (const bool destroy : {false, true}) {
                SCOPED_TRACE(actor + " takes out " + target);
                scene.Deinit();
                Fill(scene, {"a", "b", "c", "d"});
                const Log updated = Walk(actor.c_str(), [&] {
                    if (destroy)
                        scene.DestroyEntity(At(target.c_str()), true);
                    else
                        scene.RemoveEntity(At(target.c_str()), true);
                });
                Log left = all;
                left.erase(std::find(left.begin(), left.end(), target));
                EXPECT_EQ(updated, target > actor ? left : all);
                EXPECT_EQ(Names(scene), left);
            }
        }
    }
}

TEST_F(SceneWalk, VisitsWhoIsAddedInIt) {
    Vorn::Entity* fromMiddle = Make("x");
    EXPECT_EQ(Walk("b", [&] { scene.AddEntity(fromMiddle, true); }),
              (Log{"a", "b", "c", "d", "x"}));
    Vorn::Entity* fromLast = Make("y");
    EXPECT_EQ(Walk("x", [&] { scene.AddEntity(fromLast, true); }),
              (Log{"a", "b", "c", "d", "x", "y"}));
    EXPECT_EQ(Walk("c", [&] { scene.AddEntity(At("a"), true); }),
              (Log{"a", "b", "c", "d", "x", "y", "a"}));
}

TEST_F(SceneWalk, VisitsAgainWhoLeavesAndComesBack) {
    EXPECT_EQ(Walk("b",
                   [&] {
                       Vorn::Entity* self = At("b");
                       scene.RemoveEntity(self, true);
                       scene.AddEntity(self, true);
                   }),
              (Log{"a", "b", "c", "d", "b"}));
    EXPECT_EQ(Names(scene), (Log{"a", "c", "d", "b"}));
    EXPECT_EQ(Walk("b",
                   [&] {
                       Vorn::Entity* self = At("b");
                       scene.RemoveEntity(self, true);
                       scene.AddEntity(self, true);
                   }),
              (Log{"a", "c", "d", "b", "b"}));
}

TEST_F(SceneWalk, LeavesOutEveryEntryOfWhoIsRemoved) {
    scene.AddEntity(At("a"), true);
    scene.AddEntity(At("d"), true);
    scene.AddEntity(At("a"), true);
    EXPECT_EQ(Walk("c", [&] { scene.RemoveEntity(At("a"), true); }),
              (Log{"a", "b", "c", "d", "d"}));
    EXPECT_EQ(Walk("d", [&] { scene.DestroyEntity(At("d"), true); }), (Log{"b", "c", "d"}));
    EXPECT_EQ(Names(scene), (Log{"b", "c"}));
}

TEST_F(SceneWalk, CanEndWithNobodyAndGoOnWithNewcomers) {
    const auto clear = [&] {
        while (!scene.EntityList().empty())
            scene.DestroyEntity(scene.EntityList().front(), true);
    };
    EXPECT_EQ(Walk("b", clear), (Log{"a", "b"}));
    EXPECT_TRUE(scene.EntityList().empty());
    Fill(scene, {"a", "b", "c"});
    Vorn::Entity* newcomer = Make("x");
    EXPECT_EQ(Walk("b",
                   [&] {
                       clear();
                       scene.AddEntity(newcomer, true);
                   }),
              (Log{"a", "b", "x"}));
    EXPECT_EQ(Names(scene), (Log{"x"}));
}

TEST_F(SceneWalk, GoesOnAfterTheEntitiesWereSerialised) {
    EXPECT_EQ(Walk("b", [&] { scene.SerializeEntities(); }), (Log{"a", "b", "c", "d"}));
    EXPECT_EQ(scene.EntitiesValue().size(), 4u);
}

TEST_F(SceneWalk, GoesOnAfterAnotherWalkInside) {
    EXPECT_EQ(Walk("b", [&] { scene.Update(0.0f); }),
              (Log{"a", "b", "a", "b", "c", "d", "c", "d"}));
    EXPECT_EQ(Walk("b",
                   [&] {
                       Once("Update c", [&] { scene.RemoveEntity(At("c"), true); });
                       scene.Update(0.0f);
                   }),
              (Log{"a", "b", "a", "b", "c", "d", "d"}));
}

TEST_F(SceneWalk, EndsWhenTheSceneIsDeinitialised) {
    EXPECT_EQ(Walk("b", [&] { scene.Deinit(); }), (Log{"a", "b"}));
    EXPECT_TRUE(scene.EntityList().empty());
    EXPECT_EQ(things.returned.size(), 4u);
}

TEST_F(SceneWalk, BearsARestartInside) {
    Describe(scene, {"p", "q", "r"});
    const Log updated = Walk("b", [&] {
        scene.Deinit();
        scene.Init();
    });
    EXPECT_EQ(Names(scene), (Log{"p", "q", "r"}));
    // The old ones are not visited any more.
    EXPECT_EQ(std::count(updated.begin(), updated.end(), "c"), 0);
    EXPECT_EQ(Walk("p", [] {}), (Log{"p", "q", "r"}));
}

class ManagerInTheWalk : public SceneTest {
protected:
    ManagerInTheWalk() {
        Describe(scene, {"a", "b", "c"});
        manager.SetScene(&scene);
        manager.Update(0.0f);
        Take();
    }

    LoggingScene scene{"S"};
};

TEST_F(ManagerInTheWalk, UnloadCurrentSceneEndsItAndRequestsAreStillServed) {
    Vorn::Entity* late = Make("late");
    Once("Update b", [&] {
        scene.AddEntity(late, false);
        scene.DestroyEntity(scene.GetEntity("a"), false);
        Take();
        manager.UnloadCurrentScene();
    });
    manager.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"S.Deinit", "Deinit a", "thing.Return a", "Deinit b", "thing.Return b",
                           "Deinit c", "thing.Return c", "S.Unload", "S.AddEntity late now",
                           "S.initEntity late", "Init late", "S.DestroyEntity a now",
                           "S.deinitEntity a", "Init a", "thing.Return a"}));
    EXPECT_EQ(Names(scene), (Log{"late"}));
    EXPECT_EQ(manager.CurrentScene(), &scene);
}

TEST_F(ManagerInTheWalk, Restart2EndsItAndTheNextUpdateStartsAnew) {
    Once("Update a", [&] { manager.Restart2(); });
    manager.Update(1.0f);
    EXPECT_EQ(Take(),
              (Log{"S.Update 1", "Update a", "S.Deinit", "Deinit a", "thing.Return a", "Deinit b",
                   "thing.Return b", "Deinit c", "thing.Return c", "S.Unload"}));
    manager.Update(1.0f);
    EXPECT_EQ(Names(scene), (Log{"a", "b", "c"}));
    const Log log = Take();
    EXPECT_EQ(log[0], "S.Deinit");
    EXPECT_EQ(log[1], "S.Init");
    EXPECT_EQ(std::count(log.begin(), log.end(), "S.Load"), 0);
}

TEST_F(ManagerInTheWalk, ARestartFromADeferredRequestLeavesTheRestToBeServed) {
    Vorn::Entity* x = Make("x");
    Vorn::Entity* y = Make("y");
    scene.AddEntity(x, false);
    scene.AddEntity(y, false);
    Once("Init x", [&] { manager.Restart2(); });
    manager.Update(1.0f);
    EXPECT_EQ(Names(scene), (Log{"y"}));
    manager.Update(1.0f);
    EXPECT_EQ(Names(scene), (Log{"a", "b", "c"}));
}

TEST(SceneWalkWithAPool, ReusesWhatWasDestroyedInTheSameWalk) {
    auto& factory = *Vorn::EntityFactory::Instance();
    Vorn::EntityPool<Probe> pool;
    pool.LoadMaster(R"({"Type": "sheep", "PhysicsCmpt": {}, "GraphicsCmpt": {}})", 4);
    factory.Register("sheep", &pool);
    {
        Vorn::Scene scene;
        for (const char* name : {"a", "b", "c"})
            Rename(*scene.CreateEntity("sheep", "master", true), name);
        int born = 0;
        recorder.Once("Update a", [&] {
            // Each one destroys its successor and takes its place; the pool hands out the same
            // object again.
            for (int i = 0; i < 50; ++i) {
                scene.DestroyEntity(scene.EntityList().back(), true);
                Rename(*scene.CreateEntity("sheep", "master", true), "n" + std::to_string(++born));
            }
        });
        recorder.Take();
        scene.Update(1.0f);
        EXPECT_EQ(Names(scene), (Log{"a", "b", "n50"}));
        const Log log = recorder.Take();
        EXPECT_EQ(std::count(log.begin(), log.end(), "Update n50"), 1);
        EXPECT_EQ(std::count(log.begin(), log.end(), "Update n49"), 0);
        EXPECT_EQ(pool.Size() - pool.Idle(), 3u);
        scene.Deinit();
    }
    EXPECT_EQ(pool.Idle(), pool.Size());
    EXPECT_EQ(pool.Size(), 4u);
    recorder = Recorder();
    factory = Vorn::EntityFactory();
}

} // namespace
