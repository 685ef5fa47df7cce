// SPDX-License-Identifier: MIT
//
// Textures: exact images, addressing, filters, levels, compressed blocks, targets that are sampled.
#include "tests/support/device.hpp"

#include <SDL.h>

#include <cmath>

namespace Tests {

class TextureTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        Flat();
    }
    /// Each level in a colour of its own.
    static std::uint32_t LevelColor(UINT level) {
        return Packed(static_cast<int>(level * 30 + 20), static_cast<int>(255 - level * 30), 77);
    }
    Held<IDirect3DTexture9> LevelTexture() {
        Held<IDirect3DTexture9> texture = Texture(64, 64, 0);
        EXPECT_EQ(texture->GetLevelCount(), 7u);
        for (UINT level = 0; level < 7; ++level)
            FillLevel(texture, level, Picture(64 >> level, 64 >> level, LevelColor(level)));
        return texture;
    }
};

TEST_F(TextureTest, AnImageDrawnOneToOneIsExactWithTheShiftOfHalfAPixelAndOnlyWithIt) {
    for (const DWORD filter : {D3DTEXF_POINT, D3DTEXF_LINEAR}) {
        Sampler(D3DSAMP_MAGFILTER, filter);
        const Picture noise = Noise(40, 40, 7);
        const Held<IDirect3DTexture9> texture = Texture(noise);
        device->SetTexture(0, texture);
        Clear(black);
        Image(3, 5, 40, 40);
        Picture expected(Side, Side, black);
        for (int y = 0; y < 40; ++y)
            for (int x = 0; x < 40; ++x)
                expected.At(3 + x, 5 + y) = noise.At(x, y);
        EXPECT_TRUE(Same(Screen(), expected)) << filter;
    }
    // Without it each pixel is the mean of four texels, and the edge takes the opposite one: at
    // exactly 1:1 it is the magnification filter, although the other one is POINT.
    const Picture noise = Noise(32, 32, 8);
    const Held<IDirect3DTexture9> texture = Texture(noise);
    device->SetTexture(0, texture);
    Draw(D3DPT_TRIANGLESTRIP, Corners({0, 0, 32, 32}, white), imageFvf);
    const Picture got = Screen();
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x) {
            int c[3];
            for (std::size_t i = 0; i < 3; ++i)
                c[i] = (Channels(noise.At(x, y))[i] + Channels(noise.At((x + 31) % 32, y))[i] +
                        Channels(noise.At(x, (y + 31) % 32))[i] +
                        Channels(noise.At((x + 31) % 32, (y + 31) % 32))[i] + 2) /
                       4;
            // Weights of 8 bits are exact here; two steps may each round.
            ASSERT_LE(Distance(got.At(x, y), Packed(c[0], c[1], c[2])), 2) << x << ", " << y;
        }
}

TEST_F(TextureTest, LinesAndRowsOfATextureAreWhereTheirLockSaid) {
    // A rectangle of a level, then the whole again.
    Picture picture = Noise(16, 16, 9);
    const Held<IDirect3DTexture9> texture = Texture(picture);
    const RECT part = {4, 2, 9, 7};
    D3DLOCKED_RECT locked = {};
    ASSERT_EQ(D3D_OK, texture->LockRect(0, &locked, &part, 0));
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x)
            std::memcpy(static_cast<char*>(locked.pBits) + y * locked.Pitch + x * 4, &red, 4);
    texture->UnlockRect(0);
    picture.Fill(4, 2, 9, 7, red);
    EXPECT_TRUE(Same(Read(texture), picture));
    device->SetTexture(0, texture);
    Image(0, 0, 16, 16);
    // The same through the surface, after it was drawn with.
    const Held<IDirect3DSurface9> surface = Level(texture);
    ASSERT_EQ(D3D_OK, surface->LockRect(&locked, nullptr, 0));
    std::memcpy(static_cast<char*>(locked.pBits) + 3 * locked.Pitch, &green, 4);
    surface->UnlockRect();
    Image(32, 0, 16, 16);
    Picture expected(Side, Side, black);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            expected.At(x, y) = expected.At(32 + x, y) = picture.At(x, y);
    expected.At(32, 3) = green;
    EXPECT_TRUE(Same(Screen(), expected));
}

