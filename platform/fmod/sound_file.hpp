// SPDX-License-Identifier: MIT
//
// Sound files of any kind as samples: WAV, OGG, FLAC, MP3, by their content.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace VornPlatform {

/// Left and right by turns: one channel is doubled, those beyond two are mixed into both.
struct SoundSamples {
    int rate = 0; // (unit: 1 / second)
    std::vector<std::int16_t> samples;
};

/// Nothing for what is no sound, or has no samples, or more of them than half an hour at a rate of
/// 48,000. Of a file that is cut short, what is there.
std::optional<SoundSamples> DecodeSound(std::span<const std::byte> file);

} // namespace VornPlatform
