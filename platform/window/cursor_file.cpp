// SPDX-License-Identifier: MIT
#include "platform/window/cursor_file.hpp"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <system_error>

namespace VornPlatform {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uintmax_t LargestFile = 64 << 20;
constexpr int LargestSide = 256; // the format's own limit
constexpr std::uint32_t Opaque = 0xFF000000;

// Numbers are read where their bytes are known to be.
std::uint32_t Word(Bytes bytes, std::size_t at) {
    return static_cast<std::uint32_t>(bytes[at] | bytes[at + 1] << 8);
}
std::uint32_t Long(Bytes bytes, std::size_t at) {
    return Word(bytes, at) | Word(bytes, at + 2) << 16;
}

// Nothing if the part reaches beyond the end.
std::optional<Bytes> Part(Bytes bytes, std::size_t at, std::size_t size) {
    if (at > bytes.size() || size > bytes.size() - at)
        return std::nullopt;
    return bytes.subspan(at, size);
}

struct Bitmap {
    int width, height;
    std::size_t bits;
    Bytes palette, colors, mask; // rows from the bottom up; the mask may be missing at 32 bits
    std::size_t stride, maskStride;
};

std::size_t Stride(int width, std::size_t bits) {
    return (static_cast<std::size_t>(width) * bits + 31) / 32 * 4;
}

std::optional<Bitmap> ReadHeader(Bytes bytes) {
    constexpr std::size_t HeaderSize = 40;
    if (bytes.size() < HeaderSize)
        return std::nullopt;
    const std::size_t headerSize = Long(bytes, 0);
    const std::uint32_t width = Long(bytes, 4), twoHeights = Long(bytes, 8);
    const std::size_t bits = Word(bytes, 14), compression = Long(bytes, 16);
    if (headerSize < HeaderSize || compression != 0 || width < 1 || width > LargestSide ||
        twoHeights < 2 || twoHeights > 2 * LargestSide || twoHeights % 2 != 0)
        return std::nullopt;
    if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32)
        return std::nullopt;

    Bitmap bitmap = {};
    bitmap.width = static_cast<int>(width);
    bitmap.height = static_cast<int>(twoHeights / 2);
    bitmap.bits = bits;
    bitmap.stride = Stride(bitmap.width, bits);
    bitmap.maskStride = Stride(bitmap.width, 1);

    std::size_t paletteSize = 0;
    if (bits <= 8) {
        const std::size_t used = Long(bytes, 32), most = std::size_t(1) << bits;
        if (used > most)
            return std::nullopt;
        paletteSize = (used ? used : most) * 4;
    }
    const auto height = static_cast<std::size_t>(bitmap.height);
    const auto palette = Part(bytes, headerSize, paletteSize);
    const auto colors = Part(bytes, headerSize + paletteSize, bitmap.stride * height);
    if (!palette || !colors)
        return std::nullopt;
    bitmap.palette = *palette;
    bitmap.colors = *colors;
    const auto mask =
        Part(bytes, headerSize + paletteSize + colors->size(), bitmap.maskStride * height);
    if (!mask && bits != 32)
        return std::nullopt;
    bitmap.mask = mask.value_or(Bytes{});
    return bitmap;
}

// 0xAARRGGBB; the alpha is 0 where the format has none.
std::uint32_t Color(const Bitmap& bitmap, Bytes row, std::size_t x) {
    switch (bitmap.bits) {
    case 32:
        return Long(row, x * 4);
    case 24:
        return Word(row, x * 3) | static_cast<std::uint32_t>(row[x * 3 + 2]) << 16;
    default: {
        const std::size_t bit = x * bitmap.bits;
        const std::size_t index =
            row[bit / 8] >> (8 - bitmap.bits - bit % 8) & ((1u << bitmap.bits) - 1);
        const auto entry = Part(bitmap.palette, index * 4, 4);
        return entry ? Long(*entry, 0) & ~Opaque : 0;
    }
    }
}

bool IsMasked(const Bitmap& bitmap, std::size_t fromBottom, std::size_t x) {
    return !bitmap.mask.empty() &&
           (bitmap.mask[fromBottom * bitmap.maskStride + x / 8] >> (7 - x % 8) & 1);
}

