// SPDX-License-Identifier: MIT
//
// Text of a bitmap font: where its glyphs lie, and the draw.
#include "vorn/render/bm_font.hpp"
#include "vorn/render/graphic.hpp"
#include "vorn/resource/texture.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <vector>

namespace Vorn {

namespace {

// What the weakest device takes in one draw is 65535 triangles.
constexpr std::size_t MaxGlyphs = 65535 / 2, VerticesOfGlyph = 6;

// Off the front of text that is not empty. A byte that belongs to no character is one of Latin-1.
std::uint32_t TakeCharacter(std::string_view& text) {
    const auto byte = [&text](std::size_t i) -> std::uint32_t {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
    };
    // What is smaller would have taken fewer bytes.
    constexpr std::uint32_t minima[] = {0, 0x80, 0x800, 0x10000};
    const std::uint32_t first = byte(0);
    const std::size_t more = first < 0xC2 || first > 0xF4 ? 0
                             : first < 0xE0               ? 1
                             : first < 0xF0               ? 2
                                                          : 3;
    std::uint32_t character = first & (0x3Fu >> more);
    bool sound = more > 0;
    for (std::size_t i = 1; i <= more; ++i) {
        sound &= (byte(i) & 0xC0u) == 0x80u;
        character = character << 6 | (byte(i) & 0x3Fu);
    }
    const bool surrogate = character >= 0xD800 && character < 0xE000;
    sound &= character >= minima[more] && !surrogate && character <= 0x10FFFF;
    text.remove_prefix(sound ? more + 1 : 1);
    return sound ? character : first;
}

// Of the characters of a line that have one.
template <typename Action>
void ForEachGlyph(const Charset& font, std::string_view line, const Action& action) {
    while (!line.empty()) {
        const std::uint32_t character = TakeCharacter(line);
        if (character < std::size(font.chars) && character != '\r')
            action(font.chars[character]);
    }
}

template <typename Action>
void ForEachLine(std::string_view text, const Action& action) {
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        action(text.substr(begin, end - begin));
        begin = end + 1;
    }
}

std::int64_t WidthOf(const Charset& font, std::string_view line) {
    std::int64_t width = 0;
    ForEachGlyph(font, line, [&width](const CharDescriptor& glyph) { width += glyph.xadvance; });
    return width;
}

// In whole pixels, so that a text at a whole place stays sharp.
std::int64_t StartOf(std::int64_t width, BM_ALIGN align) {
    if (align == BM_ALIGN_CENTER)
        return -(width / 2);
    return align == BM_ALIGN_RIGHT ? -width : 0;
}

std::int16_t Signed(std::uint16_t offset) {
    return static_cast<std::int16_t>(offset);
}

template <typename State, typename Value = DWORD>
struct Setting {
    State state;
    Value value;
};

// What other draws count on is put back when this goes: a camera sets its matrices once in a frame.
class TextStates {
public:
    TextStates(IDirect3DDevice9& device, const D3DXMATRIX& projection) : mDevice(device) {
        mTransforms[2].value = projection;
        exchange();
    }
    TextStates(const TextStates&) = delete;
    TextStates& operator=(const TextStates&) = delete;
    ~TextStates() { exchange(); }

private:
    // What the device has for what stands here.
    void exchange() {
        for (auto& [state, value] : mTransforms) {
            const D3DXMATRIX next = value;
            mDevice.GetTransform(state, &value);
            mDevice.SetTransform(state, &next);
        }
        for (auto& [state, value] : mRender) {
            const DWORD next = value;
            mDevice.GetRenderState(state, &value);
            mDevice.SetRenderState(state, next);
        }
        for (auto& [state, value] : mStage) {
            const DWORD next = value;
            mDevice.GetTextureStageState(0, state, &value);
            mDevice.SetTextureStageState(0, state, next);
        }
        for (auto& [state, value] : mSampler) {
            const DWORD next = value;
            mDevice.GetSamplerState(0, state, &value);
            mDevice.SetSamplerState(0, state, next);
        }
    }