TEST_F(TextureTest, TheTextureTransformShiftsByItsThirdRow) {
    const Picture noise = Noise(8, 8, 10);
    const Held<IDirect3DTexture9> texture = Texture(noise);
    device->SetTexture(0, texture);
    D3DXMATRIX m;
    D3DXMatrixIdentity(&m);
    m._31 = 0.25f, m._32 = -0.125f; // two texels right, one up
    m._41 = 0.5f, m._42 = 0.5f;     // of no effect
    m._11 = -1;                     // mirrored in u
    device->SetTransform(D3DTS_TEXTURE0, &m);
    for (const bool on : {false, true}) {
        Stage(D3DTSS_TEXTURETRANSFORMFLAGS, on ? D3DTTFF_COUNT2 : D3DTTFF_DISABLE);
        Image(0, 0, 8, 8);
        Picture expected(Side, Side, black);
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                expected.At(x, y) = on ? noise.At((7 - x + 2) % 8, (y + 7) % 8) : noise.At(x, y);
        EXPECT_TRUE(Same(Screen(), expected)) << on;
    }
}

TEST_F(TextureTest, AddressingOutsideTheTexture) {
    constexpr int n = 8;
    const Picture noise = Noise(n, n, 11);
    const Held<IDirect3DTexture9> texture = Texture(noise);
    device->SetTexture(0, texture);
    const std::uint32_t border = 0xff123456;
    Sampler(D3DSAMP_BORDERCOLOR, border);
    const auto address = [](DWORD mode, int i) { // or -1 for the border
        const int wrapped = (i % n + n) % n, twice = (i % (2 * n) + 2 * n) % (2 * n);
        const int results[] = {0,
                               wrapped,
                               twice < n ? twice : 2 * n - 1 - twice,
                               std::clamp(i, 0, n - 1),
                               i < 0 || i >= n ? -1 : i,
                               std::min(i < 0 ? -1 - i : i, n - 1)};
        return results[mode];
    };
    for (DWORD u = D3DTADDRESS_WRAP; u <= D3DTADDRESS_MIRRORONCE; ++u)
        for (DWORD v = D3DTADDRESS_WRAP; v <= D3DTADDRESS_MIRRORONCE; ++v) {
            Sampler(D3DSAMP_ADDRESSU, u), Sampler(D3DSAMP_ADDRESSV, v);
            Image(0, 0, 5 * n, 5 * n, white, {-2, -2, 3, 3});
            Picture expected(Side, Side, black);
            for (int y = 0; y < 5 * n; ++y)
                for (int x = 0; x < 5 * n; ++x) {
                    const int tx = address(u, x - 2 * n), ty = address(v, y - 2 * n);
                    expected.At(x, y) = tx < 0 || ty < 0 ? border : noise.At(tx, ty);
                }
            EXPECT_TRUE(Same(Screen(), expected)) << u << " " << v;
        }
}

