// SPDX-License-Identifier: MIT
//
// What stands behind the three classes of fmod.hpp. A channel's slot holds a source of OpenAL; its
// handles are objects of their own, one for each playing.
#pragma once

#include "platform/fmod/output.hpp"
#include "platform/fmod/sound_file.hpp"

#include <fmod.hpp>

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

namespace VornPlatform {

class SoundSystem;

struct SoundObject : FMOD::Sound {
    SoundSystem* system = nullptr;
    ALuint buffer = 0;
    int frames = 0;
    FMOD_MODE mode = FMOD_LOOP_OFF;
};

struct ChannelHandle : FMOD::Channel {
    SoundSystem* system = nullptr;
    int slot = -1; // -1: over
    bool stolen = false;
};

struct Slot {
    ALuint source = 0;
    ChannelHandle* handle = nullptr; // of what plays; null: free
    SoundObject* sound = nullptr;
    std::uint64_t started = 0; // counts up
    FMOD_MODE mode = FMOD_LOOP_OFF;
    int loopCount = -1;
    int priority = 128;
    float volume = 1;
    bool muted = false, paused = false;
    int queued = 0; // copies of the buffer, those that have been played with them
};

class SoundSystem : public FMOD::System {
public:
    ~SoundSystem();

    FMOD_RESULT Init(int maxChannels);
    FMOD_RESULT CreateSound(const char* path, FMOD_MODE mode, FMOD::Sound** sound);
    FMOD_RESULT PlaySound(FMOD_CHANNELINDEX which, SoundObject& sound, bool paused,
                          FMOD::Channel** channel);
    FMOD_RESULT Update();
    void Release(SoundObject& sound);

    /// The slot that the handle's playing has, with OpenAL ready for it; null when it is over.
    Slot* Find(ChannelHandle& handle);
    void Stop(Slot& slot);
    void ApplyLoop(Slot& slot);
    void ApplyVolume(const Slot& slot);
    void ApplyPause(Slot& slot);

private:
    FMOD_RESULT makeBuffer(const SoundSamples& samples, SoundObject& sound);
    void refresh(Slot& slot);
    int takeSlot(FMOD_CHANNELINDEX which, FMOD::Channel* wanted);
    void free(Slot& slot, bool stolen);
    static void queue(Slot& slot, int copies);
    static void restart(Slot& slot, int copies);
    ChannelHandle& makeHandle(int slot);

    std::unique_ptr<AudioOutput> mOutput; // null before Init
    std::vector<Slot> mSlots;
    std::vector<std::unique_ptr<SoundObject>> mSounds;
    std::deque<ChannelHandle> mHandles; // never shrinks: hosts keep their addresses
    std::size_t mNextHandle = 0;
    std::uint64_t mPlayings = 0;
};

} // namespace VornPlatform
