// SPDX-License-Identifier: MIT
//
// Text with glyphs out of an image, from a description in the text form of the BMFont tool.
//
//   Vorn::bmFont font;
//   font.loadCharData("data/font/score.fnt");
//   font.mTexture = Vorn::TextureManager::Instance()->Get("score.png");
//   font.RenderText(400, 20, 0xFFFFFFFF, "Score 120\nLevel 3", Vorn::BM_ALIGN_CENTER);
//
// docs/font_file.md describes the file. Only characters from 0 to 255 have a glyph.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/point2.hpp"
#include "vorn/resource/fwd.hpp"

#include <d3d9.h>

#include <cstdint>
#include <istream>
#include <string>

namespace Vorn {

/// A glyph (unit: pixels).
struct CharDescriptor {
    /// Top left in the texture.
    std::uint16_t x = 0, y = 0;
    std::uint16_t width = 0, height = 0;
    /// From the pen, and from the top of the line, to the top left of the glyph. Signed numbers in
    /// 16 bits: 65535 is one to the left, or above.
    std::uint16_t xoffset = 0, yoffset = 0;
    /// How far the pen goes.
    std::uint16_t xadvance = 0;
    std::uint16_t page = 0;
};

struct Charset {
    /// From line to line (unit: pixels).
    std::uint16_t lineHeight = 0;
    /// From the top of a line to where letters stand (unit: pixels).
    std::uint16_t base = 0;
    /// Of the texture (unit: pixels).
    std::uint16_t scaleW = 0, scaleH = 0;
    std::uint16_t pages = 0;
    /// By the code of the character, in Latin-1.
    CharDescriptor chars[256];
};

/// Reads to the end of the stream; true always. Lines and keys that it does not know are passed
/// over, and a number that does not convert leaves its field: one without digits, and one outside
/// -32768 to 65535, of which a negative one is kept in 16 bits. A glyph from 256 up is passed over.
VORN_API bool ParseFont(std::istream& stream, Charset& charset);

/// Where the lines of a text lie about its x.
enum BM_ALIGN { BM_ALIGN_LEFT, BM_ALIGN_CENTER, BM_ALIGN_RIGHT };

/// A copy shares the buffers of quadCreation: only one of the two may release them.
class VORN_API bmFont : public Charset {
public:
    /// False if the file cannot be opened; then nothing has changed.
    bool loadCharData(std::string path);
    /// Takes "dFont.tga", whose pixels are the glyphs, from the store. Raises std::out_of_range,
    /// "invalid map<K, T> key", if it is not there. A host with another image sets mTexture.
    bool loadtextureData();
    /// Makes the two buffers, in the default pool: a square about the origin with sides of 1, in
    /// the plane of x and y, its corners clockwise from the upper left; the indices make a strip of
    /// two triangles. False without a device, and then there is neither. What was there is
    /// released. Text needs none of it.
    bool quadCreation();
    /// Gives up the buffers, before a reset of the device and before the font goes; twice does no
    /// harm.
    void Release();

    /// Width of the longest line, by the pens' way, and height of all lines (unit: pixels). A line
    /// feed at the end begins one more; no text has no line.
    Point2 TextSize(const char* text) const;
    /// One draw for the whole text, in pixels of the target; `y` is the top of the first line, and
    /// `color` is multiplied with the texture (packed: 31..24 alpha, then red, green, blue). Blends
    /// by alpha, of which less than 8 does not show; needs neither camera nor light. At whole `x`
    /// and `y` each texel is a pixel. Lines end at "\n", and "\r" is passed over. `text` is UTF-8;
    /// a character without a glyph is left out, a byte that is no UTF-8 is Latin-1. There is one
    /// texture, so glyphs of a page other than 0 leave a gap. White where there is no texture.
    ///
    /// Leaves the states of Graphic::SetTransparent with blending by alpha, no depth test, no
    /// shaders, no vertex stream, its texture and the format of VERTEX_2D. Transforms and all other
    /// states are as before.
    void RenderText(float x, float y, unsigned int color, const char* text,
                    BM_ALIGN align = BM_ALIGN_LEFT) const;

    /// Not owned.
    Texture* mTexture = nullptr;
    IDirect3DVertexBuffer9* mVertexBuffer = nullptr;
    IDirect3DIndexBuffer9* mIndexBuffer = nullptr;
};

/// Makes a font and the buffers of its quad, and gives them up again.
VORN_API void ParserTestFn();

} // namespace Vorn
