// SPDX-License-Identifier: MIT
#include "scene_world.hpp"

namespace {

using namespace SceneTests;

// Two texts must not end up as a name and a true.
template <typename S>
concept TakesTwoTexts = requires(S& scene) {
    scene.CreateEntity("type", "variant");
};
static_assert(!TakesTwoTexts<Vorn::Scene>);

/// Has one entity.
class LoggingScene : public Vorn::Scene {
public:
    LoggingScene(std::string label, const std::string& entity) : mLabel(std::move(label)) {
        Deserialize(R"({"Entities": [{"Type": "thing", "Name": ")" + entity + "\"}]}");
    }
    void Load() override {
        recorder.Note(mLabel + ".Load");
        Scene::Load();
    }
    void Init() override {
        recorder.Note(mLabel + ".Init");
        Scene::Init();
    }
    void Deinit() override {
        recorder.Note(mLabel + ".Deinit");
        Scene::Deinit();
    }
    void Unload() override {
        recorder.Note(mLabel + ".Unload");
        Scene::Unload();
    }

private:
    std::string mLabel;
};

class SceneLife : public SceneTest {
protected:
    /// What the next update does.
    std::string Update() {
        manager.Update(2.0f);
        return recorder.Take();
    }

    /// For B, with `hook` at an event of the change.
    void LeaveA(const std::string& stage, const std::function<void()>& hook) {
        manager = Vorn::SceneManager();
        manager.SetScene(&a);
        Update();
        manager.SetScene(&b);
        recorder.Once(stage, hook);
        try {
            Update();
        } catch (const Fault&) {
            recorder.Take();
        }
    }

    const std::string leaveA = "A.Deinit Deinit:x thing.Return:x ";
    const std::string enterA = "A.Init thing.Fetch:master Init:x Update:x";
    const std::string enterB = "B.Init thing.Fetch:master Init:y Update:y";
    LoggingScene a{"A", "x"};
    LoggingScene b{"B", "y"};
    Vorn::Scene scene;
};

TEST_F(SceneLife, ChangesInsideTheUpdateInTheOrderDeinitUnloadLoadInit) {
    manager.Restart(); // without a current scene none of these does anything
    manager.Restart2();
    manager.UnloadCurrentScene();
    EXPECT_EQ(Update(), "");
    manager.SetScene(&b);
    manager.SetScene(&a); // the last call wins
    EXPECT_EQ(Update(), "A.Load " + enterA);
    manager.SetScene(&b);
    manager.Restart(); // in place of the pending change
    EXPECT_EQ(Update(), leaveA + enterA);
    manager.Restart2();
    EXPECT_EQ(Update(), leaveA + "A.Unload A.Deinit " + enterA);
    recorder.Once("Update:x", [this] { manager.Restart2(); }); // in the midst of the walk
    EXPECT_EQ(Update(), "Update:x " + leaveA + "A.Unload");
    EXPECT_EQ(Update(), "A.Deinit " + enterA);
    recorder.Once("Update:x", [this] { manager.SetScene(&b); }); // comes with the next update
    EXPECT_EQ(Update(), "Update:x");
    recorder.Once("B.Init", [this] { EXPECT_EQ(manager.CurrentScene(), &a); });
    EXPECT_EQ(Update(), leaveA + "A.Unload B.Load " + enterB);
    manager.UnloadCurrentScene();
    EXPECT_EQ(Update(), "B.Deinit Deinit:y thing.Return:y B.Unload");
    EXPECT_EQ(manager.CurrentScene(), &b);
}

TEST_F(SceneLife, AChangeThatRaisesStaysPendingAndAHalfMadeSceneEndsFirst) {
    const std::string entityOfB = " Deinit:y thing.Return:y";
    for (const std::string stage : {"A.Deinit", "Deinit:x", "thing.Return:x", "A.Unload", "B.Load",
                                    "B.Init", "thing.Fetch:master", "Init:y"}) {
        SCOPED_TRACE(stage);
        // Also where another scene is to follow by then, or none.
        for (Vorn::Scene* follower : std::initializer_list<Vorn::Scene*>{&a, nullptr, &b}) {
            LeaveA(stage, [] { throw Fault(); });
            EXPECT_EQ(manager.CurrentScene(), &a);
            manager.SetScene(follower);
            const std::string log = Update();
            EXPECT_EQ(log.starts_with("B.Deinit"),
                      stage == "B.Init" || stage.ends_with("master") || stage == "Init:y");
            EXPECT_EQ(log.starts_with("B.Deinit" + entityOfB), stage == "Init:y");
            EXPECT_THAT(log, EndsWith(!follower        ? ""
                                      : follower == &a ? enterA
                                                       : "A.Unload B.Load " + enterB));
            EXPECT_EQ(manager.CurrentScene(), follower == &b ? &b : &a);
            a.Deinit();
        }
        FaultAt("B.Deinit");
        EXPECT_THROW(manager.Restart2(), Fault); // pends before it leaves
        recorder.Take();
        EXPECT_EQ(Update(), "B.Deinit" + entityOfB + " " + enterB); // and owes nothing else
        b.Deinit();
    }
}