TEST_F(TextureTest, MagnificationIsPointByDefaultAndLinearOnRequest) {
    const Picture noise = Noise(8, 8, 12);
    const Held<IDirect3DTexture9> texture = Texture(noise);
    device->SetTexture(0, texture);
    Image(0, 0, 64, 64);
    Picture expected(Side, Side, black);
    for (int y = 0; y < Side; ++y)
        for (int x = 0; x < Side; ++x)
            expected.At(x, y) = noise.At(x / 8, y / 8);
    EXPECT_TRUE(Same(Screen(), expected)) << "point";

    Sampler(D3DSAMP_MAGFILTER, D3DTEXF_LINEAR);
    Sampler(D3DSAMP_ADDRESSU, D3DTADDRESS_CLAMP), Sampler(D3DSAMP_ADDRESSV, D3DTADDRESS_CLAMP);
    Image(0, 0, 64, 64);
    for (int y = 0; y < Side; ++y)
        for (int x = 0; x < Side; ++x) {
            const int u = 2 * x + 1 - 8, v = 2 * y + 1 - 8; // sixteenths of a texel
            const int i = u >> 4, j = v >> 4, fu = u & 15, fv = v & 15;
            const auto at = [&noise](int tx, int ty) {
                return Channels(noise.At(std::clamp(tx, 0, 7), std::clamp(ty, 0, 7)));
            };
            int c[3];
            for (std::size_t k = 0; k < 3; ++k)
                c[k] = (((at(i, j)[k] * (16 - fu) + at(i + 1, j)[k] * fu) * (16 - fv) +
                         (at(i, j + 1)[k] * (16 - fu) + at(i + 1, j + 1)[k] * fu) * fv) +
                        128) /
                       256;
            expected.At(x, y) = Packed(c[0], c[1], c[2]);
        }
    EXPECT_TRUE(Same(Screen(), expected, 2)) << "linear: each of two steps may round";
}

TEST_F(TextureTest, MinifiedImagesArePointSampledFromTheFirstLevelByDefault) {
    const Picture noise = Noise(64, 64, 13);
    const Held<IDirect3DTexture9> texture = Texture(64, 64, 0);
    for (UINT level = 1; level < 7; ++level)
        FillLevel(texture, level, Picture(64 >> level, 64 >> level, red));
    FillLevel(texture, 0, noise);
    device->SetTexture(0, texture);
    // A quarter as large, moved by half a texel, so that samples lie on texel centres.
    constexpr float half = 0.5f / 64;
    Image(0, 0, 16, 16, white, {half, half, 1 + half, 1 + half});
    Picture expected(Side, Side, black);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            expected.At(x, y) = noise.At(4 * x + 2, 4 * y + 2);
    EXPECT_TRUE(Same(Screen(), expected));
}

TEST_F(TextureTest, TheMipFilterPicksTheLevelByTheScale) {
    const Held<IDirect3DTexture9> texture = LevelTexture();
    device->SetTexture(0, texture);
    for (const DWORD filter : {D3DTEXF_NONE, D3DTEXF_POINT, D3DTEXF_LINEAR})
        for (UINT level = 0; level < 7; ++level) {
            Sampler(D3DSAMP_MIPFILTER, filter);
            Clear(black);
            const int size = 64 >> level;
            Image(0, 0, size, size);
            Picture expected(Side, Side, black);
            expected.Fill(0, 0, size, size, LevelColor(filter == D3DTEXF_NONE ? 0 : level));
            // Between levels a software renderer's logarithm may be off by 1/16 of a step of 30.
            EXPECT_TRUE(Same(Screen(), expected, filter == D3DTEXF_LINEAR ? 2 : 0))
                << filter << " level " << level;
        }
    // Between two levels POINT takes the nearer one, LINEAR mixes.
    Sampler(D3DSAMP_MIPFILTER, D3DTEXF_POINT);
    Image(0, 0, 27, 27); // log2(64 / 27) = 1.25
    EXPECT_EQ(Screen().At(13, 13), LevelColor(1));
    Image(0, 0, 19, 19); // 1.75
    EXPECT_EQ(Screen().At(9, 9), LevelColor(2));
    Sampler(D3DSAMP_MIPFILTER, D3DTEXF_LINEAR);
    Image(0, 0, 23, 23); // 1.48
    const int mixed = Channels(Screen().At(11, 11))[0];
    EXPECT_GT(mixed, 20 + 30 + 5);
    EXPECT_LT(mixed, 20 + 60 - 5);
}

