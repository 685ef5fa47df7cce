// SPDX-License-Identifier: MIT
//
// Text and lines: where they land, and that the states of the device neither matter nor change.
#include "tests/support/device.hpp"

#include <cmath>
#include <functional>
#include <limits>

namespace Tests {

constexpr DWORD noClip = 0x100, calcRect = 0x400; // DT_NOCLIP, DT_CALCRECT

class OverlayTest : public DeviceTest {
protected:
    static constexpr int Wide = 256, High = 128;

    void SetUp() override {
        Open(Parameters(Wide, High));
        DeviceTest::SetUp();
        font = Font(22);
    }
    void TearDown() override { font.Free(); }

    Held<ID3DXFont> Font(int height) {
        Held<ID3DXFont> made;
        EXPECT_EQ(D3D_OK, D3DXCreateFontA(device, height, 0, 400, 1, FALSE, 1, 0, 4, 0, "Arial",
                                          made.Out()));
        return made;
    }
    INT Text(const char* text, int left, int top, D3DCOLOR color = white, int count = -1) {
        RECT rect = {left, top, left - 10, top}; // the right edge left of the left one
        return font->DrawTextA(nullptr, text, count, &rect, noClip, color);
    }
    Picture TextPicture(const char* text, int left, int top, int count = -1) {
        Clear(black);
        Text(text, left, top, white, count);
        return Screen();
    }
    static Picture Moved(const Picture& picture, int dx, int dy) {
        Picture moved(picture.width, picture.height, black);
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x)
                if (picture.At(x, y) != black && x + dx < picture.width && y + dy < picture.height)
                    moved.At(x + dx, y + dy) = picture.At(x, y);
        return moved;
    }
    /// What is not black; empty with right 0.
    static RECT Ink(const Picture& picture) {
        RECT ink = {picture.width, picture.height, 0, 0};
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x)
                if (picture.At(x, y) != black)
                    ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1),
                           std::max(ink.bottom, y + 1)};
        return ink;
    }
    Held<ID3DXFont> font;
};

TEST_F(OverlayTest, TextStartsAtLeftAndTopAndLiesInItsCalculatedRectangle) {
    for (const char* text : {"Hello, world", "jgp|_Q", "i", "WWW\nii\n|"}) {
        RECT rect = {30, 20, 0, 0};
        Clear(black);
        const INT height = font->DrawTextA(nullptr, text, -1, &rect, calcRect, white);
        EXPECT_EQ(Ink(Screen()).right, 0) << "measured, not drawn";
        EXPECT_TRUE(rect.left == 30 && rect.top == 20) << text;
        EXPECT_EQ(rect.bottom - rect.top, height) << text;
        const Picture picture = TextPicture(text, 30, 20);
        const RECT ink = Ink(picture);
        EXPECT_TRUE(ink.right > 0 && ink.left >= rect.left && ink.top >= rect.top &&
                    ink.right <= rect.right && ink.bottom <= rect.bottom)
            << text << ": " << ink.left << " " << ink.top << " " << ink.right << " " << ink.bottom
            << " in " << rect.right << " " << rect.bottom;
        EXPECT_LT(ink.left, 30 + 8) << text;
        EXPECT_TRUE(Same(TextPicture(text, 41, 27), Moved(picture, 11, 7))) << text;
        EXPECT_EQ(Text(text, 0, 0), height) << text;
    }
    RECT line = {}, half = {};
    font->DrawTextA(nullptr, "A", -1, &line, calcRect, white);
    EXPECT_EQ(line.bottom, 22) << "a positive height is that of the line";
    font->DrawTextA(nullptr, "AA", -1, &half, calcRect, white);
    EXPECT_GT(half.right, line.right);
}

TEST_F(OverlayTest, ColourIsExactWhereLettersCoverThePixelWhole) {
    font = Font(60); // stems wider than a pixel
    for (const D3DCOLOR color : {0xff4080c0u, 0x80ff0000u}) {
        Clear(0xff000040);
        Text("HIL", 10, 10, color);
        const auto c = Channels(color);
        const auto mix = [&c](int from, int to) { // by alpha, to nearest
            return (from * (255 - c[3]) * 2 + to * c[3] * 2 + 255) / 510;
        };
        const std::uint32_t full = Packed(mix(0, c[0]), mix(0, c[1]), mix(0x40, c[2]));
        const Picture screen = Screen();
        int exact = 0; // 1 for a blend that rounds twice
        for (const std::uint32_t pixel : screen.pixels)
            exact += Distance(pixel, full) <= (c[3] == 255 ? 0 : 1);
        EXPECT_GT(exact, 200) << std::hex << color;
        for (const std::uint32_t pixel : screen.pixels) // and no pixel overshoots it
            ASSERT_LE(Channels(pixel)[0], Channels(full)[0] + 1);
    }
}

