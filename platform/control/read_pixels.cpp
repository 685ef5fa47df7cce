// SPDX-License-Identifier: MIT
#include "platform/control/vorn_platform.hpp"
#include "platform/d3d9/surface.hpp"

#include <cstddef>

namespace VornPlatform {

namespace {

// From wherever the surface has its pixels: what a host has written may not be with the machine.
std::vector<std::byte> RawPixels(Surface& surface, const PixelFormat& format) {
    const D3DSURFACE_DESC& desc = surface.Desc();
    const UINT pitch = PitchOf(format, desc.Width);
    if (const PixelMemory* memory = surface.Memory()) {
        const std::byte* begin = memory->At(0, 0);
        return {begin, begin + std::size_t(pitch) * desc.Height};
    }
    std::vector<std::byte> pixels(std::size_t(pitch) * desc.Height);
    const RECT all = {0, 0, static_cast<LONG>(desc.Width), static_cast<LONG>(desc.Height)};
    if (!surface.Gpu()->Read(surface.Level(), all, pixels.data(), pitch))
        pixels.clear();
    return pixels;
}

} // namespace

std::vector<std::uint32_t> ReadPixels(IDirect3DSurface9* surface) {
    auto* ours = dynamic_cast<Surface*>(surface);
    const PixelFormat* format = ours ? FindPixelFormat(ours->Desc().Format) : nullptr;
    if (!format || format->use != PixelUse::Color || format->blockSide > 1)
        return {};
    const std::vector<std::byte> raw = RawPixels(*ours, *format);
    std::vector<std::uint32_t> pixels(raw.size() / format->blockBytes);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = ColorOf(format->format, &raw[i * format->blockBytes]);
    return pixels;
}

} // namespace VornPlatform