    IDirect3DDevice9& mDevice;
    Setting<D3DTRANSFORMSTATETYPE, D3DXMATRIX> mTransforms[3] = {
        {D3DTS_WORLD, Matrix4::Identity},
        {D3DTS_VIEW, Matrix4::Identity},
        {D3DTS_PROJECTION, Matrix4::Identity},
    };
    Setting<D3DRENDERSTATETYPE> mRender[2] = {
        {D3DRS_FILLMODE, D3DFILL_SOLID},
        {D3DRS_LIGHTING, FALSE},
    };
    Setting<D3DTEXTURESTAGESTATETYPE> mStage[7] = {
        {D3DTSS_COLOROP, D3DTOP_MODULATE},
        {D3DTSS_COLORARG1, D3DTA_TEXTURE},
        {D3DTSS_COLORARG2, D3DTA_DIFFUSE},
        {D3DTSS_ALPHAOP, D3DTOP_MODULATE},
        {D3DTSS_ALPHAARG1, D3DTA_TEXTURE},
        {D3DTSS_ALPHAARG2, D3DTA_DIFFUSE},
        {D3DTSS_TEXTURETRANSFORMFLAGS, D3DTTFF_DISABLE},
    };
    // At a whole place every filter gives the texel; between, this one moves smoothly.
    Setting<D3DSAMPLERSTATETYPE> mSampler[5] = {
        {D3DSAMP_ADDRESSU, D3DTADDRESS_CLAMP}, {D3DSAMP_ADDRESSV, D3DTADDRESS_CLAMP},
        {D3DSAMP_MAGFILTER, D3DTEXF_LINEAR},   {D3DSAMP_MINFILTER, D3DTEXF_LINEAR},
        {D3DSAMP_MIPFILTER, D3DTEXF_NONE},
    };
};

// From pixels of the target to the viewport.
D3DXMATRIX PixelProjection(const D3DVIEWPORT9& viewport) {
    const auto width = static_cast<float>(viewport.Width),
               height = static_cast<float>(viewport.Height);
    D3DXMATRIX matrix = Matrix4::Identity;
    matrix._11 = 2.0f / width;
    matrix._22 = -2.0f / height;
    matrix._41 = -1.0f - 2.0f * static_cast<float>(viewport.X) / width;
    matrix._42 = 1.0f + 2.0f * static_cast<float>(viewport.Y) / height;
    return matrix;
}

void SetLastingStates(IDirect3DDevice9& device) {
    Graphic::Instance()->SetTransparent();
    device.SetRenderState(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
    device.SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);
    device.SetRenderState(D3DRS_BLENDOP, D3DBLENDOP_ADD);
    device.SetRenderState(D3DRS_ZENABLE, FALSE);
    device.SetVertexShader(nullptr);
    device.SetPixelShader(nullptr);
    device.SetFVF(D3DFVF_XYZ | D3DFVF_DIFFUSE | D3DFVF_TEX1); // and so no declaration
}

/// The glyphs of a text, in one draw or in as many as it takes.
class GlyphBatch {
public:
    GlyphBatch(IDirect3DDevice9& device, const Charset& font, unsigned int color, std::size_t count)
        : mDevice(device), mFont(font), mColor(color) {
        mVertices.reserve(std::min(count, MaxGlyphs) * VerticesOfGlyph);
    }

    /// At the pen and the top of the line.
    void Add(const CharDescriptor& glyph, double x, double y) {
        // There is one texture; what lies on a further page is not in it.
        if (glyph.width == 0 || glyph.height == 0 || glyph.page != 0)
            return;
        // Pixel centres lie at whole numbers, so pixels begin half a one before.
        const double left = x + Signed(glyph.xoffset) - 0.5, top = y + Signed(glyph.yoffset) - 0.5;
        const auto corner = [&](int right, int below) {
            const int dx = right * glyph.width, dy = below * glyph.height;
            return VERTEX_2D{static_cast<float>(left + dx),
                             static_cast<float>(top + dy),
                             0.0f,
                             mColor,
                             static_cast<float>(glyph.x + dx) / static_cast<float>(mFont.scaleW),
                             static_cast<float>(glyph.y + dy) / static_cast<float>(mFont.scaleH)};
        };
        const VERTEX_2D corners[] = {corner(0, 0), corner(1, 0), corner(0, 1), corner(1, 1)};
        for (const int i : {0, 1, 2, 2, 1, 3})
            mVertices.push_back(corners[i]);
        if (mVertices.size() == MaxGlyphs * VerticesOfGlyph)
            Draw();
    }
    void Draw() {
        if (!mVertices.empty())
            mDevice.DrawPrimitiveUP(D3DPT_TRIANGLELIST, static_cast<UINT>(mVertices.size() / 3),
                                    mVertices.data(), sizeof(VERTEX_2D));
        mVertices.clear();
    }

private:
    IDirect3DDevice9& mDevice;
    const Charset& mFont;
    const D3DCOLOR mColor;
    std::vector<VERTEX_2D> mVertices;
};

} // namespace

Point2 bmFont::TextSize(const char* text) const {
    if (!text || !*text)
        return {};
    const std::string_view view = text;
    std::int64_t width = 0;
    ForEachLine(view,
                [&](std::string_view line) { width = std::max(width, WidthOf(*this, line)); });
    const auto lines = std::count(view.begin(), view.end(), '\n') + 1;
    return {static_cast<float>(width), static_cast<float>(lines * lineHeight)};
}

void bmFont::RenderText(float x, float y, unsigned int color, const char* text,
                        BM_ALIGN align) const {
    IDirect3DDevice9* device = Graphic::LiveDevice();
    if (!device || !text || !*text || !std::isfinite(x) || !std::isfinite(y) || !scaleW || !scaleH)
        return;
    D3DVIEWPORT9 viewport{};
    if (FAILED(device->GetViewport(&viewport)) || viewport.Width == 0 || viewport.Height == 0)
        return;
    const std::string_view view = text;
    GlyphBatch batch(*device, *this, color, view.size());
    SetLastingStates(*device);
    const TextStates states(*device, PixelProjection(viewport));
    device->SetTexture(0, mTexture && mTexture->mTexture ? *mTexture->mTexture : nullptr);

    std::int64_t top = 0;
    ForEachLine(view, [&](std::string_view line) {
        std::int64_t pen = StartOf(align == BM_ALIGN_LEFT ? 0 : WidthOf(*this, line), align);
        ForEachGlyph(*this, line, [&](const CharDescriptor& glyph) {
            batch.Add(glyph, static_cast<double>(x) + static_cast<double>(pen),
                      static_cast<double>(y) + static_cast<double>(top));
            pen += glyph.xadvance;
        });
        top += lineHeight;
    });
    batch.Draw();
}

} // namespace Vorn
