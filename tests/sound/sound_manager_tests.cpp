// SPDX-License-Identifier: MIT
#include "platform/control/vorn_platform.hpp"
#include "tests/support/sound.hpp"
#include "tests/support/working_folder.hpp"
#include "vorn/vorn.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <optional>
#include <stdexcept>
#include <vector>

namespace {

using testing::Each;
using namespace Tests;
using Vorn::SoundType;
using VornPlatform::RenderAudio;

constexpr int FadeFrames = 2'048;

/// Files "a" to "e", each of a pitch of its own, longer than any test listens.
class SoundManagerTest : public testing::Test {
protected:
    SoundManagerTest() {
        VornPlatform::UseAudioLoopback(Rate);
        folder.Folder("data/audio");
        for (std::size_t i = 0; i < std::size(pitches); ++i)
            WriteSound("data/audio/" + Name(i), Wav, Tone(pitches[i], 0.3, 8 * 8'000, 8'000), 1,
                       8'000);
    }
    ~SoundManagerTest() override {
        sound = Vorn::SoundManager::Instance();
        sound->ReleaseAllSounds();
        sound->Free();
        *sound = Vorn::SoundManager();
        VornPlatform::UseAudioLoopback(0);
    }

    static std::string Name(std::size_t i) { return {char('a' + i)}; }
    static std::string Path(const std::string& entry) { return "data/audio/" + entry; }
    /// What is heard now: one letter for each pitch.
    static std::string Heard() {
        RenderAudio(FadeFrames);
        const std::vector<float> samples = Side(RenderAudio(4'800));
        std::string heard;
        for (std::size_t i = 0; i < std::size(pitches); ++i)
            if (Loudness(samples, pitches[i]) > 0.02)
                heard += Name(i);
        return heard;
    }
    static double Loudness0(double pitch) {
        RenderAudio(FadeFrames);
        return Loudness(Side(RenderAudio(4'800)), pitch);
    }
    int Create(const std::string& entry) { return sound->CreateSound(Path(entry)); }

    static constexpr double pitches[] = {300, 500, 700, 1'100, 1'300};
    WorkingFolder folder;
    Vorn::SoundManager* sound = Vorn::SoundManager::Instance();
};

TEST_F(SoundManagerTest, NumbersFollowTheOrderOfThePackAndItsTags) {
    folder.Folder("data/pack");
    folder.File("data/pack/p.json",
                R"({"Audio": ["a bgm", "b", "c horn", "d bgm", "e BGM", "a bgm now"]})");
    Vorn::RscPackManager& packs = *Vorn::RscPackManager::Instance();
    Vorn::RscPack* const pack = packs.LoadRscPack("data/pack/p.json");
    pack->InitLoad();
    while (!pack->Load(nullptr)) {
    }
    sound->PlayBgm(SoundType(1));
    EXPECT_EQ(Heard(), "a");
    sound->StopBgm();
    sound->PlayBgm(SoundType(2));
    EXPECT_EQ(Heard(), "d");
    sound->StopBgm();
    EXPECT_EQ(Heard(), "");
    EXPECT_NE(sound->PlaySfx(SoundType(11), false), nullptr);
    EXPECT_EQ(Heard(), "b");
    sound->PlaySfx(SoundType(12), false);
    sound->PlaySfx(SoundType(13), false);
    EXPECT_EQ(Heard(), "bce");
    EXPECT_THROW(sound->PlaySfx(SoundType(15), false), std::out_of_range);
    EXPECT_THROW(sound->PlayBgm(SoundType(3)), std::out_of_range);
    sound->EndAllChannels();
    EXPECT_EQ(Heard(), "");
    packs.UnloadRscPack("data/pack/p.json");
    EXPECT_EQ(sound->PlaySfx(SoundType(11), false), nullptr);
}

TEST_F(SoundManagerTest, ANumberThatWasGivenBackIsTheNext) {
    for (const char* name : {"a", "b", "c"})
        EXPECT_EQ(Create(name), FMOD_OK);
    sound->PlaySfx(SoundType(11), true);
    sound->ReleaseSound(Path("a"));
    EXPECT_EQ(Heard(), "");
    EXPECT_EQ(sound->PlaySfx(SoundType(11), false), nullptr);
    Create("d");
    sound->ReleaseSound(Path("a")); // a second time
    sound->PlaySfx(SoundType(11), true);
    EXPECT_EQ(Heard(), "d");
    // Packs that hold the same sounds in another order.
    for (const char* name : {"d", "b", "c"})
        sound->ReleaseSound(Path(name));
    for (const char* name : {"b", "a", "d"})
        Create(name);
    sound->ReleaseSound(Path("a tag"));
    sound->PlaySfx(SoundType(11), true);
    sound->PlaySfx(SoundType(12), true);
    sound->PlaySfx(SoundType(13), true);
    EXPECT_EQ(Heard(), "bd");
    EXPECT_THROW(sound->ReleaseSound(Path("never")), std::out_of_range);
    EXPECT_THROW(Vorn::SoundLoader::Instance()->Unload("never"), std::out_of_range);
}

TEST_F(SoundManagerTest, MusicLoopsAndMeetsItsSwitches) {
    Create("a bgm");
    Create("b bgm");
    WriteSound("data/audio/short", Wav, Tone(1'000, 0.3, Rate / 10));
    Create("short bgm");
    sound->PlayBgm(SoundType(3));
    RenderAudio(Rate);
    EXPECT_NEAR(Loudness0(1'000), 0.3, 0.01);
    sound->StopBgm();

    sound->MuteBgm(true);
    sound->BgmVolume(0.5f);
    EXPECT_EQ(sound->PlayBgm(SoundType(1)), FMOD_OK);
    EXPECT_EQ(Heard(), "");
    sound->MuteBgm(false);
    EXPECT_NEAR(Loudness0(300), 0.15, 0.01);
    sound->BgmVolume(1);
    EXPECT_NEAR(Loudness0(300), 0.3, 0.01);
    sound->PauseBgm(true);
    EXPECT_EQ(Heard(), "");
    // One that starts while paused; the other stays where it is, unaddressed.
    sound->PlayBgm(SoundType(2));
    EXPECT_EQ(Heard(), "");
    sound->PauseBgm(false);
    EXPECT_EQ(Heard(), "b");
    sound->PlayBgm(SoundType(1));
    EXPECT_EQ(Heard(), "ab");
    sound->StopBgm();
    EXPECT_EQ(Heard(), "b");
}

TEST_F(SoundManagerTest, AnEffectHasOneChannel) {
    Create("a");
    Create("b");
    sound->SfxVolume(0.5f);
    FMOD::Channel* first = sound->PlaySfx(SoundType(11), true);
    ASSERT_NE(first, nullptr);
    sound->SfxVolume(1); // of those that come
    EXPECT_NEAR(Loudness0(300), 0.15, 0.01);
    sound->PlaySfx(SoundType(11), true);
    EXPECT_NEAR(Loudness0(300), 0.3, 0.01);
    sound->PlaySfx(SoundType(12), true);
    sound->PauseAllSfx(true);
    EXPECT_EQ(Heard(), "");
    sound->PauseAllSfx(false);
    EXPECT_EQ(Heard(), "ab");
    sound->MuteSfx(true);
    EXPECT_EQ(Heard(), "ab");
    EXPECT_EQ(sound->PlaySfx(SoundType(99), true), nullptr);
    sound->StopSfx(SoundType(11));
    EXPECT_EQ(Heard(), "b");
    for (const int type : {INT_MIN, -5, 0, 1, 10, 11, 33, 34, INT_MAX})
        sound->StopSfx(SoundType(type));
    EXPECT_EQ(Heard(), "b");
    sound->MuteSfx(false);
    EXPECT_EQ(Heard(), "b");
}

TEST_F(SoundManagerTest, WhatGoesBeyondTheTablesIsSilent) {
    for (int i = 0; i < 11; ++i)
        Create("a bgm");
    for (int i = 0; i < 24; ++i)
        Create("b");
    EXPECT_EQ(sound->PlayBgm(SoundType(10)), FMOD_OK);
    EXPECT_EQ(sound->PlayBgm(SoundType(0)), 1);
    EXPECT_THROW(sound->PlayBgm(SoundType(34)), std::out_of_range);
    EXPECT_NE(sound->PlaySfx(SoundType(32), false), nullptr);
    EXPECT_EQ(sound->PlaySfx(SoundType(33), false), nullptr);
    EXPECT_EQ(sound->PlaySfx(SoundType(5), false), nullptr);
    EXPECT_EQ(Heard(), "ab");
    sound->ReleaseAllSounds();
    EXPECT_EQ(Heard(), "");
    EXPECT_THROW(sound->PlayBgm(SoundType(1)), std::out_of_range);
    Create("c"); // all numbers are still taken
    EXPECT_EQ(sound->PlaySfx(SoundType(0), false), nullptr);
}

TEST_F(SoundManagerTest, WhatWasBeyondTheTablesGetsANumberLater) {
    for (int i = 0; i < 10; ++i)
        Create("a bgm");
    Create("b bgm");
    sound->ReleaseSound(Path("a"));
    Create("b bgm");
    EXPECT_EQ(sound->PlayBgm(SoundType(1)), FMOD_OK);
    EXPECT_EQ(Heard(), "b");
    sound->ReleaseSound(Path("b"));
    EXPECT_EQ(Heard(), "");
    Create("c bgm");
    sound->PlayBgm(SoundType(1));
    EXPECT_EQ(Heard(), "c");
}

TEST_F(SoundManagerTest, NumbersFrom24StayTaken) {
    for (int i = 11; i < 23; ++i)
        Create("a");
    for (const char* name : {"b", "c"}) // 23 and 24
        Create(name);
    sound->ReleaseSound(Path("c"));
    sound->ReleaseSound(Path("b"));
    for (const char* name : {"d", "e"})
        Create(name);
    sound->PlaySfx(SoundType(23), true);
    EXPECT_EQ(sound->PlaySfx(SoundType(24), true), nullptr);
    EXPECT_EQ(Heard(), "d");
    sound->PlaySfx(SoundType(25), true);
    EXPECT_EQ(Heard(), "de");
}

TEST_F(SoundManagerTest, AFileThatCannotBePlayedTakesANumber) {
    folder.File("data/audio/broken", "no music");
    testing::internal::CaptureStdout();
    EXPECT_EQ(Create("missing"), FMOD_ERR_FILE_NOTFOUND);
    EXPECT_EQ(Create("broken bgm"), FMOD_ERR_FORMAT);
    EXPECT_EQ(Create("a"), FMOD_OK);
    EXPECT_EQ(sound->PlaySfx(SoundType(11), false), nullptr);
    EXPECT_EQ(sound->PlayBgm(SoundType(1)), 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    sound->PlaySfx(SoundType(12), false);
    EXPECT_EQ(Heard(), "a");
    sound->ReleaseSound(Path("missing"));
    Create("b");
    sound->PlaySfx(SoundType(11), false);
    EXPECT_EQ(Heard(), "ab");
}

TEST_F(SoundManagerTest, TellsWhatFails) {
    Create("a bgm");
    Create("b");
    Create("c");
    EXPECT_NE(sound->PlaySfx(SoundType(12), false), nullptr);
    sound->StopSfx(SoundType(12));
    // All of the system's channels are music.
    testing::internal::CaptureStdout();
    for (int i = 0; i < 64; ++i)
        EXPECT_EQ(sound->PlayBgm(SoundType(1)), FMOD_OK);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    testing::internal::CaptureStdout();
    for (const int type : {11, 12}) // never played, and played before
        EXPECT_EQ(sound->PlaySfx(SoundType(type), false), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "fmod playsound error\nfmod playsound error\n");
    testing::internal::CaptureStdout();
    EXPECT_EQ(sound->PlaySfx(SoundType(11), true), nullptr); // the calls behind it fail too
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "fmod playsound error\n"
              "(setLoop)FMOD error! (36): An invalid object handle was used.\n"
              "fail to set loop count\nfail to set priority\n");
    testing::internal::CaptureStdout();
    sound->PlayBgm(SoundType(1));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "(playSound)FMOD error! (10): Error trying to allocate a channel.\n");
}

TEST_F(SoundManagerTest, EndsAndStartsAgain) {
    for (int i = 0; i < 3; ++i) {
        Create("a bgm");
        Create("b");
        const auto music = SoundType(i + 1), effect = SoundType(i + 11); // the others are taken
        sound->PlayBgm(music);
        sound->PlaySfx(effect, true);
        EXPECT_EQ(Heard(), "ab");
        sound->Update(0);
        sound->Free();
        sound->Free();
        EXPECT_THAT(RenderAudio(100), testing::IsEmpty());
        // Dead sounds and channels are not touched.
        sound->Update(0);
        sound->PauseBgm(true);
        sound->PauseBgm(false);
        sound->PauseAllSfx(true);
        sound->StopSfx(effect);
        sound->EndAllChannels();
        EXPECT_EQ(sound->PlayBgm(music), 1);
        EXPECT_EQ(sound->PlaySfx(effect, false), nullptr);
    }
    sound->ReleaseSound(Path("a"));
    sound->ReleaseSound(Path("b"));
}

TEST_F(SoundManagerTest, TheWindowsFocusMutes) {
    VornPlatform::ForceHeadless();
    Vorn::Engine& engine = *Vorn::Engine::Instance();
    Create("a bgm");
    Create("b");
    sound->PlayBgm(SoundType(1));
    const auto pump = [] {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&message);
    };
    VornPlatform::UseRecorder(true);
    try {
        engine.Init("Sound", 64, 64, false);
    } catch (const std::exception&) {
        // Without shaders the window is there all the same.
    }
    pump();
    EXPECT_EQ(Heard(), "a");
    VornPlatform::SendFocus(false);
    pump();
    EXPECT_EQ(Heard(), "");
    EXPECT_EQ(sound->PlaySfx(SoundType(11), false), nullptr);
    VornPlatform::SendFocus(true);
    pump();
    EXPECT_EQ(Heard(), "a");
    EXPECT_NE(sound->PlaySfx(SoundType(11), false), nullptr);
    DestroyWindow(Vorn::Engine::mWnd);
    pump();
    engine.Free();
    VornPlatform::UseRecorder(false);
    Vorn::Engine::isShutdown = false;
}

} // namespace
