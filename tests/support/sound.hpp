// SPDX-License-Identifier: MIT
//
// Sounds to play, and ears: files of tones, and what is in a stretch of samples.
#pragma once

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace Tests {

constexpr int Rate = 48'000; // of the loopback (unit: 1 / second)

/// One channel.
inline std::vector<float> Tone(double pitch, double loudness, int frames, int rate = Rate) {
    std::vector<float> samples(static_cast<std::size_t>(frames));
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(
            loudness * std::sin(2 * std::numbers::pi * pitch * static_cast<double>(i) / rate));
    return samples;
}

/// `format` of libsndfile; samples of the channels by turns.
inline std::string WriteSound(const std::string& path, int format, std::vector<float> samples,
                              int channels = 1, int rate = Rate) {
    SF_INFO info = {};
    info.samplerate = rate;
    info.channels = channels;
    info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    if (!file)
        throw std::runtime_error("cannot write " + path);
    sf_writef_float(file, samples.data(), static_cast<sf_count_t>(samples.size()) / channels);
    sf_close(file);
    return path;
}

constexpr int Wav = SF_FORMAT_WAV | SF_FORMAT_PCM_16;

/// One side of samples of two channels.
inline std::vector<float> Side(const std::vector<float>& both, std::size_t side = 0) {
    std::vector<float> one;
    for (std::size_t i = side; i < both.size(); i += 2)
        one.push_back(both[i]);
    return one;
}

/// How loud a pitch is in the samples: the height of its sine.
inline double Loudness(std::span<const float> samples, double pitch, int rate = Rate) {
    std::complex<double> sum = 0;
    for (std::size_t i = 0; i < samples.size(); ++i)
        sum += double(samples[i]) *
               std::polar(1.0, -2 * std::numbers::pi * pitch * static_cast<double>(i) / rate);
    return samples.empty() ? 0 : 2 * std::abs(sum) / static_cast<double>(samples.size());
}

inline float Peak(std::span<const float> samples) {
    float peak = 0;
    for (const float sample : samples)
        peak = std::max(peak, std::abs(sample));
    return peak;
}

/// The largest step from one sample to the next: a click stands out.
inline float Step(std::span<const float> samples) {
    float step = 0;
    for (std::size_t i = 1; i < samples.size(); ++i)
        step = std::max(step, std::abs(samples[i] - samples[i - 1]));
    return step;
}

} // namespace Tests
