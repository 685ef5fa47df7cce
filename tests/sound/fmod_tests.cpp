// SPDX-License-Identifier: MIT
//
// The platform's own interface, listened to: what it plays goes into memory.
#include "platform/control/vorn_platform.hpp"
#include "tests/support/sound.hpp"
#include "tests/support/temp_folder.hpp"

#include <fmod.hpp>
#include <fmod_errors.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>

namespace {

using testing::AnyOf;
using testing::Each;
using testing::FloatNear;
using testing::Lt;
using testing::Pointwise;
using namespace Tests;
using VornPlatform::RenderAudio;

// Where a tone starts or is cut, the mixer takes some 64 samples to go there.
constexpr int Fade = 256;
constexpr int Second = Rate;

class Fmod : public testing::Test {
protected:
    Fmod() {
        VornPlatform::UseAudioLoopback(Rate);
        Start(64);
    }
    ~Fmod() override {
        if (system)
            system->release();
        VornPlatform::UseAudioLoopback(0);
    }
    void Start(int channels) {
        if (system)
            system->release();
        ASSERT_EQ(FMOD_System_Create(reinterpret_cast<FMOD_SYSTEM**>(&system)), FMOD_OK);
        ASSERT_EQ(system->init(channels, FMOD_INIT_NORMAL, nullptr), FMOD_OK);
    }
    FMOD::Sound* Load(const std::string& path, FMOD_RESULT expected = FMOD_OK) {
        FMOD::Sound* sound = nullptr;
        EXPECT_EQ(system->createSound(path.c_str(), FMOD_DEFAULT, nullptr, &sound), expected)
            << path;
        EXPECT_EQ(sound != nullptr, expected == FMOD_OK);
        return sound;
    }
    FMOD::Sound* LoadTone(double pitch, int frames, double loudness = 0.5) {
        const std::string path = folder / ("tone" + std::to_string(++files) + ".wav");
        return Load(WriteSound(path, Wav, Tone(pitch, loudness, frames)));
    }
    FMOD::Channel* Play(FMOD::Sound* sound, bool paused = false) {
        FMOD::Channel* channel = nullptr;
        EXPECT_EQ(system->playSound(FMOD_CHANNEL_FREE, sound, paused, &channel), FMOD_OK);
        return channel;
    }
    static FMOD_RESULT State(FMOD::Channel* channel) {
        bool plays = true;
        const FMOD_RESULT result = channel->isPlaying(&plays);
        EXPECT_EQ(plays, result == FMOD_OK);
        return result;
    }

