// SPDX-License-Identifier: MIT
#include "platform/d3dx9/font/font_face.hpp"

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ft2build.h>

#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include FT_SYNTHESIS_H
#include FT_TRUETYPE_TABLES_H

namespace VornPlatform {

namespace {

constexpr int DefaultHeight = 16;
constexpr int DefaultWeight = 400;
constexpr int BoldWeight = 600; // from here on, a face that is not bold is made so

struct Found {
    std::string file;
    int index = 0;
    bool slant = false, embolden = false; // asked for, and the face is not
};

struct DestroyPattern {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using Pattern = std::unique_ptr<FcPattern, DestroyPattern>;

int IntegerOf(FcPattern* pattern, const char* object) {
    int value = 0;
    FcPatternGetInteger(pattern, object, 0, &value);
    return value;
}

std::optional<Found> FindFile(const FontQuery& query) {
    const int weight =
        query.weight ? static_cast<int>(std::min(query.weight, 1000u)) : DefaultWeight;
    const Pattern wanted(FcPatternCreate());
    if (!wanted)
        return std::nullopt;
    if (!query.name.empty())
        FcPatternAddString(wanted.get(), FC_FAMILY,
                           reinterpret_cast<const FcChar8*>(query.name.c_str()));
    FcPatternAddInteger(wanted.get(), FC_WEIGHT, FcWeightFromOpenType(weight));
    FcPatternAddInteger(wanted.get(), FC_SLANT, query.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(wanted.get(), FC_SCALABLE, FcTrue);
    FcPatternAddBool(wanted.get(), FC_OUTLINE, FcTrue);
    FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());

    FcResult result = FcResultNoMatch;
    const Pattern match(FcFontMatch(nullptr, wanted.get(), &result));
    FcChar8* file = nullptr;
    if (!match || FcPatternGetString(match.get(), FC_FILE, 0, &file) != FcResultMatch)
        return std::nullopt;
    Found found;
    found.file = reinterpret_cast<const char*>(file);
    found.index = IntegerOf(match.get(), FC_INDEX);
    found.slant = query.italic && IntegerOf(match.get(), FC_SLANT) == FC_SLANT_ROMAN;
    found.embolden = weight >= BoldWeight && IntegerOf(match.get(), FC_WEIGHT) <= FC_WEIGHT_MEDIUM;
    return found;
}

/// How far letters reach from the base line, in units of the face.
struct Extent {
    double ascent, descent;
};
Extent ExtentOf(FT_Face face) {
    // What a line is high by comes from where Windows takes it, if the face has it.
    const auto* table = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    if (table && table->usWinAscent + table->usWinDescent > 0)
        return {double(table->usWinAscent), double(table->usWinDescent)};
    if (face->ascender - face->descender > 0)
        return {double(face->ascender), -double(face->descender)};
    return {double(face->units_per_EM), 0};
}

double AverageWidthOf(FT_Face face) {
    const auto* table = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    return table && table->xAvgCharWidth > 0 ? double(table->xAvgCharWidth)
                                             : double(face->units_per_EM) / 2;
}

} // namespace

struct FontFace::Library {
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    bool slant = false, embolden = false;

    ~Library() {
        if (face)
            FT_Done_Face(face);
        if (library)
            FT_Done_FreeType(library);
    }
};

std::unique_ptr<FontFace> FontFace::Find(const FontQuery& query) {
    if (query.height > MaxHeight || query.height < -MaxHeight)
        return nullptr;
    const std::optional<Found> found = FindFile(query);
    auto library = std::make_unique<Library>();
    if (!found || FT_Init_FreeType(&library->library) ||
        FT_New_Face(library->library, found->file.c_str(), found->index, &library->face) ||
        !FT_IS_SCALABLE(library->face) || library->face->units_per_EM == 0)
        return nullptr;
    library->slant = found->slant;
    library->embolden = found->embolden;

    const FT_Face face = library->face;
    const double units = face->units_per_EM;
    const Extent extent = ExtentOf(face);
    const int height = query.height ? query.height : DefaultHeight;
    const double em = height > 0 ? height * units / (extent.ascent + extent.descent) : -height;
    double wide = em;
    if (query.width)
        wide = std::clamp(query.width * units / AverageWidthOf(face), 1.0, double(MaxHeight));
    const auto fixed = [](double pixels) { return std::max(64L, std::lround(pixels * 64)); };
    if (FT_Set_Char_Size(face, fixed(wide), fixed(em), 72, 72))
        return nullptr;

    std::unique_ptr<FontFace> result(new FontFace(std::move(library)));
    result->mAscent = static_cast<int>(std::lround(extent.ascent * em / units));
    const int descent = static_cast<int>(std::lround(extent.descent * em / units));
    result->mLineHeight = height > 0 ? height : std::max(result->mAscent + descent, 1);
    return result;
}

FontFace::FontFace(std::unique_ptr<Library> library) : mLibrary(std::move(library)) {}

FontFace::~FontFace() = default;

UINT FontFace::Glyph(char32_t character) const {
    return FT_Get_Char_Index(mLibrary->face, character);
}

bool FontFace::load(UINT glyph) {
    const FT_Face face = mLibrary->face;
    if (FT_Load_Glyph(face, glyph, FT_LOAD_NO_BITMAP | FT_LOAD_TARGET_NORMAL))
        return false;
    if (mLibrary->slant)
        FT_GlyphSlot_Oblique(face->glyph);
    if (mLibrary->embolden)
        FT_GlyphSlot_Embolden(face->glyph);
    return true;
}

CharacterSize FontFace::Size(UINT glyph) {
    const auto known = mSizes.find(glyph);
    if (known != mSizes.end())
        return known->second;
    CharacterSize size;
    if (load(glyph)) {
        const FT_GlyphSlot slot = mLibrary->face->glyph;
        size.advance = static_cast<int>((slot->advance.x + 32) >> 6);
        FT_BBox box = {};
        FT_Outline_Get_CBox(&slot->outline, &box);
        size.before = std::max(0, -static_cast<int>(box.xMin >> 6));
        size.after = std::max(0, static_cast<int>((box.xMax + 63) >> 6) - size.advance);
    }
    mSizes.emplace(glyph, size);
    return size;
}

GlyphPicture FontFace::Draw(UINT glyph) {
    const FT_GlyphSlot slot = mLibrary->face->glyph;
    if (!load(glyph) || FT_Render_Glyph(slot, FT_RENDER_MODE_NORMAL) ||
        slot->bitmap.pixel_mode != FT_PIXEL_MODE_GRAY)
        return {};
    const FT_Bitmap& bitmap = slot->bitmap;
    GlyphPicture picture = {static_cast<int>(bitmap.width),
                            static_cast<int>(bitmap.rows),
                            slot->bitmap_left,
                            slot->bitmap_top,
                            {}};
    picture.coverage.reserve(std::size_t(bitmap.width) * bitmap.rows);
    // A negative pitch stands for rows from the bottom up, and the buffer begins at the last then.
    const std::ptrdiff_t pitch = bitmap.pitch;
    for (UINT y = 0; y < bitmap.rows; ++y) {
        const std::ptrdiff_t row =
            pitch >= 0 ? std::ptrdiff_t(y) : std::ptrdiff_t(y) + 1 - std::ptrdiff_t(bitmap.rows);
        const unsigned char* from = bitmap.buffer + row * pitch;
        picture.coverage.insert(picture.coverage.end(), from, from + bitmap.width);
    }
    return picture;
}

} // namespace VornPlatform
