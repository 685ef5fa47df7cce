// SPDX-License-Identifier: MIT
#include "worlds/meadow/meadow.hpp"

#include <gtest/gtest.h>

namespace {

using Worlds::Meadow;

std::uint64_t HashAfter(Vorn::Scene& scene, int frames) {
    for (int frame = 0; frame < frames; ++frame)
        scene.Update(1.0f / 60.0f);
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
        EXPECT_EQ(HashAfter(scene, 480), 0x642d8a6cdf23ee02u);
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
    Vorn::Scene again;
    again.Deserialize(text);
    again.Init();
    EXPECT_EQ(HashAfter(again, 200), HashAfter(scene, 200));
    again.Deinit();
    scene.Deinit();
}

} // namespace
