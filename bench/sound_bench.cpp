// SPDX-License-Identifier: MIT
//
// A second of sound, 64 effects at once, into memory: 60 frames of a game, each with what its host
// does, and then as many frames of sound as it lasts. "Ours" is FMOD's interface, "Plain" OpenAL by
// hand: the same samples, gains, loops and device. The argument is the rate of the device; the
// samples have 48,000. CPU time of one iteration in seconds is the share of a core.
#include "platform/control/vorn_platform.hpp"

#include <fmod.hpp>

#define AL_ALEXT_PROTOTYPES
#include <AL/al.h>
#include <AL/alc.h>
#include <AL/alext.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr int Channels = 64, FramesPerSecond = 60, SampleRate = 48'000;

/// What a host does in each frame, besides the system's update.
enum class Host {
    Listens,
    MovesVolumes, // of all channels
    StartsFour,   // of the channels anew, by turns
};

/// Left and right by turns; an effect has a pitch of its own and lasts about a second.
std::vector<std::int16_t> Samples(int effect) {
    std::vector<std::int16_t> samples;
    const double pitch = 110.0 * std::pow(2.0, effect / 12.0) / SampleRate;
    for (int i = 0; i < SampleRate + 137 * effect; ++i) {
        const double wave = 2'000 * std::sin(2 * std::numbers::pi * pitch * i);
        samples.push_back(static_cast<std::int16_t>(wave));
        samples.push_back(static_cast<std::int16_t>(-wave));
    }
    return samples;
}

float Volume(int channel, int frame) {
    return 0.3f + 0.01f * static_cast<float>((channel + frame) % 60);
}

std::string WriteWav(int effect) {
    const std::vector<std::int16_t> samples = Samples(effect);
    const auto size = static_cast<std::uint32_t>(samples.size() * sizeof samples[0]);
    const std::array<std::uint32_t, 11> head = {
        0x46464952, 36 + size,  0x45564157,     0x20746d66, 16, // RIFF, WAVE, fmt
        0x00020001, SampleRate, SampleRate * 4, 0x00100004, 0x61746164, size};
    const auto path = std::filesystem::temp_directory_path() / "vorn-sound-bench.wav";
    std::ofstream file(path, std::ios::binary);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as it lies in memory
    file.write(reinterpret_cast<const char*>(head.data()), sizeof head);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast)
    file.write(reinterpret_cast<const char*>(samples.data()), size);
    if (!file.flush())
        throw std::runtime_error("cannot write " + path.string());
    return path.string();
}

class OurSound {
public:
    explicit OurSound(int rate) {
        VornPlatform::UseAudioLoopback(rate);
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): C's name of the class
        check(FMOD_System_Create(reinterpret_cast<FMOD_SYSTEM**>(&mSystem)));
        check(mSystem->init(Channels, FMOD_INIT_NORMAL, nullptr));
        for (int i = 0; i < Channels; ++i) {
            const std::string path = WriteWav(i);
            check(mSystem->createSound(path.c_str(), FMOD_DEFAULT, nullptr, &sound(i)));
            std::filesystem::remove(path);
            Start(i, 0);
        }
    }
    OurSound(const OurSound&) = delete;
    OurSound& operator=(const OurSound&) = delete;
    ~OurSound() {
        mSystem->release();
        VornPlatform::UseAudioLoopback(0);
    }

    void Start(int i, int frame) {
        check(mSystem->playSound(FMOD_CHANNEL_REUSE, sound(i), false, &channel(i)));
        check(channel(i)->setMode(FMOD_LOOP_NORMAL));
        check(channel(i)->setVolume(Volume(i, frame)));
    }
    void MoveVolume(int i, int frame) { check(channel(i)->setVolume(Volume(i, frame))); }
    void Update() { check(mSystem->update()); }
    float Render(int frames) { return VornPlatform::RenderAudio(frames).back(); }

private:
    FMOD::Sound*& sound(int i) { return mSounds[static_cast<std::size_t>(i)]; }
    FMOD::Channel*& channel(int i) { return mChannels[static_cast<std::size_t>(i)]; }
    static void check(FMOD_RESULT result) {
        if (result != FMOD_OK)
            throw std::runtime_error("FMOD: " + std::to_string(result));
    }

    FMOD::System* mSystem = nullptr;
    std::array<FMOD::Sound*, Channels> mSounds{};
    std::array<FMOD::Channel*, Channels> mChannels{};
};