// 32 bits have an alpha of their own, unless it is all zero, as in files of programs that knew
// none.
bool HasAlpha(const std::vector<std::uint32_t>& pixels) {
    return std::any_of(pixels.begin(), pixels.end(),
                       [](std::uint32_t color) { return (color & Opaque) != 0; });
}

std::optional<CursorPicture> Decode(Bytes bytes) {
    const auto bitmap = ReadHeader(bytes);
    if (!bitmap)
        return std::nullopt;
    CursorPicture picture;
    picture.width = bitmap->width;
    picture.height = bitmap->height;
    const auto width = static_cast<std::size_t>(picture.width);
    const auto height = static_cast<std::size_t>(picture.height);
    picture.pixels.reserve(width * height);
    for (std::size_t y = height; y-- > 0;)
        for (std::size_t x = 0; x < width; ++x)
            picture.pixels.push_back(
                Color(*bitmap, bitmap->colors.subspan(y * bitmap->stride, bitmap->stride), x));
    if (bitmap->bits == 32 && HasAlpha(picture.pixels))
        return picture;

    // Masked and not black is "the screen inverted", which no desktop of today can do: black shows.
    for (std::size_t y = 0; y < height; ++y)
        for (std::size_t x = 0; x < width; ++x) {
            std::uint32_t& color = picture.pixels[y * width + x];
            const bool masked = IsMasked(*bitmap, height - 1 - y, x);
            if (masked)
                color = (color & ~Opaque) != 0 ? Opaque : 0;
            else
                color |= Opaque;
        }
    return picture;
}

std::optional<CursorPicture> ReadCur(Bytes file) {
    constexpr std::size_t HeaderSize = 6, EntrySize = 16;
    constexpr std::uint32_t Cursor = 2;
    if (file.size() < HeaderSize || Word(file, 0) != 0 || Word(file, 2) != Cursor)
        return std::nullopt;
    std::optional<CursorPicture> first;
    for (std::size_t i = 0; i < Word(file, 4); ++i) {
        const auto entry = Part(file, HeaderSize + i * EntrySize, EntrySize);
        const auto data = entry ? Part(file, Long(*entry, 12), Long(*entry, 8)) : std::nullopt;
        if (!data)
            return std::nullopt;
        if (first || !(first = Decode(*data)))
            continue;
        first->hotX = std::min(static_cast<int>(Word(*entry, 4)), first->width - 1);
        first->hotY = std::min(static_cast<int>(Word(*entry, 6)), first->height - 1);
    }
    return first;
}

bool Is(Bytes bytes, std::size_t at, const char* name) {
    return std::memcmp(bytes.data() + at, name, 4) == 0;
}

// The pictures of an animation are chunks "icon" in a list "fram", each a file of its own kind.
std::optional<CursorPicture> ReadChunks(Bytes chunks, bool inFrames) {
    while (chunks.size() >= 8) {
        const std::size_t size = Long(chunks, 4);
        const auto data = Part(chunks, 8, size);
        if (!data)
            return std::nullopt;
        std::optional<CursorPicture> picture;
        if (inFrames && Is(chunks, 0, "icon"))
            picture = ReadCur(*data);
        else if (!inFrames && Is(chunks, 0, "LIST") && size >= 4 && Is(*data, 0, "fram"))
            picture = ReadChunks(data->subspan(4), true);
        if (picture)
            return picture;
        chunks = chunks.subspan(std::min(8 + size + size % 2, chunks.size()));
    }
    return std::nullopt;
}

std::optional<CursorPicture> ReadAni(Bytes file) {
    const auto whole = Part(file, 8, Long(file, 4));
    if (!whole || whole->size() < 4 || !Is(*whole, 0, "ACON"))
        return std::nullopt;
    return ReadChunks(whole->subspan(4), false);
}

} // namespace

std::optional<CursorPicture> ReadCursor(const std::vector<std::uint8_t>& file) {
    if (file.size() >= 8 && Is(file, 0, "RIFF"))
        return ReadAni(file);
    return ReadCur(file);
}

std::optional<CursorPicture> ReadCursorFile(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error) ||
        std::filesystem::file_size(path, error) > LargestFile || error)
        return std::nullopt;
    std::ifstream stream(path, std::ios::binary);
    return ReadCursor({std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()});
}

} // namespace VornPlatform
