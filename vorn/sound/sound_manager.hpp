// SPDX-License-Identifier: MIT
//
// Music and effects, played by number.
//
//   Vorn::RscPackManager::Instance()->LoadRscPack("meadow.json");   // its sounds get their numbers
//   auto& sound = *Vorn::SoundManager::Instance();
//   sound.PlayBgm(Vorn::SoundType(1));           // the first music of the pack
//   sound.PlaySfx(Vorn::SoundType(11), false);   // its first effect
//   sound.Free();                                // at the end, before the packs or after
//
// Numbers are given out in the order in which sounds are created, music from 1 and effects from 11,
// and the lowest that was given back comes first. There are ten for music and 22 for effects that
// can be played; what goes beyond is created and silent: an eleventh music and a 24th effect get
// the number 0, and the 23rd effect, 33, has no channel.
//
// A muted music goes on without being heard; a muted effect is not started at all, and those that
// play go on. The engine sets both switches when the window loses the focus and clears both when it
// has it again, whatever the game had set; a game that offers them to the player sets them anew
// when Engine::isActive comes back.
//
// Faults of the sound system go to standard output, and the game goes on in silence.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"

#include <fmod.hpp>

#include <array>
#include <string>
#include <unordered_map>

namespace Vorn {

/// The number that a sound is played by: 0 is none, 1 to 10 are music, 11 to 33 are effects.
enum SoundType : int {};

struct Sound {
    SoundType mType{};
    FMOD::Sound* mSound = nullptr;

    Sound() = default;
    Sound(SoundType type, FMOD::Sound* sound = nullptr) : mType(type), mSound(sound) {}
};

class VORN_API SoundManager : public Singleton<SoundManager> {
public:
    /// Starts the sound system; the first CreateSound does it by itself, also after Free.
    void Init();
    /// Ends it, and with it all that plays. The numbers stay taken, and are silent.
    void Free();
    /// For each frame; Scene::Update calls it. The number has no meaning.
    void Update(float dt);

    /// `path` is a file, and behind a blank a tag: "bgm" for music, anything else and nothing for
    /// an effect. A file that cannot be played takes a number too, and is silent. A second sound of
    /// a file gets a number of its own, and the file keeps its first.
    /// @return the platform's result
    int CreateSound(const std::string& path);
    /// Raises std::out_of_range, "invalid unordered_map<K, T> key", for a file that was never
    /// created. A number below 24 is free for the next sound, one above stays taken; until then it
    /// is silent. A second release is passed over.
    void ReleaseSound(const std::string& path);
    /// The numbers stay taken. Where they must come back, release by name.
    void ReleaseAllSounds();

    /// Loops for ever, beside a music that already plays: StopBgm ends that first. Both Plays raise
    /// std::out_of_range, "invalid unordered_map<K, T> key", for a number that was never given out.
    /// @return 1 if the sound is not there, else the platform's result of setting the volume
    int PlayBgm(SoundType type);
    /// One sound a number at a time: again cuts the one before off.
    /// @return null if nothing was started: muted, no such sound, no number of an effect, or a
    /// fault
    FMOD::Channel* PlaySfx(SoundType type, bool loop);
    /// Other numbers than those of effects are passed over.
    void StopSfx(SoundType type);
    /// These three mean the music that was started last.
    void StopBgm();
    /// Music that is started while it is set begins paused.
    void PauseBgm(bool pause);
    bool PauseBgm() const { return mPauseBgm; }
    /// Those that play now; nothing remembers it.
    void PauseAllSfx(bool pause);
    void EndAllChannels();

    /// From 0 to 1; kept as it is given.
    void BgmVolume(float volume);
    float BgmVolume() const { return mBgmVolume; }
    /// Of effects that start from now on.
    void SfxVolume(float volume) { mSfxVolume = volume; }
    float SfxVolume() const { return mSfxVolume; }
    void MuteBgm(bool mute);
    bool MuteBgm() const { return mMuteBgm; }
    void MuteSfx(bool mute) { mMuteSfx = mute; }
    bool MuteSfx() const { return mMuteSfx; }

private:
    SoundType takeType(bool music);
    bool owns(const std::string& file, SoundType type) const;
    FMOD::Sound* soundOf(SoundType type) const;
    FMOD::Channel** channelOf(SoundType type);

    FMOD::System* mFmodSys = nullptr;
    std::unordered_map<std::string, SoundType> mSoundTypes;
    std::unordered_map<SoundType, FMOD::Sound*> mSounds;
    float mSfxVolume = 1.0f;
    float mBgmVolume = 1.0f;
    FMOD::Channel* mBgmChannel = nullptr;
    std::array<FMOD::Channel*, 23> mSfxChannels{}; // of type t: t - 10
    std::array<unsigned char, 10> mBgmSlots{};
    std::array<unsigned char, 23> mSfxSlots{};
    bool mMuteSfx = false;
    bool mMuteBgm = false;
    bool mPauseBgm = false;
    // Which file a number is out for, without 0: what a file was given may be another's by now.
    std::unordered_map<SoundType, std::string> mOwners;
};

template <>
VORN_API SoundManager Singleton<SoundManager>::mSingleton;

} // namespace Vorn
