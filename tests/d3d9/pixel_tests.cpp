// SPDX-License-Identifier: MIT
//
// What becomes of a pixel on its way to the target: depth, alpha test, blending, texture stages.
#include "tests/support/device.hpp"

namespace Tests {

class PixelTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        Flat();
    }
    /// Covers the whole target.
    void Cover(D3DCOLOR color, float z = 0.5f) { Quad({-1, -1, Side, Side}, color, z); }
    std::uint32_t Pixel() { return Screen().At(32, 32); }
    static bool Holds(DWORD function, int a, int b) {
        const bool results[] = {false, false, a<b, a == b, a <= b, a> b, a != b, a >= b, true};
        return results[function];
    }
};

TEST_F(PixelTest, DepthFunctionsCompareTheNewWithTheOld) {
    for (DWORD function = D3DCMP_NEVER; function <= D3DCMP_ALWAYS; ++function)
        for (const int z : {1, 2, 3}) {
            Set(D3DRS_ZFUNC, D3DCMP_ALWAYS);
            Clear(black);
            Cover(red, 0.5f);
            Set(D3DRS_ZFUNC, function);
            Cover(green, static_cast<float>(z) / 4);
            EXPECT_EQ(Pixel(), Holds(function, z, 2) ? green : red) << function << " " << z;
        }
}

TEST_F(PixelTest, DepthIsTestedByDefaultAndWrittenUnlessMasked) {
    Cover(red, 0.5f);
    Cover(green, 0.5f);
    EXPECT_EQ(Pixel(), green) << "less or equal is the default";
    Cover(blue, 0.6f);
    EXPECT_EQ(Pixel(), green);
    Set(D3DRS_ZWRITEENABLE, FALSE);
    Cover(red, 0.1f);
    Cover(blue, 0.4f);
    EXPECT_EQ(Pixel(), blue) << "0.1 was not written";
    Set(D3DRS_ZWRITEENABLE, TRUE), Set(D3DRS_ZENABLE, FALSE);
    Cover(red, 0.9f);
    EXPECT_EQ(Pixel(), red) << "no test";
    Set(D3DRS_ZENABLE, TRUE);
    Cover(green, 0.45f);
    EXPECT_EQ(Pixel(), green) << "without a test depth is not written either";
}

TEST_F(PixelTest, WithoutADepthBufferTheLastDrawWins) {
    Open(Parameters(Side, Side, false));
    Flat();
    DWORD enabled = 7;
    EXPECT_EQ(D3D_OK, device->GetRenderState(D3DRS_ZENABLE, &enabled));
    EXPECT_EQ(enabled, 0u);
    for (const bool test : {false, true}) {
        Set(D3DRS_ZENABLE, test);
        Cover(red, 0.1f);
        Cover(green, 0.9f);
        EXPECT_EQ(Pixel(), green);
    }
    EXPECT_EQ(D3DERR_INVALIDCALL, device->Clear(0, nullptr, D3DCLEAR_ZBUFFER, 0, 1, 0));
}

TEST_F(PixelTest, WhatLiesOutsideTheDepthRangeIsCutAway) {
    for (const float z : {-0.01f, 1.01f}) {
        Cover(red, z);
        EXPECT_EQ(Pixel(), black) << z;
    }
    Cover(red, 0);
    EXPECT_EQ(Pixel(), red);
    Clear(black);
    Cover(green, 1);
    EXPECT_EQ(Pixel(), green);
}

TEST_F(PixelTest, AlphaTestComparesWholeNumbersAndRejectedPixelsWriteNoDepth) {
    Set(D3DRS_ALPHAREF, 8);
    for (DWORD function = D3DCMP_NEVER; function <= D3DCMP_ALWAYS; ++function) {
        for (const int alpha : {0, 7, 8, 9, 255}) {
            Set(D3DRS_ALPHATESTENABLE, TRUE), Set(D3DRS_ALPHAFUNC, function);
            Clear(black);
            const bool passes = Holds(function, alpha, 8);
            Cover(Packed(255, 0, 0, alpha), 0.2f);
            EXPECT_EQ(Pixel(), passes ? red : black) << function << " " << alpha;
            Set(D3DRS_ALPHATESTENABLE, FALSE);
            Cover(0x0000ff00, 0.6f);
            EXPECT_EQ(Pixel(), passes ? red : green) << function << " " << alpha << " depth";
        }
    }
}

