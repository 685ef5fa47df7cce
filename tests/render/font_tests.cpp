// SPDX-License-Identifier: MIT
//
// Font files as several generators write them, and broken ones; text pixel by pixel against a plain
// twin that lays texels over the ground.
#include "tests/support/engine_device.hpp"
#include "tests/support/picture.hpp"

#include <array>
#include <fstream>
#include <iterator>
#include <limits>
#include <locale>
#include <sstream>

namespace {

using Tests::Content;
using Tests::Ground;
using Tests::SmallHeight;
using Tests::SmallWidth;
using Image = Tests::Picture;
using Vorn::bmFont;
using Vorn::CharDescriptor;
using Vorn::Charset;

/// x, y, width, height, xoffset, yoffset, xadvance, page.
using Numbers = std::array<int, 8>;

Numbers Of(const CharDescriptor& c) {
    return {c.x, c.y, c.width, c.height, c.xoffset, c.yoffset, c.xadvance, c.page};
}
std::array<int, 5> Head(const Charset& c) {
    return {c.lineHeight, c.base, c.scaleW, c.scaleH, c.pages};
}
Charset ParsedFont(const std::string& text, Charset charset = {}) {
    std::istringstream stream(text);
    EXPECT_TRUE(Vorn::ParseFont(stream, charset));
    EXPECT_TRUE(stream.eof());
    return charset;
}
void ExpectZeroBut(const Charset& charset, const std::vector<int>& known) {
    for (int id = 0; id < 256; ++id) {
        const bool isKnown = std::count(known.begin(), known.end(), id);
        EXPECT_TRUE(isKnown || Of(charset.chars[id]) == Numbers{}) << id;
    }
}

/// A host that writes 1.234,5 for what others write 1,234.5.
struct Continental : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};
class HostLocale {
public:
    HostLocale() : mBefore(std::locale::global({std::locale::classic(), new Continental})) {}
    HostLocale(const HostLocale&) = delete;
    HostLocale& operator=(const HostLocale&) = delete;
    ~HostLocale() { std::locale::global(mBefore); }

private:
    std::locale mBefore;
};