TEST_F(OverlayTest, TextIsCutToTheViewportAndToItsRectangleUnlessNoClip) {
    const Picture whole = TextPicture("HHHHHHHH", 20, 20);
    const auto expect = [&](LONG left, LONG top, LONG right, LONG bottom, const char* what) {
        Picture cut(Wide, High, black);
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x)
                cut.At(x, y) = whole.At(x, y);
        EXPECT_TRUE(Same(Screen(), cut)) << what;
        EXPECT_GT(Ink(cut).right, 0);
    };
    Clear(black);
    const D3DVIEWPORT9 viewport = {30, 26, 40, 8, 0, 1}, all = {0, 0, Wide, High, 0, 1};
    device->SetViewport(&viewport);
    Text("HHHHHHHH", 20, 20); // still pixels of the target
    device->SetViewport(&all);
    expect(30, 26, 70, 34, "viewport");
    Clear(black);
    RECT rect = {20, 20, 61, 33};
    font->DrawTextA(nullptr, "HHHHHHHH", -1, &rect, 0, white);
    expect(20, 20, 61, 33, "rectangle");
}

TEST_F(OverlayTest, OddTextHarmsNothing) {
    RECT rect = {5, 5, 50, 50};
    Clear(black);
    EXPECT_EQ(font->DrawTextA(nullptr, nullptr, -1, &rect, noClip, white), 0);
    EXPECT_EQ(font->DrawTextA(nullptr, "", -1, &rect, noClip, white), 0);
    EXPECT_EQ(font->DrawTextA(nullptr, "text", 0, &rect, noClip, white), 0);
    EXPECT_EQ(Ink(Screen()).right, 0);
    font->DrawTextA(nullptr, "text", -1, nullptr, noClip, white);
    EXPECT_TRUE(Same(TextPicture("AB", 5, 5, 1), TextPicture("A", 5, 5))) << "a count of bytes";
    EXPECT_TRUE(Same(TextPicture("\xc3\xa9|", 5, 5, 2), TextPicture("\xc3\xa9", 5, 5)));
    const Picture front = TextPicture("AV", 5, 5);
    for (const char* text :
         {"AV\xff", "AV\xc3", "AV\xe2\x82", "AV\xf0\x9f\x98", "AV\xed\xa0\x80",
          "AV\xf8\x88\x80\x80\x80", "AV\xc0\x80", "AV\xf4\x90\x80\x80", "AV\x80\x80"}) {
        const Picture picture = TextPicture(text, 5, 5); // what is good of it is there
        for (std::size_t i = 0; i < front.pixels.size(); ++i)
            ASSERT_GE(picture.pixels[i] & 0xff, front.pixels[i] & 0xff) << text;
    }
    const std::string endless(20000, 'x');
    Text(endless.c_str(), 5, 5);
    Text("\n\n\r\n\t\x01\x7f", 5, 5);
    for (const LONG far : {std::numeric_limits<LONG>::max(), std::numeric_limits<LONG>::min()}) {
        RECT away = {far, far, far, far};
        font->DrawTextA(nullptr, "far", -1, &away, noClip, white);
        font->DrawTextA(nullptr, "far", -1, &away, 0, white);
    }
    EXPECT_TRUE(Same(TextPicture("AV", 5, 5), front));
}

TEST_F(OverlayTest, FontsOfOddSizesAreRefusedOrWork) {
    for (const int height : {1, -22, 0, 300, -5000, std::numeric_limits<int>::min()}) {
        Held<ID3DXFont> odd;
        if (SUCCEEDED(
                D3DXCreateFontA(device, height, 0, 900, 1, TRUE, 1, 0, 4, 0, nullptr, odd.Out()))) {
            RECT rect = {0, 0, 10, 10};
            odd->DrawTextA(nullptr, "AB", -1, &rect, noClip, white);
        } else {
            EXPECT_EQ(odd.Get(), nullptr);
        }
    }
    EXPECT_TRUE(
        FAILED(D3DXCreateFontA(device, 22, 0, 400, 1, FALSE, 1, 0, 4, 0, "Arial", nullptr)));
    ID3DXFont* none = nullptr;
    EXPECT_TRUE(FAILED(D3DXCreateFontA(nullptr, 22, 0, 400, 1, FALSE, 1, 0, 4, 0, "Arial", &none)));
    EXPECT_EQ(none, nullptr);
}

