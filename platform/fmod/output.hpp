// SPDX-License-Identifier: MIT
//
// Where sound goes: the machine, silence where it has nothing that sounds, or memory.
#pragma once

#include <AL/al.h>
#include <AL/alc.h>

#include <chrono>
#include <memory>
#include <vector>

namespace VornPlatform {

class AudioOutput {
public:
    /// Null where not even silence can be had.
    static std::unique_ptr<AudioOutput> Make();
    AudioOutput(const AudioOutput&) = delete;
    AudioOutput& operator=(const AudioOutput&) = delete;
    ~AudioOutput();

    /// All calls of OpenAL go to the output that was made current last. In silence, what has passed
    /// of time since the last call is played.
    void MakeCurrent();
    /// Of one that goes to memory; else empty.
    std::vector<float> Render(int frames);

private:
    using Clock = std::chrono::steady_clock;

    AudioOutput() = default;
    bool openMachine();
    bool openMemory(int rate);
    void playSilence();

    ALCdevice* mDevice = nullptr;
    ALCcontext* mContext = nullptr;
    bool mLoopback = false;
    bool mSilent = false;
    Clock::time_point mPlayed{}; // in silence: up to when
};

} // namespace VornPlatform