/// What fuzzing starts from too: as AngelCode's tool writes it (columns, line ends of Windows, a
/// face with the words of a line in it), Hiero (a blank of no size, no last line end), and Glyph
/// Designer or fontbm (other orders, the letters themselves, numbers beyond all).
std::string FileOf(const std::string& generator) {
    std::ifstream file("fuzz/corpus/font/" + generator + ".fnt");
    EXPECT_TRUE(file.is_open()) << generator;
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(FontFile, OfEachGeneratorIsRead) {
    const HostLocale continental;
    const std::pair<const char*, std::vector<int>> files[] = {
        {"angelcode", {65, 233}}, {"hiero", {32, 65, 233}}, {"designer", {32, 34, 61, 65, 233}}};
    for (const auto& [generator, glyphs] : files) {
        SCOPED_TRACE(generator);
        const Charset font = ParsedFont(FileOf(generator));
        EXPECT_EQ(Head(font), (std::array{32, 26, 256, 128, 1}));
        EXPECT_EQ(Of(font.chars[65]), (Numbers{40, 0, 21, 20, 65535, 6, 19, 0}));
        EXPECT_EQ(Of(font.chars[233]), (Numbers{0, 21, 15, 22, 1, 65532, 17, 0}));
        ExpectZeroBut(font, glyphs);
    }
    const Charset designer = ParsedFont(FileOf("designer"));
    EXPECT_EQ(Of(designer.chars[32]), (Numbers{0, 0, 0, 0, 65535, 0, 8, 0}));
    for (const int id : {34, 61})
        EXPECT_EQ(Of(designer.chars[id]), (Numbers{1, 2, 3, 4, 5, 6, 7, 0})) << id;
}

TEST(FontFile, ANumberGoesAsFarAsItsDigitsAndElseLeavesItsField) {
    const HostLocale continental;
    const std::pair<int, std::vector<std::string>> values[] = {
        {0, {"0", "0x10"}},
        {1, {"1.234", "1,234"}},
        {12, {"12", "012", "+12", "12px", "12=6", "12\r"}},
        {65535, {"65535", "-1"}},
        {32768, {"-32768"}},
        {77, {"", "x", "\"5\"", "-", "--5", "+-5", "=5"}},
        {77, {"65536", "-32769", "4294967301", "-4294967301", "99999999999999999999999"}}};
    Charset before;
    before.chars[65].x = before.lineHeight = 77;
    for (const auto& [expected, texts] : values)
        for (const std::string& text : texts) {
            const Charset font = ParsedFont(
                "char id=65 x=" + text + " y=3\ncommon lineHeight=" + text + " base=4", before);
            EXPECT_EQ(Of(font.chars[65]), (Numbers{expected, 3, 0, 0, 0, 0, 0, 0})) << text;
            EXPECT_EQ(Head(font), (std::array{expected, 4, 0, 0, 0})) << text;
            ExpectZeroBut(font, {65});
        }
}

TEST(FontFile, TheLastNumberBeforeAKeySaysWhoseItIs) {
    struct {
        const char* text;
        int id, x, y; // of the one glyph that has something; -1: none has
    } const lines[] = {
        {"char id=65 x=1 y=2", 65, 1, 2},
        {"char x=1 y=2", 0, 1, 2},
        {"char id=255 x=1 y=2", 255, 1, 2},
        {"char id=65 x=1 x=3 y=2", 65, 3, 2},
        {"char id=300 x=9 id=65 x=1 y=2", 65, 1, 2},
        {"char id=65 x=1 y=2 id=256 x=9", 65, 1, 2},
        {"char id=nothing x=1 y=2", 0, 1, 2},
        {"char id=65 x=1\nchar y=2 x", 65, 1, 0}, // whose y is that of entry 0
        {"char id=256 x=1 y=2", -1, 0, 0},
        {"char id=-1 x=1 y=2", -1, 0, 0},
        {"char id=-65471 x=1 y=2", -1, 0, 0}, // whose low 16 bits are 65
        {"char id=65601 x=1 y=2", -1, 0, 0},
        {"char id=99999999999999999999 x=1", -1, 0, 0},
        {"chars id=65 x=1\nkerning id=65 x=1\npage id=65 x=1", -1, 0, 0},
        {"Char id=65 x=1\nCHAR id=65 x=1\n\"char\" id=65 x=1", -1, 0, 0},
        {"char ID=65 X=1 Width=2 xadvance =3 y", -1, 0, 0},
        {"charid=65 x=1\nchar=65 x=1\nid=65 char x=1", -1, 0, 0},
        {"char id=65\nx=1", -1, 0, 0},
    };
    for (const auto& [text, id, x, y] : lines) {
        SCOPED_TRACE(text);
        const Charset font = ParsedFont(text);
        EXPECT_EQ(Head(font), (std::array{0, 0, 0, 0, 0}));
        ExpectZeroBut(font, {std::max(id, 0), 0});
        EXPECT_EQ(Of(font.chars[std::max(id, 0)]), (Numbers{x, y, 0, 0, 0, 0, 0, 0}));
    }
}

TEST(FontFile, JunkAroundTheLinesDoesNoHarm) {
    std::string junk;
    for (int i = 1; i < 4096; ++i)
        if (i % 256 != '\n')
            junk += static_cast<char>(i % 256);
    const std::string zeros(70000, '\0'), blanks(70000, ' ');
    const Charset font = ParsedFont(junk + "\n" + zeros + "\nchar id=65" + blanks + "x=5 y" +
                                    zeros + "=9 " + junk + " width=6 =7 = \n\r\n\n \n" + junk);
    EXPECT_EQ(Of(font.chars[65]), (Numbers{5, 0, 6, 0, 0, 0, 0, 0}));
    ExpectZeroBut(font, {65});
    ParsedFont("");
    std::istringstream ended("char id=65 x=1");
    ended.setstate(std::ios::eofbit);
    Charset empty;
    EXPECT_TRUE(Vorn::ParseFont(ended, empty));
    ExpectZeroBut(empty, {});
}

TEST(FontFile, OfTheSamplesHasAllOfAsciiInItsPicture) {
    bmFont font;
    ASSERT_TRUE(font.loadCharData("data/font/vorn.fnt"));
    for (int id = ' '; id <= '~'; ++id) {
        const CharDescriptor& c = font.chars[id];
        EXPECT_TRUE(c.xadvance > 0 && (id == ' ' || (c.width > 0 && c.height > 0))) << id;
        EXPECT_TRUE(c.x + c.width < font.scaleW && c.y + c.height < font.scaleH) << id;
        EXPECT_TRUE(c.page == 0 && c.yoffset + c.height <= font.lineHeight + 1) << id;
    }
}

TEST(FontFile, ThatCannotBeOpenedChangesNothing) {
    const Tests::TempFolder folder;
    bmFont font;
    ASSERT_TRUE(font.loadCharData(folder.File("a.fnt", FileOf("angelcode"))));
    for (const std::string& path : {folder / "missing.fnt", folder / ".", std::string()})
        EXPECT_FALSE(font.loadCharData(path)) << path;
    EXPECT_EQ(Head(font), (std::array{32, 26, 256, 128, 1}));
    EXPECT_EQ(font.chars[65].width, 21);
}

/// Each character's way is its code, or one beyond 255.
TEST(FontText, IsUtf8AndElseLatin1) {
    bmFont font;
    font.lineHeight = 10;
    for (std::uint16_t i = 0; i < 256; ++i)
        font.chars[i].xadvance = i;
    struct {
        const char* text;
        float width, lines;
    } const texts[] = {
        {nullptr, 0, 0},
        {"", 0, 0},
        {"AB", 65 + 66, 1},
        {"A\nBBB\r\nCC", 3 * 66, 3},
        {"A\n", 65, 2},
        {"\n", 0, 2},
        {"\xC3\xA9\xC2\x80\xC3\xBF", 0xE9 + 0x80 + 0xFF, 1},
        {"A\xE2\x82\xAC\xF0\x9F\x98\x80\xC4\x80"
         "B",
         65 + 66, 1},                        // beyond 255
        {"\xE9t\xE9", 0xE9 + 't' + 0xE9, 1}, // Latin-1
        {"\xC3", 0xC3, 1},                   // cut off
        {"\xE2\x82", 0xE2 + 0x82, 1},
        {"\xF0\x9F\x98\n", 0xF0 + 0x9F + 0x98, 2},
        {"\xC1\x81", 0xC1 + 0x81, 1}, // written too long
        {"\xE0\x80\x81", 0xE0 + 0x80 + 0x81, 1},
        {"\xED\xA0\x80", 0xED + 0xA0 + 0x80, 1},                       // half of a pair
        {"\xF4\x90\x80\x80\xFE", 0xF4 + 0x90 + 0x80 + 0x80 + 0xFE, 1}, // beyond all
    };
    for (const auto& [text, width, lines] : texts) {
        const Vorn::Point2 size = font.TextSize(text);
        EXPECT_EQ(size.x, width) << testing::PrintToString(text);
        EXPECT_EQ(size.y, 10 * lines) << testing::PrintToString(text);
    }
    font.RenderText(0, 0, 0xFFFFFFFF, "A"); // there is no device
}

constexpr int Side = 16;

class FontDevice : public Tests::RecorderTest {};

TEST_F(FontDevice, MakesItsQuadAndGivesItUp) {
    bmFont font;
    EXPECT_FALSE(font.quadCreation());
    Vorn::ParserTestFn();
    Open();
    VornPlatform::CallLog log;
    ASSERT_TRUE(font.quadCreation());
    const Tests::Texts calls = Tests::Take(log);
    EXPECT_EQ(calls.at(0), "CreateVertexBuffer 224 8 82 0");
    EXPECT_THAT(calls, testing::Contains("CreateIndexBuffer 16 8 102 0"));
    const unsigned int order[] = {0, 1, 3, 2};
    EXPECT_EQ(Content(font.mIndexBuffer, 16), Tests::RawArray(order, 4));
    EXPECT_EQ(Content(font.mVertexBuffer, 28),
              Tests::Raw(-0.5f, 0.5f, 0.0f, 0.0f, 0.0f, 0.0f, 0xFFFFFFFFu));
    ASSERT_TRUE(font.quadCreation()); // the first pair goes
    Vorn::ParserTestFn();
    EXPECT_EQ(VornPlatform::CountLiveObjects().vertexBuffers, 2); // and that of Graphic
    font.Release();
    font.Release();
    engine.Reset();
    EXPECT_TRUE(graphic.CheckContext());
}

TEST_F(FontDevice, TakesItsTextureFromTheStore) {
    Open();
    bmFont font;
    EXPECT_THROW(font.loadtextureData(), std::out_of_range);
    EXPECT_EQ(font.mTexture, nullptr);
    folder.File("data/img/dFont.tga", Tests::Tga(0xFFFFFFFF));
    textures.Load("dFont.tga");
    EXPECT_TRUE(font.loadtextureData());
    EXPECT_EQ(font.mTexture, textures.Get("dFont.tga"));
}

/// Glyphs out of a texture whose texels are all different.
class FontPicture : public Tests::PictureTest {
protected:
    FontPicture() {
        Open(SmallWidth, SmallHeight);
        folder.File("data/img/noise.tga", Tests::Tga(Side, Side, texels.pixels));
        textures.Load("noise.tga");
        font.mTexture = textures.Get("noise.tga");
        font.scaleW = font.scaleH = Side;
        font.lineHeight = 13;
        for (int c = 'A'; c <= 'Z'; ++c) {
            const int x = dice(Side), y = dice(Side);
            font.chars[c] = {Field(x),
                             Field(y),
                             Field(dice(Side - x + 1)),
                             Field(dice(Side - y + 1)),
                             Field(dice(9) - 4),
                             Field(dice(9) - 4),
                             Field(dice(14)),
                             0};
        }
        Glyph(' ').xadvance = 5;
        Glyph('A') = {1, 1, 2, 2, 0, 0, 9, 0};
    }
    CharDescriptor& Glyph(char c) { return font.chars[static_cast<unsigned char>(c)]; }
    const CharDescriptor& Glyph(char c) const { return font.chars[static_cast<unsigned char>(c)]; }
    static std::uint16_t Field(int number) { return static_cast<std::uint16_t>(number); }

    /// Over the ground: source alpha, in steps of 255.
    static std::uint32_t Blend(std::uint32_t under, std::uint32_t texel, std::uint32_t color) {
        std::array<int, 4> t = Tests::Channels(texel);
        const std::array<int, 4> c = Tests::Channels(color), u = Tests::Channels(under);
        for (std::size_t i = 0; i < 4; ++i)
            t[i] = (t[i] * c[i] * 2 + 255) / 510;
        if (t[3] < 8)
            return under;
        const auto mix = [&](std::size_t i) {
            return (t[i] * t[3] + u[i] * (255 - t[3]) + 127) / 255;
        };
        return Tests::Packed(mix(0), mix(1), mix(2));
    }
    void Lay(Image& picture, const CharDescriptor& c, int left, int top,
             std::uint32_t color) const {
        left += static_cast<std::int16_t>(c.xoffset), top += static_cast<std::int16_t>(c.yoffset);
        for (int y = 0; y < c.height; ++y)
            for (int x = 0; x < c.width; ++x)
                if (left + x >= 0 && left + x < SmallWidth && top + y >= 0 &&
                    top + y < SmallHeight) {
                    std::uint32_t& pixel = picture.At(left + x, top + y);
                    pixel = Blend(pixel, texels.At(c.x + x, c.y + y), color);
                }
    }
    Image Expected(int x, int y, std::uint32_t color, const std::string& text,
                   Vorn::BM_ALIGN align = Vorn::BM_ALIGN_LEFT) const {
        Image picture(SmallWidth, SmallHeight, Ground);
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line); y += font.lineHeight) {
            int width = 0;
            for (const char c : line)
                width += Glyph(c).xadvance;
            int pen = align == Vorn::BM_ALIGN_RIGHT    ? x - width
                      : align == Vorn::BM_ALIGN_CENTER ? x - width / 2
                                                       : x;
            for (const char c : line) {
                Lay(picture, Glyph(c), pen, y, color);
                pen += Glyph(c).xadvance;
            }
        }
        return picture;
    }
    template <typename Action>
    Image Draw(const Action& action) {
        graphic.SetBackBufferColor(Ground);
        graphic.BeginScene();
        const int before = VornPlatform::CountFrame().draws;
        action();
        draws = VornPlatform::CountFrame().draws - before;
        graphic.EndScene();
        Image picture(SmallWidth, SmallHeight, 0);
        picture.pixels = Picture();
        return picture;
    }

    Image DrawText(float x, float y, std::uint32_t color, const char* text,
                   Vorn::BM_ALIGN align = Vorn::BM_ALIGN_LEFT) {
        return Draw([&] { font.RenderText(x, y, color, text, align); });
    }

    Tests::Dice dice{7};
    Image texels = Tests::Noise(Side, Side, 3);
    bmFont font;
    int draws = 0;
};