TEST_F(OverlayTest, ThousandsOfGlyphsKeepTheirPictures) {
    const Picture hello = TextPicture("Hello", 5, 5);
    const Picture accents = TextPicture("\xc3\xa4\xd0\x96\xce\xa9", 5, 5); // each in its place
    EXPECT_GT(Ink(accents).right, 0);
    Clear(black);
    for (unsigned int code = 0x20; code < 0x3000; code += 16) {
        std::string row;
        for (unsigned int c = code; c < code + 16; ++c) {
            if (c >= 0x800)
                row += static_cast<char>(0xe0 | c >> 12);
            row += static_cast<char>(c >= 0x800  ? 0x80 | (c >> 6 & 63)
                                     : c >= 0x80 ? 0xc0 | c >> 6
                                                 : c);
            if (c >= 0x80)
                row += static_cast<char>(0x80 | (c & 63));
        }
        Text(row.c_str(), 0, 0);
        if (code % 0x400 == 0x20) { // a flush in between
            device->Present(nullptr, nullptr, nullptr, nullptr);
        }
    }
    EXPECT_TRUE(Same(TextPicture("Hello", 5, 5), hello));
    EXPECT_TRUE(Same(TextPicture("\xc3\xa4\xd0\x96\xce\xa9", 5, 5), accents));
    font = Font(22);
    EXPECT_TRUE(Same(TextPicture("Hello", 5, 5), hello));
}

TEST_F(OverlayTest, FontsAndLinesSurviveAResetAndDoNotBlockIt) {
    Held<ID3DXLine> line;
    ASSERT_EQ(D3D_OK, D3DXCreateLine(device, line.Out()));
    const Picture before = TextPicture("Reset", 5, 5);
    D3DPRESENT_PARAMETERS pp = Parameters(Wide, High);
    ASSERT_EQ(D3D_OK, device->Reset(&pp));
    EXPECT_TRUE(Same(TextPicture("Reset", 5, 5), before));
    EXPECT_EQ(CountOf(device), 3u) << "each holds its device, and nothing else does";
    VornPlatform::LiveObjects live;
    live.devices = live.fonts = live.lines = 1;
    EXPECT_EQ(VornPlatform::CountLiveObjects(), live) << "an atlas is no texture of a host";
}

