// SPDX-License-Identifier: MIT
#include "platform/d3dx9/texture/tga_file.hpp"

#include "platform/d3d9/limits.hpp"

#include <algorithm>

namespace VornPlatform {

namespace {

constexpr std::size_t HeaderSize = 18;
constexpr UINT Packed = 8; // the bit of a type
enum Type : UINT { Indexed = 1, Color = 2, Grey = 3 };
enum : UINT { AlphaBits = 0xf, FromTheRight = 0x10, FromTheTop = 0x20, Interleaved = 0xc0 };

struct Header {
    UINT type = 0;
    bool packed = false;
    UINT width = 0, height = 0, bits = 0;
    UINT descriptor = 0;
    UINT firstEntry = 0, entryCount = 0, entryBits = 0;
    std::size_t pixelsAt = 0;
    Bytes palette;

    UINT PixelBytes() const { return (bits + 7) / 8; }
    UINT EntryBytes() const { return (entryBits + 7) / 8; }
};

bool IsColorDepth(UINT bits) {
    return bits == 15 || bits == 16 || bits == 24 || bits == 32;
}

bool IsSound(const Header& header, UINT paletteType) {
    if (!IsTextureSize(header.width, header.height))
        return false;
    if ((header.descriptor & Interleaved) || (header.descriptor & AlphaBits) > 8)
        return false;
    if (paletteType > 1 || (paletteType == 1 && !IsColorDepth(header.entryBits)))
        return false;
    switch (header.type) {
    case Indexed:
        return paletteType == 1 && header.entryCount > 0 && header.bits == 8;
    case Color:
        return IsColorDepth(header.bits);
    case Grey:
        return header.bits == 8 || header.bits == 16;
    default:
        return false;
    }
}

std::optional<Header> ReadHeader(Bytes file) {
    if (file.size() < HeaderSize)
        return std::nullopt;
    Header header;
    const UINT paletteType = file[1];
    header.type = file[2] & ~Packed;
    header.packed = file[2] & Packed;
    header.firstEntry = Read16(file, 3);
    header.entryCount = Read16(file, 5);
    header.entryBits = file[7];
    header.width = Read16(file, 12);
    header.height = Read16(file, 14);
    header.bits = file[16];
    header.descriptor = file[17];
    if (!IsSound(header, paletteType))
        return std::nullopt;

    const std::size_t paletteAt = HeaderSize + file[0];
    const std::size_t paletteSize =
        paletteType == 1 ? std::size_t(header.entryCount) * header.EntryBytes() : 0;
    header.pixelsAt = paletteAt + paletteSize;
    if (file.size() < header.pixelsAt)
        return std::nullopt;
    header.palette = file.subspan(paletteAt, paletteSize);
    return header;
}

/// The pixels one after the other, as they lie in the file.
std::optional<std::vector<std::uint8_t>> Unpacked(const Header& header, Bytes data) {
    constexpr std::size_t MostOfPacket = 128;
    const std::size_t unit = header.PixelBytes();
    const std::size_t count = std::size_t(header.width) * header.height;
    if (!header.packed) {
        if (data.size() < count * unit)
            return std::nullopt;
        return std::vector<std::uint8_t>(data.begin(), data.begin() + std::ptrdiff_t(count * unit));
    }

    // Full packets of one repeated pixel are the least that the data can be.
    if (data.size() < (count + MostOfPacket - 1) / MostOfPacket * (1 + unit))
        return std::nullopt;
    std::vector<std::uint8_t> pixels;
    pixels.reserve(count * unit);
    while (pixels.size() < count * unit) {
        if (data.empty())
            return std::nullopt;
        const bool repeats = data[0] & 0x80;
        const std::size_t left = count - pixels.size() / unit;
        const std::size_t length = std::min<std::size_t>((data[0] & 0x7fu) + 1, left);
        data = data.subspan(1);
        const std::size_t bytes = (repeats ? 1 : length) * unit;
        if (data.size() < bytes)
            return std::nullopt;
        for (std::size_t i = 0; i < (repeats ? length : 1); ++i)
            pixels.insert(pixels.end(), data.begin(), data.begin() + std::ptrdiff_t(bytes));
        data = data.subspan(bytes);
    }
    return pixels;
}

std::uint8_t From5(UINT value) {
    return static_cast<std::uint8_t>(((value & 31) * 255 + 15) / 31);
}

void PutColor(UINT bits, Bytes from, std::uint8_t* bgra) {
    if (bits >= 24) {
        std::copy_n(from.begin(), 3, bgra);
        bgra[3] = bits == 32 ? from[3] : 0xff;
        return;
    }
    const UINT packed = Read16(from, 0);
    bgra[0] = From5(packed);
    bgra[1] = From5(packed >> 5);
    bgra[2] = From5(packed >> 10);
    bgra[3] = bits == 15 || packed & 0x8000 ? 0xff : 0;
}

/// As B, G, R, A.
std::optional<std::vector<std::uint8_t>> Colors(const Header& header, Bytes pixels) {
    const std::size_t unit = header.PixelBytes(), count = pixels.size() / unit;
    std::vector<std::uint8_t> bgra(count * 4);
    for (std::size_t i = 0; i < count; ++i) {
        if (header.type == Color) {
            PutColor(header.bits, pixels.subspan(i * unit, unit), &bgra[i * 4]);
            continue;
        }
        const UINT entry = pixels[i] - header.firstEntry; // wraps far beyond the count
        if (entry >= header.entryCount)
            return std::nullopt;
        const std::size_t size = header.EntryBytes();
        PutColor(header.entryBits, header.palette.subspan(entry * size, size), &bgra[i * 4]);
    }
    return bgra;
}

// Makes the pixels opaque if what stands there as alpha is none.
D3DFORMAT FormatOf(const Header& header, std::vector<std::uint8_t>& bgra) {
    const UINT bits = header.type == Indexed ? header.entryBits : header.bits;
    const bool told = header.descriptor & AlphaBits;
    bool alpha = bits == 32 || (bits == 16 && told);
    if (bits == 32 && !told) {
        alpha = false;
        for (std::size_t i = 3; i < bgra.size() && !alpha; i += 4)
            alpha = bgra[i] != 0;
    }
    if (alpha)
        return D3DFMT_A8R8G8B8;
    for (std::size_t i = 3; i < bgra.size(); i += 4)
        bgra[i] = 0xff;
    return D3DFMT_X8R8G8B8;
}

void SetUpright(const Header& header, std::size_t unit, std::vector<std::uint8_t>& pixels) {
    const std::size_t row = header.width * unit;
    const auto begin = pixels.begin();
    if (!(header.descriptor & FromTheTop))
        for (std::size_t y = 0; y < header.height / 2; ++y)
            std::swap_ranges(begin + std::ptrdiff_t(y * row), begin + std::ptrdiff_t((y + 1) * row),
                             begin + std::ptrdiff_t((header.height - 1 - y) * row));
    if (header.descriptor & FromTheRight)
        for (std::size_t y = 0; y < header.height; ++y)
            for (std::size_t x = 0; x < header.width / 2; ++x)
                std::swap_ranges(&pixels[y * row + x * unit], &pixels[y * row + x * unit] + unit,
                                 &pixels[y * row + (header.width - 1 - x) * unit]);
}

} // namespace

std::optional<Image> ReadTga(Bytes file) {
    const std::optional<Header> header = ReadHeader(file);
    if (!header)
        return std::nullopt;
    auto pixels = Unpacked(*header, file.subspan(header->pixelsAt));
    if (!pixels)
        return std::nullopt;

    Image image;
    image.width = header->width;
    image.height = header->height;
    if (header->type == Grey) {
        image.format = header->bits == 16 ? D3DFMT_A8L8 : D3DFMT_L8;
    } else {
        pixels = Colors(*header, *pixels);
        if (!pixels)
            return std::nullopt;
        image.format = FormatOf(*header, *pixels);
    }
    SetUpright(*header, UnitBytes(image.format), *pixels);
    image.levels.push_back(std::move(*pixels));
    return image;
}

} // namespace VornPlatform
