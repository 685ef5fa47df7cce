// SPDX-License-Identifier: MIT
//
// The part of the FMOD Ex interface that Vorn and its hosts use, under the platform's own names.
//
//   FMOD::System* system = nullptr;
//   FMOD_System_Create(reinterpret_cast<FMOD_SYSTEM**>(&system));
//   system->init(64, FMOD_INIT_NORMAL, nullptr);
//   FMOD::Sound* sound = nullptr;
//   system->createSound("bell.ogg", FMOD_DEFAULT, nullptr, &sound);
//   FMOD::Channel* channel = nullptr;
//   system->playSound(FMOD_CHANNEL_FREE, sound, false, &channel);
//
// A system owns its sounds and channels; none may be used after its release. A sound may not be
// used after its own. A channel's pointer is a handle of one playing: it stays good for the life of
// the system, and once that playing is over every call answers FMOD_ERR_INVALID_HANDLE, or
// FMOD_ERR_CHANNEL_STOLEN where another one took the channel, and does nothing. (Of handles far in
// the past, some 65,000 playings back, one may come round again.)
//
//   [X] WAV, OGG, FLAC, MP3, decoded when they are opened; priorities, loops, volume, mute, pause
//   [ ] streams, sound in space, effects, pitch, groups of channels, user data
#ifndef VORN_PLATFORM_FMOD_HPP
#define VORN_PLATFORM_FMOD_HPP
#pragma GCC system_header

typedef enum {
    FMOD_OK = 0,
    FMOD_ERR_CHANNEL_ALLOC = 10,
    FMOD_ERR_CHANNEL_STOLEN = 11,
    FMOD_ERR_FILE_BAD = 19,
    FMOD_ERR_FILE_NOTFOUND = 23,
    FMOD_ERR_FORMAT = 25,
    FMOD_ERR_INITIALIZATION = 31,
    FMOD_ERR_INTERNAL = 33,
    FMOD_ERR_INVALID_HANDLE = 36,
    FMOD_ERR_INVALID_PARAM = 37,
    FMOD_ERR_MEMORY = 43,
    FMOD_ERR_OUTPUT_INIT = 55,
    FMOD_ERR_UNINITIALIZED = 69,
    FMOD_RESULT_FORCEINT = 65536
} FMOD_RESULT;
typedef enum { FMOD_CHANNEL_FREE = -1, FMOD_CHANNEL_REUSE = -2 } FMOD_CHANNELINDEX;
typedef unsigned int FMOD_MODE;
typedef unsigned int FMOD_INITFLAGS;
enum : unsigned int {
    FMOD_DEFAULT = 0,
    FMOD_LOOP_OFF = 1,
    FMOD_LOOP_NORMAL = 2,
    FMOD_INIT_NORMAL = 0
};
struct FMOD_SYSTEM;
struct FMOD_CREATESOUNDEXINFO;

#pragma GCC visibility push(default)

namespace FMOD {

class Sound {
public:
    /// Ends all channels that play it.
    FMOD_RESULT release();
};

/// A new playing has volume 1, priority 128, no mute, and the loop that its sound was made with,
/// repeated for ever.
class Channel {
public:
    /// FMOD_LOOP_OFF or FMOD_LOOP_NORMAL.
    FMOD_RESULT setMode(FMOD_MODE);
    /// With FMOD_LOOP_NORMAL: 0 plays once, n plays n + 1 times, up to 1,000; -1 for ever. A change
    /// counts from the round that is heard. Where it leaves fewer rounds than there were to come,
    /// and those were not endless, the sound dips for 20 to 40 milliseconds.
    FMOD_RESULT setLoopCount(int);
    /// From 0, the most important, to 256.
    FMOD_RESULT setPriority(int);
    /// From 0 to 1; beyond is cut.
    FMOD_RESULT setVolume(float);
    /// Of a muted one time goes on.
    FMOD_RESULT setMute(bool);
    FMOD_RESULT setPaused(bool);
    /// True of a paused one too.
    FMOD_RESULT isPlaying(bool*);
    FMOD_RESULT stop();
};

class System {
public:
    /// At most `maxChannels` playings at a time, 1 to 256. Without a machine that sounds, time goes
    /// on in silence.
    FMOD_RESULT init(int maxChannels, FMOD_INITFLAGS flags, void* extraDriverData);
    /// Decodes the whole file. The out pointer is null on failure.
    FMOD_RESULT createSound(const char* nameOrData, FMOD_MODE mode, FMOD_CREATESOUNDEXINFO* exinfo,
                            Sound** sound);
    /// FREE takes a free channel, or the least important that is not more important than a new
    /// playing (the oldest of those), or fails with FMOD_ERR_CHANNEL_ALLOC. REUSE takes that of the
    /// handle in `channel`, ending what plays there; if that is null, over, or another system's, as
    /// FREE. On failure `channel` stays. The sound has to be one of this system.
    FMOD_RESULT playSound(FMOD_CHANNELINDEX channelId, Sound* sound, bool paused,
                          Channel** channel);
    /// To be called each frame.
    FMOD_RESULT update();
    /// Ends everything.
    FMOD_RESULT release();
};

} // namespace FMOD

extern "C" FMOD_RESULT FMOD_System_Create(FMOD_SYSTEM** system);

#pragma GCC visibility pop

#endif