TEST_F(OverlayTest, NeitherMattersToTheStatesOfTheDeviceNorTheyToIt) {
    Held<ID3DXLine> line;
    ASSERT_EQ(D3D_OK, D3DXCreateLine(device, line.Out()));
    const D3DXVECTOR2 points[] = {{10, 40}, {90, 60}, {90, 100}};
    const auto overlay = [&] {
        Text("States", 10, 10, 0xc0ff8040);
        EXPECT_EQ(D3D_OK, line->Draw(points, 3, 0xff40ff80));
    };
    Clear(black);
    overlay();
    const Picture plain = Screen();
    ASSERT_GT(Ink(plain).bottom, 90);

    // The image that a host draws with states of its own, right of x = 128.
    Flat(Wide, High);
    const Picture noise = Noise(8, 8, 30);
    const Held<IDirect3DTexture9> texture = Texture(noise);
    const auto vertices = Vertices(Corners({127.5f, -0.5f, 255.5f, 127.5f}, 0xff808080), imageFvf);
    const auto indices = Indices<DWORD>({0, 1, 2, 2, 1, 3});
    D3DXMATRIX shift;
    D3DXMatrixIdentity(&shift);
    shift._31 = 0.3f;
    device->SetTransform(D3DTS_TEXTURE0, &shift);
    Stage(D3DTSS_TEXTURETRANSFORMFLAGS, D3DTTFF_COUNT2), Stage(D3DTSS_COLOROP, D3DTOP_MODULATE2X);
    Stage(D3DTSS_ALPHAOP, D3DTOP_MODULATE);
    Sampler(D3DSAMP_ADDRESSU, D3DTADDRESS_MIRROR), Sampler(D3DSAMP_MAGFILTER, D3DTEXF_LINEAR);
    device->SetFVF(imageFvf), device->SetTexture(0, texture);
    device->SetStreamSource(0, vertices, 0, sizeof(Corner)), device->SetIndices(indices);
    std::vector<std::pair<D3DRENDERSTATETYPE, DWORD>> states = {
        {D3DRS_ALPHABLENDENABLE, TRUE},  {D3DRS_SRCBLEND, D3DBLEND_ONE},
        {D3DRS_DESTBLEND, D3DBLEND_ONE}, {D3DRS_BLENDOP, D3DBLENDOP_REVSUBTRACT},
        {D3DRS_ZFUNC, D3DCMP_GREATER},   {D3DRS_COLORWRITEENABLE, 7},
        {D3DRS_CULLMODE, D3DCULL_CCW},   {D3DRS_ALPHAREF, 3}};
    for (const auto& [state, value] : states)
        Set(state, value);
    const auto image = [&] {
        device->BeginScene();
        EXPECT_EQ(D3D_OK, device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 4, 0, 2));
        device->EndScene();
    };
    Clear(0xffc0c0c0, 0.25f);
    image();
    const Picture alone = Screen();
    Clear(0xffc0c0c0, 0.25f);
    overlay();
    image();
    const Picture both = Screen();
    for (int y = 0; y < High; ++y)
        for (int x = 128; x < Wide; ++x)
            ASSERT_EQ(both.At(x, y), alone.At(x, y)) << x << ", " << y;

    // The states that would hide or bend the overlay, if it went through them.
    for (const auto& state :
         std::vector<std::pair<D3DRENDERSTATETYPE, DWORD>>{{D3DRS_ZFUNC, D3DCMP_NEVER},
                                                           {D3DRS_ALPHATESTENABLE, TRUE},
                                                           {D3DRS_ALPHAFUNC, D3DCMP_NEVER},
                                                           {D3DRS_COLORWRITEENABLE, 0},
                                                           {D3DRS_FILLMODE, D3DFILL_WIREFRAME},
                                                           {D3DRS_CULLMODE, D3DCULL_CW},
                                                           {D3DRS_LIGHTING, TRUE},
                                                           {D3DRS_SRCBLEND, D3DBLEND_ZERO}}) {
        states.push_back(state);
        Set(state.first, state.second);
    }
    for (const bool inScene : {false, true}) {
        Clear(black);
        if (inScene)
            device->BeginScene();
        overlay();
        if (inScene) {
            EXPECT_EQ(D3D_OK, device->EndScene());
        }
        EXPECT_TRUE(Same(Screen(), plain)) << inScene;
    }
    for (std::size_t i = 0; i < states.size(); ++i) {
        DWORD value = 99, expected = states[i].second;
        for (std::size_t j = i; j < states.size(); ++j)
            if (states[j].first == states[i].first)
                expected = states[j].second;
        device->GetRenderState(states[i].first, &value);
        EXPECT_EQ(value, expected) << states[i].first;
    }
    Held<IDirect3DBaseTexture9> bound;
    device->GetTexture(0, bound.Out());
    EXPECT_EQ(bound.Get(), texture.Get());
}

class LineTest : public OverlayTest {
protected:
    void SetUp() override {
        OverlayTest::SetUp();
        ASSERT_EQ(D3D_OK, D3DXCreateLine(device, line.Out()));
        Clear(black);
    }
    void TearDown() override {
        line.Free();
        OverlayTest::TearDown();
    }
    Held<ID3DXLine> line;
};

TEST_F(LineTest, CoverTheirWidthAroundTheSegment) {
    // Each pixel against its distance from the segment: within half the width it is covered,
    // without it is not. Where the outline passes within 0.75 of a centre, a pixel may be either,
    // since the corner of a pixel is 0.71 away from its centre.
    Dice dice(31);
    for (int round = 0; round < 60; ++round) {
        const bool smooth = round % 2;
        const float width = static_cast<float>(1 + dice(8));
        const D3DXVECTOR2 p[] = {{dice.Unit() * 200 + 20, dice.Unit() * 80 + 20},
                                 {dice.Unit() * 200 + 20, dice.Unit() * 80 + 20}};
        Clear(black);
        EXPECT_EQ(D3D_OK, line->SetWidth(width));
        EXPECT_EQ(D3D_OK, line->SetAntialias(smooth));
        EXPECT_EQ(D3D_OK, line->Draw(p, 2, green));
        const Picture screen = Screen();
        const auto d = [](float value) { return static_cast<double>(value); };
        const double dx = d(p[1].x) - d(p[0].x), dy = d(p[1].y) - d(p[0].y);
        const double length = std::hypot(dx, dy), half = d(width) / 2;
        double sum = 0;
        for (int y = 0; y < High; ++y)
            for (int x = 0; x < Wide; ++x) {
                const double px = x - d(p[0].x), py = y - d(p[0].y);
                const double along = (px * dx + py * dy) / length;
                const double aside = std::abs(px * dy - py * dx) / length;
                const double inside = std::min({half - aside, along, length - along});
                const std::uint32_t pixel = screen.At(x, y);
                sum += Channels(pixel)[1] / 255.;
                if (inside > 0.75) {
                    ASSERT_EQ(pixel, green) << round << " at " << x << ", " << y;
                } else if (inside < -0.75) {
                    ASSERT_EQ(pixel, black) << round << " at " << x << ", " << y;
                } else {
                    ASSERT_TRUE(smooth || pixel == green || pixel == black) << std::hex << pixel;
                }
            }
        // The area: a pixel at each end and, where it is not smooth, along each side by chance.
        EXPECT_NEAR(sum, length * d(width), length * 0.25 + 2 * d(width) + 2) << round;
    }
}

