// SPDX-License-Identifier: MIT
#include "platform/fmod/output.hpp"

#include "platform/control/vorn_platform.hpp"

#define AL_ALEXT_PROTOTYPES
#include <AL/alext.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace VornPlatform {

namespace {

constinit int loopbackRate = 0;
constinit AudioOutput* newest = nullptr;

// Nobody hears it, so it need not be good. A host that comes back after longer than the longest
// silence finds that only so much has passed.
constexpr int SilentRate = 8'000;
constexpr std::chrono::seconds LongestSilence(60);

} // namespace

std::unique_ptr<AudioOutput> AudioOutput::Make() {
    std::unique_ptr<AudioOutput> output(new AudioOutput);
    output->mLoopback = loopbackRate > 0;
    if (output->mLoopback) {
        if (!output->openMemory(loopbackRate))
            return nullptr;
    } else if (!output->openMachine()) {
        if (!output->openMemory(SilentRate))
            return nullptr;
        output->mSilent = true;
        output->mPlayed = Clock::now();
    }
    newest = output.get();
    return output;
}

bool AudioOutput::openMachine() {
    mDevice = alcOpenDevice(nullptr);
    mContext = mDevice ? alcCreateContext(mDevice, nullptr) : nullptr;
    if (mDevice && !mContext) {
        alcCloseDevice(mDevice);
        mDevice = nullptr;
    }
    return mContext;
}

bool AudioOutput::openMemory(int rate) {
    // Levels stay as they are: nothing presses loud passages down.
    const ALCint memory[] = {ALC_FORMAT_CHANNELS_SOFT, ALC_STEREO_SOFT, ALC_FORMAT_TYPE_SOFT,
                             ALC_FLOAT_SOFT,           ALC_FREQUENCY,   rate,
                             ALC_OUTPUT_LIMITER_SOFT,  ALC_FALSE,       0};
    mDevice = alcLoopbackOpenDeviceSOFT(nullptr);
    mContext = mDevice ? alcCreateContext(mDevice, memory) : nullptr;
    return mContext;
}

AudioOutput::~AudioOutput() {
    if (newest == this)
        newest = nullptr;
    if (alcGetCurrentContext() == mContext)
        alcMakeContextCurrent(nullptr);
    if (mContext)
        alcDestroyContext(mContext);
    if (mDevice)
        alcCloseDevice(mDevice);
}

void AudioOutput::MakeCurrent() {
    if (alcGetCurrentContext() != mContext)
        alcMakeContextCurrent(mContext);
    if (mSilent)
        playSilence();
}

// OpenAL has a silent output of its own, but not on a machine that it knows how to make sound on
// and that happens to have nothing connected.
void AudioOutput::playSilence() {
    const Clock::time_point now = Clock::now();
    mPlayed = std::max(mPlayed, now - LongestSilence);
    std::array<float, 2 * 1'024> unheard;
    constexpr std::int64_t most = unheard.size() / 2;
    using Frames = std::chrono::duration<std::int64_t, std::ratio<1, SilentRate>>;
    const Frames passed = std::chrono::duration_cast<Frames>(now - mPlayed);
    for (std::int64_t left = passed.count(); left > 0; left -= most)
        alcRenderSamplesSOFT(mDevice, unheard.data(), static_cast<ALCsizei>(std::min(left, most)));
    mPlayed += std::chrono::duration_cast<Clock::duration>(passed);
}

std::vector<float> AudioOutput::Render(int frames) {
    std::vector<float> samples;
    if (!mLoopback || frames <= 0)
        return samples;
    samples.resize(static_cast<std::size_t>(frames) * 2);
    alcRenderSamplesSOFT(mDevice, samples.data(), frames);
    return samples;
}

bool HasAudio() {
    ALCdevice* device = alcOpenDevice(nullptr);
    if (!device)
        return false;
    // OpenAL's own name of what nobody hears.
    const std::string_view name = alcGetString(device, ALC_DEVICE_SPECIFIER);
    const bool sounds = name != "No Output";
    alcCloseDevice(device);
    return sounds;
}

void UseAudioLoopback(int rate) {
    loopbackRate = std::clamp(rate, 0, 192'000);
}

std::vector<float> RenderAudio(int frames) {
    return newest ? newest->Render(frames) : std::vector<float>();
}

} // namespace VornPlatform
