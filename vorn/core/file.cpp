// SPDX-License-Identifier: MIT
#include "vorn/core/file.hpp"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <stdexcept>

namespace Vorn {

namespace {

struct OpenedFile {
    std::ifstream stream;
    unsigned int size = 0;
};

OpenedFile Open(const std::string& path) {
    OpenedFile file;
    std::uint64_t size = 0;
    if (!OpenFile(path, file.stream, size) || size > std::numeric_limits<unsigned int>::max())
        throw std::runtime_error("cannot open file: " + path);
    file.size = static_cast<unsigned int>(size);
    return file;
}

// A file that shrinks while it is read gives what is left of it.
unsigned int Read(OpenedFile& file, char* data) {
    file.stream.read(data, file.size);
    return static_cast<unsigned int>(file.stream.gcount());
}

} // namespace

bool OpenFile(const std::string& path, std::ifstream& file, std::uint64_t& size) {
    std::error_code fault;
    if (!std::filesystem::is_regular_file(path, fault))
        return false;
    file.open(path, std::ios::binary | std::ios::ate);
    const std::streamoff end = file.is_open() ? static_cast<std::streamoff>(file.tellg()) : -1;
    if (end < 0)
        return false;
    file.seekg(0);
    size = static_cast<std::uint64_t>(end);
    return true;
}

void MemoryFromFile(const std::string& path, char*& data, unsigned int& size) {
    OpenedFile file = Open(path);
    auto buffer = std::make_unique_for_overwrite<char[]>(file.size);
    size = Read(file, buffer.get());
    data = buffer.release();
}

std::string TextFromFile(const std::string& path) {
    OpenedFile file = Open(path);
    std::string text(file.size, '\0');
    text.resize(Read(file, text.data()));
    return text;
}

void SaveToFile(const std::string& path, const char* data, unsigned int size) {
    std::ofstream(path, std::ios::binary).write(data, size);
}

void FilesInDirectory(const char* pattern, std::vector<std::string>& out) {
    WIN32_FIND_DATAA found;
    const HANDLE listing = FindFirstFileA(pattern, &found);
    if (listing == INVALID_HANDLE_VALUE)
        return;
    // The handle is closed whatever appending raises.
    const std::unique_ptr<void, BOOL (*)(HANDLE)> closer(listing, FindClose);
    do {
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
            out.emplace_back(found.cFileName);
    } while (FindNextFileA(listing, &found));
}

} // namespace Vorn
