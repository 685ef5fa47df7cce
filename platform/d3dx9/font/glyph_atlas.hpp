// SPDX-License-Identifier: MIT
//
// The pictures of glyphs in textures of the device. A glyph is drawn when it is first asked for,
// and stays; when a page is full another one is made. The pages are managed, so a reset leaves
// them.
#pragma once

#include "platform/d3dx9/font/font_face.hpp"

#include <d3d9.h>

#include <vector>

namespace VornPlatform {

struct AtlasGlyph {
    IDirect3DTexture9* page = nullptr; // null: nothing to draw
    int pageWidth = 0, pageHeight = 0;
    int x = 0, y = 0, width = 0, height = 0; // in the page
    int left = 0, top = 0;                   // as in GlyphPicture
};

/// A texture that is no host's: with our devices it is held as what they bind is, so that it shows
/// neither in their count nor in that of live objects.
class OwnTexture {
public:
    /// Takes over the reference.
    explicit OwnTexture(IDirect3DTexture9* texture);
    OwnTexture(OwnTexture&& other) noexcept;
    OwnTexture& operator=(OwnTexture&&) = delete;
    ~OwnTexture();

    IDirect3DTexture9* Get() const { return mTexture; }

private:
    IDirect3DTexture9* mTexture;
};

class GlyphAtlas {
public:
    GlyphAtlas(IDirect3DDevice9& device, FontFace& face) : mDevice(device), mFace(face) {}

    /// Good for as long as the atlas lives. Null while the device has no room.
    const AtlasGlyph* Find(UINT glyph);

private:
    // White, with the coverage as alpha. Glyphs stand in rows; the last row is the open one.
    struct Page {
        OwnTexture texture;
        int width, height;
        int penX = 0, rowTop = 0, rowHeight = 0;

        bool Place(int width, int height, int& x, int& y);
    };

    Page* addPage(int width, int height);
    bool write(Page& page, const GlyphPicture& picture, AtlasGlyph& glyph);

    IDirect3DDevice9& mDevice;
    FontFace& mFace;
    std::vector<Page> mPages;
    std::unordered_map<UINT, AtlasGlyph> mGlyphs;
};

} // namespace VornPlatform
