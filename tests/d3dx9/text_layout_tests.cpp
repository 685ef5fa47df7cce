// SPDX-License-Identifier: MIT
//
// Where characters stand, by a face in which each is 10 wide and a j reaches out of that by 2 and
// 3, and what the flags of a text do.
#include "platform/d3dx9/font/text_layout.hpp"
#include "tests/support/device.hpp"
#include "tests/support/temp_folder.hpp"

#include <cstdlib>
#include <filesystem>
#include <memory>

using namespace VornPlatform;

namespace Tests {

// From a copy that ends where the text ends.
static std::u32string Characters(const std::string& text) {
    const auto bytes = std::make_unique<char[]>(text.size());
    std::copy(text.begin(), text.end(), bytes.get());
    std::string_view rest(bytes.get(), text.size());
    std::u32string characters;
    while (!rest.empty())
        characters += TakeCharacter(rest);
    return characters;
}

TEST(TextCharacters, WhatIsNoUtf8IsReplacedAndTheRestIsThere) {
    const std::pair<std::string, std::u32string> cases[] = {
        {"a\x7f", U"a\x7f"},
        {"\xc3\xa4\xdf\xbf", U"\u00e4\u07ff"},
        {"\xe0\xa0\x80\xe2\x82\xac\xef\xbf\xbf", U"\u0800\u20ac\uffff"},
        {"\xf0\x90\x80\x80\xf4\x8f\xbf\xbf", U"\U00010000\U0010ffff"},
        {"a\x80z", U"a\ufffdz"},             // goes on, and nothing began
        {"\xc3", U"\ufffd"},                 // cut off
        {"\xe2\x82", U"\ufffd"},             // cut off
        {"\xf0\x9f\x98", U"\ufffd"},         // cut off
        {"\xe2(\xf0\x9f", U"\ufffd(\ufffd"}, // broken off
        {"\xc0\x80", U"\ufffd\ufffd"},       // a byte that is never used
        {"\xe0\x80\xaf", U"\ufffd"},         // longer than it must be
        {"\xed\xa0\x80", U"\ufffd"},         // half of a pair
        {"\xf4\x90\x80\x80", U"\ufffd"},     // beyond the last
        {"\xff\xfe", U"\ufffd\ufffd"}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(Characters(text), expected) << testing::PrintToString(text);
}

// "a0 b20 |30", the ends of lines with their widths.
static std::string LaidOut(const char* text, const TextRules& rules = {}) {
    std::string result;
    for (const TextLine& line : LayOut(text, rules, [](char32_t c) {
             return c == U'j' ? CharacterSize{10, 2, 3} : CharacterSize{10};
         })) {
        for (const PlacedCharacter& placed : line.characters)
            result += static_cast<char>(placed.character) + std::to_string(placed.x) + ' ';
        result += '|' + std::to_string(line.width) + ' ';
    }
    return result;
}

TEST(TextLayout, LinesTabsAndControlCharacters) {
    EXPECT_EQ(LaidOut(""), "");
    EXPECT_EQ(LaidOut("ab c"), "a0 b10 c30 |40 ");
    EXPECT_EQ(LaidOut("a\r\nb\n"), "a0 |10 b0 |10 |0 ");
    EXPECT_EQ(LaidOut("\tb\n12345678\tc"), "b80 |90 10 210 320 430 540 650 760 870 c160 |170 ");
    EXPECT_EQ(LaidOut("a\x01\x7f"
                      "b"),
              "a0 b10 |20 ");
    EXPECT_EQ(LaidOut("a\nb", {.singleLine = true}), "a0 b10 |20 ");
}

TEST(TextLayout, LinesBreakBetweenWords) {
    const auto broken = [](const char* text, std::int64_t width) {
        return LaidOut(text, {.breakWidth = width});
    };
    EXPECT_EQ(broken("ab cd", 50), "a0 b10 c30 d40 |50 ") << "it just fits";
    EXPECT_EQ(broken("ab cd", 49), "a0 b10 |20 c0 d10 |20 ");
    EXPECT_EQ(broken("ab   cd e", 40), "a0 b10 |20 c0 d10 e30 |40 ") << "blanks at the break go";
    EXPECT_EQ(broken("abcdef gh", 30), "a0 b10 c20 d30 e40 f50 |60 g0 h10 |20 ");
    EXPECT_EQ(broken("a bcdef", 30), "a0 |10 b0 c10 d20 e30 f40 |50 ") << "too long anywhere";
    EXPECT_EQ(broken("a b\nc", 10), "a0 |10 b0 |10 c0 |10 ");
    EXPECT_EQ(broken("a b", -5), "a0 |10 b0 |10 ") << "a rectangle that is inside out";
    EXPECT_EQ(broken("  ab", 20), "a20 b30 |40 ") << "no line without a word";
}

TEST(TextLayout, WhatReachesOutOfACharacterStaysInsideOfTheLine) {
    EXPECT_EQ(LaidOut("j"), "j2 |15 ");
    EXPECT_EQ(LaidOut("jaj"), "j2 a12 j22 |35 ");
    EXPECT_EQ(LaidOut("aj \nj"), "a0 j10 |30 j2 |15 ");
    EXPECT_EQ(LaidOut("aj jb", {.breakWidth = 24}), "a0 j10 |23 j2 b12 |22 ");
    EXPECT_EQ(LaidOut("a bj", {.breakWidth = 42}), "a0 |10 b0 j10 |23 ");
}

class TextFlagTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        ASSERT_EQ(D3D_OK,
                  D3DXCreateFontA(device, 12, 0, 400, 1, FALSE, 1, 0, 4, 0, "Arial", font.Out()));
    }
    void TearDown() override { font.Free(); }