TEST_F(TextureTest, CompressedBlocks) {
    struct Block {
        D3DFORMAT format;
        std::vector<unsigned char> bytes;
        std::array<std::uint32_t, 4> columns; // of texels; rows are alike
    };
    // Two end colours: red 0xf800, blue 0x001f; the columns of each row take codes 0, 1, 2, 3.
    const std::vector<unsigned char> opaque = {0x00, 0xf8, 0x1f, 0x00, 0xe4, 0xe4, 0xe4, 0xe4};
    const std::vector<unsigned char> punched = {0x1f, 0x00, 0x00, 0xf8, 0xe4, 0xe4, 0xe4, 0xe4};
    const std::array<std::uint32_t, 4> colors = {red, blue, 0xffaa0055, 0xff5500aa};
    const auto with = [](std::vector<unsigned char> front, std::vector<unsigned char> back) {
        front.insert(front.end(), back.begin(), back.end());
        return front;
    };
    const auto alphas = [&colors](std::array<std::uint32_t, 4> a) {
        std::array<std::uint32_t, 4> all = {};
        for (std::size_t i = 0; i < 4; ++i)
            all[i] = (colors[i] & 0xffffff) | a[i] << 24;
        return all;
    };
    // DXT5 codes 0, 1, 2, 7 in each row: 3 bits each, two rows in three bytes.
    const unsigned row = 0 | 1 << 3 | 2 << 6 | 7 << 9, rows = row | row << 12;
    const auto byte = [](unsigned value) { return static_cast<unsigned char>(value & 0xff); };
    const std::vector<unsigned char> codes = {byte(rows), byte(rows >> 8), byte(rows >> 16),
                                              byte(rows), byte(rows >> 8), byte(rows >> 16)};
    const Block blocks[] = {
        {D3DFMT_DXT1, opaque, colors},
        {D3DFMT_DXT1, punched, {blue, red, 0xff800080, 0x00000000}},
        {D3DFMT_DXT3, with({0x50, 0xfa, 0x50, 0xfa, 0x50, 0xfa, 0x50, 0xfa}, opaque),
         alphas({0x00, 0x55, 0xaa, 0xff})},
        {D3DFMT_DXT5, with(with({200, 60}, codes), opaque), alphas({200, 60, 180, 80})},
        {D3DFMT_DXT5, with(with({60, 200}, codes), opaque), alphas({60, 200, 88, 255})},
    };
    const Held<IDirect3DTexture9> target = Target();
    device->SetRenderTarget(0, Level(target));
    for (const Block& block : blocks) {
        // Two blocks by two, the second column of them left blank.
        const Held<IDirect3DTexture9> texture = Texture(8, 8, 1, 0, block.format);
        D3DLOCKED_RECT locked = {};
        ASSERT_EQ(D3D_OK, texture->LockRect(0, &locked, nullptr, 0));
        EXPECT_GE(static_cast<std::size_t>(locked.Pitch), 2 * block.bytes.size());
        for (int y = 0; y < 2; ++y) {
            char* const line = static_cast<char*>(locked.pBits) + y * locked.Pitch;
            std::memset(line, 0, 2 * block.bytes.size());
            std::memcpy(line, block.bytes.data(), block.bytes.size());
        }
        texture->UnlockRect(0);
        device->SetTexture(0, texture);
        Clear(0);
        Image(0, 0, 8, 8);
        Picture expected(Side, Side, 0);
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                expected.At(x, y) = x < 4 ? block.columns[static_cast<std::size_t>(x)]
                                    : block.format == D3DFMT_DXT1 ? black
                                                                  : 0;
        // Decoders differ by 1 or 2 in the colours and alphas between the two ends.
        EXPECT_TRUE(Same(Read(target), expected, 2)) << block.format;
    }
    device->SetRenderTarget(0, BackBuffer());
}