    TempFolder folder;
    FMOD::System* system = nullptr;
    int files = 0;
};

const auto Over = AnyOf(FMOD_ERR_INVALID_HANDLE, FMOD_ERR_CHANNEL_STOLEN);

TEST_F(Fmod, PlaysSamplesOfItsOwnRateAsTheyAre) {
    std::mt19937 random(5);
    std::vector<float> samples(4'000);
    for (float& sample : samples)
        sample = float(int(random() % 65'536) - 32'768) / 32'768;
    FMOD::Sound* stereo = Load(WriteSound(folder / "noise.wav", Wav, samples, 2));
    Play(stereo);
    std::vector<float> expected; // what 16 bits have kept of them
    for (const float sample : samples)
        expected.push_back(std::nearbyint(sample * 32'767) / 32'768);
    expected.resize(8'000); // and silence behind it
    EXPECT_THAT(RenderAudio(4'000), Pointwise(FloatNear(1e-6f), expected));
}

TEST_F(Fmod, KeepsPitchAndLoudnessOfAllFormats) {
    struct Format {
        const char* name;
        int format, channels, rate;
    };
    const Format formats[] = {
        {"a.wav", Wav, 1, 22'050},
        {"b.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 2, 96'000},
        {"c.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 1, 11'025},
        {"d.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 2, 44'100},
        {"e.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 1, 44'100},
        {"f.mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 2, 44'100},
    };
    for (const Format& format : formats) {
        SCOPED_TRACE(format.name);
        std::vector<float> samples;
        for (const float sample : Tone(1'000, 0.5, format.rate, format.rate))
            samples.insert(samples.end(), std::size_t(format.channels), sample);
        Play(Load(WriteSound(folder / format.name, format.format, samples, format.channels,
                             format.rate)));
        const std::vector<float> heard = RenderAudio(Second * 9 / 10);
        for (const std::size_t side : {0u, 1u}) {
            // Without the start, where lossy formats swing in.
            const std::vector<float> all = Side(heard, side);
            const std::span<const float> inside = std::span(all).subspan(4'800, 4'800);
            EXPECT_NEAR(Loudness(inside, 1'000), 0.5, 0.02);
            EXPECT_LT(Loudness(inside, 1'500) + Loudness(inside, 500), 0.005);
        }
        RenderAudio(Second);
    }
}

TEST_F(Fmod, LoopsWithoutAGapOrAClick) {
    // A hundred whole periods: what goes on behind the end is the tone itself.
    FMOD::Channel* channel = Play(LoadTone(480, 10'000));
    EXPECT_EQ(channel->setMode(FMOD_LOOP_NORMAL), FMOD_OK);
    EXPECT_EQ(channel->setLoopCount(-1), FMOD_OK);
    EXPECT_THAT(Side(RenderAudio(95'000)), Pointwise(FloatNear(1e-4f), Tone(480, 0.5, 95'000)));
    EXPECT_EQ(channel->setMode(FMOD_LOOP_OFF), FMOD_OK);
    std::vector<float> rest = Side(RenderAudio(20'000));
    EXPECT_NEAR(Loudness(std::span(rest).first(5'000), 480), 0.5, 0.01);
    EXPECT_EQ(Peak(std::span(rest).subspan(5'000 + Fade)), 0);
    EXPECT_THAT(State(channel), Over);
}

TEST_F(Fmod, LoopsAsOftenAsItIsTold) {
    for (const int count : {0, 1, 3}) {
        FMOD::Channel* channel = Play(LoadTone(480, 10'000));
        channel->setMode(FMOD_LOOP_NORMAL);
        EXPECT_EQ(channel->setLoopCount(count), FMOD_OK);
        const std::vector<float> heard = Side(RenderAudio(50'000));
        const std::size_t end = std::size_t(count + 1) * 10'000;

        EXPECT_NEAR(Loudness(std::span(heard).first(end), 480), 0.5, 0.001) << count;
        EXPECT_EQ(Peak(std::span(heard).subspan(end + Fade)), 0) << count;
        EXPECT_THAT(State(channel), Over);
    }
    FMOD::Channel* channel = Play(LoadTone(480, 10'000));
    EXPECT_EQ(channel->setLoopCount(-2), FMOD_ERR_INVALID_PARAM);
}

TEST_F(Fmod, AChangeOfTheLoopIsNotHeardAndCountsFromTheRoundThatIs) {
    struct Change {
        int from, to;       // counts; 0 is without a loop
        std::size_t rounds; // in all, with the change in the second one or, without a loop, first
    };
    const Change changes[] = {{0, 2, 3}, {-1, 2, 4}, {1, 4, 6}, {5, -1, 0}, {-1, 0, 2}, {5, 1, 3}};
    for (const auto& [from, to, rounds] : changes) {
        SCOPED_TRACE(std::to_string(from) + " to " + std::to_string(to));
        FMOD::Channel* channel = Play(LoadTone(480, 10'000));
        const auto loop = [channel](int count) {
            channel->setMode(count ? FMOD_LOOP_NORMAL : FMOD_LOOP_OFF);
            channel->setLoopCount(count);
        };
        loop(from);
        const int before = from ? 14'830 : 4'830;
        std::vector<float> heard = Side(RenderAudio(before));
        loop(to);
        for (const float sample : Side(RenderAudio(70'000)))
            heard.push_back(sample);
        const std::size_t end = rounds ? rounds * 10'000 : heard.size();
        std::vector<float> expected = Tone(480, 0.5, static_cast<int>(heard.size()));
        std::fill(expected.begin() + static_cast<std::ptrdiff_t>(end), expected.end(), 0.0f);
        // Rounds that are taken back leave a dip, for a block of the mixer and no longer.
        const int dip = to > 0 && to < from ? 2'048 : 0;
        for (std::size_t i = 0; i < heard.size(); ++i) {
            const bool dips = int(i) >= before && int(i) < before + dip;
            const bool fades = i >= end && i < end + Fade;
            if (!dips && !fades) {
                ASSERT_NEAR(heard[i], expected[i], 1e-4) << i;
            }
        }
        channel->stop();
        RenderAudio(Fade);
    }
}

TEST_F(Fmod, VolumeAndMuteAreHeard) {
    FMOD::Channel* channel = Play(LoadTone(480, 2 * Second));
    const auto heard = [] {
        RenderAudio(Fade * 8);
        return Loudness(Side(RenderAudio(4'800)), 480);
    };
    EXPECT_NEAR(heard(), 0.5, 0.001);
    channel->setVolume(0.25f);
    EXPECT_NEAR(heard(), 0.125, 0.001);
    channel->setMute(true);
    EXPECT_EQ(heard(), 0);
    channel->setVolume(0.5f); // is kept while nobody hears it
    EXPECT_EQ(heard(), 0);
    channel->setMute(false);
    EXPECT_NEAR(heard(), 0.25, 0.001);
    channel->setVolume(7);
    EXPECT_NEAR(heard(), 0.5, 0.001);
    channel->setVolume(-7);
    EXPECT_EQ(heard(), 0);
    EXPECT_EQ(channel->setVolume(NAN), FMOD_ERR_INVALID_PARAM);
}

TEST_F(Fmod, APauseGoesOnWhereItWas) {
    FMOD::Channel* channel = Play(LoadTone(480, Second), true);
    EXPECT_THAT(RenderAudio(2'000), Each(0));
    EXPECT_EQ(State(channel), FMOD_OK);
    channel->setPaused(false);
    EXPECT_THAT(Side(RenderAudio(5'000)), Pointwise(FloatNear(1e-4f), Tone(480, 0.5, 5'000)));
    channel->setPaused(true);
    RenderAudio(5'000);
    EXPECT_THAT(RenderAudio(2'000), Each(0));
    EXPECT_EQ(State(channel), FMOD_OK);
    channel->setPaused(false);
    int left = 0;
    for (int frames = 0; State(channel) == FMOD_OK && frames < Second; frames += 100)
        left += Peak(RenderAudio(100)) > 0 ? 100 : 0;
    EXPECT_NEAR(left, Second - 5'000, Fade * 4);
}

TEST_F(Fmod, AStopIsACutWithoutAClick) {
    FMOD::Channel* channel = Play(LoadTone(480, Second));
    RenderAudio(4'830); // near the height of a wave
    const float before = Step(Side(RenderAudio(1'000)));
    EXPECT_EQ(channel->stop(), FMOD_OK);
    const std::vector<float> end = Side(RenderAudio(4'800));
    EXPECT_LT(Step(end), 4 * before);
    EXPECT_EQ(Peak(std::span(end).subspan(4'000)), 0);
    EXPECT_THAT(State(channel), Over);
    EXPECT_THAT(channel->stop(), Over);
    EXPECT_THAT(channel->setVolume(1), Over);
}

TEST_F(Fmod, TheLeastImportantChannelIsTaken) {
    Start(3);
    FMOD::Sound* sound = LoadTone(480, Second);
    FMOD::Channel* music = Play(sound);
    music->setPriority(0);
    FMOD::Channel* first = Play(sound);
    FMOD::Channel* second = Play(sound);
    FMOD::Channel* third = Play(sound); // takes that of the older one
    EXPECT_EQ(State(music), FMOD_OK);
    EXPECT_EQ(State(first), FMOD_ERR_CHANNEL_STOLEN);
    EXPECT_EQ(first->setPaused(true), FMOD_ERR_CHANNEL_STOLEN);
    EXPECT_EQ(State(second), FMOD_OK);
    third->setPriority(200);
    FMOD::Channel* fourth = Play(sound);
    EXPECT_EQ(State(third), FMOD_ERR_CHANNEL_STOLEN);
    EXPECT_EQ(State(second), FMOD_OK);
    for (FMOD::Channel* channel : {second, fourth})
        channel->setPriority(127);
    FMOD::Channel* none = second;
    EXPECT_EQ(system->playSound(FMOD_CHANNEL_FREE, sound, false, &none), FMOD_ERR_CHANNEL_ALLOC);
    EXPECT_EQ(none, second);
    fourth->stop();
    Play(sound);
    EXPECT_EQ(music->setPriority(257), FMOD_ERR_INVALID_PARAM);
}

TEST_F(Fmod, ReuseCutsOffWhatPlaysUnderTheHandle) {
    FMOD::Sound* low = LoadTone(480, Second);
    FMOD::Sound* high = LoadTone(1'200, Second);
    FMOD::Channel* channel = nullptr;
    ASSERT_EQ(system->playSound(FMOD_CHANNEL_REUSE, low, false, &channel), FMOD_OK);
    channel->setVolume(0.1f);
    RenderAudio(4'800);
    FMOD::Channel* const first = channel;
    ASSERT_EQ(system->playSound(FMOD_CHANNEL_REUSE, high, false, &channel), FMOD_OK);
    RenderAudio(Fade * 8);
    const std::vector<float> heard = Side(RenderAudio(4'800));
    EXPECT_LT(Loudness(heard, 480), 0.001);
    EXPECT_NEAR(Loudness(heard, 1'200), 0.5, 0.001);
    EXPECT_EQ(State(first), FMOD_ERR_CHANNEL_STOLEN);
    // Over, the handle is as good as none.
    channel->stop();
    FMOD::Channel* other = Play(low);
    ASSERT_EQ(system->playSound(FMOD_CHANNEL_REUSE, high, false, &channel), FMOD_OK);
    EXPECT_EQ(State(other), FMOD_OK);
    EXPECT_EQ(State(channel), FMOD_OK);
}

TEST_F(Fmod, AReleasedSoundIsSilentAtOnce) {
    FMOD::Sound* sound = LoadTone(480, Second);
    FMOD::Channel* channels[] = {Play(sound), Play(sound, true)};
    RenderAudio(4'800);
    EXPECT_EQ(sound->release(), FMOD_OK);
    RenderAudio(Fade * 8);
    EXPECT_THAT(RenderAudio(4'800), Each(0));
    for (FMOD::Channel* channel : channels)
        EXPECT_THAT(State(channel), Over);
    EXPECT_EQ(system->update(), FMOD_OK);
}

TEST_F(Fmod, HandlesOfLongAgoStayHarmless) {
    FMOD::Sound* sound = LoadTone(480, 100);
    FMOD::Channel* music = Play(LoadTone(1'200, 10 * Second));
    FMOD::Channel* channel = nullptr;
    std::vector<FMOD::Channel*> old;
    for (int i = 0; i < 70'000; ++i) {
        ASSERT_EQ(system->playSound(FMOD_CHANNEL_REUSE, sound, false, &channel), FMOD_OK);
        if (i % 1'000 == 0)
            old.push_back(channel);
    }
    EXPECT_EQ(State(music), FMOD_OK);
    for (std::size_t i = 10; i < old.size(); ++i)
        EXPECT_THAT(old[i]->stop(), Over);
    EXPECT_EQ(State(channel), FMOD_OK);
}

TEST_F(Fmod, BrokenFilesAreRefused) {
    Load(folder / "nothing.wav", FMOD_ERR_FILE_NOTFOUND);
    Load(folder.Path().string(), FMOD_ERR_FILE_NOTFOUND);
    Load(folder.File("empty.ogg"), FMOD_ERR_FORMAT);
    Load(folder.File("text.mp3", "This is no music."), FMOD_ERR_FORMAT);
    Load(WriteSound(folder / "none.wav", Wav, {}), FMOD_ERR_FORMAT);
    EXPECT_STREQ(FMOD_ErrorString(FMOD_OK), "No errors.");
    EXPECT_STREQ(FMOD_ErrorString(FMOD_ERR_FILE_NOTFOUND), "File not found. ");
    EXPECT_STREQ(FMOD_ErrorString(FMOD_RESULT(7'000)), "Unknown error.");
}

// Cut at many places and with bytes turned round: whatever comes of it is played to its end.
TEST_F(Fmod, DamagedFilesDoNoHarm) {
    struct Format {
        const char* name;
        int format;
    };
    const Format formats[] = {{"a.wav", Wav},
                              {"b.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS},
                              {"c.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
                              {"d.mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III}};
    std::mt19937 random(11);
    for (const Format& format : formats) {
        SCOPED_TRACE(format.name);
        WriteSound(folder / format.name, format.format, Tone(480, 0.5, 6'000, 44'100), 1, 44'100);
        std::ifstream file(folder / format.name, std::ios::binary);
        const std::string whole(std::istreambuf_iterator<char>(file), {});
        for (int i = 0; i < 60; ++i) {
            std::string bytes = whole;
            if (i % 2 == 0)
                bytes.resize(random() % whole.size());
            else
                for (int j = 0; j < 4; ++j)
                    bytes[random() % std::min<std::size_t>(whole.size(), 400)] = char(random());
            FMOD::Sound* sound = nullptr;
            const std::string path = folder.File("damaged", bytes);
            if (system->createSound(path.c_str(), FMOD_DEFAULT, nullptr, &sound) != FMOD_OK) {
                EXPECT_EQ(sound, nullptr);
                continue;
            }
            Play(sound);
            RenderAudio(1'000);
            EXPECT_EQ(sound->release(), FMOD_OK);
        }
    }
}

TEST(FmodWithoutASystem, RefusesWhatNeedsOne) {
    FMOD::System* system = nullptr;
    ASSERT_EQ(FMOD_System_Create(reinterpret_cast<FMOD_SYSTEM**>(&system)), FMOD_OK);
    FMOD::Sound* sound = nullptr;
    EXPECT_EQ(system->createSound("a.wav", FMOD_DEFAULT, nullptr, &sound), FMOD_ERR_UNINITIALIZED);
    EXPECT_EQ(system->update(), FMOD_ERR_UNINITIALIZED);
    EXPECT_EQ(system->init(0, FMOD_INIT_NORMAL, nullptr), FMOD_ERR_INVALID_PARAM);
    EXPECT_EQ(system->release(), FMOD_OK);
    EXPECT_EQ(FMOD_System_Create(nullptr), FMOD_ERR_INVALID_PARAM);
}

} // namespace
