// SPDX-License-Identifier: MIT
//
// A fuzz target is a function of some bytes, in a buffer that ends where they end. With libFuzzer
// it searches; without it, the program runs over the files of the corpus, as a test.
//
//   FUZZ_TARGET(data, size) { Read(std::string(data, size)); }
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace Fuzz {

/// Ends the program as a crash does when what must hold does not.
inline void Require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

} // namespace Fuzz

#define FUZZ_TARGET(data, size)                                                                    \
    static void FuzzTarget(const char*, std::size_t);                                              \
    extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count);           \
    extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {          \
        FuzzTarget(reinterpret_cast<const char*>(bytes), count);                                   \
        return 0;                                                                                  \
    }                                                                                              \
    static void FuzzTarget(const char* data, std::size_t size)
