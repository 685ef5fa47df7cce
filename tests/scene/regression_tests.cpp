// SPDX-License-Identifier: MIT
//
// Rules that were broken once.
#include "scene_world.hpp"

#include "vorn/core/data_error.hpp"
#include "vorn/physics/physics_cmpt.hpp"
#include "vorn/physics/physics_system.hpp"
#include "vorn/render/emitter_system.hpp"
#include "vorn/render/graphics_system.hpp"

#include <cmath>

#include <optional>

namespace {

using namespace SceneTests;

class Regression : public SceneTest {
protected:
    static void FaultAt(const std::string& event) {
        Once(event, [] { throw std::runtime_error("fault"); });
    }
};

TEST_F(Regression, RequestsOfAListThatWasServedAreOffItWhenALaterListRaises) {
    Vorn::Scene scene;
    Fill(scene, {"leaver"});
    scene.AddEntity(Make("added"), false);
    scene.RemoveEntity(scene.GetEntity("leaver"), false);
    FaultAt("Init leaver");
    EXPECT_THROW(scene.Update(1.0f), std::runtime_error);
    scene.Update(1.0f);
    EXPECT_EQ(Names(scene), (Log{"added"}));
}

TEST_F(Regression, AnEntityOfADeadSceneMeansNothingToANewOneAtItsAddress) {
    Vorn::Entity* entity = Make("a");
    std::optional<Vorn::Scene> scene(std::in_place);
    scene->AddEntity(entity, true);
    scene.emplace();
    scene->RemoveEntity(entity, true);
    scene->AddEntity(entity, true);
    scene->RemoveEntity(entity, true);
    EXPECT_TRUE(scene->EntityList().empty());
}

TEST_F(Regression, ASceneWhoseInitRaisedHandsItsEntitiesBackBeforeWhateverFollows) {
    for (const int follower : {0, 1, 2}) {
        SCOPED_TRACE(follower);
        LoggingScene a("A");
        LoggingScene b("B");
        LoggingScene c("C");
        Describe(b, {"x", "y"});
        manager.SetScene(&a);
        manager.Update(0.0f);
        manager.SetScene(&b);
        FaultAt("Init x");
        EXPECT_THROW(manager.Update(0.0f), std::runtime_error);
        if (follower != 0)
            manager.SetScene(follower == 1 ? &c : nullptr);
        Take();
        manager.Update(0.0f);
        EXPECT_EQ(Take().front(), "B.Deinit");
        EXPECT_EQ(Names(b), follower == 0 ? (Log{"x", "y"}) : Log());
        manager.Restart();
        manager.Update(0.0f);
        b.Deinit();
        EXPECT_EQ(things.fetched.size(), things.returned.size());
        manager = Vorn::SceneManager();
    }
}

TEST_F(Regression, ASceneSetWhileTheOldOneLeavesTakesEffectInThatChange) {
    for (const char* stage : {"A.Deinit", "A.Unload", "B.Load", "B.Init"}) {
        SCOPED_TRACE(stage);
        LoggingScene a("A");
        LoggingScene b("B");
        LoggingScene c("C");
        manager.SetScene(&a);
        manager.Update(0.0f);
        manager.SetScene(&b);
        Once(stage, [&] { manager.SetScene(&c); });
        manager.Update(0.0f);
        EXPECT_EQ(manager.CurrentScene(), stage[0] == 'A' ? &c : &b);
        manager.Update(0.0f);
        EXPECT_EQ(manager.CurrentScene(), &c);
        manager = Vorn::SceneManager();
    }
}

TEST_F(Regression, EntitiesThatAreNoArrayRaiseWhenTheyAreReadAndTheOldDescriptionStays) {
    Vorn::Scene scene;
    Describe(scene, {"a"});
    for (const char* entities : {"17", "\"text\"", "{}", "true"}) {
        const std::string text = R"({"ResourcePack": "new", "Entities": )" + std::string(entities);
        EXPECT_EQ(Raised<Vorn::DataError>([&] { scene.Deserialize(text + "}"); }),
                  "Type is not convertible to array: \"Entities\"");
        EXPECT_EQ(scene.EntitiesValue().size(), 1u);
        EXPECT_EQ(scene.ResourcePack(), "");
    }
}

TEST_F(Regression, AFaultNamesTheFileOfItsDescriptionAndNoOther) {
    const TempDir dir;
    const std::string text = R"({"Entities": [{"Type": "thing", "Name": {}}]})";
    const std::string path = dir.Write("a.scene", text);
    Vorn::Scene scene;
    const auto fault = [&scene] { return Raised<Vorn::DataError>([&] { scene.Init(); }); };
    scene.DeserializePath(path);
    const std::string inFile = fault();
    EXPECT_TRUE(inFile.ends_with("Entities[0] in " + path)) << inFile;
    EXPECT_ANY_THROW(scene.DeserializePath(dir.Path("missing.scene")));
    EXPECT_EQ(fault(), inFile);
    scene.Deserialize(text);
    EXPECT_TRUE(fault().ends_with("Entities[0]"));
    dir.Write("missing.scene", R"({"Entities": 3})");
    EXPECT_TRUE(Raised<Vorn::DataError>([&] { scene.Redeserialize(); }).ends_with("missing.scene"));
}

TEST_F(Regression, ADoubleIsWrittenLikeAFloatWhereJsonHasNoNumberForIt) {
    const std::pair<double, Json::Value> cases[] = {
        {HUGE_VAL, 1e308}, {-HUGE_VAL, -1e308}, {0.1, 0.1}, {std::nan(""), {}}};
    for (const auto& [field, written] : cases) {
        Json::Value out;
        Vorn::MasterFlags().Write(out, "Field", field, true);
        EXPECT_EQ(out["Field"], written);
    }
}

TEST_F(Regression, ASharedComponentIsRegisteredThroughWhoSharesIt) {
    Vorn::Entity owner;
    owner.Deserialize(R"({"GraphicsCmpt": {}, "PhysicsCmpt": {}, "EmitterCmpt": {}})", true);
    Vorn::Entity sharer;
    sharer = owner;
    // What its system takes in leaves any other list.
    Vorn::CmptList<Vorn::PhysicsCmpt> other;
    other.Add(owner.Physics());
    sharer.RegisterCmpts();
    EXPECT_TRUE(other.Cmpts().empty());
}

TEST_F(Regression, SystemsPassOverNull) {
    Vorn::GraphicsSystem::Instance()->Unregister(nullptr);
    Vorn::PhysicsSystem::Instance()->Unregister(nullptr);
    Vorn::EmitterSystem::Instance()->Unregister(nullptr);
}

} // namespace