TEST_F(PixelTest, BlendFactorsWeighSourceAndTarget) {
    const std::uint32_t source = 0x60c02080, there = 0xa0408010;
    for (const D3DFORMAT format : {D3DFMT_A8R8G8B8, D3DFMT_X8R8G8B8}) {
        const Held<IDirect3DTexture9> target = Target(Side, Side, format);
        const Held<IDirect3DSurface9> surface = Level(target);
        ASSERT_EQ(D3D_OK, device->SetRenderTarget(0, surface));
        const bool opaque = format == D3DFMT_X8R8G8B8; // whose alpha counts as 1
        double s[4], d[4];
        for (std::size_t i = 0; i < 4; ++i) {
            s[i] = Channels(source)[i] / 255.0, d[i] = Channels(there)[i] / 255.0;
            if (opaque && i == 3)
                d[i] = 1;
        }
        Set(D3DRS_BLENDFACTOR, 0x80402010);
        const double f[4] = {0x40 / 255.0, 0x20 / 255.0, 0x10 / 255.0, 0x80 / 255.0};
        const auto factor = [&s, &d, &f](DWORD kind, std::size_t i) {
            const double sat = i == 3 ? 1 : std::min(s[3], 1 - d[3]);
            const double factors[] = {0,        0,        1,        s[i],    1 - s[i], s[3],
                                      1 - s[3], d[3],     1 - d[3], d[i],    1 - d[i], sat,
                                      s[3],     1 - s[3], f[i],     1 - f[i]};
            return factors[kind];
        };
        for (DWORD op = D3DBLENDOP_ADD; op <= D3DBLENDOP_MAX; ++op)
            for (DWORD from = D3DBLEND_ZERO; from <= D3DBLEND_INVBLENDFACTOR; ++from)
                for (DWORD to = D3DBLEND_ZERO; to <= D3DBLEND_INVDESTCOLOR; ++to) {
                    Set(D3DRS_ALPHABLENDENABLE, TRUE), Set(D3DRS_BLENDOP, op);
                    Set(D3DRS_SRCBLEND, from), Set(D3DRS_DESTBLEND, to);
                    Clear(there);
                    Cover(source);
                    int expected[4];
                    for (std::size_t i = 0; i < 4; ++i) {
                        // Two sources choose for the target too.
                        const DWORD chosen =
                            from == D3DBLEND_BOTHSRCALPHA      ? D3DBLEND_INVSRCALPHA + 0u
                            : from == D3DBLEND_BOTHINVSRCALPHA ? D3DBLEND_SRCALPHA + 0u
                                                               : to;
                        const double a = s[i] * factor(from, i), b = d[i] * factor(chosen, i);
                        const double results[] = {
                            0, a + b, a - b, b - a, std::min(s[i], d[i]), std::max(s[i], d[i])};
                        expected[i] = static_cast<int>(std::clamp(results[op], 0., 1.) * 255 + 0.5);
                    }
                    // Each of the two products may be rounded to 8 bits before they are added.
                    const std::uint32_t wanted =
                        Packed(expected[0], expected[1], expected[2], opaque ? 255 : expected[3]);
                    const std::uint32_t got = Read(surface).At(32, 32);
                    ASSERT_LE(Distance(got, wanted), 1)
                        << std::hex << got << " for " << wanted << std::dec << ": op " << op << ", "
                        << from << ", " << to << (opaque ? " opaque" : "");
                }
        device->SetRenderTarget(0, BackBuffer());
    }
}

