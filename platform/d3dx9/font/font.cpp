// SPDX-License-Identifier: MIT
//
// Fonts of D3DX: text as textured rectangles over what is there, a texel on each pixel.
#include "platform/d3d9/guarded.hpp"
#include "platform/d3d9/overlay.hpp"
#include "platform/d3dx9/device_object.hpp"
#include "platform/d3dx9/font/glyph_atlas.hpp"
#include "platform/d3dx9/font/text_layout.hpp"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace VornPlatform {

namespace {

/// The text of a call, which need not end with a NUL.
struct CountedText {
    const char* text;
    INT count;

    std::string_view View() const {
        if (!text)
            return {};
        return count < 0 ? std::string_view(text)
                         : std::string_view(text, strnlen(text, static_cast<std::size_t>(count)));
    }
};
void AppendText(std::string& log, const CountedText& text) {
    log += text.text ? '"' + std::string(text.View()) + '"' : "null";
}

// Wide enough for the edges of any rectangle and the width of any text.
struct Box {
    std::int64_t left, top, right, bottom;
};

LONG ToLong(std::int64_t value) {
    return static_cast<LONG>(std::clamp<std::int64_t>(value, std::numeric_limits<LONG>::min(),
                                                      std::numeric_limits<LONG>::max()));
}

/// The triangles of one page.
struct Batch {
    IDirect3DTexture9* page;
    std::vector<OverlayVertex> vertices;
};

void AppendGlyph(std::vector<Batch>& batches, const AtlasGlyph& glyph, std::int64_t x,
                 std::int64_t y, const Box* clip, D3DCOLOR color) {
    Box box = {x + glyph.left, y - glyph.top, x + glyph.left + glyph.width,
               y - glyph.top + glyph.height};
    const std::int64_t atlasX = glyph.x - box.left, atlasY = glyph.y - box.top;
    if (clip)
        box = {std::max(box.left, clip->left), std::max(box.top, clip->top),
               std::min(box.right, clip->right), std::min(box.bottom, clip->bottom)};
    if (box.left >= box.right || box.top >= box.bottom)
        return;

    auto batch = std::find_if(batches.begin(), batches.end(),
                              [&glyph](const Batch& other) { return other.page == glyph.page; });
    if (batch == batches.end())
        batch = batches.insert(batches.end(), Batch{glyph.page, {}});
    // Pixel centres lie at whole numbers, so pixels begin half a one before.
    const auto vertex = [&](std::int64_t vx, std::int64_t vy) {
        return OverlayVertex{static_cast<float>(static_cast<double>(vx) - 0.5),
                             static_cast<float>(static_cast<double>(vy) - 0.5), color,
                             static_cast<float>(vx + atlasX) / static_cast<float>(glyph.pageWidth),
                             static_cast<float>(vy + atlasY) /
                                 static_cast<float>(glyph.pageHeight)};
    };
    const OverlayVertex corners[] = {vertex(box.left, box.top), vertex(box.right, box.top),
                                     vertex(box.left, box.bottom), vertex(box.right, box.bottom)};
    for (const int corner : {0, 1, 2, 2, 1, 3})
        batch->vertices.push_back(corners[corner]);
}

class Font final : public DeviceObject<ID3DXFont> {
public:
    Font(IDirect3DDevice9* device, std::unique_ptr<FontFace> face)
        : DeviceObject(ObjectKind::Font, device), mFace(std::move(face)), mAtlas(*device, *mFace) {}

