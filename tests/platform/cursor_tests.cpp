// SPDX-License-Identifier: MIT
#include "platform/window/cursor_file.hpp"
#include "tests/platform/window_fixture.hpp"
#include "tests/support/temp_folder.hpp"

#include <cstdint>
#include <string>

namespace Tests {

// Writes cursor files as small as they can be.
struct CursorFile {
    static std::string Number(std::uint32_t value, int bytes) {
        std::string text;
        for (int i = 0; i < bytes; ++i)
            text += static_cast<char>(value >> (8 * i) & 0xFF);
        return text;
    }
    // Two by two pixels; all lie in the colour and mask bytes given.
    static std::string Bitmap(int bits, const std::string& palette, const std::string& colors,
                              const std::string& mask = std::string(8, '\0'),
                              std::uint32_t width = 2, std::uint32_t twoHeights = 4,
                              std::uint32_t used = 0) {
        return Number(40, 4) + Number(width, 4) + Number(twoHeights, 4) + Number(1, 2) +
               Number(static_cast<std::uint32_t>(bits), 2) + std::string(16, '\0') +
               Number(used, 4) + Number(0, 4) + palette + colors + mask;
    }
    static std::string Cur(const std::string& bitmap, std::uint32_t type = 2,
                           std::uint32_t count = 1) {
        return Number(0, 2) + Number(type, 2) + Number(count, 2) + std::string(4, '\2') +
               Number(1, 2) + Number(999, 2) +
               Number(static_cast<std::uint32_t>(bitmap.size()), 4) + Number(22, 4) + bitmap;
    }
    static std::string Chunk(const std::string& name, const std::string& data) {
        return name + Number(static_cast<std::uint32_t>(data.size()), 4) + data +
               std::string(data.size() % 2, '\0');
    }
    static std::string Ani(const std::string& frames) {
        return Chunk("RIFF", "ACON" + Chunk("anih", std::string(36, '\0')) +
                                 Chunk("LIST", "INFO" + Chunk("INAM", "odd")) +
                                 Chunk("LIST", "fram" + frames));
    }
    static std::string Plain() { return Cur(Bitmap(32, "", std::string(16, '\x7F'))); }
};

class CursorTest : public WindowTest {
protected:
    HCURSOR Load(const std::string& bytes) {
        return LoadCursorFromFileA(folder.File("test.cur", bytes).c_str());
    }
    TempFolder folder;
};

TEST_F(CursorTest, FilesAreCursorsOrNull) {
    using F = CursorFile;
    const std::string plain = F::Plain();
    const std::string bitmap = F::Bitmap(32, "", std::string(16, '\x7F'));
    struct Case {
        const char* what;
        std::string bytes;
        bool good;
    };
    const Case cases[] = {
        {"32 bits", plain, true},
        {"32 bits without a mask", F::Cur(F::Bitmap(32, "", std::string(16, '\1'), "")), true},
        {"24 bits", F::Cur(F::Bitmap(24, "", std::string(16, '\1'))), true},
        {"24 bits without a mask", F::Cur(F::Bitmap(24, "", std::string(16, '\1'), "")), false},
        {"8 bits", F::Cur(F::Bitmap(8, std::string(1024, '\1'), std::string(8, '\xFF'))), true},
        {"8 bits, few colours, others used",
         F::Cur(F::Bitmap(8, std::string(8, '\1'), std::string(8, '\xFF'), std::string(8, '\0'), 2,
                          4, 2)),
         true},
        {"more colours than the bits can name",
         F::Cur(F::Bitmap(1, std::string(800, '\1'), std::string(8, '\xFF'), std::string(8, '\0'),
                          2, 4, 200)),
         false},
        {"4 bits", F::Cur(F::Bitmap(4, std::string(64, '\1'), std::string(8, '\x12'))), true},
        {"1 bit", F::Cur(F::Bitmap(1, std::string(8, '\1'), std::string(8, '\xFF'))), true},
        {"16 bits", F::Cur(F::Bitmap(16, "", std::string(16, '\1'))), false},
        {"no width", F::Cur(F::Bitmap(32, "", std::string(16, '\1'), "", 0)), false},
        {"huge width", F::Cur(F::Bitmap(32, "", std::string(16, '\1'), "", 0xFFFFFFFF)), false},
        {"odd height", F::Cur(F::Bitmap(32, "", std::string(16, '\1'), "", 2, 3)), false},
        {"upside down", F::Cur(F::Bitmap(32, "", std::string(16, '\1'), "", 2, 0xFFFFFFFC)), false},
        {"an icon", F::Cur(bitmap, 1), false},
        {"no pictures", F::Cur(bitmap, 2, 0), false},
        {"more pictures than there are", F::Cur(bitmap, 2, 60000), false},
        {"compressed", F::Cur("\x89PNG\r\n\x1a\n" + std::string(60, '\1')), false},
        {"animated", F::Ani(F::Chunk("icon", plain)), true},
        {"animated, first frame broken", F::Ani(F::Chunk("icon", "no") + F::Chunk("icon", plain)),
         true},
        {"animated, no frames", F::Ani(""), false},
        {"sound", F::Chunk("RIFF", "WAVE" + F::Chunk("LIST", "fram" + F::Chunk("icon", plain))),
         false},
        {"chunk of a huge size", F::Chunk("RIFF", "ACONLIST\xFF\xFF\xFF\xFF"), false},
        {"text", "not a cursor", false},
        {"empty", "", false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Load(c.bytes) != nullptr, c.good) << c.what;
    for (const std::string& whole : {plain.substr(0, plain.size() - 8), // the mask may be missing
                                     F::Ani(F::Chunk("icon", plain))})
        for (std::size_t size = 0; size < whole.size(); ++size)
            EXPECT_EQ(Load(whole.substr(0, size)), nullptr) << size << " bytes of a file";
}

TEST_F(CursorTest, PixelsAreThoseOfTheFile) {
    using F = CursorFile;
    using testing::ElementsAre;
    const auto pixels = [](const std::string& bitmap) {
        const std::string file = F::Cur(bitmap);
        const auto picture = VornPlatform::ReadCursor({file.begin(), file.end()});
        return picture ? picture->pixels : std::vector<std::uint32_t>{};
    };
    // The bottom row comes first; of the mask, the left pixel of the bottom row is set.
    const std::string mask("\x80\0\0\0\0\0\0\0", 8);
    const std::string black(4, '\0'), red("\0\0\xFF\0", 4);
    EXPECT_THAT(pixels(F::Bitmap(32, "",
                                 F::Number(0x80112233, 4) + F::Number(0, 4) +
                                     F::Number(0xFF000000, 4) + F::Number(0xFFFFFFFF, 4))),
                ElementsAre(0xFF000000, 0xFFFFFFFF, 0x80112233, 0));
    EXPECT_THAT(
        pixels(F::Bitmap(
            32, "", F::Number(0, 4) + F::Number(0x112233, 4) + F::Number(0, 4) + F::Number(0, 4),
            mask)),
        ElementsAre(0xFF000000, 0xFF000000, 0, 0xFF112233))
        << "no alpha anywhere: the mask decides";
    const std::string row24("\1\2\3\4\5\6\0\0", 8);
    EXPECT_THAT(pixels(F::Bitmap(24, "", row24 + row24, mask)),
                ElementsAre(0xFF030201, 0xFF060504, 0xFF000000, 0xFF060504))
        << "masked and coloured is an inverted screen: black";
    EXPECT_THAT(pixels(F::Bitmap(1, black + red, std::string("\x40\0\0\0\x80\0\0\0", 8), mask)),
                ElementsAre(0xFFFF0000, 0xFF000000, 0, 0xFFFF0000));
    EXPECT_THAT(pixels(F::Bitmap(4, black + red, std::string("\x01\0\0\0\x1F\0\0\0", 8),
                                 std::string(8, '\0'), 2, 4, 2)),
                ElementsAre(0xFFFF0000, 0xFF000000, 0xFF000000, 0xFFFF0000))
        << "a colour beyond the palette is black";
    const std::string file = F::Cur(F::Bitmap(32, "", std::string(16, '\1')));
    const auto picture = VornPlatform::ReadCursor({file.begin(), file.end()});
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->hotX, 1);
    EXPECT_EQ(picture->hotY, 1) << "999 lies outside";
}

TEST_F(CursorTest, OnlyPathsOfCursorFilesAreLoaded) {
    const std::string path = folder.File("real.cur", CursorFile::Plain());
    EXPECT_EQ(LoadCursorFromFileA(nullptr), nullptr);
    EXPECT_EQ(LoadCursorFromFileA((folder / "absent.cur").c_str()), nullptr);
    EXPECT_EQ(LoadCursorFromFileA(folder.Path().c_str()), nullptr);
    EXPECT_EQ(LoadCursorFromFileA("/dev/zero"), nullptr);
    EXPECT_NE(LoadImageA(nullptr, path.c_str(), IMAGE_CURSOR, 0, 0, 0), nullptr);
    EXPECT_EQ(LoadImageA(nullptr, path.c_str(), 1, 0, 0, 0), nullptr);
    EXPECT_EQ(LoadImageA(nullptr, MAKEINTRESOURCEA(101), IMAGE_CURSOR, 0, 0, 0), nullptr);
    EXPECT_EQ(LoadImageA(nullptr, nullptr, IMAGE_CURSOR, 0, 0, 0), nullptr);
}

TEST_F(CursorTest, SetGivesTheOneBefore) {
    const HCURSOR mine = Load(CursorFile::Plain());
    const HCURSOR arrow = SetCursor(mine);
    Show(); // with a cursor that was set before there was a window
    EXPECT_EQ(SetCursor(nullptr), mine);
    EXPECT_EQ(SetCursor(arrow), nullptr);
    EXPECT_EQ(SetCursor(reinterpret_cast<HCURSOR>(this)), nullptr) << "no cursor at all";
    EXPECT_EQ(SetCursor(arrow), arrow) << "and nothing has changed";
}

TEST_F(CursorTest, TheCursorOfTheClassIsShownByDefault) {
    const HCURSOR mine = Load(CursorFile::Plain());
    WNDCLASSEXA description = {};
    description.lpfnWndProc = DefWindowProcA;
    description.lpszClassName = "WithCursor";
    description.hCursor = mine;
    RegisterClassExA(&description);
    const HWND window =
        CreateWindowExA(0, "WithCursor", "", 0, 0, 0, 64, 64, nullptr, nullptr, nullptr, nullptr);
    windows.push_back(window);
    const HCURSOR before = SetCursor(nullptr);
    SendMessageA(window, WM_SETCURSOR, 0, 2); // not over the client area
    EXPECT_EQ(SetCursor(nullptr), nullptr);
    SendMessageA(window, WM_SETCURSOR, 0, HTCLIENT);
    EXPECT_EQ(SetCursor(before), mine);
}

TEST_F(CursorTest, HidingAgainAndAgainIsUndoneByOneCall) {
    EXPECT_EQ(ShowCursor(TRUE), 0);
    for (int i = 0; i < 1000; ++i)
        EXPECT_EQ(ShowCursor(FALSE), -1);
    EXPECT_EQ(ShowCursor(TRUE), 0);
    EXPECT_EQ(ShowCursor(TRUE), 0);
}

} // namespace Tests
