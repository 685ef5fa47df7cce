// SPDX-License-Identifier: MIT
#include "vorn/sound/sound_manager.hpp"

#include <fmod_errors.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <utility>

namespace Vorn {

namespace {

constexpr int MaxChannels = 64;
constexpr int FirstMusic = 1, FirstEffect = 11, LastEffect = 32;

// Two streams write to standard output; what is told stays in its order.
void TellError(const char* where, FMOD_RESULT result) {
    std::cout.flush();
    std::printf("%sFMOD error! (%d): %s\n", where, static_cast<int>(result),
                FMOD_ErrorString(result));
    std::fflush(stdout);
}

void Tell(const char* line) {
    std::cout << line << '\n';
}

template <typename Map>
auto& At(Map& map, const typename Map::key_type& key) {
    const auto found = map.find(key);
    if (found == map.end())
        throw std::out_of_range("invalid unordered_map<K, T> key");
    return found->second;
}

// The file, and the tag behind its first blank; without a blank both are the whole.
std::pair<std::string, std::string> Split(const std::string& path) {
    const std::size_t blank = path.find(' ');
    if (blank == std::string::npos)
        return {path, path};
    return {path.substr(0, blank), path.substr(blank + 1)};
}

// A channel that was never started answers like one that is over.
template <typename... Arguments>
FMOD_RESULT Call(FMOD::Channel* channel, FMOD_RESULT (FMOD::Channel::*operation)(Arguments...),
                 Arguments... arguments) {
    return channel ? (channel->*operation)(arguments...) : FMOD_ERR_INVALID_HANDLE;
}

// Music and looped effects: nothing else takes their channels.
void LoopForEver(FMOD::Channel* channel) {
    const FMOD_RESULT result = Call(channel, &FMOD::Channel::setMode, FMOD_MODE(FMOD_LOOP_NORMAL));
    if (result != FMOD_OK)
        TellError("(setLoop)", result);
    if (Call(channel, &FMOD::Channel::setLoopCount, -1) != FMOD_OK)
        Tell("fail to set loop count");
    if (Call(channel, &FMOD::Channel::setPriority, 0) != FMOD_OK)
        Tell("fail to set priority");
}

} // namespace

void SoundManager::Init() {
    if (mFmodSys)
        return;
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): C's name of the class
    FMOD_RESULT result = FMOD_System_Create(reinterpret_cast<FMOD_SYSTEM**>(&mFmodSys));
    if (result != FMOD_OK) {
        TellError("", result);
        std::fputs("FMOD::System_Create Failure", stdout);
        std::fflush(stdout);
        mFmodSys = nullptr;
        return;
    }
    result = mFmodSys->init(MaxChannels, FMOD_INIT_NORMAL, nullptr);
    if (result != FMOD_OK) {
        TellError("", result);
        std::fputs("mFmodSys->init Failure", stdout);
        std::fflush(stdout);
        mFmodSys->release();
        mFmodSys = nullptr;
    }
}

void SoundManager::Free() {
    if (!mFmodSys)
        return;
    EndAllChannels();
    mFmodSys->release();
    mFmodSys = nullptr;
    // Nothing of the dead system may be touched again.
    mBgmChannel = nullptr;
    mSfxChannels.fill(nullptr);
    for (auto& [type, sound] : mSounds)
        sound = nullptr;
}

void SoundManager::Update(float /*dt*/) {
    if (mFmodSys)
        mFmodSys->update();
}

// --- sounds

SoundType SoundManager::takeType(bool music) {
    const auto take = [](auto& slots, int first) {
        const auto slot = std::find(slots.begin(), slots.end(), 0);
        if (slot == slots.end())
            return SoundType(0);
        *slot = 1;
        return SoundType(first + static_cast<int>(slot - slots.begin()));
    };
    return music ? take(mBgmSlots, FirstMusic) : take(mSfxSlots, FirstEffect);
}

int SoundManager::CreateSound(const std::string& path) {
    Init();
    const auto [file, tag] = Split(path);
    const SoundType type = takeType(tag == "bgm");
    FMOD::Sound* sound = nullptr;
    FMOD_RESULT result = FMOD_ERR_UNINITIALIZED;
    // The number 0 is nobody's, so there is no one to release its sound.
    if (mFmodSys && type == 0)
        result = FMOD_ERR_MEMORY;
    else if (mFmodSys)
        result = mFmodSys->createSound(file.c_str(), FMOD_DEFAULT, nullptr, &sound);
    // A file keeps its first number until that is given back.
    const auto [entry, isNew] = mSoundTypes.try_emplace(file, type);
    if (!isNew && !owns(file, entry->second))
        entry->second = type;
    mSounds[type] = sound;
    if (type != 0)
        mOwners[type] = file;
    return result;
}