TEST_F(TextureTest, FormatsOfOneAndTwoBytesAreGreyAndAlpha) {
    struct Case {
        D3DFORMAT format;
        std::vector<unsigned char> texel;
        std::uint32_t expected;
    };
    const Case cases[] = {{D3DFMT_L8, {0x40}, 0xff404040},
                          {D3DFMT_A8, {0x40}, 0x40000000},
                          {D3DFMT_A8L8, {0x40, 0x80}, 0x80404040},
                          {D3DFMT_X8R8G8B8, {1, 2, 3, 4}, 0xff030201}};
    const Held<IDirect3DTexture9> target = Target();
    device->SetRenderTarget(0, Level(target));
    for (const Case& one : cases) {
        const Held<IDirect3DTexture9> texture = Texture(1, 1, 1, 0, one.format);
        D3DLOCKED_RECT locked = {};
        ASSERT_EQ(D3D_OK, texture->LockRect(0, &locked, nullptr, 0)) << one.format;
        std::memcpy(locked.pBits, one.texel.data(), one.texel.size());
        texture->UnlockRect(0);
        device->SetTexture(0, texture);
        Image(0, 0, Side, Side);
        EXPECT_TRUE(Same(Read(target), Picture(Side, Side, one.expected))) << one.format;
    }
    device->SetRenderTarget(0, BackBuffer());
}

TEST_F(TextureTest, WhatIsDrawnIntoATargetComesOutUpright) {
    const Picture noise = Noise(Side, Side, 14);
    const Held<IDirect3DTexture9> texture = Texture(noise), target = Target();
    for (int pass = 0; pass < 2; ++pass) {
        device->SetRenderTarget(0, Level(target));
        device->SetTexture(0, texture);
        Image(0, 0, Side, Side);
        EXPECT_TRUE(Same(Read(target), noise));
        device->SetRenderTarget(0, BackBuffer());
        device->SetTexture(0, target);
        Image(0, 0, Side, Side);
        EXPECT_TRUE(Same(Screen(), noise));
        Clear(black);
    }
}

TEST_F(TextureTest, LevelsOfAnAutogenmipmapTargetAreTheMeanAndMadeAnewAfterEachScene) {
    const Held<IDirect3DTexture9> target = Target(64, 64, D3DFMT_X8R8G8B8, D3DUSAGE_AUTOGENMIPMAP);
    D3DSURFACE_DESC description = {};
    IDirect3DSurface9* none = nullptr;
    EXPECT_EQ(target->GetLevelCount(), 1u);
    EXPECT_EQ(D3D_OK, target->GetLevelDesc(0, &description));
    EXPECT_EQ(D3DERR_INVALIDCALL, target->GetLevelDesc(1, &description));
    EXPECT_EQ(D3DERR_INVALIDCALL, target->GetSurfaceLevel(1, &none));
    Sampler(D3DSAMP_MIPFILTER, D3DTEXF_POINT);
    const std::uint32_t tops[] = {red, green};
    for (const std::uint32_t top : tops) {
        device->SetRenderTarget(0, Level(target));
        device->SetTexture(0, nullptr);
        device->BeginScene();
        // Columns of 1 pixel, top half in one colour, bottom half in another, each with black.
        Clear(black);
        for (int x = 0; x < 64; x += 2) {
            const float l = static_cast<float>(x) - 0.5f;
            Quad({l, -0.5f, l + 1, 31.5f}, top);
            Quad({l, 31.5f, l + 1, 63.5f}, blue);
        }
        device->EndScene();
        device->SetRenderTarget(0, BackBuffer());
        device->SetTexture(0, target);
        for (int size = 32; size >= 1; size /= 2) {
            Clear(white);
            Image(0, 0, size, size);
            Picture expected(Side, Side, white);
            const auto half = [](std::uint32_t c) { return (c >> 1 & 0x7f7f7f) | black; };
            expected.Fill(0, 0, size, size, half(blue));
            expected.Fill(0, 0, size, size / 2, half(top));
            if (size == 1)
                expected.At(0, 0) = half(half(top)) + (half(half(blue)) & 0xffffff);
            // Each of up to six levels may round once.
            EXPECT_TRUE(Same(Screen(), expected, 3)) << size;
        }
    }
    // Also where a stage keeps the target while it is drawn anew.
    device->SetRenderTarget(0, Level(target));
    device->BeginScene();
    Clear(blue);
    device->EndScene();
    device->SetRenderTarget(0, BackBuffer());
    Image(0, 0, 1, 1);
    EXPECT_EQ(Screen().At(0, 0), blue);
}

