// SPDX-License-Identifier: MIT
//
// Rules that were broken once.
#include "scene_world.hpp"

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

} // namespace