TEST_F(FontPicture, LaysEachTexelOnItsPixelInOneDraw) {
    const Vorn::BM_ALIGN aligns[] = {Vorn::BM_ALIGN_LEFT, Vorn::BM_ALIGN_CENTER,
                                     Vorn::BM_ALIGN_RIGHT};
    for (int i = 0; i < 30; ++i) {
        std::string text = "A";
        for (int length = dice(40); length > 0; --length)
            text += dice(8) == 0 ? '\n' : dice(8) == 0 ? ' ' : static_cast<char>('A' + dice(26));
        const int x = dice(SmallWidth + 40) - 20, y = dice(SmallHeight + 40) - 20;
        const Image picture = DrawText(static_cast<float>(x), static_cast<float>(y), 0xFFFFFFFF,
                                       text.c_str(), aligns[i % 3]);
        ASSERT_TRUE(Tests::Same(picture, Expected(x, y, 0xFFFFFFFF, text, aligns[i % 3]))) << text;
        EXPECT_EQ(draws, 1);
    }
}

TEST_F(FontPicture, MultipliesTextureAndColourAndBlendsByAlpha) {
    texels = Tests::Noise(Side, Side, 5, 0);
    folder.File("data/img/noise.tga", Tests::Tga(Side, Side, texels.pixels));
    textures.Release();
    textures.Reload();
    for (const std::uint32_t color : {0xFFFFFFFFu, 0xFFFF4000u, 0x80C0FF20u, 0x0010FF20u}) {
        const std::string text = "THE QUICK\nBROWN FOX";
        const Image picture = DrawText(40, 60, color, text.c_str());
        EXPECT_TRUE(Tests::Same(picture, Expected(40, 60, color, text), 2)) << Tests::Hex(color);
    }
    font.mTexture = nullptr; // white
    texels = Image(Side, Side, 0xFFFFFFFF);
    EXPECT_TRUE(
        Tests::Same(DrawText(40, 60, 0x80C0FF20, "XYZ"), Expected(40, 60, 0x80C0FF20, "XYZ"), 1));
}

