// SPDX-License-Identifier: MIT
#include "platform/fmod/system.hpp"

#define AL_ALEXT_PROTOTYPES
#include <AL/alext.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <new>
#include <optional>
#include <string>

namespace VornPlatform {

namespace {

constexpr int DefaultPriority = 128;
constexpr std::size_t MaxHandles = 1 << 16;
constexpr std::uintmax_t MaxFileSize = 1 << 30;

std::optional<std::string> ReadFile(const char* path) {
    std::error_code error;
    // Neither a directory nor what never ends.
    if (!std::filesystem::is_regular_file(path, error))
        return std::nullopt;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    std::ifstream file(path, std::ios::binary);
    if (error || size > MaxFileSize || !file.is_open())
        return std::nullopt;
    std::string bytes(static_cast<std::size_t>(size), '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(file.gcount())); // it may have shrunk meanwhile
    return bytes;
}

} // namespace

SoundSystem::~SoundSystem() {
    if (!mOutput)
        return;
    mOutput->MakeCurrent();
    for (Slot& slot : mSlots) {
        alSourceStop(slot.source);
        alDeleteSources(1, &slot.source);
    }
    for (const auto& sound : mSounds)
        alDeleteBuffers(1, &sound->buffer);
}

FMOD_RESULT SoundSystem::Init(int maxChannels) {
    if (mOutput)
        return FMOD_ERR_INITIALIZATION;
    if (maxChannels < 1 || maxChannels > 256)
        return FMOD_ERR_INVALID_PARAM;
    mOutput = AudioOutput::Make();
    if (!mOutput)
        return FMOD_ERR_OUTPUT_INIT;
    mOutput->MakeCurrent();
    alGetError();
    for (int i = 0; i < maxChannels; ++i) {
        Slot slot;
        alGenSources(1, &slot.source);
        if (alGetError() != AL_NO_ERROR)
            break; // fewer then
        // Samples come out as they are, whatever the machine makes of space.
        alSourcei(slot.source, AL_SOURCE_RELATIVE, AL_TRUE);
        alSourcei(slot.source, AL_DIRECT_CHANNELS_SOFT, AL_TRUE);
        mSlots.push_back(slot);
    }
    return mSlots.empty() ? FMOD_ERR_OUTPUT_INIT : FMOD_OK;
}

// --- sounds

FMOD_RESULT SoundSystem::CreateSound(const char* path, FMOD_MODE mode, FMOD::Sound** sound) {
    if (!mOutput)
        return FMOD_ERR_UNINITIALIZED;
    const auto file = ReadFile(path);
    if (!file)
        return FMOD_ERR_FILE_NOTFOUND;
    const auto samples = DecodeSound(std::as_bytes(std::span(*file)));
    if (!samples)
        return FMOD_ERR_FORMAT;
    auto made = std::make_unique<SoundObject>();
    made->system = this;
    if (mode & FMOD_LOOP_NORMAL)
        made->mode = FMOD_LOOP_NORMAL;
    mSounds.reserve(mSounds.size() + 1);
    if (const FMOD_RESULT error = makeBuffer(*samples, *made); error != FMOD_OK)
        return error;
    *sound = made.get();
    mSounds.push_back(std::move(made));
    return FMOD_OK;
}

FMOD_RESULT SoundSystem::makeBuffer(const SoundSamples& samples, SoundObject& sound) {
    mOutput->MakeCurrent();
    alGetError();
    alGenBuffers(1, &sound.buffer);
    if (alGetError() != AL_NO_ERROR)
        return FMOD_ERR_MEMORY;
    const std::size_t size = samples.samples.size() * sizeof samples.samples[0];
    alBufferData(sound.buffer, AL_FORMAT_STEREO16, samples.samples.data(),
                 static_cast<ALsizei>(size), samples.rate);
    sound.frames = static_cast<int>(samples.samples.size() / 2);
    if (alGetError() == AL_NO_ERROR)
        return FMOD_OK;
    alDeleteBuffers(1, &sound.buffer);
    return FMOD_ERR_MEMORY;
}

void SoundSystem::Release(SoundObject& sound) {
    mOutput->MakeCurrent();
    for (Slot& slot : mSlots)
        if (slot.sound == &sound)
            free(slot, false);
    alDeleteBuffers(1, &sound.buffer);
    std::erase_if(mSounds, [&sound](const auto& entry) { return entry.get() == &sound; });
}

// --- channels

// A source that has come to its end frees its channel when somebody looks.
void SoundSystem::refresh(Slot& slot) {
    ALint state = 0;
    if (!slot.handle)
        return;
    alGetSourcei(slot.source, AL_SOURCE_STATE, &state);
    if (state == AL_STOPPED)
        free(slot, false);
}

void SoundSystem::free(Slot& slot, bool stolen) {
    alSourceStop(slot.source);
    alSourcei(slot.source, AL_BUFFER, 0);
    if (slot.handle) {
        slot.handle->slot = -1;
        slot.handle->stolen = stolen;
    }
    slot.handle = nullptr;
    slot.sound = nullptr;
}

Slot* SoundSystem::Find(ChannelHandle& handle) {
    if (handle.slot < 0)
        return nullptr;
    mOutput->MakeCurrent();
    Slot& slot = mSlots[static_cast<std::size_t>(handle.slot)];
    refresh(slot);
    return handle.slot < 0 ? nullptr : &slot;
}

int SoundSystem::takeSlot(FMOD_CHANNELINDEX which, FMOD::Channel* wanted) {
    if (which == FMOD_CHANNEL_REUSE && wanted) {
        auto& handle = *static_cast<ChannelHandle*>(wanted);
        if (handle.system == this && Find(handle))
            return handle.slot;
    }
    // A free one, else of those that are not more important than a new playing the least
    // important, and of these the oldest.
    const auto less = [](const Slot& a, const Slot& b) {
        return a.priority != b.priority ? a.priority < b.priority : a.started > b.started;
    };
    int victim = -1;
    for (std::size_t i = 0; i < mSlots.size(); ++i) {
        refresh(mSlots[i]);
        const int index = static_cast<int>(i);
        if (!mSlots[i].handle)
            return index;
        if (mSlots[i].priority >= DefaultPriority &&
            (victim < 0 || less(mSlots[static_cast<std::size_t>(victim)], mSlots[i])))
            victim = index;
    }
    return victim;
}

ChannelHandle& SoundSystem::makeHandle(int slot) {
    if (mHandles.size() < MaxHandles)
        mHandles.emplace_back();
    // Of the old ones, those that still play are passed by; there are fewer than handles.
    const std::size_t count = mHandles.size();
    std::size_t index = count < MaxHandles ? count - 1 : mNextHandle;
    while (mHandles[index].slot >= 0)
        index = (index + 1) % count;
    mNextHandle = (index + 1) % MaxHandles;
    ChannelHandle& handle = mHandles[index];
    handle.system = this;
    handle.slot = slot;
    handle.stolen = false;
    return handle;
}

FMOD_RESULT SoundSystem::PlaySound(FMOD_CHANNELINDEX which, SoundObject& sound, bool paused,
                                   FMOD::Channel** channel) {
    if (!mOutput)
        return FMOD_ERR_UNINITIALIZED;
    if (sound.system != this)
        return FMOD_ERR_INVALID_PARAM;
    mOutput->MakeCurrent();
    const int index = takeSlot(which, channel ? *channel : nullptr);
    if (index < 0)
        return FMOD_ERR_CHANNEL_ALLOC;
    ChannelHandle& handle = makeHandle(index);
    Slot& slot = mSlots[static_cast<std::size_t>(index)];
    free(slot, true);
    Slot fresh;
    fresh.source = slot.source;
    fresh.handle = &handle;
    fresh.sound = &sound;
    fresh.started = ++mPlayings;
    fresh.mode = sound.mode;
    fresh.paused = paused;
    slot = fresh;
    ApplyVolume(slot);
    ApplyLoop(slot);
    if (!paused)
        alSourcePlay(slot.source);
    if (channel)
        *channel = &handle;
    return FMOD_OK;
}

void SoundSystem::Stop(Slot& slot) {
    free(slot, false);
}

void SoundSystem::ApplyVolume(const Slot& slot) {
    alSourcef(slot.source, AL_GAIN, slot.muted ? 0.0f : slot.volume);
}

void SoundSystem::ApplyPause(Slot& slot) {
    if (slot.paused)
        alSourcePause(slot.source);
    else
        alSourcePlay(slot.source);
}

// OpenAL loops once or for ever. A loop that ends is as many copies of the buffer in a queue, and
// everything is a queue, so that more of them can follow while it is heard.
void SoundSystem::ApplyLoop(Slot& slot) {
    const bool loops = slot.mode == FMOD_LOOP_NORMAL;
    const bool forEver = loops && slot.loopCount < 0;
    const int wanted = loops && slot.loopCount > 0 ? slot.loopCount + 1 : 1;
    if (slot.queued > 1) // of one that loops, OpenAL does not tell how far it is
        alSourcei(slot.source, AL_LOOPING, AL_FALSE);
    ALint played = 0;
    alGetSourcei(slot.source, AL_BUFFERS_PROCESSED, &played);
    const int left = slot.queued - played;
    if (left > wanted && !forEver)
        restart(slot, wanted);
    else
        queue(slot, wanted - left);
    alSourcei(slot.source, AL_LOOPING, forEver ? AL_TRUE : AL_FALSE);
}

void SoundSystem::queue(Slot& slot, int copies) {
    for (int i = 0; i < copies; ++i, ++slot.queued)
        alSourceQueueBuffers(slot.source, 1, &slot.sound->buffer);
}

// Takes back what is queued, which OpenAL does for what it has played only: it is stopped, and goes
// on from where it was, faded in by the mixer over its next block.
void SoundSystem::restart(Slot& slot, int copies) {
    ALint state = 0, at = 0;
    alGetSourcei(slot.source, AL_SOURCE_STATE, &state);
    alGetSourcei(slot.source, AL_SAMPLE_OFFSET, &at);
    alSourceStop(slot.source);
    alSourcei(slot.source, AL_BUFFER, 0);
    slot.queued = 0;
    queue(slot, copies);
    alSourceRewind(slot.source);
    alSourcei(slot.source, AL_SAMPLE_OFFSET, at % slot.sound->frames);
    if (state == AL_PLAYING)
        alSourcePlay(slot.source);
}

FMOD_RESULT SoundSystem::Update() {
    if (!mOutput)
        return FMOD_ERR_UNINITIALIZED;
    mOutput->MakeCurrent();
    for (Slot& slot : mSlots)
        refresh(slot);
    return FMOD_OK;
}

} // namespace VornPlatform