TEST_F(PixelTest, BlendingIsOneAndZeroByDefaultAndOffKeepsTheSource) {
    Clear(blue);
    Set(D3DRS_ALPHABLENDENABLE, TRUE);
    Cover(0x40804020);
    EXPECT_EQ(Pixel(), 0xff804020);
    Set(D3DRS_SRCBLEND, D3DBLEND_ZERO), Set(D3DRS_ALPHABLENDENABLE, FALSE);
    Cover(0x40112233);
    EXPECT_EQ(Pixel(), 0xff112233);
}

TEST_F(PixelTest, ColorWriteEnableMasksChannels) {
    const Held<IDirect3DTexture9> target = Target();
    const Held<IDirect3DSurface9> surface = Level(target);
    device->SetRenderTarget(0, surface);
    for (DWORD mask = 0; mask < 16; ++mask) {
        Clear(0x11223344);
        Set(D3DRS_COLORWRITEENABLE, mask);
        Cover(0xaabbccdd);
        const std::uint32_t bits = (mask & 1 ? 0xff0000u : 0) | (mask & 2 ? 0xff00u : 0) |
                                   (mask & 4 ? 0xffu : 0) | (mask & 8 ? 0xff000000u : 0);
        EXPECT_EQ(Read(surface).At(32, 32), (0xaabbccdd & bits) | (0x11223344 & ~bits)) << mask;
    }
}

// The first stage.

class StageTest : public PixelTest {
protected:
    void SetUp() override {
        PixelTest::SetUp();
        target = Target();
        device->SetRenderTarget(0, Level(target));
        Clear(0);
    }
    void TearDown() override {
        device->SetRenderTarget(0, BackBuffer());
        target.Free();
    }
    static int Times(int a, int b) { return (a * b * 2 + 255) / 510; } // rounds to nearest
    Held<IDirect3DTexture9> target;
};

TEST_F(StageTest, ModulateRoundsToNearest) {
    // All texels of a noise with 64 vertex colours: products of 8 bits have no ties, so the
    // tolerance is zero.
    const Picture noise = Noise(Side, Side, 4, 0);
    const Held<IDirect3DTexture9> texture = Texture(noise);
    device->SetTexture(0, texture);
    Stage(D3DTSS_ALPHAOP, D3DTOP_MODULATE);
    Dice dice(5);
    for (int i = 0; i < 64; ++i) {
        const D3DCOLOR color = dice.Bits();
        const auto c = Channels(color);
        Image(0, 0, Side, Side, color);
        Picture expected = noise;
        for (std::uint32_t& pixel : expected.pixels) {
            const auto t = Channels(pixel);
            pixel =
                Packed(Times(t[0], c[0]), Times(t[1], c[1]), Times(t[2], c[2]), Times(t[3], c[3]));
        }
        ASSERT_TRUE(Same(Read(target), expected)) << std::hex << color;
    }
}