TEST_F(LineTest, ThinLinesAreWholeAndAStripJoinsItsPoints) {
    const D3DXVECTOR2 level[] = {{10, 10}, {30, 10}}, upright[] = {{50, 10}, {50, 30}};
    EXPECT_EQ(D3D_OK, line->Draw(level, 2, red));
    EXPECT_EQ(D3D_OK, line->Draw(upright, 2, red));
    Picture screen = Screen();
    for (int i = 11; i < 30; ++i) { // ends by chance
        EXPECT_EQ(screen.At(i, 10), red) << i;
        EXPECT_EQ(screen.At(50, i), red) << i;
    }
    EXPECT_LE(screen.Count(red), 42);
    EXPECT_GE(screen.Count(red), 38);
    Clear(black);
    const D3DXVECTOR2 strip[] = {{20, 20}, {80, 20}, {80, 60}, {20, 60}};
    EXPECT_EQ(D3D_OK, line->SetWidth(3));
    EXPECT_EQ(D3D_OK, line->Draw(strip, 4, red));
    screen = Screen();
    for (const auto& [x, y] : {std::pair(50, 20), {80, 40}, {50, 60}, {50, 21}, {79, 40}})
        EXPECT_EQ(screen.At(x, y), red) << x << ", " << y;
    EXPECT_EQ(screen.At(20, 40), black) << "it is not closed";
    Clear(blue);
    EXPECT_EQ(D3D_OK, line->SetWidth(6));
    EXPECT_EQ(D3D_OK, line->Draw(level, 2, 0x80ff0000));
    EXPECT_LE(Distance(Screen().At(20, 10), 0xff80007f), 1) << "blended by its alpha";
}

TEST_F(LineTest, TooFewPointsAndOddNumbersHarmNothing) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN(), huge = 1e30f;
    const D3DXVECTOR2 points[] = {{10, 10}, {30, 10}};
    line->Draw(points, 1, red), line->Draw(points, 0, red), line->Draw(nullptr, 0, red);
    line->Draw(nullptr, 2, red);
    EXPECT_TRUE(Same(Screen(), Picture(Wide, High, black)));
    const D3DXVECTOR2 odd[] = {{nan, 10}, {20, nan}, {huge, -huge}, {INFINITY, 5}, {5, 5}, {5, 5}};
    for (const BOOL smooth : {FALSE, TRUE})
        for (const BOOL gl : {FALSE, TRUE})
            for (const float width : {1.f, 0.f, -3.f, nan, huge}) {
                line->SetAntialias(smooth), line->SetGLLines(gl), line->SetWidth(width);
                line->Draw(odd, 6, red);
                line->Draw(odd + 4, 2, red);
            }
    Clear(black);
    line->SetWidth(1), line->SetAntialias(FALSE), line->SetGLLines(FALSE);
    EXPECT_EQ(D3D_OK, line->Draw(points, 2, red));
    EXPECT_EQ(Screen().At(20, 10), red);
    EXPECT_TRUE(FAILED(D3DXCreateLine(device, nullptr)));
    ID3DXLine* none = nullptr;
    EXPECT_TRUE(FAILED(D3DXCreateLine(nullptr, &none)));
    EXPECT_EQ(none, nullptr);
}

TEST_F(LineTest, GlLinesAreAsManyPixelsWideAlongTheirAxis) {
    EXPECT_EQ(D3D_OK, line->SetGLLines(TRUE));
    EXPECT_EQ(D3D_OK, line->SetWidth(4));
    const D3DXVECTOR2 slanted[] = {{20, 20}, {100, 60}}, steep[] = {{150, 10}, {180, 110}};
    line->Draw(slanted, 2, red);
    line->Draw(steep, 2, red);
    const Picture screen = Screen();
    for (int i = 24; i < 96; ++i) { // a column of the flat one, a row of the steep one
        int column = 0, row = 0;
        for (int y = 0; y < High; ++y)
            column += screen.At(i, y) == red;
        for (int x = 130; x < Wide; ++x)
            row += screen.At(x, i) == red;
        EXPECT_EQ(column, 4) << i;
        EXPECT_EQ(row, 4) << i;
    }
}

} // namespace Tests
