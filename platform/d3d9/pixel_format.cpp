// SPDX-License-Identifier: MIT
#include "platform/d3d9/pixel_format.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>

namespace VornPlatform {

namespace {

constexpr PixelFormat Formats[] = {
    {D3DFMT_A8R8G8B8, PixelUse::Color, 4, 1, true}, {D3DFMT_X8R8G8B8, PixelUse::Color, 4, 1, true},
    {D3DFMT_A8, PixelUse::Color, 1, 1, false},      {D3DFMT_L8, PixelUse::Color, 1, 1, false},
    {D3DFMT_A8L8, PixelUse::Color, 2, 1, false},    {D3DFMT_DXT1, PixelUse::Color, 8, 4, false},
    {D3DFMT_DXT3, PixelUse::Color, 16, 4, false},   {D3DFMT_DXT5, PixelUse::Color, 16, 4, false},
    {D3DFMT_D16, PixelUse::Depth, 2, 1, false},     {D3DFMT_D24X8, PixelUse::Depth, 4, 1, false},
    {D3DFMT_D24S8, PixelUse::Depth, 4, 1, false},
};

} // namespace

const PixelFormat* FindPixelFormat(D3DFORMAT format) {
    const auto* found =
        std::find_if(std::begin(Formats), std::end(Formats),
                     [format](const auto& known) { return known.format == format; });
    return found == std::end(Formats) ? nullptr : found;
}

UINT FullLevels(UINT width, UINT height) {
    return static_cast<UINT>(std::bit_width(std::max(width, height)));
}

D3DCOLOR ColorOf(D3DFORMAT format, const std::byte* pixel) {
    const auto byte = [pixel](int index) { return std::to_integer<DWORD>(pixel[index]); };
    D3DCOLOR color = 0;
    switch (format) {
    case D3DFMT_A8R8G8B8:
        std::memcpy(&color, pixel, sizeof color);
        return color;
    case D3DFMT_X8R8G8B8:
        std::memcpy(&color, pixel, sizeof color);
        return color | 0xff000000u;
    case D3DFMT_A8:
        return D3DCOLOR_ARGB(byte(0), 0, 0, 0);
    case D3DFMT_L8:
        return D3DCOLOR_XRGB(byte(0), byte(0), byte(0));
    case D3DFMT_A8L8:
        return D3DCOLOR_ARGB(byte(1), byte(0), byte(0), byte(0));
    default:
        return 0;
    }
}

} // namespace VornPlatform
