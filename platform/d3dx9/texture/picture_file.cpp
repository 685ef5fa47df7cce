// SPDX-License-Identifier: MIT
#include "platform/d3dx9/texture/picture_file.hpp"

#include "platform/d3d9/limits.hpp"
#include "platform/d3dx9/texture/stb.hpp"

#include <algorithm>
#include <climits>
#include <memory>
#include <numeric>

namespace VornPlatform {

namespace {

UINT Read16High(Bytes bytes, std::size_t at) {
    return static_cast<UINT>(bytes[at]) << 8 | bytes[at + 1];
}
UINT Read32High(Bytes bytes, std::size_t at) {
    return Read16High(bytes, at) << 16 | Read16High(bytes, at + 2);
}

// B, G, R for R, G, B, and the alpha that A8R8G8B8 has room for.
std::optional<Image> Decode(Bytes file) {
    if (file.size() > INT_MAX)
        return std::nullopt;
    int width = 0, height = 0, channels = 0;
    const std::unique_ptr<stbi_uc, void (*)(void*)> pixels(
        stbi_load_from_memory(file.data(), static_cast<int>(file.size()), &width, &height,
                              &channels, 0),
        stbi_image_free);
    if (!pixels || width < 1 || height < 1)
        return std::nullopt;
    constexpr D3DFORMAT Formats[] = {D3DFMT_L8, D3DFMT_A8L8, D3DFMT_X8R8G8B8, D3DFMT_A8R8G8B8};
    if (channels < 1 || channels > 4)
        return std::nullopt;

    Image image = {Formats[channels - 1], static_cast<UINT>(width), static_cast<UINT>(height), {}};
    const std::size_t count = std::size_t(image.width) * image.height;
    std::vector<std::uint8_t> level(count * UnitBytes(image.format), 0xff);
    const stbi_uc* from = pixels.get();
    if (channels < 3) {
        std::copy_n(from, level.size(), level.begin());
    } else {
        for (std::size_t i = 0; i < count; ++i, from += channels) {
            level[i * 4] = from[2];
            level[i * 4 + 1] = from[1];
            level[i * 4 + 2] = from[0];
            if (channels == 4)
                level[i * 4 + 3] = from[3];
        }
    }
    image.levels.push_back(std::move(level));
    return image;
}

// All chunks are there up to the last, and so much packed data that it can hold the pixels.
bool IsWholePng(Bytes file) {
    constexpr std::size_t Mark = 8, HeaderData = 13, AroundData = 12; // length, name, check sum
    constexpr std::uint64_t MostPerByte = 1032; // what the packing can do at best
    if (file.size() < Mark + AroundData + HeaderData || Read32High(file, Mark) != HeaderData)
        return false;
    const std::uint64_t width = Read32High(file, 16), height = Read32High(file, 20);
    const UINT depth = file[24], color = file[25];
    if (!IsTextureSize(width, height) || depth > 16 || color > 6)
        return false;
    const UINT channels = color == 3 ? 1u : (color & 2 ? 3u : 1u) + (color & 4 ? 1u : 0u);
    if (height * (1 + (width * channels * depth + 7) / 8) > MostPerByte * file.size())
        return false;

    for (Bytes rest = file.subspan(Mark); rest.size() >= AroundData;) {
        const std::size_t length = Read32High(rest, 0);
        if (length > rest.size() - AroundData)
            return false;
        if (Read32High(rest, 4) == 0x49454e44) // IEND
            return true;
        rest = rest.subspan(AroundData + length);
    }
    return false;
}

// Skips the packed pixels of a scan, in which a mark is hidden by a 0 behind it.
Bytes BehindScan(Bytes rest) {
    for (std::size_t i = 0; i + 1 < rest.size(); ++i) {
        const UINT next = rest[i + 1];
        const bool restarts = next >= 0xd0 && next <= 0xd7;
        if (rest[i] == 0xff && next != 0 && next != 0xff && !restarts)
            return rest.subspan(i);
    }
    return {};
}

// Tables of codes: 16 counts and as many symbols as they say, of which there are at most 256.
bool AreCodeTables(Bytes data) {
    constexpr std::size_t Head = 17, MostSymbols = 256;
    while (!data.empty()) {
        if (data.size() < Head)
            return false;
        const std::size_t symbols =
            std::accumulate(data.begin() + 1, data.begin() + Head, std::size_t(0));
        if (symbols > MostSymbols || symbols > data.size() - Head)
            return false;
        data = data.subspan(Head + symbols);
    }
    return true;
}

// A size, and for each component how much finer the finest is than itself: a whole number.
bool IsFrame(Bytes data, std::size_t fileSize) {
    constexpr std::uint64_t MostPerByte = 8 * 64; // at least a bit for every block
    constexpr std::size_t Head = 6, OfComponent = 3;
    if (data.size() < Head || data.size() < Head + data[5] * OfComponent)
        return false;
    const std::uint64_t height = Read16High(data, 1), width = Read16High(data, 3);
    if (!IsTextureSize(width, height) || width * height > MostPerByte * fileSize)
        return false;
    for (const int shift : {4, 0}) { // across, down
        UINT finest = 1;
        const auto factor = [data, shift](UINT component) {
            return static_cast<UINT>(data[Head + component * OfComponent + 1]) >> shift & 15;
        };
        for (UINT i = 0; i < data[5]; ++i)
            finest = std::max(finest, factor(i));
        for (UINT i = 0; i < data[5]; ++i)
            if (factor(i) == 0 || finest % factor(i) != 0)
                return false;
    }
    return true;
}

// All segments are there up to the end mark, and no table is larger than its place.
bool IsWholeJpg(Bytes file) {
    for (Bytes rest = file.subspan(2); rest.size() >= 2 && rest[0] == 0xff;) {
        const UINT mark = rest[1];
        if (mark == 0xff) { // filling
            rest = rest.subspan(1);
            continue;
        }
        if (mark == 0xd9)
            return true;
        if (rest.size() < 4)
            return false;
        const std::size_t length = Read16High(rest, 2) + std::size_t(2);
        if (length < 4 || length > rest.size())
            return false;
        const Bytes data = rest.subspan(4, length - 4);
        if (mark >= 0xc0 && mark <= 0xc2 && !IsFrame(data, file.size()))
            return false;
        if (mark == 0xc4 && !AreCodeTables(data))
            return false;
        rest = rest.subspan(length);
        if (mark == 0xda)
            rest = BehindScan(rest);
    }
    return false;
}

// The last row may lack what fills it up to four bytes: files like that are about.
bool IsWholeBmp(Bytes file) {
    if (file.size() < 30)
        return false;
    const std::uint64_t offset = Read32(file, 10);
    const UINT headerSize = Read32(file, 14);
    const bool old = headerSize == 12;
    const std::uint64_t width = old ? Read16(file, 18) : Read32(file, 18);
    const auto signedHeight = static_cast<LONG>(old ? Read16(file, 20) : Read32(file, 22));
    const std::uint64_t height =
        signedHeight < 0 ? 0u - static_cast<UINT>(signedHeight) : static_cast<UINT>(signedHeight);
    const UINT bits = Read16(file, old ? 24 : 28);
    if (!IsTextureSize(width, height) || bits < 1 || bits > 32)
        return false;
    const std::uint64_t row = (width * bits + 7) / 8, stride = (row + 3) / 4 * 4;
    return offset >= 14 + std::uint64_t(headerSize) &&
           offset + stride * (height - 1) + row <= file.size();
}

void Append(void* file, void* data, int size) {
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    static_cast<std::vector<std::uint8_t>*>(file)->insert(
        static_cast<std::vector<std::uint8_t>*>(file)->end(), bytes, bytes + size);
}

} // namespace

std::optional<Image> ReadPng(Bytes file) {
    return IsWholePng(file) ? Decode(file) : std::nullopt;
}

std::optional<Image> ReadJpg(Bytes file) {
    return IsWholeJpg(file) ? Decode(file) : std::nullopt;
}

std::optional<Image> ReadBmp(Bytes file) {
    return IsWholeBmp(file) ? Decode(file) : std::nullopt;
}

std::vector<std::uint8_t> WritePicture(PictureType type, UINT width, UINT height, Bytes bgra,
                                       bool alpha) {
    const bool four = alpha && type != PictureType::Jpg;
    std::vector<std::uint8_t> pixels;
    pixels.reserve(bgra.size());
    for (std::size_t i = 0; i < bgra.size(); i += 4) {
        pixels.insert(pixels.end(), {bgra[i + 2], bgra[i + 1], bgra[i]});
        if (four)
            pixels.push_back(bgra[i + 3]);
    }

    constexpr int Quality = 95; // of 100: no frame of a film, a picture that somebody keeps
    const int w = static_cast<int>(width), h = static_cast<int>(height), channels = four ? 4 : 3;
    std::vector<std::uint8_t> file;
    int written = 0;
    switch (type) {
    case PictureType::Png:
        written = stbi_write_png_to_func(Append, &file, w, h, channels, pixels.data(), 0);
        break;
    case PictureType::Jpg:
        written = stbi_write_jpg_to_func(Append, &file, w, h, channels, pixels.data(), Quality);
        break;
    case PictureType::Bmp:
        written = stbi_write_bmp_to_func(Append, &file, w, h, channels, pixels.data());
        break;
    case PictureType::Tga:
        written = stbi_write_tga_to_func(Append, &file, w, h, channels, pixels.data());
        break;
    }
    if (!written)
        file.clear();
    return file;
}

} // namespace VornPlatform
