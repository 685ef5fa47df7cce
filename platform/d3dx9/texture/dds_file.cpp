// SPDX-License-Identifier: MIT
#include "platform/d3dx9/texture/dds_file.hpp"

#include "platform/d3d9/limits.hpp"

#include <algorithm>
#include <array>
#include <bit>

namespace VornPlatform {

namespace {

constexpr std::size_t HeaderSize = 128;
constexpr UINT HeaderField = 124, PixelFormatField = 32; // what stands in the fields of sizes

enum : UINT {
    HasMipCount = 0x20000,
    HasDepth = 0x800000,
    RequiredFields = 0x1007, // caps, height, width, pixel format
    PixelAlpha = 1,
    PixelAlphaOnly = 2,
    PixelFourCC = 4,
    PixelColor = 0x40,
    PixelGrey = 0x20000,
    CapsTexture = 0x1000,
    CapsMipmap = 0x400000,
    CapsCubeMap = 0x200, // of the second word
    CapsVolume = 0x200000
};

/// Bits of a pixel as a number of 8 bits.
class Channel {
public:
    Channel() = default;
    explicit Channel(UINT bits)
        : mask(bits), shift(bits ? static_cast<UINT>(std::countr_zero(bits)) : 0),
          most(bits >> shift) {}
    /// Bits that stand together, or none.
    bool IsWhole() const { return (most & (most + 1)) == 0; }
    /// Full where there are no bits.
    std::uint8_t Of(UINT pixel) const {
        if (most == 0)
            return 0xff;
        const UINT value = (pixel & mask) >> shift;
        if (most == 0xff)
            return static_cast<std::uint8_t>(value);
        return static_cast<std::uint8_t>((std::uint64_t(value) * 255 + most / 2) / most);
    }

private:
    UINT mask = 0, shift = 0, most = 0;
};

/// How pixels lie in the file, and the channels of a pixel of the image in their order.
struct Layout {
    D3DFORMAT format = D3DFMT_UNKNOWN;
    UINT bytes = 0; // of a pixel of the file; 0 where the format stays
    std::vector<Channel> channels;
};

std::optional<Layout> ReadCompressedLayout(UINT fourCC) {
    for (const D3DFORMAT format : {D3DFMT_DXT1, D3DFMT_DXT3, D3DFMT_DXT5})
        if (fourCC == static_cast<DWORD>(format))
            return Layout{format, 0, {}};
    return std::nullopt;
}

std::optional<Layout> ReadLayout(Bytes header) {
    const UINT flags = Read32(header, 80), bits = Read32(header, 88);
    if (flags & PixelFourCC)
        return ReadCompressedLayout(Read32(header, 84));
    if (bits != 8 && bits != 16 && bits != 24 && bits != 32)
        return std::nullopt;

    const UINT red = Read32(header, 92), green = Read32(header, 96), blue = Read32(header, 100);
    const bool hasAlpha = flags & (PixelAlpha | PixelAlphaOnly);
    const UINT alpha = hasAlpha ? Read32(header, 104) : 0;
    Layout layout;
    layout.bytes = bits / 8;
    UINT needed = 0; // a mask that must not be empty
    if (flags & PixelColor) {
        layout.format = alpha ? D3DFMT_A8R8G8B8 : D3DFMT_X8R8G8B8;
        layout.channels = {Channel(blue), Channel(green), Channel(red), Channel(alpha)};
        needed = red | green | blue;
    } else if (flags & PixelGrey) {
        layout.format = alpha ? D3DFMT_A8L8 : D3DFMT_L8;
        layout.channels = {Channel(red)};
        if (alpha)
            layout.channels.emplace_back(alpha);
        needed = red;
    } else if (flags & PixelAlphaOnly) {
        layout.format = D3DFMT_A8;
        layout.channels = {Channel(alpha)};
        needed = alpha;
    }
    const bool whole = std::all_of(layout.channels.begin(), layout.channels.end(),
                                   [](const Channel& channel) { return channel.IsWhole(); });
    if (needed == 0 || !whole)
        return std::nullopt;
    return layout;
}

// 0 for a header that counts more levels than the size has.
UINT ReadLevelCount(Bytes header, UINT width, UINT height) {
    const bool counts = (Read32(header, 8) & HasMipCount) || (Read32(header, 108) & CapsMipmap);
    const UINT count = counts ? std::max(Read32(header, 28), 1u) : 1;
    return count <= FullLevels(width, height) ? count : 0;
}

std::size_t FileBytes(const Layout& layout, UINT width, UINT height) {
    return layout.bytes == 0 ? LevelBytes(layout.format, width, height)
                             : std::size_t(width) * height * layout.bytes;
}

std::vector<std::uint8_t> ReadPixels(const Layout& layout, Bytes pixels) {
    if (layout.bytes == 0)
        return {pixels.begin(), pixels.end()};
    std::vector<std::uint8_t> result(pixels.size() / layout.bytes * layout.channels.size());
    std::uint8_t* to = result.data();
    for (std::size_t at = 0; at < pixels.size(); at += layout.bytes) {
        UINT pixel = 0;
        for (UINT i = 0; i < layout.bytes; ++i)
            pixel |= static_cast<UINT>(pixels[at + i]) << (8 * i);
        for (const Channel& channel : layout.channels)
            *to++ = channel.Of(pixel);
    }
    return result;
}

} // namespace

std::optional<Image> ReadDds(Bytes file) {
    if (file.size() < HeaderSize || Read32(file, 4) != HeaderField ||
        Read32(file, 76) != PixelFormatField)
        return std::nullopt;
    const UINT height = Read32(file, 12), width = Read32(file, 16);
    if (!IsTextureSize(width, height))
        return std::nullopt;
    const bool deep = (Read32(file, 8) & HasDepth) && Read32(file, 24) > 1;
    if (deep || (Read32(file, 112) & (CapsCubeMap | CapsVolume)))
        return std::nullopt;
    const std::optional<Layout> layout = ReadLayout(file);
    const UINT count = ReadLevelCount(file, width, height);
    if (!layout || count == 0)
        return std::nullopt;

    // All of it is known to be there before memory is taken for any of it.
    std::size_t total = HeaderSize;
    for (UINT level = 0; level < count; ++level)
        total += FileBytes(*layout, LevelSide(width, level), LevelSide(height, level));
    if (file.size() < total)
        return std::nullopt;

    Image image = {layout->format, width, height, {}};
    Bytes rest = file.subspan(HeaderSize);
    for (UINT level = 0; level < count; ++level) {
        const std::size_t size =
            FileBytes(*layout, LevelSide(width, level), LevelSide(height, level));
        image.levels.push_back(ReadPixels(*layout, rest.first(size)));
        rest = rest.subspan(size);
    }
    return image;
}

std::vector<std::uint8_t> WriteDds(UINT width, UINT height, Bytes bgra, bool alpha) {
    std::vector<std::uint8_t> file(HeaderSize + bgra.size());
    const auto put = [&file](std::size_t at, UINT value) {
        for (std::size_t i = 0; i < 4; ++i)
            file[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
    };
    constexpr UINT HasPitch = 8;
    put(0, MAKEFOURCC('D', 'D', 'S', ' '));
    put(4, HeaderField);
    put(8, RequiredFields | HasPitch);
    put(12, height);
    put(16, width);
    put(20, width * 4);
    put(76, PixelFormatField);
    put(80, alpha ? PixelColor | PixelAlpha : PixelColor);
    put(88, 32);
    put(92, 0xff0000);
    put(96, 0xff00);
    put(100, 0xff);
    put(104, alpha ? 0xff000000 : 0);
    put(108, CapsTexture);
    std::copy(bgra.begin(), bgra.end(), file.begin() + HeaderSize);
    return file;
}

} // namespace VornPlatform