    INT DrawTextA(ID3DXSprite* sprite, LPCSTR text, INT count, LPRECT rect, DWORD format,
                  D3DCOLOR color) override {
        const CountedText counted = {text, count};
        const CallScope call("DrawTextA", static_cast<const void*>(sprite), counted, count,
                             static_cast<const RECT*>(rect), format, color);
        try {
            return drawLines(counted.View(), rect, format, color);
        } catch (const std::bad_alloc&) {
            return 0;
        }
    }

private:
    INT drawLines(std::string_view text, RECT* rect, DWORD format, D3DCOLOR color) {
        // Without a rectangle the text starts at the upper left of the target, and is not cut.
        const Box box = rect ? Box{rect->left, rect->top, rect->right, rect->bottom} : Box{};
        TextRules rules;
        rules.singleLine = format & DT_SINGLELINE;
        if ((format & DT_WORDBREAK) && !rules.singleLine && rect)
            rules.breakWidth = box.right - box.left;
        const std::vector<TextLine> lines =
            LayOut(text, rules, [this](char32_t c) { return mFace->Size(mFace->Glyph(c)); });

        const std::int64_t height = static_cast<std::int64_t>(lines.size()) * mFace->LineHeight();
        if (format & DT_CALCRECT) {
            if (rect)
                measure(lines, height, *rect);
        } else if (FAILED(draw(lines, box, height, rect ? format : format | DT_NOCLIP, color))) {
            return 0;
        }
        return static_cast<INT>(ToLong(height));
    }

    static void measure(const std::vector<TextLine>& lines, std::int64_t height, RECT& rect) {
        std::int64_t width = 0;
        for (const TextLine& line : lines)
            width = std::max(width, line.width);
        rect.right = ToLong(rect.left + width);
        rect.bottom = ToLong(rect.top + height);
    }

    HRESULT draw(const std::vector<TextLine>& lines, const Box& box, std::int64_t height,
                 DWORD format, D3DCOLOR color) {
        auto* overlay = dynamic_cast<Overlay*>(&Device());
        if (!overlay)
            return D3DERR_INVALIDCALL;
        std::int64_t top = box.top;
        if ((format & DT_SINGLELINE) && (format & DT_VCENTER))
            top += (box.bottom - box.top - height) / 2;
        else if ((format & DT_SINGLELINE) && (format & DT_BOTTOM))
            top = box.bottom - height;

        std::vector<Batch> batches;
        for (const TextLine& line : lines) {
            std::int64_t left = box.left;
            if (format & DT_CENTER)
                left += (box.right - box.left - line.width) / 2;
            else if (format & DT_RIGHT)
                left = box.right - line.width;
            for (const PlacedCharacter& placed : line.characters) {
                const AtlasGlyph* glyph = mAtlas.Find(mFace->Glyph(placed.character));
                if (glyph && glyph->page)
                    AppendGlyph(batches, *glyph, left + placed.x, top + mFace->Ascent(),
                                format & DT_NOCLIP ? nullptr : &box, color);
            }
            top += mFace->LineHeight();
        }
        for (const Batch& batch : batches) {
            const HRESULT result = overlay->DrawOverlay(
                batch.vertices.data(), static_cast<UINT>(batch.vertices.size()), batch.page);
            if (FAILED(result))
                return result;
        }
        return D3D_OK;
    }

    std::unique_ptr<FontFace> mFace;
    GlyphAtlas mAtlas;
};

HRESULT CreateFont(IDirect3DDevice9* device, const FontQuery& query, ID3DXFont** font) {
    std::unique_ptr<FontFace> face = FontFace::Find(query);
    if (!face)
        return E_FAIL;
    *font = new Font(device, std::move(face));
    return D3D_OK;
}

} // namespace

} // namespace VornPlatform

HRESULT D3DXCreateFontA(IDirect3DDevice9* device, INT height, UINT width, UINT weight,
                        UINT mipLevels, BOOL italic, DWORD charSet, DWORD outputPrecision,
                        DWORD quality, DWORD pitchAndFamily, LPCSTR face, ID3DXFont** font) {
    using namespace VornPlatform;
    const CallScope call("D3DXCreateFontA", device, height, width, weight, mipLevels, italic,
                         charSet, outputPrecision, quality, pitchAndFamily, face);
    if (!font)
        return D3DERR_INVALIDCALL;
    *font = nullptr;
    if (!device)
        return D3DERR_INVALIDCALL;
    return Guarded([&] {
        return CreateFont(device, {face ? face : "", height, width, weight, italic != 0}, font);
    });
}