TEST_F(FontPicture, NeedsNoStateOfOthersAndLeavesTheirs) {
    IDirect3DDevice9& device = *Vorn::Graphic::GetDevice();
    D3DXMATRIX odd;
    D3DXMatrixTranslation(&odd, 3, 4, 5);
    Vorn::Mesh none;
    const auto spoil = [&] {
        graphic.DrawTwoD(odd, nullptr);
        graphic.SetSkelMatrix(none, odd, 0); // a declaration is left, and shaders
        for (const auto which : {D3DTS_WORLD, D3DTS_VIEW, D3DTS_PROJECTION, D3DTS_TEXTURE0})
            device.SetTransform(which, &odd);
        graphic.SetWireFrame(true);
        graphic.SetPointLight(true);
        device.SetRenderState(D3DRS_ZENABLE, TRUE);
        device.SetRenderState(D3DRS_ZFUNC, D3DCMP_LESS);
        device.SetRenderState(D3DRS_ALPHABLENDENABLE, FALSE);
        device.SetRenderState(D3DRS_SRCBLEND, D3DBLEND_ZERO);
        device.SetRenderState(D3DRS_BLENDOP, D3DBLENDOP_MAX);
        device.SetRenderState(D3DRS_CULLMODE, D3DCULL_CW);
        device.SetTextureStageState(0, D3DTSS_TEXTURETRANSFORMFLAGS, D3DTTFF_COUNT2);
        device.SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_ADD);
        device.SetTextureStageState(0, D3DTSS_ALPHAARG1, D3DTA_DIFFUSE);
        device.SetSamplerState(0, D3DSAMP_MIPFILTER, D3DTEXF_LINEAR);
    };
    const Image picture = Draw([&] {
        spoil();
        font.RenderText(90, 20, 0xFFFFFFFF, "STATES");
    });
    EXPECT_TRUE(Tests::Same(picture, Expected(90, 20, 0xFFFFFFFF, "STATES")));
    for (const auto which : {D3DTS_WORLD, D3DTS_VIEW, D3DTS_PROJECTION, D3DTS_TEXTURE0}) {
        D3DXMATRIX now;
        device.GetTransform(which, &now);
        EXPECT_EQ(std::memcmp(&now, &odd, sizeof odd), 0) << which;
    }
    const auto state = [&device](auto get, auto which, auto... sampler) {
        DWORD value = 0;
        (device.*get)(sampler..., which, &value);
        return value;
    };
    using Device = IDirect3DDevice9;
    EXPECT_EQ(state(&Device::GetRenderState, D3DRS_FILLMODE), D3DFILL_WIREFRAME);
    EXPECT_EQ(state(&Device::GetRenderState, D3DRS_LIGHTING), 1u);
    EXPECT_EQ(state(&Device::GetRenderState, D3DRS_ZENABLE), 0u);
    EXPECT_EQ(state(&Device::GetTextureStageState, D3DTSS_COLOROP, 0u), D3DTOP_ADD);
    EXPECT_EQ(state(&Device::GetTextureStageState, D3DTSS_ALPHAARG1, 0u), D3DTA_DIFFUSE);
    EXPECT_EQ(state(&Device::GetSamplerState, D3DSAMP_MIPFILTER, 0u), D3DTEXF_LINEAR);
    graphic.SetWireFrame(false);
    graphic.SetPointLight(false);
}

