// SPDX-License-Identifier: MIT
#include "samples/game/sheet.hpp"

#include "platform/control/vorn_picture.hpp"
#include "platform/control/vorn_platform.hpp"
#include "vorn/render/graphic.hpp"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace Lantern {

namespace {

IDirect3DSurface9* BackBuffer() {
    IDirect3DSurface9* surface = nullptr;
    Vorn::Graphic::GetDevice()->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, &surface);
    if (!surface)
        throw std::runtime_error("there is no back buffer");
    return surface;
}

// The mean of the pixels that fall onto one.
std::uint32_t Mean(const std::vector<std::uint32_t>& pixels, int width, int left, int top,
                   int right, int bottom) {
    std::uint32_t sums[3] = {}, count = 0;
    for (int y = top; y < bottom; ++y)
        for (int x = left; x < right; ++x, ++count)
            for (int c = 0; c < 3; ++c)
                sums[c] += pixels[static_cast<std::size_t>(y * width + x)] >> (8 * c) & 255u;
    count = std::max(count, 1u);
    return 0xFF000000u | sums[2] / count << 16 | sums[1] / count << 8 | sums[0] / count;
}

} // namespace

void Sheet::Add() {
    IDirect3DSurface9* surface = BackBuffer();
    D3DSURFACE_DESC size{};
    surface->GetDesc(&size);
    const std::vector<std::uint32_t> all = VornPlatform::ReadPixels(surface);
    surface->Release();
    const int width = static_cast<int>(size.Width), height = static_cast<int>(size.Height);
    std::vector<std::uint32_t>& small = mPictures.emplace_back();
    for (int y = 0; y < mHeight; ++y)
        for (int x = 0; x < mWidth; ++x)
            small.push_back(Mean(all, width, x * width / mWidth, y * height / mHeight,
                                 (x + 1) * width / mWidth, (y + 1) * height / mHeight));
}

void Sheet::Save(const std::string& path) const {
    const int count = static_cast<int>(mPictures.size());
    const int rows = std::max(1, (count + mColumns - 1) / mColumns);
    IDirect3DSurface9* surface = nullptr;
    Vorn::Graphic::GetDevice()->CreateOffscreenPlainSurface(
        static_cast<UINT>(mColumns * mWidth), static_cast<UINT>(rows * mHeight), D3DFMT_X8R8G8B8,
        D3DPOOL_SYSTEMMEM, &surface, nullptr);
    D3DLOCKED_RECT locked{};
    if (surface && SUCCEEDED(surface->LockRect(&locked, nullptr, 0))) {
        for (int i = 0; i < count; ++i)
            for (int y = 0; y < mHeight; ++y) {
                const auto row = static_cast<std::size_t>(i / mColumns * mHeight + y);
                std::memcpy(
                    static_cast<char*>(locked.pBits) +
                        row * static_cast<std::size_t>(locked.Pitch) +
                        static_cast<std::size_t>(i % mColumns * mWidth) * 4,
                    &mPictures[static_cast<std::size_t>(i)][static_cast<std::size_t>(y * mWidth)],
                    static_cast<std::size_t>(mWidth) * 4);
            }
        surface->UnlockRect();
    }
    VornPlatform::SaveAndRelease(surface, path);
}

void SavePicture(const std::string& path) {
    VornPlatform::SavePicture(Vorn::Graphic::GetDevice(), path);
}

} // namespace Lantern
