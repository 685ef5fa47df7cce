// SPDX-License-Identifier: MIT
//
// Sound files: whatever the bytes are, samples come of them or nothing.
#include "platform/fmod/sound_file.hpp"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const auto sound = VornPlatform::DecodeSound(std::as_bytes(std::span(data, size)));
    if (sound && (sound->rate < 1 || sound->samples.empty() || sound->samples.size() % 2))
        std::abort();
    return 0;
}
