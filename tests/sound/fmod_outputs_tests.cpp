// SPDX-License-Identifier: MIT
//
// Systems side by side, and one on a machine that nothing sounds on.
#include "platform/control/vorn_platform.hpp"
#include "tests/support/sound.hpp"
#include "tests/support/temp_folder.hpp"

#include <fmod.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <memory>

namespace {

using namespace Tests;
using VornPlatform::RenderAudio;

// All that OpenAL may write to here is a file that it has no name of. It looks once, at its start.
[[maybe_unused]] const int nothingSounds = setenv("ALSOFT_DRIVERS", "wave", 1);

struct Releaser {
    void operator()(FMOD::System* system) const { system->release(); }
};
using SystemPtr = std::unique_ptr<FMOD::System, Releaser>;

SystemPtr Create() {
    FMOD::System* system = nullptr;
    EXPECT_EQ(FMOD_System_Create(reinterpret_cast<FMOD_SYSTEM**>(&system)), FMOD_OK);
    return SystemPtr(system);
}

SystemPtr Start() {
    SystemPtr system = Create();
    EXPECT_EQ(system->init(4, FMOD_INIT_NORMAL, nullptr), FMOD_OK);
    return system;
}

FMOD::Sound* Load(const SystemPtr& system, const std::string& path) {
    FMOD::Sound* sound = nullptr;
    EXPECT_EQ(system->createSound(path.c_str(), FMOD_DEFAULT, nullptr, &sound), FMOD_OK);
    return sound;
}

FMOD::Channel* Play(const SystemPtr& system, FMOD::Sound* sound, bool paused = false) {
    FMOD::Channel* channel = nullptr;
    EXPECT_EQ(system->playSound(FMOD_CHANNEL_FREE, sound, paused, &channel), FMOD_OK);
    return channel;
}

bool Plays(FMOD::Channel* channel) {
    bool plays = false;
    channel->isPlaying(&plays);
    return plays;
}

TEST(FmodInSilence, TheMachineSaysSo) {
    EXPECT_FALSE(VornPlatform::HasAudio());
}

TEST(FmodInSilence, TimeGoesOn) {
    const TempFolder folder;
    const SystemPtr system = Start();
    FMOD::Sound* const blip = Load(system, WriteSound(folder / "blip.wav", Wav, Tone(480, 1, 960)));
    FMOD::Channel* const once = Play(system, blip);
    FMOD::Channel* const paused = Play(system, blip, true);
    FMOD::Channel* const looped = Play(system, blip);
    looped->setMode(FMOD_LOOP_NORMAL);
    EXPECT_TRUE(Plays(once));
    using Clock = std::chrono::steady_clock;
    for (const auto end = Clock::now() + std::chrono::seconds(20); Plays(once);)
        ASSERT_LT(Clock::now(), end) << "20 milliseconds are not over";
    EXPECT_TRUE(Plays(paused));
    EXPECT_TRUE(Plays(looped));
    EXPECT_EQ(system->update(), FMOD_OK);
    EXPECT_THAT(RenderAudio(10), testing::IsEmpty());
}

class FmodSystems : public testing::Test {
protected:
    FmodSystems() { VornPlatform::UseAudioLoopback(Rate); }
    ~FmodSystems() override { VornPlatform::UseAudioLoopback(0); }

    TempFolder folder;
    const std::string low = WriteSound(folder / "low.wav", Wav, Tone(480, 0.5, Rate));
    const std::string high = WriteSound(folder / "high.wav", Wav, Tone(1'200, 0.5, Rate));
};

TEST_F(FmodSystems, AreApart) {
    const SystemPtr first = Start();
    FMOD::Sound* const lowSound = Load(first, low);
    FMOD::Channel* const lowChannel = Play(first, lowSound);
    SystemPtr second = Start();
    FMOD::Channel* const highChannel = Play(second, Load(second, high));
    lowChannel->setVolume(0.1f);
    const std::vector<float> heard = Side(RenderAudio(4'800)); // of the second
    EXPECT_NEAR(Loudness(heard, 1'200), 0.5, 0.001);
    EXPECT_LT(Loudness(heard, 480), 0.001);
    lowChannel->stop();
    EXPECT_TRUE(Plays(highChannel));
    second.reset();
    FMOD::Channel* const again = Play(first, lowSound);
    EXPECT_EQ(lowSound->release(), FMOD_OK);
    EXPECT_FALSE(Plays(again));
}

TEST_F(FmodSystems, DoNotTakeWhatIsAnothers) {
    const SystemPtr first = Start(), second = Start(), third = Create();
    FMOD::Sound* const lowSound = Load(first, low);
    FMOD::Sound* const highSound = Load(second, high);
    FMOD::Channel* const mine = Play(second, highSound);
    FMOD::Channel* const others = Play(first, lowSound);
    FMOD::Channel* channel = others;
    EXPECT_EQ(second->playSound(FMOD_CHANNEL_FREE, lowSound, false, &channel),
              FMOD_ERR_INVALID_PARAM);
    EXPECT_EQ(third->playSound(FMOD_CHANNEL_FREE, lowSound, false, &channel),
              FMOD_ERR_UNINITIALIZED);
    EXPECT_EQ(channel, others);
    // Another's handle is as good as none: the channels of both go on.
    EXPECT_EQ(second->playSound(FMOD_CHANNEL_REUSE, highSound, false, &channel), FMOD_OK);
    EXPECT_TRUE(Plays(mine));
    EXPECT_TRUE(Plays(others));
    EXPECT_TRUE(Plays(channel));
}

} // namespace
