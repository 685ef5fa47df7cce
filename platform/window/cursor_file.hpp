// SPDX-License-Identifier: MIT
//
// Reads the picture of a .cur or .ani file: the first one in it that is a bitmap of 1, 4, 8, 24 or
// 32 bits a pixel. Files are from anywhere, so no number in them is trusted.
//
//   if (const auto picture = ReadCursor(bytes))
//       Show(*picture);
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace VornPlatform {

struct CursorPicture {
    int width = 0, height = 0;
    int hotX = 0, hotY = 0;            // the pixel that points
    std::vector<std::uint32_t> pixels; // 0xAARRGGBB, the top row first
};

/// Nothing for bytes that are no cursor, are cut off, or hold compressed pictures only.
std::optional<CursorPicture> ReadCursor(const std::vector<std::uint8_t>& file);
/// The same of a file; nothing for one that is missing, no plain file, or absurdly large.
std::optional<CursorPicture> ReadCursorFile(const std::string& path);

} // namespace VornPlatform
