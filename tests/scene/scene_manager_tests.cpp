// SPDX-License-Identifier: MIT
#include "scene_world.hpp"

namespace {

using namespace SceneTests;

class SceneChange : public SceneTest {
protected:
    SceneChange() {
        Describe(a, {"x", "y"});
        Describe(b, {"z"});
    }
    void Run(Vorn::Scene& scene) {
        manager.SetScene(&scene);
        manager.Update(0.0f);
        Take();
    }

    LoggingScene a{"A"};
    LoggingScene b{"B"};
};

TEST_F(SceneChange, RunsDeinitAndUnloadThenLoadInitAndTheFirstUpdate) {
    manager.SetScene(&a);
    EXPECT_EQ(Take(), Log());
    EXPECT_EQ(manager.CurrentScene(), nullptr);
    manager.Update(0.25f);
    EXPECT_EQ(Take(),
              (Log{"A.Load", "A.Init", "thing.Fetch master", "thing.Fetch master", "A.initEntity x",
                   "Init x", "A.initEntity y", "Init y", "A.Update 0.25", "Update x", "Update y"}));
    EXPECT_EQ(manager.CurrentScene(), &a);
    EXPECT_EQ(static_cast<Probe*>(a.GetEntity("y"))->LastDt(), 0.25f);

    manager.Update(0.5f);
    EXPECT_EQ(Take(), (Log{"A.Update 0.5", "Update x", "Update y"}));

    // Until the change is through, the old scene is the current one.
    for (const char* event : {"A.Deinit", "A.Unload", "B.Load", "B.Init"})
        Once(event, [this] { EXPECT_EQ(manager.CurrentScene(), &a); });
    Once("B.Update 1", [this] { EXPECT_EQ(manager.CurrentScene(), &b); });
    manager.SetScene(&b);
    manager.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"A.Deinit", "Deinit x", "thing.Return x", "Deinit y", "thing.Return y",
                           "A.Unload", "B.Load", "B.Init", "thing.Fetch master", "B.initEntity z",
                           "Init z", "B.Update 1", "Update z"}));
    EXPECT_EQ(a.EntityList().size(), 0u);
    EXPECT_EQ(a.GetEntity("x"), nullptr);
}

TEST_F(SceneChange, OfTheCurrentSceneIsARestartWithoutUnloadAndLoad) {
    const Log restart = {"A.Deinit",
                         "Deinit x",
                         "thing.Return x",
                         "Deinit y",
                         "thing.Return y",
                         "A.Init",
                         "thing.Fetch master",
                         "thing.Fetch master",
                         "A.initEntity x",
                         "Init x",
                         "A.initEntity y",
                         "Init y",
                         "A.Update 2",
                         "Update x",
                         "Update y"};
    Run(a);
    manager.SetScene(&a);
    manager.Update(2.0f);
    EXPECT_EQ(Take(), restart);
    manager.Restart();
    manager.Restart();
    EXPECT_EQ(Take(), Log());
    manager.Update(2.0f);
    EXPECT_EQ(Take(), restart);
    manager.Update(2.0f);
    EXPECT_EQ(Take(), (Log{"A.Update 2", "Update x", "Update y"}));

    // What entered later is gone, what left is back.
    a.DestroyEntity(a.GetEntity("x"), true);
    a.AddEntity(Make("later"), true);
    manager.Restart();
    manager.Update(2.0f);
    EXPECT_EQ(Names(a), (Log{"x", "y"}));
}

TEST_F(SceneChange, Restart2LeavesAtOnceAndStartsInTheNextUpdate) {
    Run(a);
    manager.Restart2();
    EXPECT_EQ(Take(), (Log{"A.Deinit", "Deinit x", "thing.Return x", "Deinit y", "thing.Return y",
                           "A.Unload"}));
    EXPECT_EQ(manager.CurrentScene(), &a);
    manager.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"A.Deinit", "A.Init", "thing.Fetch master", "thing.Fetch master",
                           "A.initEntity x", "Init x", "A.initEntity y", "Init y", "A.Update 1",
                           "Update x", "Update y"}));
}

TEST_F(SceneChange, UnloadCurrentSceneLeavesAnEmptySceneRunning) {
    Run(a);
    manager.UnloadCurrentScene();
    EXPECT_EQ(Take(), (Log{"A.Deinit", "Deinit x", "thing.Return x", "Deinit y", "thing.Return y",
                           "A.Unload"}));
    EXPECT_EQ(manager.CurrentScene(), &a);
    manager.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"A.Update 1"}));

    // A change that was pending stays pending, and leaves the old scene once more.
    manager.SetScene(&b);
    manager.UnloadCurrentScene();
    EXPECT_EQ(Take(), (Log{"A.Deinit", "A.Unload"}));
    manager.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"A.Deinit", "A.Unload", "B.Load", "B.Init", "thing.Fetch master",
                           "B.initEntity z", "Init z", "B.Update 1", "Update z"}));
}

TEST_F(SceneChange, TheLastRequestBeforeAnUpdateWins) {
    manager.SetScene(&a);
    manager.SetScene(&b);
    manager.Update(0.0f);
    EXPECT_EQ(Take().front(), "B.Load");
    EXPECT_EQ(manager.CurrentScene(), &b);

    manager.SetScene(&a);
    manager.Restart();
    manager.Update(0.0f);
    EXPECT_EQ(Take().front(), "B.Deinit");
    EXPECT_EQ(manager.CurrentScene(), &b);

    manager.SetScene(&a);
    manager.SetScene(nullptr);
    manager.Update(0.0f);
    EXPECT_EQ(Take(), (Log{"B.Update 0", "Update z"}));
}

TEST_F(SceneChange, WithoutACurrentSceneNothingHappens) {
    manager.Update(1.0f);
    manager.Restart();
    manager.Restart2();
    manager.UnloadCurrentScene();
    manager.Update(1.0f);
    EXPECT_EQ(Take(), Log());
    EXPECT_EQ(manager.CurrentScene(), nullptr);

    // Nor is the first scene lost that waits for its change.
    manager.SetScene(&b);
    manager.Restart();
    manager.Restart2();
    manager.UnloadCurrentScene();
    EXPECT_EQ(Take(), Log());
    manager.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"B.Load", "B.Init", "thing.Fetch master", "B.initEntity z", "Init z",
                           "B.Update 1", "Update z"}));
}

TEST_F(SceneChange, RequestedInAFrameComesWithTheNextUpdate) {
    Run(a);
    Once("Update x", [this] { manager.SetScene(&b); });
    manager.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"A.Update 1", "Update x", "Update y"}));
    EXPECT_EQ(manager.CurrentScene(), &a);
    manager.Update(1.0f);
    EXPECT_EQ(manager.CurrentScene(), &b);
    Take();

    Once("Update z", [this] { manager.Restart(); });
    manager.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"B.Update 1", "Update z"}));
    manager.Update(1.0f);
    EXPECT_EQ(Take(), (Log{"B.Deinit", "Deinit z", "thing.Return z", "B.Init", "thing.Fetch master",
                           "B.initEntity z", "Init z", "B.Update 1", "Update z"}));
}

TEST_F(SceneChange, ToAndFroRebuildsTheSameStartState) {
    Run(a);
    a.GetEntity("x")->Position(9, 9, 9);
    Run(b);
    Run(a);
    EXPECT_EQ(Names(a), (Log{"x", "y"}));
    EXPECT_EQ(a.GetEntity("x")->Position(), Vorn::Vector3(0, 0, 0));
    EXPECT_EQ(things.fetched.size(), 5u);
    EXPECT_EQ(things.returned.size(), 3u);
}

} // namespace
