// SPDX-License-Identifier: MIT
//
// Rules that were broken once.
#include "scene_world.hpp"

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

} // namespace
