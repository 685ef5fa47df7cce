// SPDX-License-Identifier: MIT
#include "platform/d3dx9/font/glyph_atlas.hpp"

#include "platform/d3d9/child.hpp"
#include "platform/d3d9/limits.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace VornPlatform {

namespace {

constexpr int Gap = 1; // between glyphs
constexpr std::uint32_t White = 0x00ffffff;

int PageSide(int lineHeight, int glyphSide) {
    constexpr unsigned int Least = 256, Most = 1024;
    const auto usual =
        std::clamp(std::bit_ceil(static_cast<unsigned int>(lineHeight) * 8), Least, Most);
    return static_cast<int>(
        std::max(usual, std::bit_ceil(static_cast<unsigned int>(glyphSide + Gap))));
}

} // namespace

OwnTexture::OwnTexture(IDirect3DTexture9* texture) : mTexture(texture) {
    if (auto* ours = dynamic_cast<Child*>(texture)) {
        ours->Bind();
        texture->Release();
    }
}

OwnTexture::OwnTexture(OwnTexture&& other) noexcept
    : mTexture(std::exchange(other.mTexture, nullptr)) {}

OwnTexture::~OwnTexture() {
    if (auto* ours = dynamic_cast<Child*>(mTexture))
        ours->Unbind();
    else if (mTexture)
        mTexture->Release();
}

bool GlyphAtlas::Page::Place(int glyphWidth, int glyphHeight, int& x, int& y) {
    if (penX + glyphWidth + Gap > width) {
        rowTop += rowHeight;
        penX = rowHeight = 0;
    }
    if (glyphWidth + Gap > width || rowTop + glyphHeight + Gap > height)
        return false;
    x = penX;
    y = rowTop;
    penX += glyphWidth + Gap;
    rowHeight = std::max(rowHeight, glyphHeight + Gap);
    return true;
}

GlyphAtlas::Page* GlyphAtlas::addPage(int width, int height) {
    if (width > static_cast<int>(MaxTextureSize) || height > static_cast<int>(MaxTextureSize))
        return nullptr;
    IDirect3DTexture9* made = nullptr;
    if (FAILED(mDevice.CreateTexture(static_cast<UINT>(width), static_cast<UINT>(height), 1, 0,
                                     D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, &made, nullptr)))
        return nullptr;
    Page page = {OwnTexture(made), width, height};
    D3DLOCKED_RECT locked = {};
    if (FAILED(made->LockRect(0, &locked, nullptr, 0)))
        return nullptr;
    const std::vector<std::uint32_t> row(static_cast<std::size_t>(width), White);
    for (int y = 0; y < height; ++y)
        std::memcpy(static_cast<std::uint8_t*>(locked.pBits) + std::ptrdiff_t(y) * locked.Pitch,
                    row.data(), row.size() * sizeof(std::uint32_t));
    made->UnlockRect(0);
    mPages.push_back(std::move(page));
    return &mPages.back();
}

bool GlyphAtlas::write(Page& page, const GlyphPicture& picture, AtlasGlyph& glyph) {
    const RECT rect = {glyph.x, glyph.y, glyph.x + picture.width, glyph.y + picture.height};
    D3DLOCKED_RECT locked = {};
    if (FAILED(page.texture.Get()->LockRect(0, &locked, &rect, 0)))
        return false;
    const std::uint8_t* from = picture.coverage.data();
    for (int y = 0; y < picture.height; ++y) {
        auto* to = static_cast<std::uint8_t*>(locked.pBits) + std::ptrdiff_t(y) * locked.Pitch;
        for (int x = 0; x < picture.width; ++x, to += 4) {
            const std::uint32_t pixel = White | static_cast<std::uint32_t>(*from++) << 24;
            std::memcpy(to, &pixel, sizeof pixel);
        }
    }
    return SUCCEEDED(page.texture.Get()->UnlockRect(0));
}

const AtlasGlyph* GlyphAtlas::Find(UINT glyph) {
    const auto known = mGlyphs.find(glyph);
    if (known != mGlyphs.end())
        return &known->second;

    const GlyphPicture picture = mFace.Draw(glyph);
    AtlasGlyph placed;
    placed.width = picture.width, placed.height = picture.height;
    placed.left = picture.left, placed.top = picture.top;
    if (!picture.coverage.empty()) {
        Page* page = mPages.empty() ? nullptr : &mPages.back();
        if (!page || !page->Place(picture.width, picture.height, placed.x, placed.y)) {
            page = addPage(PageSide(mFace.LineHeight(), picture.width),
                           PageSide(mFace.LineHeight(), picture.height));
            if (!page || !page->Place(picture.width, picture.height, placed.x, placed.y))
                return nullptr;
        }
        if (!write(*page, picture, placed))
            return nullptr;
        placed.page = page->texture.Get();
        placed.pageWidth = page->width, placed.pageHeight = page->height;
    }
    return &mGlyphs.emplace(glyph, placed).first->second;
}

} // namespace VornPlatform
