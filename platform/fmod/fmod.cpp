// SPDX-License-Identifier: MIT
//
// The interface: arguments are checked here, and nothing raises.
#include "platform/fmod/system.hpp"

#include <algorithm>
#include <exception>
#include <utility>

using VornPlatform::ChannelHandle;
using VornPlatform::Slot;
using VornPlatform::SoundObject;
using VornPlatform::SoundSystem;

namespace {

// What may raise does so for want of memory.
template <typename Work>
FMOD_RESULT Guarded(Work&& work) {
    try {
        return work();
    } catch (const std::exception&) {
        return FMOD_ERR_MEMORY;
    }
}

/// Does `work` with the channel's slot, or tells how its playing has ended.
template <typename Work>
FMOD_RESULT OnSlot(FMOD::Channel* channel, Work&& work) {
    auto& handle = *static_cast<ChannelHandle*>(channel);
    Slot* const slot = handle.system->Find(handle);
    if (!slot)
        return handle.stolen ? FMOD_ERR_CHANNEL_STOLEN : FMOD_ERR_INVALID_HANDLE;
    work(*handle.system, *slot);
    return FMOD_OK;
}

} // namespace

namespace FMOD {

FMOD_RESULT Sound::release() {
    auto& sound = *static_cast<SoundObject*>(this);
    sound.system->Release(sound);
    return FMOD_OK;
}

FMOD_RESULT Channel::setMode(FMOD_MODE mode) {
    if (mode != FMOD_LOOP_OFF && mode != FMOD_LOOP_NORMAL)
        return FMOD_ERR_INVALID_PARAM;
    return OnSlot(this, [mode](SoundSystem& system, Slot& slot) {
        if (std::exchange(slot.mode, mode) != mode)
            system.ApplyLoop(slot);
    });
}

FMOD_RESULT Channel::setLoopCount(int count) {
    if (count < -1)
        return FMOD_ERR_INVALID_PARAM;
    return OnSlot(this, [count = std::min(count, 1'000)](SoundSystem& system, Slot& slot) {
        if (std::exchange(slot.loopCount, count) != count)
            system.ApplyLoop(slot);
    });
}

FMOD_RESULT Channel::setPriority(int priority) {
    if (priority < 0 || priority > 256)
        return FMOD_ERR_INVALID_PARAM;
    return OnSlot(this, [priority](SoundSystem&, Slot& slot) { slot.priority = priority; });
}

FMOD_RESULT Channel::setVolume(float volume) {
    if (!(volume == volume))
        return FMOD_ERR_INVALID_PARAM;
    return OnSlot(this, [volume](SoundSystem& system, Slot& slot) {
        slot.volume = std::clamp(volume, 0.0f, 1.0f);
        system.ApplyVolume(slot);
    });
}

FMOD_RESULT Channel::setMute(bool mute) {
    return OnSlot(this, [mute](SoundSystem& system, Slot& slot) {
        slot.muted = mute;
        system.ApplyVolume(slot);
    });
}

FMOD_RESULT Channel::setPaused(bool paused) {
    return OnSlot(this, [paused](SoundSystem& system, Slot& slot) {
        if (slot.paused == paused)
            return;
        slot.paused = paused;
        system.ApplyPause(slot);
    });
}

FMOD_RESULT Channel::isPlaying(bool* playing) {
    if (!playing)
        return FMOD_ERR_INVALID_PARAM;
    *playing = false;
    return OnSlot(this, [playing](SoundSystem&, Slot&) { *playing = true; });
}

FMOD_RESULT Channel::stop() {
    return OnSlot(this, [](SoundSystem& system, Slot& slot) { system.Stop(slot); });
}

FMOD_RESULT System::init(int maxChannels, FMOD_INITFLAGS /*flags*/, void* /*extraDriverData*/) {
    return Guarded([&] { return static_cast<SoundSystem*>(this)->Init(maxChannels); });
}

FMOD_RESULT System::createSound(const char* name, FMOD_MODE mode, FMOD_CREATESOUNDEXINFO* /*info*/,
                                Sound** sound) {
    if (!name || !sound)
        return FMOD_ERR_INVALID_PARAM;
    *sound = nullptr;
    return Guarded([&] { return static_cast<SoundSystem*>(this)->CreateSound(name, mode, sound); });
}

FMOD_RESULT System::playSound(FMOD_CHANNELINDEX which, Sound* sound, bool paused,
                              Channel** channel) {
    if (!sound || (which != FMOD_CHANNEL_FREE && which != FMOD_CHANNEL_REUSE))
        return FMOD_ERR_INVALID_PARAM;
    return Guarded([&] {
        return static_cast<SoundSystem*>(this)->PlaySound(which, *static_cast<SoundObject*>(sound),
                                                          paused, channel);
    });
}

FMOD_RESULT System::update() {
    return static_cast<SoundSystem*>(this)->Update();
}

FMOD_RESULT System::release() {
    delete static_cast<SoundSystem*>(this);
    return FMOD_OK;
}

} // namespace FMOD

FMOD_RESULT FMOD_System_Create(FMOD_SYSTEM** system) {
    if (!system)
        return FMOD_ERR_INVALID_PARAM;
    return Guarded([system] {
        FMOD::System* const made = new SoundSystem;
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): C's name of the class
        *system = reinterpret_cast<FMOD_SYSTEM*>(made);
        return FMOD_OK;
    });
}