TEST_F(TextureTest, WhatWasNeverWrittenIsDrawnAsItIsInMemory) {
    Flat();
    for (int i = 0; i < 8; ++i) { // memory of the machine that is used again
        const Held<IDirect3DTexture9> used = Texture(Picture(Side, Side, 0xabababab));
        device->SetTexture(0, used);
        Image(0, 0, Side, Side);
        device->SetTexture(0, nullptr);
    }
    const Held<IDirect3DTexture9> managed = Texture(Side, Side);
    const RECT part = {0, 0, 4, 4};
    D3DLOCKED_RECT locked = {};
    ASSERT_EQ(D3D_OK, managed->LockRect(0, &locked, &part, 0));
    for (int y = 0; y < 4; ++y)
        std::memset(static_cast<char*>(locked.pBits) + y * locked.Pitch, 0xff, 16);
    managed->UnlockRect(0);
    Clear(green);
    device->SetTexture(0, managed);
    Image(0, 0, Side, Side);
    Picture expected(Side, Side, black);
    expected.Fill(0, 0, 4, 4, white);
    EXPECT_TRUE(Same(Screen(), expected));
}

TEST_F(TextureTest, WhatCannotBeReadBackIsNoSuccess) {
    Held<IDirect3DSurface9> memory;
    device->CreateOffscreenPlainSurface(Side, Side, D3DFMT_X8R8G8B8, D3DPOOL_SYSTEMMEM,
                                        memory.Out(), nullptr);
    SDL_Quit(); // of a host: the machine is gone with it
    EXPECT_EQ(D3DERR_DRIVERINTERNALERROR, device->GetRenderTargetData(BackBuffer(), memory));
    EXPECT_TRUE(VornPlatform::ReadPixels(BackBuffer()).empty());
}

TEST_F(TextureTest, GetRenderTargetDataCopiesBackBufferAndTargetsIntoMemory) {
    const Picture noise = Noise(Side, Side, 15, 0);
    const Held<IDirect3DTexture9> texture = Texture(noise);
    for (const D3DFORMAT format : {D3DFMT_X8R8G8B8, D3DFMT_A8R8G8B8}) {
        const Held<IDirect3DTexture9> target = Target(Side, Side, format);
        const bool opaque = format == D3DFMT_X8R8G8B8;
        Held<IDirect3DSurface9> memory;
        ASSERT_EQ(D3D_OK, device->CreateOffscreenPlainSurface(Side, Side, format, D3DPOOL_SYSTEMMEM,
                                                              memory.Out(), nullptr));
        for (const bool screen : {true, false}) {
            if (screen && !opaque)
                continue;
            device->SetRenderTarget(0, screen ? BackBuffer() : Level(target));
            device->SetTexture(0, texture);
            Image(0, 0, Side, Side);
            const Held<IDirect3DSurface9> from = screen ? BackBuffer() : Level(target);
            ASSERT_EQ(D3D_OK, device->GetRenderTargetData(from, memory));
            D3DLOCKED_RECT locked = {};
            ASSERT_EQ(D3D_OK, memory->LockRect(&locked, nullptr, D3DLOCK_READONLY));
            Picture got(Side, Side, 0);
            for (int y = 0; y < Side; ++y)
                std::memcpy(&got.At(0, y), static_cast<char*>(locked.pBits) + y * locked.Pitch,
                            Side * 4);
            memory->UnlockRect();
            Picture expected = noise;
            for (std::size_t i = 0; opaque && i < got.pixels.size(); ++i)
                got.pixels[i] |= black, expected.pixels[i] |= black; // X is anything
            EXPECT_TRUE(Same(got, expected)) << format << " " << screen;
            EXPECT_TRUE(Same(Read(memory), expected)) << format << " " << screen;
        }
    }
    device->SetRenderTarget(0, BackBuffer());
}

} // namespace Tests