TEST_F(SceneLife, ASceneSetWhileTheOldOneLeavesFollowsAtOnceAndElseWithTheNextUpdate) {
    LoggingScene c("C", "z");
    for (const std::string stage : {"A.Deinit", "A.Unload", "B.Load", "B.Init"}) {
        LeaveA(stage, [&] { manager.SetScene(&c); });
        EXPECT_EQ(manager.CurrentScene(), stage[0] == 'A' ? &c : &b) << stage;
        Update();
        EXPECT_EQ(manager.CurrentScene(), &c) << stage;
    }
}

TEST_F(SceneLife, AnElementThatRaisesGivesItsEntityBackAndKeepsThoseBefore) {
    const std::string path = Write("a.scene", R"({"Entities": [{"Type": "thing", "Name": "a"},
        {"Type": "thing", "Name": "b", "Position": {"X": "far"}}, {"Type": "thing"}]})");
    scene.DeserializePath(path);
    EXPECT_THAT([this] { scene.Init(); },
                ThrowsMessage<Vorn::DataError>("Type is not convertible to double: \"X\" in "
                                               "\"Position\" in Entities[1] in " +
                                               path));
    EXPECT_EQ(recorder.Take(), "thing.Fetch:master thing.Fetch:master thing.Return:b");
    EXPECT_THAT(Names(scene), ElementsAre("a"));

    // The file is that of the description, not the one that was asked for last.
    EXPECT_THROW(scene.DeserializePath(folder / "late.scene"), std::runtime_error);
    EXPECT_THAT([this] { scene.Init(); }, ThrowsMessage<Vorn::DataError>(EndsWith("] in " + path)));
    scene.Deserialize(Vorn::TextFromFile(path));
    EXPECT_THAT([this] { scene.Init(); }, ThrowsMessage<Vorn::DataError>(EndsWith("[1]")));
    Write("late.scene", R"({"Entities": 3})");
    EXPECT_THAT([this] { scene.Redeserialize(); },
                ThrowsMessage<Vorn::DataError>(EndsWith("late.scene")));
}

TEST_F(SceneLife, EntitiesComeByTypeAndVariantAndAreInitialisedWhenAllAreThere) {
    LoggingPool typeless("typeless");
    factory.Register("typeless", &typeless);
    scene.Init(); // nothing is described
    scene.Deserialize(R"({"Entities": [{"Name": "a"}, {"Type": "thing", "Variant": "red"}]})");
    recorder.Once("Init:a", [this] { EXPECT_EQ(scene.EntityList().back()->Scene(), &scene); });
    scene.Init();
    EXPECT_EQ(recorder.Take(), "typeless.Fetch:master thing.Fetch:red Init:a Init:");
    Vorn::Entity* const now = scene.CreateEntity("thing", "blue", true);
    Vorn::Entity* const later = scene.CreateEntity("typeless", false);
    EXPECT_EQ(recorder.Take(), "thing.Fetch:blue Init: typeless.Fetch:typeless");
    EXPECT_EQ(later->Scene(), nullptr);
    scene.Update(1.0f);
    EXPECT_EQ(scene.EntityList().back(), later);
    recorder.Take();

    // A destroyed one goes to the pool of the type that it has by then; without one it is out of
    // the scene all the same.
    now->Deserialize(R"({"Type": "typeless"})", false);
    later->Deserialize(R"({"Type": "unicorn"})", false);
    scene.DestroyEntity(now, true);
    EXPECT_EQ(recorder.Take(), "Init: typeless.Return:");
    EXPECT_THROW(scene.DestroyEntity(later, true), std::out_of_range);
    EXPECT_THAT(Names(scene), ElementsAre("a", ""));
}

TEST_F(SceneLife, TheFileIsReadWithDefaultsAndAgainFromItsLastPath) {
    const std::string good = R"({"ResourcePack": "meadow", "Entities": [{"Depth": [1, {}]}]})";
    for (const char* text : {R"({"Other": 1})", "[1, 2]", "nonsense"}) {
        scene.Deserialize(good);
        EXPECT_EQ(scene.EntitiesValue()[0]["Depth"][0].asInt(), 1);
        scene.Deserialize(text);
        EXPECT_EQ(scene.ResourcePack(), "") << text;
        EXPECT_TRUE(scene.EntitiesValue().isNull()) << text;
    }
    scene.Deserialize(good);
    for (const std::string entities : {"17", "\"text\"", "{}", "true"}) {
        const std::string text = R"({"ResourcePack": "new", "Entities": )" + entities + "}";
        EXPECT_THAT(
            [&] { scene.Deserialize(text); },
            ThrowsMessage<Vorn::DataError>("Type is not convertible to array: \"Entities\""));
        EXPECT_EQ(scene.ResourcePack(), "meadow");
        EXPECT_EQ(scene.EntitiesValue().size(), 1u);
    }
    const std::string path = Write("a.scene", std::string(5000, 'x')); // replaced, not overwritten
    scene.SerializePath(path);
    EXPECT_EQ(Vorn::TextFromFile(path), scene.Serialize());
    a.DeserializePath(path);
    EXPECT_EQ(a.Serialize(), scene.Serialize());
    // A path is kept before it is read, so that a file which comes late is found by it.
    const std::string late = folder / "late.scene";
    EXPECT_THAT([&] { a.DeserializePath(late); },
                ThrowsMessage<std::runtime_error>("cannot open file: " + late));
    EXPECT_EQ(a.ResourcePack(), "meadow");
    Write("late.scene", R"({"ResourcePack": "late"})");
    a.Redeserialize();
    EXPECT_EQ(a.ResourcePack(), "late");
}

} // namespace