TEST_F(StageTest, OperationsAndArguments) {
    const std::uint32_t texel = 0x80c04020, vertex = 0x40ff8010;
    enum { COp, CArg1, CArg2, AOp, AArg1, AArg2 };
    struct Case {
        const char* name;
        std::vector<std::pair<D3DTEXTURESTAGESTATETYPE, DWORD>> states;
        bool textured;
        std::uint32_t expected;
    };
    const int r = Times(0xc0, 0xff), g = Times(0x40, 0x80), b = Times(0x20, 0x10);
    const Case cases[] = {
        {"defaults: colour is the product, alpha the texture's", {}, true, Packed(r, g, b, 0x80)},
        {"no texture: the vertex alone", {}, false, vertex},
        {"ALPHAARG1 DIFFUSE", {{D3DTSS_ALPHAARG1, D3DTA_DIFFUSE}}, true, Packed(r, g, b, 0x40)},
        {"ALPHAARG1 DIFFUSE, no texture", {{D3DTSS_ALPHAARG1, D3DTA_DIFFUSE}}, false, vertex},
        {"ALPHAOP MODULATE",
         {{D3DTSS_ALPHAOP, D3DTOP_MODULATE}},
         true,
         Packed(r, g, b, Times(0x80, 0x40))},
        {"ALPHAOP SELECTARG2: current is the vertex's at stage 0",
         {{D3DTSS_ALPHAOP, D3DTOP_SELECTARG2}},
         true,
         Packed(r, g, b, 0x40)},
        {"COLOROP SELECTARG1", {{D3DTSS_COLOROP, D3DTOP_SELECTARG1}}, true, texel},
        {"COLOROP SELECTARG2",
         {{D3DTSS_COLOROP, D3DTOP_SELECTARG2}},
         true,
         0x80000000 | (vertex & 0xffffff)},
        {"COLORARG2 TEXTURE",
         {{D3DTSS_COLOROP, D3DTOP_SELECTARG2}, {D3DTSS_COLORARG2, D3DTA_TEXTURE}},
         true,
         texel},
        {"COLOROP ADD saturates",
         {{D3DTSS_COLOROP, D3DTOP_ADD}},
         true,
         Packed(255, 0x40 + 0x80, 0x20 + 0x10, 0x80)},
        {"COLOROP DISABLE ends all stages: the vertex alone",
         {{D3DTSS_COLOROP, D3DTOP_DISABLE}},
         true,
         vertex},
    };
    const Held<IDirect3DTexture9> texture = Texture(Picture(4, 4, texel));
    for (const Case& one : cases) {
        Stage(D3DTSS_COLOROP, D3DTOP_MODULATE), Stage(D3DTSS_COLORARG1, D3DTA_TEXTURE);
        Stage(D3DTSS_COLORARG2, D3DTA_CURRENT), Stage(D3DTSS_ALPHAOP, D3DTOP_SELECTARG1);
        Stage(D3DTSS_ALPHAARG1, D3DTA_TEXTURE), Stage(D3DTSS_ALPHAARG2, D3DTA_CURRENT);
        for (const auto& [state, value] : one.states)
            Stage(state, value);
        device->SetTexture(0, one.textured ? texture.Get() : nullptr);
        Image(0, 0, Side, Side, vertex);
        EXPECT_TRUE(Same(Read(target), Picture(Side, Side, one.expected))) << one.name;
    }
    // The unrounded product is doubled: up to 1 off where the rounded one would be.
    Stage(D3DTSS_ALPHAOP, D3DTOP_SELECTARG1);
    device->SetTexture(0, texture);
    for (const auto& [op, factor] : {std::pair{D3DTOP_MODULATE2X, 2}, {D3DTOP_MODULATE4X, 4}}) {
        Stage(D3DTSS_COLOROP, op);
        Image(0, 0, Side, Side, vertex);
        const auto product = [f = factor](int x, int y) { return (x * y * f * 2 + 255) / 510; };
        const std::uint32_t wanted =
            Packed(product(0xc0, 0xff), product(0x40, 0x80), product(0x20, 0x10), 0x80);
        EXPECT_TRUE(Same(Read(target), Picture(Side, Side, wanted), 1)) << factor;
    }
}

TEST_F(StageTest, ATextureWithoutCoordinatesGivesItsFirstTexel) {
    Picture picture = Noise(8, 8, 6, 0);
    picture.At(0, 0) = 0x90804020;
    const Held<IDirect3DTexture9> texture = Texture(picture);
    device->SetTexture(0, texture);
    Image(0, 0, 8, 8); // and after an image its coordinates are not taken
    Draw<Corner>(D3DPT_LINELIST,
                 {{10, 10, 0.5f, 0xffff80ff, 0.9f, 0.9f}, {20, 10, 0.5f, 0xffff80ff, 1, 1}},
                 flatFvf);
    Quad({9.5f, 19.5f, 19.5f, 29.5f}, white);
    const Picture got = Read(target);
    EXPECT_EQ(got.At(15, 10), Packed(0x80, Times(0x40, 0x80), 0x20, 0x90));
    EXPECT_EQ(got.At(15, 25), 0x90804020u);
}

