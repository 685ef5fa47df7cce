// SPDX-License-Identifier: MIT
#include "platform/fmod/output.hpp"

#include "platform/control/vorn_platform.hpp"

#define AL_ALEXT_PROTOTYPES
#include <AL/alext.h>

#include <algorithm>

namespace VornPlatform {

namespace {

constinit int loopbackRate = 0;
constinit AudioOutput* newest = nullptr;

ALCcontext* MakeContext(ALCdevice* device, int rate) {
    // Levels stay as they are: nothing presses loud passages down.
    const ALCint memory[] = {ALC_FORMAT_CHANNELS_SOFT, ALC_STEREO_SOFT, ALC_FORMAT_TYPE_SOFT,
                             ALC_FLOAT_SOFT,           ALC_FREQUENCY,   rate,
                             ALC_OUTPUT_LIMITER_SOFT,  ALC_FALSE,       0};
    return alcCreateContext(device, rate > 0 ? memory : nullptr);
}

} // namespace

std::unique_ptr<AudioOutput> AudioOutput::Make() {
    std::unique_ptr<AudioOutput> output(new AudioOutput);
    output->mLoopback = loopbackRate > 0;
    if (output->mLoopback)
        output->mDevice = alcLoopbackOpenDeviceSOFT(nullptr);
    else if (output->mDevice = alcOpenDevice(nullptr); !output->mDevice)
        output->mDevice = alcOpenDevice("No Output"); // keeps time in silence
    if (!output->mDevice)
        return nullptr;
    output->mContext = MakeContext(output->mDevice, loopbackRate);
    if (!output->mContext)
        return nullptr;
    newest = output.get();
    return output;
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
}

std::vector<float> AudioOutput::Render(int frames) {
    std::vector<float> samples;
    if (!mLoopback || frames <= 0)
        return samples;
    samples.resize(static_cast<std::size_t>(frames) * 2);
    alcRenderSamplesSOFT(mDevice, samples.data(), frames);
    return samples;
}

void UseAudioLoopback(int rate) {
    loopbackRate = std::clamp(rate, 0, 192'000);
}

std::vector<float> RenderAudio(int frames) {
    return newest ? newest->Render(frames) : std::vector<float>();
}

} // namespace VornPlatform