    Picture Drawn(const char* text, RECT rect, DWORD format) {
        Clear(black);
        EXPECT_GT(font->DrawTextA(nullptr, text, -1, &rect, format, white), 0);
        return Screen();
    }
    Held<ID3DXFont> font;
};

TEST_F(TextFlagTest, TextStandsInItsRectangleWhereTheFlagsSay) {
    RECT size = {};
    font->DrawTextA(nullptr, "il", -1, &size, DT_CALCRECT, white);
    const LONG width = size.right;
    ASSERT_TRUE(width > 0 && width < 30 && size.bottom == 12);
    const RECT rect = {10, 8, 50, 40};
    const auto at = [this](LONG left, LONG top) {
        return Drawn("il", {left, top, left, top}, DT_NOCLIP);
    };
    const LONG middle = 10 + (40 - width) / 2;
    EXPECT_TRUE(Same(Drawn("il", rect, DT_CENTER), at(middle, 8)));
    EXPECT_TRUE(Same(Drawn("il", rect, DT_RIGHT), at(50 - width, 8)));
    EXPECT_TRUE(Same(Drawn("il", rect, DT_VCENTER | DT_SINGLELINE), at(10, 18)));
    EXPECT_TRUE(Same(Drawn("il", rect, DT_BOTTOM | DT_RIGHT | DT_SINGLELINE), at(50 - width, 28)));
    EXPECT_TRUE(Same(Drawn("il", rect, DT_BOTTOM), at(10, 8))) << "of one line only";
    EXPECT_TRUE(Same(Drawn("il il", {10, 8, 10 + width + 1, 40}, DT_WORDBREAK),
                     Drawn("il\nil", rect, DT_NOCLIP)));
}

TEST_F(TextFlagTest, MeasuringGivesTheRectangleOfAllLines) {
    RECT one = {}, broken = {5, 6, 6, 7};
    font->DrawTextA(nullptr, "il", -1, &one, DT_CALCRECT, white);
    EXPECT_EQ(font->DrawTextA(nullptr, "il il", -1, &broken, DT_CALCRECT | DT_WORDBREAK, white),
              24);
    EXPECT_TRUE(broken.left == 5 && broken.top == 6);
    EXPECT_TRUE(broken.right == 5 + one.right && broken.bottom == 6 + 24) << "the longest word";
}

TEST_F(TextFlagTest, WeightWidthAndSlantChangeTheLetters) {
    const auto made = [this](UINT width, UINT weight, BOOL italic) {
        EXPECT_EQ(D3D_OK, D3DXCreateFontA(device, 24, width, weight, 1, italic, 1, 0, 4, 0, "Arial",
                                          font.Out()));
        return Drawn("lH", {8, 8, 8, 8}, DT_NOCLIP);
    };
    const Picture plain = made(0, 400, FALSE);
    const auto ink = [](const Picture& picture) {
        int sum = 0;
        for (const std::uint32_t pixel : picture.pixels)
            sum += Channels(pixel)[0];
        return sum;
    };
    EXPECT_GT(ink(made(0, 700, FALSE)), ink(plain) * 5 / 4);
    EXPECT_GT(ink(made(22, 400, FALSE)), ink(plain) * 5 / 4);
    EXPECT_FALSE(Same(made(0, 400, TRUE), plain));
    EXPECT_TRUE(Same(made(0, 0, FALSE), plain));
}

class NoFontTest : public DeviceTest {};

TEST_F(NoFontTest, AMachineWithoutFontsRefusesThem) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // fontconfig reads its files once a process
    EXPECT_EXIT(
        {
            const TempFolder folder;
            const std::string file = folder.File("fonts.conf", "<fontconfig></fontconfig>");
            setenv("FONTCONFIG_FILE", file.c_str(), 1);
            ID3DXFont* none = nullptr;
            const HRESULT result =
                D3DXCreateFontA(device, 12, 0, 400, 1, FALSE, 1, 0, 4, 0, "Arial", &none);
            std::filesystem::remove_all(folder.Path());
            std::_Exit(FAILED(result) && !none ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace Tests
