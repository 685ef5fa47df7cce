// SPDX-License-Identifier: MIT
//
// A face of the machine at one size: fontconfig finds the one that is nearest to what is asked for,
// FreeType draws its glyphs.
//
//   if (auto face = FontFace::Find({.name = "Arial", .height = 22}))
//       Show(face->Draw(face->Glyph(U'a')));
#pragma once

#include "platform/d3dx9/font/text_layout.hpp"

#include <windows.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace VornPlatform {

struct FontQuery {
    std::string name; // empty: any
    // Of a line if positive, of the letters (their em) if negative; 0 means 16 (unit: pixels)
    int height = 0;
    UINT width = 0;  // of the average letter; 0: as the face is made
    UINT weight = 0; // 400 is regular, 700 bold; 0 means 400
    bool italic = false;
};

/// A picture of one byte of coverage a pixel, rows without a gap.
struct GlyphPicture {
    int width = 0, height = 0;
    int left = 0, top = 0; // from pen and base line to its upper left, Y upwards
    std::vector<std::uint8_t> coverage;
};

class FontFace {
public:
    /// Null if the machine has no font at all, or the height is beyond MaxHeight.
    static std::unique_ptr<FontFace> Find(const FontQuery& query);
    static constexpr int MaxHeight = 1024;

    FontFace(const FontFace&) = delete;
    FontFace& operator=(const FontFace&) = delete;
    ~FontFace();

    /// The number of a character in the face; 0 is the box for one that it lacks.
    UINT Glyph(char32_t character) const;
    /// In whole pixels; what the letters reach out by, above all slanted ones, too.
    CharacterSize Size(UINT glyph);
    /// Nothing but an empty picture for a blank, or where the face is broken.
    GlyphPicture Draw(UINT glyph);

    int LineHeight() const { return mLineHeight; }
    int Ascent() const { return mAscent; } // from the top of a line to its base line

private:
    struct Library;

    explicit FontFace(std::unique_ptr<Library> library);
    bool load(UINT glyph);

    std::unique_ptr<Library> mLibrary;
    int mLineHeight = 0, mAscent = 0;
    std::unordered_map<UINT, CharacterSize> mSizes;
};

} // namespace VornPlatform