TEST_F(FontPicture, WhatCannotShowDrawsNothing) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN(),
                    infinite = std::numeric_limits<float>::infinity(),
                    huge = std::numeric_limits<float>::max();
    const auto nothing = [&](float x, float y, const char* text) {
        return Tests::Same(DrawText(x, y, 0xFFFFFFFF, text),
                           Image(SmallWidth, SmallHeight, Ground));
    };
    for (const char* text :
         {static_cast<const char*>(nullptr), "", "  \n ", "\xE2\x82\xAC", "abc"}) {
        EXPECT_TRUE(nothing(50, 50, text)) << testing::PrintToString(text);
        EXPECT_EQ(draws, 0) << testing::PrintToString(text);
    }
    for (const float far : {nan, infinite, -infinite, huge, -huge}) {
        EXPECT_TRUE(nothing(far, 50, "ABC")) << far;
        EXPECT_TRUE(nothing(50, far, "ABC")) << far;
    }
    Glyph('b') = {0, 0, 9, 9, 0, 0, 9, 1}; // in a texture that is not there
    Glyph('c') = {0, 0, 9, 9, 0, 0x8000, 0xFFFF, 0};
    EXPECT_TRUE(nothing(50, 50, "bcccccABC"));
    font.scaleW = 0;
    EXPECT_TRUE(nothing(50, 50, "ABC"));
    font.scaleW = Side, font.scaleH = 0;
    EXPECT_TRUE(nothing(50, 50, "ABC"));
}

TEST_F(FontPicture, ALongTextTakesMoreThanOneDraw) {
    Glyph('a') = {1, 2, 3, 4, 0, 0, 0, 0};
    const std::string text(40000, 'a');
    EXPECT_TRUE(
        Tests::Same(DrawText(50, 50, 0xFFFFFFFF, text.c_str()), Expected(50, 50, 0xFFFFFFFF, "a")));
    EXPECT_EQ(draws, 2);
}

} // namespace
