// SPDX-License-Identifier: MIT
#include "worlds/meadow/meadow.hpp"

#include <gtest/gtest.h>

namespace {

using Worlds::Meadow;
using Worlds::StateHash;

constexpr float Step = 1.0f / 60.0f;

void RunFrames(Vorn::Scene& scene, int frames) {
    for (int frame = 0; frame < frames; ++frame)
        scene.Update(Step);
}

class MeadowTest : public testing::Test {
protected:
    ~MeadowTest() override { scene.Deinit(); }

    Meadow meadow;
    Vorn::Scene scene;
};

// The one number that every build must reach, with either compiler, optimised or not.
TEST_F(MeadowTest, EndsInTheSameStateInEveryBuild) {
    scene.DeserializePath("worlds/meadow/meadow.scene");
    scene.Init();
    ASSERT_EQ(scene.EntityList().size(), 300u);
    RunFrames(scene, 480);
    EXPECT_EQ(StateHash(scene), 0x642d8a6cdf23ee02u);
}

TEST_F(MeadowTest, GoesOnFromAFileAsFromItself) {
    scene.Deserialize(Meadow::SceneText(1000));
    scene.Init();
    RunFrames(scene, 200);
    const std::uint64_t before = StateHash(scene);
    const std::string text = scene.Serialize();
    RunFrames(scene, 200);
    const std::uint64_t after = StateHash(scene);

    Vorn::Scene again;
    again.Deserialize(text);
    again.Init();
    EXPECT_EQ(StateHash(again), before);
    RunFrames(again, 200);
    EXPECT_EQ(StateHash(again), after);
    again.Deinit();
}

TEST_F(MeadowTest, RestartsFromTheSameState) {
    scene.DeserializePath("worlds/meadow/meadow.scene");
    scene.Init();
    RunFrames(scene, 100);
    const std::size_t out = meadow.Out();
    const std::uint64_t state = StateHash(scene);
    scene.Deinit();
    EXPECT_EQ(meadow.Out(), 0u);

    scene.Redeserialize();
    scene.Init();
    RunFrames(scene, 100);
    EXPECT_EQ(StateHash(scene), state);
    EXPECT_EQ(meadow.Out(), out);
}

} // namespace
