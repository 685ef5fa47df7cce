// SPDX-License-Identifier: MIT
//
// Runs a fuzz target over files and folders of files, whole and broken off at every byte.
#include "vorn/core/file.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count);

namespace {

void Replay(const std::string& path) {
    const std::string text = Vorn::TextFromFile(path);
    for (std::size_t size = 0; size <= text.size(); ++size) {
        // A copy of its own, so that a sanitizer sees who reads past the end.
        const auto bytes = std::make_unique<std::uint8_t[]>(size);
        std::copy_n(text.begin(), size, bytes.get());
        LLVMFuzzerTestOneInput(bytes.get(), size);
    }
}

} // namespace

int main(int argc, char** argv) {
    int files = 0;
    for (int i = 1; i < argc; ++i)
        for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i]))
            if (entry.is_regular_file()) {
                Replay(entry.path().string());
                ++files;
            }
    std::printf("%d files\n", files);
    return files == 0;
}
