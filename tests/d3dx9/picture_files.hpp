// SPDX-License-Identifier: MIT
//
// Picture files as small as they can be, made in code.
#pragma once

#include "platform/d3dx9/texture/image.hpp"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace Tests {

using FileBytes = std::vector<std::uint8_t>;

inline void Put(FileBytes& file, std::size_t at, std::uint32_t value, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i)
        file.at(at + i) = static_cast<std::uint8_t>(value >> (8 * i));
}

inline FileBytes Joined(std::initializer_list<FileBytes> parts) {
    FileBytes file;
    for (const FileBytes& part : parts)
        file.insert(file.end(), part.begin(), part.end());
    return file;
}

struct DdsHeader {
    std::uint32_t width = 2, height = 2, levels = 1;
    std::uint32_t flags = 0x41; // colour and alpha
    std::uint32_t fourCC = 0, bits = 32;
    std::uint32_t red = 0xff0000, green = 0xff00, blue = 0xff, alpha = 0xff000000;
    std::uint32_t caps2 = 0, depth = 0;

    static DdsHeader Compressed(const char* name, std::uint32_t width, std::uint32_t height,
                                std::uint32_t levels = 1) {
        DdsHeader header;
        header.width = width, header.height = height, header.levels = levels;
        header.flags = 4;
        header.fourCC = MAKEFOURCC(name[0], name[1], name[2], name[3]);
        return header;
    }
    FileBytes File(const FileBytes& pixels) const {
        FileBytes file(128);
        const std::uint32_t fields = 0x1007 | (levels > 1 ? 0x20000 : 0) | (depth ? 0x800000 : 0);
        const std::uint32_t words[][2] = {
            {0, 0x20534444}, {4, 124},    {8, fields},  {12, height},  {16, width}, {24, depth},
            {28, levels},    {76, 32},    {80, flags},  {84, fourCC},  {88, bits},  {92, red},
            {96, green},     {100, blue}, {104, alpha}, {108, 0x1000}, {112, caps2}};
        for (const auto& word : words)
            Put(file, word[0], word[1], 4);
        return Joined({file, pixels});
    }
};

struct TgaHeader {
    std::uint32_t type = 2, bits = 32, descriptor = 0x28;
    std::uint32_t width = 2, height = 2;
    std::uint32_t paletteType = 0, firstEntry = 0, entryCount = 0, entryBits = 0;
    FileBytes comment = {};

    FileBytes File(const FileBytes& pixels) const {
        FileBytes file(18);
        file[0] = static_cast<std::uint8_t>(comment.size());
        Put(file, 1, paletteType, 1);
        Put(file, 2, type, 1);
        Put(file, 3, firstEntry, 2);
        Put(file, 5, entryCount, 2);
        Put(file, 7, entryBits, 1);
        Put(file, 12, width, 2);
        Put(file, 14, height, 2);
        Put(file, 16, bits, 1);
        Put(file, 17, descriptor, 1);
        return Joined({file, comment, pixels});
    }
};

struct BmpHeader {
    std::uint32_t width = 2, height = 2, bits = 24, offset = 54;

    FileBytes File(const FileBytes& rest) const {
        FileBytes file(54);
        file[0] = 'B', file[1] = 'M';
        Put(file, 10, offset, 4);
        Put(file, 14, 40, 4);
        Put(file, 18, width, 4);
        Put(file, 22, height, 4);
        Put(file, 26, 1, 2);
        Put(file, 28, bits, 2);
        return Joined({file, rest});
    }
};

/// A PNG whose pixels are stored without packing; `rows` with the filter byte (0) of each.
inline FileBytes PngFile(std::uint32_t width, std::uint32_t height, std::uint8_t depth,
                         std::uint8_t color, const FileBytes& rows, const FileBytes& palette = {}) {
    const auto high = [](std::uint32_t value) {
        return FileBytes{static_cast<std::uint8_t>(value >> 24),
                         static_cast<std::uint8_t>(value >> 16),
                         static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value)};
    };
    const auto chunk = [&high](const std::string& name, const FileBytes& data) {
        return Joined({high(static_cast<std::uint32_t>(data.size())),
                       {name.begin(), name.end()},
                       data,
                       high(0)}); // nobody looks at the check sum
    };
    const auto size = static_cast<std::uint16_t>(rows.size());
    FileBytes stored = {0x78, 0x01, 0x01, 0, 0, 0, 0};
    Put(stored, 3, size, 2);
    Put(stored, 5, ~std::uint32_t(size), 2);
    return Joined({{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'},
                   chunk("IHDR", Joined({high(width), high(height), {depth, color, 0, 0, 0}})),
                   palette.empty() ? FileBytes{} : chunk("PLTE", palette),
                   chunk("IDAT", Joined({stored, rows, high(0)})),
                   chunk("IEND", {})});
}

} // namespace Tests