class PlainSound {
public:
    explicit PlainSound(int rate) {
        const ALCint attributes[] = {
            ALC_FORMAT_CHANNELS_SOFT, ALC_STEREO_SOFT, ALC_FORMAT_TYPE_SOFT,
            ALC_FLOAT_SOFT,           ALC_FREQUENCY,   rate,
            ALC_OUTPUT_LIMITER_SOFT,  ALC_FALSE,       0};
        mDevice = alcLoopbackOpenDeviceSOFT(nullptr);
        mContext = alcCreateContext(mDevice, attributes);
        alcMakeContextCurrent(mContext);
        alGenSources(Channels, mSources.data());
        alGenBuffers(Channels, mBuffers.data());
        for (int i = 0; i < Channels; ++i) {
            const std::vector<std::int16_t> samples = Samples(i);
            alBufferData(mBuffers[static_cast<std::size_t>(i)], AL_FORMAT_STEREO16, samples.data(),
                         static_cast<ALsizei>(samples.size() * sizeof samples[0]), SampleRate);
            const ALuint source = mSources[static_cast<std::size_t>(i)];
            alSourcei(source, AL_SOURCE_RELATIVE, AL_TRUE);
            alSourcei(source, AL_DIRECT_CHANNELS_SOFT, AL_TRUE);
            alSourcei(source, AL_BUFFER, static_cast<ALint>(mBuffers[static_cast<std::size_t>(i)]));
            alSourcei(source, AL_LOOPING, AL_TRUE);
            Start(i, 0);
        }
        if (alGetError() != AL_NO_ERROR)
            throw std::runtime_error("OpenAL does not play");
    }
    PlainSound(const PlainSound&) = delete;
    PlainSound& operator=(const PlainSound&) = delete;
    ~PlainSound() {
        alDeleteSources(Channels, mSources.data());
        alDeleteBuffers(Channels, mBuffers.data());
        alcMakeContextCurrent(nullptr);
        alcDestroyContext(mContext);
        alcCloseDevice(mDevice);
    }

    // Of one that plays, Play goes back to the start.
    void Start(int i, int frame) {
        MoveVolume(i, frame);
        alSourcePlay(mSources[static_cast<std::size_t>(i)]);
    }
    void MoveVolume(int i, int frame) {
        alSourcef(mSources[static_cast<std::size_t>(i)], AL_GAIN, Volume(i, frame));
    }
    void Update() {}
    float Render(int frames) {
        mHeard.resize(static_cast<std::size_t>(frames) * 2);
        alcRenderSamplesSOFT(mDevice, mHeard.data(), frames);
        return mHeard.back();
    }

private:
    ALCdevice* mDevice = nullptr;
    ALCcontext* mContext = nullptr;
    std::array<ALuint, Channels> mSources{}, mBuffers{};
    std::vector<float> mHeard;
};

template <typename Sound>
void Time(benchmark::State& state, Host host) {
    const int rate = static_cast<int>(state.range(0));
    Sound sound(rate);
    int frame = 0;
    for (auto _ : state)
        for (int i = 0; i < FramesPerSecond; ++i) {
            ++frame;
            for (int c = 0; host == Host::MovesVolumes && c < Channels; ++c)
                sound.MoveVolume(c, frame);
            for (int c = 0; host == Host::StartsFour && c < 4; ++c)
                sound.Start((4 * frame + c) % Channels, frame);
            sound.Update();
            benchmark::DoNotOptimize(sound.Render(rate / FramesPerSecond));
        }
}

void Ours(benchmark::State& state, Host host) {
    Time<OurSound>(state, host);
}

void Plain(benchmark::State& state, Host host) {
    Time<PlainSound>(state, host);
}

} // namespace

BENCHMARK_CAPTURE(Ours, Listens, Host::Listens)->Arg(48'000)->Arg(44'100);
BENCHMARK_CAPTURE(Plain, Listens, Host::Listens)->Arg(48'000)->Arg(44'100);
BENCHMARK_CAPTURE(Ours, MovesVolumes, Host::MovesVolumes)->Arg(48'000);
BENCHMARK_CAPTURE(Plain, MovesVolumes, Host::MovesVolumes)->Arg(48'000);
BENCHMARK_CAPTURE(Ours, StartsFour, Host::StartsFour)->Arg(48'000);
BENCHMARK_CAPTURE(Plain, StartsFour, Host::StartsFour)->Arg(48'000);
