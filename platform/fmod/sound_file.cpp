// SPDX-License-Identifier: MIT
#include "platform/fmod/sound_file.hpp"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

namespace VornPlatform {

namespace {

constexpr int MaxChannels = 8, MaxRate = 384'000;
constexpr std::size_t MaxSamples = 2u * 48'000 * 60 * 30;

// A file in memory, as the decoder reads it.
struct MemoryFile {
    std::span<const std::byte> bytes;
    sf_count_t at = 0;

    static MemoryFile& Of(void* user) { return *static_cast<MemoryFile*>(user); }
    sf_count_t Size() const { return static_cast<sf_count_t>(bytes.size()); }
};

sf_count_t Seek(sf_count_t offset, int whence, void* user) {
    MemoryFile& file = MemoryFile::Of(user);
    const sf_count_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.at : file.Size();
    // Headers of broken files ask for any place at all.
    if (offset > file.Size() - base || offset < -base)
        return -1;
    return file.at = base + offset;
}

sf_count_t Read(void* to, sf_count_t count, void* user) {
    MemoryFile& file = MemoryFile::Of(user);
    const sf_count_t read = std::clamp<sf_count_t>(count, 0, file.Size() - file.at);
    if (read > 0)
        std::memcpy(to, file.bytes.data() + file.at, static_cast<std::size_t>(read));
    file.at += read;
    return read;
}

SF_VIRTUAL_IO Access() {
    return {[](void* user) { return MemoryFile::Of(user).Size(); }, Seek, Read,
            [](const void*, sf_count_t, void*) -> sf_count_t { return 0; },
            [](void* user) { return MemoryFile::Of(user).at; }};
}

// Numbers that are none are silence.
std::int16_t Sample(float value) {
    const float scaled = std::clamp(value * 32768.0f, -32768.0f, 32767.0f);
    return scaled == scaled ? static_cast<std::int16_t>(std::lrintf(scaled)) : std::int16_t(0);
}

void Append(std::vector<std::int16_t>& samples, const float* frame, int channels) {
    float left = frame[0], right = frame[channels > 1 ? 1 : 0];
    for (int i = 2; i < channels; ++i) {
        left += frame[i] * 0.5f;
        right += frame[i] * 0.5f;
    }
    samples.push_back(Sample(left));
    samples.push_back(Sample(right));
}

struct Closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
};

} // namespace

std::optional<SoundSamples> DecodeSound(std::span<const std::byte> bytes) {
    MemoryFile memory = {bytes};
    SF_VIRTUAL_IO access = Access();
    SF_INFO info = {};
    const std::unique_ptr<SNDFILE, Closer> file(sf_open_virtual(&access, SFM_READ, &info, &memory));
    if (!file || info.channels < 1 || info.channels > MaxChannels || info.samplerate < 1 ||
        info.samplerate > MaxRate)
        return std::nullopt;

    // Read to the end: what the header says of the length may be anything.
    SoundSamples sound = {.rate = info.samplerate, .samples = {}};
    std::array<float, MaxChannels * 1024> block;
    const auto perRead = static_cast<sf_count_t>(block.size()) / info.channels;
    while (const sf_count_t frames = sf_readf_float(file.get(), block.data(), perRead)) {
        if (frames < 0 || sound.samples.size() > MaxSamples)
            return std::nullopt;
        for (sf_count_t i = 0; i < frames; ++i)
            Append(sound.samples, block.data() + i * info.channels, info.channels);
    }
    if (sound.samples.empty())
        return std::nullopt;
    return sound;
}

} // namespace VornPlatform
