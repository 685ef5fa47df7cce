// SPDX-License-Identifier: MIT
//
// Which pixels triangles, lines and Clear reach.
#include "tests/support/device.hpp"
#include "tests/support/rounds.hpp"

#include <cmath>

namespace Tests {

class CoverageTest : public DeviceTest {
protected:
    static Corner At(GridPoint p, D3DCOLOR color) {
        return {static_cast<float>(p.x) / 16, static_cast<float>(p.y) / 16, 0.5f, color, 0, 0};
    }
    void Line(float x0, float y0, float x1, float y1, D3DCOLOR color = white) {
        Draw<Corner>(D3DPT_LINELIST, {{x0, y0, 0.5f, color, 0, 0}, {x1, y1, 0.5f, color, 0, 0}},
                     flatFvf);
    }
    /// Clockwise as seen, or the other way round; around pixel 32, 32.
    std::vector<Corner> Triangle(bool clockwise) const {
        std::vector<Corner> corners = {
            {32, 8, 0.5f, white, 0, 0}, {56, 56, 0.5f, white, 0, 0}, {8, 56, 0.5f, white, 0, 0}};
        if (!clockwise)
            std::swap(corners[1], corners[2]);
        return corners;
    }
};

TEST_F(CoverageTest, TrianglesCoverThePixelsThatTheTopLeftRuleGives) {
    constexpr int side = 128;
    Open(Parameters(side, side));
    Flat(side, side);
    Set(D3DRS_ZENABLE, FALSE);
    Dice dice(1);
    std::vector<GridPoint> last(3);
    for (unsigned int batch = 0; batch < Rounds(40); ++batch) {
        Picture expected(side, side, black);
        Clear(black);
        std::vector<Corner> corners;
        for (int i = 0; i < 150; ++i) {
            // Anywhere, tiny, on pixel centres, at half pixels, a sliver, on an edge of the last.
            const int kind = dice(6), step = kind == 2 ? 16 : kind == 3 ? 8 : 1;
            const int reach = kind == 1 ? 40 : dice(2) ? side * 16 : side * 4;
            const GridPoint from = {dice(side * 16 - reach + 1), dice(side * 16 - reach + 1)};
            std::vector<GridPoint> p(3);
            for (GridPoint& point : p) {
                point.x = (from.x + dice(reach + 1)) / step * step;
                point.y = (from.y + dice(reach + 1)) / step * step;
            }
            if (kind == 4)
                p[1] = {std::min(p[0].x + dice(3), side * 16), std::min(p[0].y + 1, side * 16)};
            if (kind == 5)
                p[0] = last[1], p[1] = last[2];
            last = p;
            const D3DCOLOR color = black | dice.Bits();
            FillTriangle(expected, p[0], p[1], p[2], color);
            for (const GridPoint& point : p)
                corners.push_back(At(point, color));
        }
        Draw(D3DPT_TRIANGLELIST, corners, flatFvf);
        ASSERT_TRUE(Same(Screen(), expected)) << "batch " << batch;
    }
}

TEST_F(CoverageTest, TrianglesThatShareEdgesLeaveNoGapAndNoPixelTwice) {
    // Every pixel adds 1, so what is there counts how often it was drawn.
    Flat();
    Set(D3DRS_ALPHABLENDENABLE, TRUE);
    Set(D3DRS_SRCBLEND, D3DBLEND_ONE), Set(D3DRS_DESTBLEND, D3DBLEND_ONE);
    Dice dice(2);
    for (int round = 0; round < 40; ++round) {
        Clear(black);
        const GridPoint middle = {dice(Side * 16 - 32) + 16, dice(Side * 16 - 32) + 16};
        std::vector<GridPoint> rim; // around the target's edge, finer and coarser
        const int end = Side * 16, parts = 1 + dice(7);
        const auto along = [&rim, parts](GridPoint a, GridPoint b) {
            for (int i = 0; i < parts; ++i)
                rim.push_back({a.x + (b.x - a.x) * i / parts, a.y + (b.y - a.y) * i / parts});
        };
        along({-8, -8}, {end, -8}), along({end, -8}, {end, end});
        along({end, end}, {-8, end}), along({-8, end}, {-8, -8});
        std::vector<Corner> corners;
        for (std::size_t i = 0; i < rim.size(); ++i)
            for (const GridPoint p : {middle, rim[i], rim[(i + 1) % rim.size()]})
                corners.push_back(At(p, 0x00010101));
        Draw(D3DPT_TRIANGLELIST, corners, flatFvf);
        ASSERT_TRUE(Same(Screen(), Picture(Side, Side, 0xff010101))) << "round " << round;
    }
}

TEST_F(CoverageTest, LinesLeaveOutTheirLastPixel) {
    Flat();
    const int directions[][2] = {{1, 0}, {-1, 0}, {0, 1},  {0, -1},
                                 {1, 1}, {-1, 1}, {1, -1}, {-1, -1}};
    for (const auto [dx, dy] : directions) {
        Clear(black);
        Line(30, 30, static_cast<float>(30 + 10 * dx), static_cast<float>(30 + 10 * dy));
        Picture expected(Side, Side, black);
        for (int i = 0; i < 10; ++i)
            expected.At(30 + i * dx, 30 + i * dy) = white;
        EXPECT_TRUE(Same(Screen(), expected)) << dx << ", " << dy;
    }
    Clear(black);
    Line(20, 20, 20, 20);
    EXPECT_TRUE(Same(Screen(), Picture(Side, Side, black))) << "a line of no length";

    Clear(black);
    Draw<Corner>(
        D3DPT_LINESTRIP,
        {{4, 4, 0.5f, white, 0, 0}, {10, 4, 0.5f, white, 0, 0}, {10, 9, 0.5f, white, 0, 0}},
        flatFvf);
    Picture expected(Side, Side, black);
    expected.Fill(4, 4, 11, 5, white), expected.Fill(10, 4, 11, 9, white);
    EXPECT_TRUE(Same(Screen(), expected)) << "strip";
}

TEST_F(CoverageTest, LinesOfAnySlopeStepOncePerPixelOfTheirLongerAxis) {
    Flat();
    Dice dice(3);
    for (int round = 0; round < 300; ++round) {
        const int x0 = dice(Side), y0 = dice(Side), x1 = dice(Side), y1 = dice(Side);
        const int length = std::max(std::abs(x1 - x0), std::abs(y1 - y0));
        Clear(black);
        Line(static_cast<float>(x0), static_cast<float>(y0), static_cast<float>(x1),
             static_cast<float>(y1));
        const Picture screen = Screen();
        ASSERT_EQ(screen.Count(white), length) << x0 << " " << y0 << " " << x1 << " " << y1;
        if (length == 0)
            continue;
        EXPECT_EQ(screen.At(x0, y0), white);
        EXPECT_EQ(screen.At(x1, y1), black);
        const bool flat = std::abs(x1 - x0) == length;
        for (int i = 0; i < length; ++i) {
            const double part = static_cast<double>(i) / length;
            const double ideal = flat ? y0 + (y1 - y0) * part : x0 + (x1 - x0) * part;
            const int major = flat ? x0 + (x1 > x0 ? i : -i) : y0 + (y1 > y0 ? i : -i);
            bool found = false; // half a pixel off at most; 1/64 more where two lie equally near
            for (int minor = 0; minor < Side; ++minor)
                found |= std::abs(minor - ideal) <= 0.5 + 1.0 / 64 &&
                         (flat ? screen.At(major, minor) : screen.At(minor, major)) == white;
            ASSERT_TRUE(found) << x0 << " " << y0 << " " << x1 << " " << y1 << " at " << i;
        }
    }
}

TEST_F(CoverageTest, ClearObeysRectanglesAndTheViewport) {
    const D3DRECT rects[] = {{0, 0, 12, 12}, {20, 20, 40, 40}, {60, 60, 90, 90}, {-9, 30, 3, 31}};
    for (const bool narrow : {false, true}) {
        Clear(blue);
        const RECT v = narrow ? RECT{8, 4, 32, 36} : RECT{0, 0, Side, Side};
        const D3DVIEWPORT9 viewport = {static_cast<DWORD>(v.left),
                                       static_cast<DWORD>(v.top),
                                       static_cast<DWORD>(v.right - v.left),
                                       static_cast<DWORD>(v.bottom - v.top),
                                       0,
                                       1};
        ASSERT_EQ(D3D_OK, device->SetViewport(&viewport));
        EXPECT_EQ(D3D_OK, device->Clear(4, rects, D3DCLEAR_TARGET, red, 1, 0));
        Picture expected(Side, Side, blue);
        for (const D3DRECT& r : rects)
            expected.Fill(std::max(r.x1, v.left), std::max(r.y1, v.top), std::min(r.x2, v.right),
                          std::min(r.y2, v.bottom), red);
        EXPECT_TRUE(Same(Screen(), expected)) << narrow;
        EXPECT_EQ(D3D_OK, device->Clear(0, nullptr, D3DCLEAR_TARGET, green, 1, 0));
        expected.Fill(v.left, v.top, v.right, v.bottom, green);
        EXPECT_TRUE(Same(Screen(), expected)) << narrow;
    }
}

TEST_F(CoverageTest, ClearOfDepthTakesTheSameRectangleAndIsNotScaledByTheViewport) {
    Flat();
    Clear(black, 1);
    const D3DVIEWPORT9 part = {8, 8, 16, 16, 0.5f, 0.75f}, whole = {0, 0, Side, Side, 0, 1};
    device->SetViewport(&part);
    EXPECT_EQ(D3D_OK, device->Clear(0, nullptr, D3DCLEAR_ZBUFFER, red, 0.25f, 0));
    device->SetViewport(&whole);
    Picture expected(Side, Side, black);
    EXPECT_TRUE(Same(Screen(), expected)) << "colour stays";
    // Between the cleared 0.25 and the 0.625 that scaling would have made of it.
    Quad({-1, -1, Side, Side}, white, 0.3f);
    expected = Picture(Side, Side, white);
    expected.Fill(8, 8, 24, 24, black);
    EXPECT_TRUE(Same(Screen(), expected));
    EXPECT_EQ(D3D_OK, device->Clear(0, nullptr, D3DCLEAR_TARGET, blue, 1, 0));
    Quad({-1, -1, Side, Side}, white, 0.29f);
    expected.Fill(8, 8, 24, 24, blue);
    EXPECT_TRUE(Same(Screen(), expected)) << "depth stays when colour is cleared";
}

TEST_F(CoverageTest, ClearIgnoresRenderStates) {
    Flat();
    const std::pair<D3DRENDERSTATETYPE, DWORD> states[] = {
        {D3DRS_ZENABLE, FALSE},          {D3DRS_ZWRITEENABLE, FALSE},
        {D3DRS_ZFUNC, D3DCMP_NEVER},     {D3DRS_ALPHATESTENABLE, TRUE},
        {D3DRS_ALPHAFUNC, D3DCMP_NEVER}, {D3DRS_ALPHABLENDENABLE, TRUE},
        {D3DRS_SRCBLEND, D3DBLEND_ZERO}, {D3DRS_DESTBLEND, D3DBLEND_ONE},
        {D3DRS_COLORWRITEENABLE, 0},     {D3DRS_FILLMODE, D3DFILL_WIREFRAME},
        {D3DRS_CULLMODE, D3DCULL_CCW}};
    for (const auto& [state, value] : states)
        Set(state, value);
    const D3DRECT rect = {8, 8, 24, 24};
    EXPECT_EQ(D3D_OK, device->Clear(1, &rect, 3, red, 0.25f, 0));
    Picture expected(Side, Side, black);
    expected.Fill(8, 8, 24, 24, red);
    EXPECT_TRUE(Same(Screen(), expected));
    D3DPRESENT_PARAMETERS pp = Parameters();
    for (const auto& [state, value] : states) { // draws obey them again after a Clear
        DWORD kept = ~value;
        EXPECT_EQ(D3D_OK, device->GetRenderState(state, &kept));
        EXPECT_EQ(kept, value) << state;
    }
    Quad({-1, -1, Side, Side}, white);
    EXPECT_TRUE(Same(Screen(), expected)) << "nothing may be written";
    EXPECT_EQ(D3D_OK, device->Reset(&pp));
}

TEST_F(CoverageTest, CullingLooksAtTheOrderOnTheScreen) {
    const Held<IDirect3DTexture9> texture = Target();
    const Held<IDirect3DSurface9> screen = BackBuffer(), surface = Level(texture);
    for (int i = 0; i < 3 * 16; ++i) {
        const bool clockwise = i & 1, wire = i & 2, mirrored = i & 4, inTarget = i & 8;
        const DWORD cull = D3DCULL_NONE + static_cast<DWORD>(i / 16);
        device->SetRenderTarget(0, inTarget ? surface : screen);
        Flat();
        D3DXMATRIX mirror;
        D3DXMatrixTranslation(&mirror, Side, 0, 0);
        mirror._11 = -1;
        if (mirrored)
            device->SetTransform(D3DTS_WORLD, &mirror);
        Set(D3DRS_FILLMODE, wire ? D3DFILL_WIREFRAME : D3DFILL_SOLID);
        Set(D3DRS_CULLMODE, cull);
        Clear(black);
        Draw(D3DPT_TRIANGLELIST, Triangle(clockwise), flatFvf);
        const bool looksClockwise = clockwise != mirrored;
        const bool shows = cull == D3DCULL_NONE || (cull == D3DCULL_CCW) == looksClockwise;
        const Picture picture = Read(inTarget ? surface : screen);
        EXPECT_EQ(picture.Count(white) > 0, shows) << "case " << i;
        EXPECT_EQ(picture.At(32, 40) == white, shows && !wire) << "case " << i;
        if (wire && shows) { // each edge is there
            EXPECT_TRUE(picture.Count(white) > 120 && picture.Count(white) < 200) << i;
        }
    }
}

TEST_F(CoverageTest, TheDefaultCullRemovesWhatLooksCounterClockwise) {
    D3DXMATRIX projection;
    D3DXMatrixOrthoOffCenterLH(&projection, 0, Side, Side, 0, 0, 1);
    device->SetTransform(D3DTS_PROJECTION, &projection);
    Set(D3DRS_LIGHTING, FALSE);
    Draw(D3DPT_TRIANGLELIST, Triangle(false), flatFvf);
    EXPECT_EQ(Screen().Count(white), 0);
    Draw(D3DPT_TRIANGLELIST, Triangle(true), flatFvf);
    EXPECT_EQ(Screen().At(32, 40), white);
}

TEST_F(CoverageTest, StripsKeepTheWindingOfTheirFirstTriangle) {
    Flat();
    Set(D3DRS_CULLMODE, D3DCULL_CCW);
    Image(8, 8, 16, 16, red); // a strip of two, clockwise
    Picture expected(Side, Side, black);
    expected.Fill(8, 8, 24, 24, red);
    EXPECT_TRUE(Same(Screen(), expected));
}

TEST_F(CoverageTest, TheViewportPlacesAndCuts) {
    Flat();
    const D3DVIEWPORT9 viewport = {16, 8, 32, 32, 0, 1};
    device->SetViewport(&viewport);
    Quad({-20, -20, 100, 100}, red);
    Picture expected(Side, Side, black);
    expected.Fill(16, 8, 48, 40, red);
    EXPECT_TRUE(Same(Screen(), expected)) << "cut";
    Quad({0, 0, 32, 32}, green); // half as large: pixels 16 to 31 of both axes
    expected.Fill(16, 8, 32, 24, green);
    EXPECT_TRUE(Same(Screen(), expected)) << "placed";
}

} // namespace Tests