TEST_F(StageTest, TheVertexColourIsBlueGreenRedAlphaInMemoryAndInterpolated) {
    const D3DCOLOR left = 0x10204080, right = 0xd0c0f000;
    // From pixel 0 to pixel 63, so that both ends are exact.
    std::vector<Corner> corners = Corners({0, -1, 63, Side}, left);
    corners[1].color = corners[3].color = right;
    Draw(D3DPT_TRIANGLESTRIP, corners, flatFvf);
    const Picture got = Read(target);
    for (int x = 0; x < 63; ++x) {
        int c[4];
        for (std::size_t i = 0; i < 4; ++i)
            c[i] = (Channels(left)[i] * (63 - x) * 2 + Channels(right)[i] * x * 2 + 63) / 126;
        // Interpolated in floats: 1 where the exact value lies near the middle of two.
        ASSERT_LE(Distance(got.At(x, 32), Packed(c[0], c[1], c[2], c[3])), 1) << x;
    }
}

// What draws take their vertices from.

TEST_F(PixelTest, ABufferLockedBetweenTwoDrawsKeepsTheEarlierDraw) {
    const std::vector<Corner> left = Corners({-0.5f, -0.5f, 31.5f, 63.5f}, red);
    const std::vector<Corner> right = Corners({31.5f, -0.5f, 63.5f, 63.5f}, green);
    Picture expected(Side, Side, red);
    expected.Fill(32, 0, 64, 64, green);
    const std::tuple<D3DPOOL, DWORD, DWORD> kinds[] = {
        {D3DPOOL_MANAGED, 0, 0},
        {D3DPOOL_DEFAULT, D3DUSAGE_WRITEONLY, 0},
        {D3DPOOL_DEFAULT, D3DUSAGE_WRITEONLY | D3DUSAGE_DYNAMIC, D3DLOCK_DISCARD}};
    for (const auto& [pool, usage, flags] : kinds) {
        Clear(black);
        const auto vertices = Vertices(left, imageFvf, pool, usage);
        const auto indices = Indices<DWORD>({0, 1, 2, 2, 1, 3}, pool);
        device->SetFVF(imageFvf);
        device->SetStreamSource(0, vertices, 0, sizeof(Corner));
        device->SetIndices(indices);
        device->BeginScene();
        EXPECT_EQ(D3D_OK, device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 4, 0, 2));
        void* data = nullptr;
        ASSERT_EQ(D3D_OK, vertices->Lock(0, 0, &data, flags));
        std::memcpy(data, right.data(), right.size() * sizeof(Corner));
        vertices->Unlock();
        EXPECT_EQ(D3D_OK, device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 4, 0, 2));
        // The indices too: all on one point now, which draws nothing.
        ASSERT_EQ(D3D_OK, indices->Lock(0, 0, &data, 0));
        std::memset(data, 0, 24);
        indices->Unlock();
        device->EndScene();
        EXPECT_TRUE(Same(Screen(), expected)) << pool << " " << usage;
    }
}

TEST_F(PixelTest, AnIndexedDrawTakesBaseStartStrideAndOffset) {
    // Four bytes in front, 56 a vertex, three vertices that no index means, indices of 16 bits.
    const std::vector<Corner> corners = Corners({7.5f, 7.5f, 23.5f, 23.5f}, red);
    std::vector<char> content(4 + 7 * 56, '\x7f');
    for (std::size_t i = 0; i < 4; ++i)
        std::memcpy(&content[4 + (3 + i) * 56], &corners[i], sizeof(Corner));
    const auto vertices = Vertices(content, imageFvf);
    const auto indices = Indices<WORD>({9, 9, 9, 1, 2, 3, 3, 2, 4});
    device->SetFVF(imageFvf);
    device->SetStreamSource(0, vertices, 4, 56);
    device->SetIndices(indices);
    device->BeginScene();
    EXPECT_EQ(D3D_OK, device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 7, 3, 0));
    EXPECT_TRUE(Same(Screen(), Picture(Side, Side, black))) << "no triangles";
    EXPECT_EQ(D3D_OK, device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 2, 1, 4, 3, 2));
    device->EndScene();
    Picture expected(Side, Side, black);
    expected.Fill(8, 8, 24, 24, red);
    EXPECT_TRUE(Same(Screen(), expected));
    device->BeginScene(); // an offset in the stream is one in its bytes
    device->SetStreamSource(0, vertices, 4 + 3 * 56, 56);
    EXPECT_EQ(D3D_OK, device->DrawPrimitive(D3DPT_TRIANGLESTRIP, 0, 2));
    device->EndScene();
    EXPECT_TRUE(Same(Screen(), expected));
}