bool SoundManager::owns(const std::string& file, SoundType type) const {
    const auto owner = mOwners.find(type);
    return owner != mOwners.end() && owner->second == file;
}

void SoundManager::ReleaseSound(const std::string& path) {
    const std::string file = Split(path).first;
    const SoundType type = At(mSoundTypes, file);
    FMOD::Sound*& sound = At(mSounds, type);
    if (!owns(file, type))
        return;
    mOwners.erase(type);
    if (FMOD::Sound* const released = std::exchange(sound, nullptr))
        released->release();
    if (type < FirstEffect)
        mBgmSlots[static_cast<std::size_t>(type - FirstMusic)] = 0;
    else if (type < 24)
        mSfxSlots[static_cast<std::size_t>(type - FirstEffect)] = 0;
}

void SoundManager::ReleaseAllSounds() {
    for (const auto& [type, sound] : mSounds)
        if (sound)
            sound->release();
    mSounds.clear();
    mSoundTypes.clear();
    mOwners.clear();
}

FMOD::Sound* SoundManager::soundOf(SoundType type) const {
    return mFmodSys ? At(mSounds, type) : (At(mSounds, type), nullptr);
}

// --- playing

int SoundManager::PlayBgm(SoundType type) {
    FMOD::Sound* const sound = soundOf(type);
    if (!sound)
        return 1;
    FMOD_RESULT result = mFmodSys->playSound(FMOD_CHANNEL_FREE, sound, mPauseBgm, &mBgmChannel);
    if (result != FMOD_OK)
        TellError("(playSound)", result);
    LoopForEver(mBgmChannel);
    result = Call(mBgmChannel, &FMOD::Channel::setVolume, mBgmVolume);
    if (result != FMOD_OK)
        TellError("(setVol)", result);
    if (mMuteBgm)
        Call(mBgmChannel, &FMOD::Channel::setMute, true);
    return result;
}

FMOD::Channel** SoundManager::channelOf(SoundType type) {
    // Entry 0 is nobody's, and so the last number has none.
    if (type < FirstEffect || type > LastEffect)
        return nullptr;
    return &mSfxChannels[static_cast<std::size_t>(type - FirstEffect + 1)];
}

FMOD::Channel* SoundManager::PlaySfx(SoundType type, bool loop) {
    if (mMuteSfx)
        return nullptr;
    FMOD::Sound* const sound = soundOf(type);
    FMOD::Channel** const channel = channelOf(type);
    if (!sound || !channel)
        return nullptr;
    const FMOD_RESULT started = mFmodSys->playSound(FMOD_CHANNEL_REUSE, sound, false, channel);
    if (started != FMOD_OK)
        Tell("fmod playsound error");
    if (loop)
        LoopForEver(*channel);
    Call(*channel, &FMOD::Channel::setVolume, mSfxVolume);
    return started == FMOD_OK ? *channel : nullptr;
}

void SoundManager::StopSfx(SoundType type) {
    FMOD::Channel** const channel = channelOf(type);
    bool plays = false;
    if (channel && Call(*channel, &FMOD::Channel::isPlaying, &plays) == FMOD_OK && plays)
        (*channel)->stop();
}

void SoundManager::StopBgm() {
    if (mBgmChannel)
        mBgmChannel->stop();
}

void SoundManager::PauseBgm(bool pause) {
    mPauseBgm = pause;
    Call(mBgmChannel, &FMOD::Channel::setPaused, pause);
}

void SoundManager::PauseAllSfx(bool pause) {
    for (FMOD::Channel* channel : mSfxChannels)
        Call(channel, &FMOD::Channel::setPaused, pause);
}

void SoundManager::EndAllChannels() {
    for (FMOD::Channel* channel : mSfxChannels)
        Call(channel, &FMOD::Channel::stop);
    StopBgm();
}

void SoundManager::BgmVolume(float volume) {
    mBgmVolume = volume;
    if (mBgmChannel)
        mBgmChannel->setVolume(volume);
}

void SoundManager::MuteBgm(bool mute) {
    mMuteBgm = mute;
    if (mBgmChannel)
        mBgmChannel->setMute(mute);
}

} // namespace Vorn
