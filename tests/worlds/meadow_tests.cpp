// SPDX-License-Identifier: MIT
#include "worlds/meadow/meadow.hpp"

#include <gtest/gtest.h>

namespace {

using Worlds::Meadow;

std::uint64_t HashAfter(Vorn::Scene& scene, int frames) {
    Vorn::PhysicsSystem::Instance()->Init();
    for (int frame = 0; frame < frames; ++frame)
        Worlds::RunFrame(scene);
    return Worlds::StateHash(scene);
}

TEST(MeadowWorld, EndsInTheSameStateInEveryBuildAndAfterARestart) {
    const Meadow meadow;
    Vorn::Scene scene;
    for (int run = 0; run < 2; ++run) {
        scene.DeserializePath("worlds/meadow/meadow.scene");
        scene.Init();
        EXPECT_EQ(scene.EntityList().size(), 300u);
        // The one number, with either compiler, optimised or not.
        EXPECT_EQ(HashAfter(scene, 480), 0x80ea03172cbf72cbu);
        scene.Deinit();
        EXPECT_EQ(meadow.Out(), 0u);
    }
}

TEST(MeadowWorld, GoesOnFromAFileAsFromItself) {
    const Meadow meadow;
    Vorn::Scene scene;
    scene.Deserialize(Meadow::SceneText(1000));
    scene.Init();
    HashAfter(scene, 200);
    const std::string text = scene.Serialize();
    const std::uint64_t itself = HashAfter(scene, 200);
    scene.Deinit();
    scene.Deserialize(text);
    scene.Init();
    EXPECT_EQ(HashAfter(scene, 200), itself);
    scene.Deinit();
}

} // namespace