TEST_F(PixelTest, DrawPrimitiveUpUnsetsTheStreamAndAnIndexedDrawThenDrawsNothing) {
    const auto vertices = Vertices(Corners({-1, -1, 64, 64}, red), imageFvf);
    const auto indices = Indices<DWORD>({0, 1, 2, 2, 1, 3});
    device->SetStreamSource(0, vertices, 0, sizeof(Corner));
    device->SetIndices(indices);
    Image(0, 0, 1, 1, green);
    device->BeginScene();
    EXPECT_EQ(D3D_OK, device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 4, 0, 2));
    Picture expected(Side, Side, black);
    expected.At(0, 0) = green;
    EXPECT_TRUE(Same(Screen(), expected));
    device->SetStreamSource(0, vertices, 0, sizeof(Corner));
    EXPECT_EQ(D3D_OK, device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 4, 0, 2));
    EXPECT_EQ(Pixel(), red);
    device->EndScene();
}

TEST_F(PixelTest, AFanTurnsAroundItsFirstVertex) {
    Flat();
    std::vector<Corner> corners = Corners({7.5f, 7.5f, 15.5f, 15.5f}, red);
    std::swap(corners[2], corners[3]);
    Draw(D3DPT_TRIANGLEFAN, corners, imageFvf);
    Picture expected(Side, Side, black);
    expected.Fill(8, 8, 16, 16, red);
    EXPECT_TRUE(Same(Screen(), expected));
}

TEST_F(PixelTest, ADeclarationAndAnFvfReplaceEachOther) {
    const D3DVERTEXELEMENT9 elements[] = {
        {0, 0, D3DDECLTYPE_FLOAT3, D3DDECLMETHOD_DEFAULT, D3DDECLUSAGE_POSITION, 0},
        {0, 20, D3DDECLTYPE_D3DCOLOR, D3DDECLMETHOD_DEFAULT, D3DDECLUSAGE_COLOR, 0},
        D3DDECL_END()};
    struct Reordered {
        float x, y, z, u, v;
        D3DCOLOR color;
    };
    const std::vector<Reordered> corners = {{-1, -1, 0.5f, 0, 0, red},
                                            {64, -1, 0.5f, 0, 0, red},
                                            {-1, 64, 0.5f, 0, 0, red},
                                            {64, 64, 0.5f, 0, 0, red}};
    Held<IDirect3DVertexDeclaration9> declaration;
    ASSERT_EQ(D3D_OK, device->CreateVertexDeclaration(elements, declaration.Out()));
    device->SetFVF(imageFvf);
    EXPECT_EQ(D3D_OK, device->SetVertexDeclaration(declaration));
    device->BeginScene();
    EXPECT_EQ(D3D_OK,
              device->DrawPrimitiveUP(D3DPT_TRIANGLESTRIP, 2, corners.data(), sizeof(Reordered)));
    EXPECT_EQ(Pixel(), red);
    EXPECT_EQ(D3D_OK, device->SetVertexDeclaration(nullptr));
    const auto image = Corners({-1, -1, 64, 64}, green);
    EXPECT_TRUE(
        FAILED(device->DrawPrimitiveUP(D3DPT_TRIANGLESTRIP, 2, image.data(), sizeof(Corner))));
    EXPECT_EQ(Pixel(), red);
    device->SetFVF(imageFvf);
    EXPECT_EQ(D3D_OK,
              device->DrawPrimitiveUP(D3DPT_TRIANGLESTRIP, 2, image.data(), sizeof(Corner)));
    EXPECT_EQ(Pixel(), green);
    device->EndScene();
}

} // namespace Tests
