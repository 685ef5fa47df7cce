// SPDX-License-Identifier: MIT
//
// Rendering to surfaces, textures of D3DX, pictures to files and back.
#include "tests/support/device.hpp"
#include "tests/support/temp_folder.hpp"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <sys/resource.h>

namespace Tests {

class RenderToSurfaceTest : public BothTest {
protected:
    void SetUp() override {
        BothTest::SetUp();
        ASSERT_EQ(D3D_OK, D3DXCreateRenderToSurface(device, 32, 32, D3DFMT_X8R8G8B8, TRUE,
                                                    D3DFMT_D24X8, rts.Out()));
        ASSERT_EQ(D3D_OK, D3DXCreateTexture(device, 32, 32, 0,
                                            D3DUSAGE_RENDERTARGET | D3DUSAGE_AUTOGENMIPMAP,
                                            D3DFMT_X8R8G8B8, D3DPOOL_DEFAULT, target.Out()));
        surface = Level(target);
    }
    void TearDown() override { surface.Free(), target.Free(), rts.Free(); }
    bool Draws() const { return !GetParam(); } // the recorder leaves pixels alone

    Held<ID3DXRenderToSurface> rts;
    Held<IDirect3DTexture9> target;
    Held<IDirect3DSurface9> surface;
};
INSTANTIATE_TEST_SUITE_P(, RenderToSurfaceTest, testing::Bool(), BackendName);

TEST_P(RenderToSurfaceTest, BeginSceneFailsInASceneTwiceAndWithAWrongSurface) {
    const Held<IDirect3DTexture9> larger = Target(64, 32, D3DFMT_X8R8G8B8),
                                  other = Target(32, 32, D3DFMT_A8R8G8B8);
    const Held<IDirect3DSurface9> tooLarge = Level(larger), otherFormat = Level(other);
    EXPECT_TRUE(FAILED(rts->BeginScene(tooLarge, nullptr))) << "size";
    EXPECT_TRUE(FAILED(rts->BeginScene(otherFormat, nullptr))) << "format";
    EXPECT_TRUE(FAILED(rts->BeginScene(nullptr, nullptr)));
    for (const D3DVIEWPORT9 beyond :
         {D3DVIEWPORT9{1, 0, 32, 32, 0, 1}, {0, 0, 32, 33, 0, 1}, {0xffffffff, 0, 2, 2, 0, 1}})
        EXPECT_TRUE(FAILED(rts->BeginScene(surface, &beyond))) << beyond.X;
    EXPECT_TRUE(FAILED(rts->EndScene(1))) << "nothing was begun";
    ASSERT_EQ(D3D_OK, device->BeginScene());
    EXPECT_TRUE(FAILED(rts->BeginScene(surface, nullptr))) << "in a scene";
    EXPECT_EQ(D3D_OK, device->EndScene()) << "which is still the host's";
    Held<IDirect3DSurface9> now;
    device->GetRenderTarget(0, now.Out());
    EXPECT_EQ(now.Get(), BackBuffer().Get()) << "a refusal leaves the target";
    ASSERT_EQ(D3D_OK, rts->BeginScene(surface, nullptr));
    EXPECT_TRUE(FAILED(rts->BeginScene(surface, nullptr))) << "twice";
    EXPECT_EQ(D3DERR_INVALIDCALL, device->BeginScene()) << "it opens a scene";
    EXPECT_EQ(D3D_OK, rts->EndScene(1));
    EXPECT_EQ(D3DERR_INVALIDCALL, device->EndScene()) << "and closes it";
}

TEST_P(RenderToSurfaceTest, EndScenePutsBackTargetDepthAndViewportAndNothingElse) {
    const D3DVIEWPORT9 before = {3, 4, 20, 21, 0.25f, 0.75f}, inside = {5, 6, 7, 8, 0.5f, 1};
    device->SetViewport(&before);
    Held<IDirect3DSurface9> depth, now;
    device->GetDepthStencilSurface(depth.Out());
    const ULONG references = CountOf(device);
    for (const bool whole : {true, false}) {
        ASSERT_EQ(D3D_OK, rts->BeginScene(surface, whole ? nullptr : &inside));
        D3DVIEWPORT9 v = {};
        device->GetViewport(&v);
        EXPECT_TRUE(whole ? v.X == 0 && v.Y == 0 && v.Width == 32 && v.Height == 32 &&
                                v.MinZ == 0 && v.MaxZ == 1
                          : 0 == std::memcmp(&v, &inside, sizeof v));
        device->GetRenderTarget(0, now.Out());
        EXPECT_EQ(now.Get(), surface.Get());
        device->GetDepthStencilSurface(now.Out());
        EXPECT_TRUE(now.Get() && now.Get() != depth.Get()) << "its own depth buffer";
        D3DXMATRIX m;
        D3DXMatrixTranslation(&m, 1, 2, whole ? 3.f : 4.f);
        device->SetTransform(D3DTS_VIEW, &m);
        device->SetRenderState(D3DRS_ALPHAREF, whole ? 7 : 9);
        now.Free();
        EXPECT_EQ(D3D_OK, rts->EndScene(1));
        device->GetViewport(&v);
        EXPECT_EQ(0, std::memcmp(&v, &before, sizeof v));
        device->GetRenderTarget(0, now.Out());
        EXPECT_EQ(now.Get(), BackBuffer().Get());
        device->GetDepthStencilSurface(now.Out());
        EXPECT_EQ(now.Get(), depth.Get());
        now.Free();
        D3DXMATRIX after;
        DWORD reference = 0;
        device->GetTransform(D3DTS_VIEW, &after);
        device->GetRenderState(D3DRS_ALPHAREF, &reference);
        EXPECT_EQ(0, std::memcmp(&m, &after, sizeof m));
        EXPECT_EQ(reference, whole ? 7u : 9u);
    }
    EXPECT_EQ(CountOf(device), references);
}

TEST_P(RenderToSurfaceTest, ATargetKeepsItsContentAndTheBackBuffersDepthIsUntouched) {
    const auto fill = [this](D3DCOLOR color) {
        EXPECT_EQ(D3D_OK, device->Clear(0, nullptr, 3, color, 0.125f, 0));
    };
    Clear(blue, 0.75f);
    ASSERT_EQ(D3D_OK, rts->BeginScene(surface, nullptr));
    fill(red);
    EXPECT_EQ(D3D_OK, rts->EndScene(1));
    const D3DVIEWPORT9 part = {4, 4, 8, 8, 0, 1};
    ASSERT_EQ(D3D_OK, rts->BeginScene(surface, &part)); // no clear of the rest
    fill(green);
    EXPECT_EQ(D3D_OK, rts->EndScene(1));
    Picture expected(32, 32, red);
    expected.Fill(4, 4, 12, 12, green);
    EXPECT_TRUE(Same(Read(surface), expected));
    EXPECT_TRUE(Same(Screen(), Picture(Side, Side, blue)));
    if (!Draws())
        return;
    Flat();
    Quad({-1, -1, Side, Side}, white, 0.5f); // would fail against 0.125
    EXPECT_TRUE(Same(Screen(), Picture(Side, Side, white)));
    Quad({-1, -1, Side, Side}, black, 0.6f);
    EXPECT_TRUE(Same(Screen(), Picture(Side, Side, white)));
    // Inside it depth tests, against its own buffer.
    Flat(32, 32);
    ASSERT_EQ(D3D_OK, rts->BeginScene(surface, nullptr));
    device->Clear(0, nullptr, 3, black, 1, 0);
    Quad({-1, -1, 32, 32}, red, 0.2f);
    Quad({-1, -1, 32, 32}, green, 0.3f);
    EXPECT_EQ(D3D_OK, rts->EndScene(1));
    EXPECT_TRUE(Same(Read(surface), Picture(32, 32, red)));
    // And its levels are those of this scene.
    Flat();
    device->SetTexture(0, target);
    Sampler(D3DSAMP_MIPFILTER, D3DTEXF_POINT);
    Clear(black);
    Image(0, 0, 2, 2);
    EXPECT_EQ(Screen().At(1, 1), red);
}

TEST_P(RenderToSurfaceTest, WithoutDepthThereIsNoneAndBadOnesAreRefused) {
    Held<ID3DXRenderToSurface> flat;
    ASSERT_EQ(D3D_OK, D3DXCreateRenderToSurface(device, 32, 32, D3DFMT_X8R8G8B8, FALSE,
                                                D3DFMT_UNKNOWN, flat.Out()));
    ASSERT_EQ(D3D_OK, flat->BeginScene(surface, nullptr));
    EXPECT_EQ(D3DERR_INVALIDCALL, device->Clear(0, nullptr, D3DCLEAR_ZBUFFER, 0, 1, 0));
    EXPECT_EQ(D3D_OK, device->Clear(0, nullptr, D3DCLEAR_TARGET, green, 1, 0));
    EXPECT_EQ(D3D_OK, flat->EndScene(1));
    EXPECT_TRUE(Same(Read(surface), Picture(32, 32, green)));
    EXPECT_EQ(D3D_OK, device->Clear(0, nullptr, D3DCLEAR_ZBUFFER, 0, 1, 0));
    EXPECT_TRUE(FAILED(
        D3DXCreateRenderToSurface(device, 32, 32, D3DFMT_X8R8G8B8, TRUE, D3DFMT_D24X8, nullptr)));
    ID3DXRenderToSurface* none = nullptr;
    EXPECT_TRUE(FAILED(
        D3DXCreateRenderToSurface(nullptr, 32, 32, D3DFMT_X8R8G8B8, TRUE, D3DFMT_D24X8, &none)));
    EXPECT_EQ(none, nullptr);
}

class TextureOfFileTest : public DeviceTest {
protected:
    Held<IDirect3DTexture9> Load(const std::string& path) {
        Held<IDirect3DTexture9> texture;
        EXPECT_TRUE(SUCCEEDED(D3DXCreateTextureFromFileA(device, path.c_str(), texture.Out())))
            << path;
        return texture;
    }
    static std::string Bytes(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    const TempFolder folder;
};

TEST_F(TextureOfFileTest, WhatIsSavedComesBackWithAllItsLevels) {
    // The width is no power of two, and neither is the height.
    for (const std::uint32_t alpha : {0u, 0xff000000u})
        for (const auto format : {D3DXIFF_BMP, D3DXIFF_TGA, D3DXIFF_PNG, D3DXIFF_DDS}) {
            const Picture noise = Noise(21, 10, 40, alpha);
            const Held<IDirect3DTexture9> texture = Texture(noise);
            const std::string path = folder / "picture.jpg"; // the name says nothing
            ASSERT_EQ(D3D_OK, D3DXSaveSurfaceToFileA(path.c_str(), format, Level(texture), nullptr,
                                                     nullptr));
            const Held<IDirect3DTexture9> loaded = Load(path);
            ASSERT_NE(loaded.Get(), nullptr);
            EXPECT_EQ(loaded->GetLevelCount(), 5u);
            D3DSURFACE_DESC description = {};
            EXPECT_EQ(D3D_OK, loaded->GetLevelDesc(3, &description));
            EXPECT_TRUE(description.Width == 2 && description.Height == 1);
            EXPECT_EQ(description.Pool, D3DPOOL_MANAGED);
            Picture got = Read(loaded), expected = noise;
            for (std::size_t i = 0; format == D3DXIFF_BMP && i < got.pixels.size(); ++i)
                got.pixels[i] |= black, expected.pixels[i] |= black; // may have no alpha
            EXPECT_TRUE(Same(got, expected)) << format << " alpha " << alpha;
        }
    // Lossy: a smooth picture within a few steps.
    Picture smooth(32, 32, 0);
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x)
            smooth.At(x, y) = Packed(8 * x, 8 * y, 4 * x + 4 * y);
    const Held<IDirect3DTexture9> texture = Texture(smooth);
    const std::string path = folder / "smooth";
    ASSERT_EQ(D3D_OK,
              D3DXSaveSurfaceToFileA(path.c_str(), D3DXIFF_JPG, Level(texture), nullptr, nullptr));
    EXPECT_EQ(Bytes(path).substr(0, 2), "\xff\xd8");
    EXPECT_TRUE(Same(Read(Load(path)), smooth, 16));
}

TEST_F(TextureOfFileTest, APartOfTheScreenIsSavedAsItIsSeen) {
    Clear(0x00112233);
    const D3DRECT rect = {10, 20, 30, 40};
    device->Clear(1, &rect, D3DCLEAR_TARGET, 0x00445566, 1, 0);
    const RECT part = {8, 18, 24, 34},
               odd[] = {{0, 0, 65, 4}, {5, 5, 5, 9}, {-1, 0, 4, 4}, {9, 0, 4, 4}};
    const std::string path = folder / "screen.png";
    for (const auto format : {D3DXIFF_PNG, D3DXIFF_BMP}) {
        ASSERT_EQ(D3D_OK,
                  D3DXSaveSurfaceToFileA(path.c_str(), format, BackBuffer(), nullptr, nullptr));
        EXPECT_TRUE(Same(Read(Load(path)), Screen())) << "opaque, whatever X holds";
        ASSERT_EQ(D3D_OK,
                  D3DXSaveSurfaceToFileA(path.c_str(), format, BackBuffer(), nullptr, &part));
        Picture expected(16, 16, 0xff112233);
        expected.Fill(2, 2, 16, 16, 0xff445566);
        EXPECT_TRUE(Same(Read(Load(path)), expected));
    }
    const std::string before = Bytes(path);
    for (const RECT& bad : odd)
        EXPECT_TRUE(
            FAILED(D3DXSaveSurfaceToFileA(path.c_str(), D3DXIFF_PNG, BackBuffer(), nullptr, &bad)));
    EXPECT_TRUE(
        FAILED(D3DXSaveSurfaceToFileA(path.c_str(), D3DXIFF_PNG, nullptr, nullptr, nullptr)));
    EXPECT_TRUE(
        FAILED(D3DXSaveSurfaceToFileA(nullptr, D3DXIFF_PNG, BackBuffer(), nullptr, nullptr)));
    EXPECT_TRUE(FAILED(D3DXSaveSurfaceToFileA(path.c_str(), static_cast<D3DXIMAGE_FILEFORMAT>(77),
                                              BackBuffer(), nullptr, nullptr)));
    EXPECT_TRUE(FAILED(D3DXSaveSurfaceToFileA((folder / "none/a.png").c_str(), D3DXIFF_PNG,
                                              BackBuffer(), nullptr, nullptr)));
    EXPECT_EQ(Bytes(path), before) << "a refusal harms no file";
}

TEST_F(TextureOfFileTest, ASaveThatFindsNoRoomLeavesTheOlderFile) {
    const Held<IDirect3DTexture9> texture = Texture(Noise(64, 64, 5));
    const std::string path = folder.File("old.png", "yesterday's picture");
    const auto save = [&] {
        return D3DXSaveSurfaceToFileA(path.c_str(), D3DXIFF_PNG, Level(texture), nullptr, nullptr);
    };
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small = {4096, before.rlim_max};
    const auto old = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_TRUE(FAILED(save()));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, old);
    EXPECT_EQ(Bytes(path), "yesterday's picture");
    const auto files = std::filesystem::directory_iterator(folder.Path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1) << "nothing is left beside it";

    const std::string link = folder / "link.png";
    std::filesystem::create_symlink("old.png", link);
    EXPECT_EQ(D3D_OK,
              D3DXSaveSurfaceToFileA(link.c_str(), D3DXIFF_PNG, Level(texture), nullptr, nullptr));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_TRUE(Same(Read(Load(path)), Noise(64, 64, 5)));
    EXPECT_TRUE(
        FAILED(D3DXSaveSurfaceToFileA("/dev/full", D3DXIFF_PNG, Level(texture), nullptr, nullptr)));
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
}

TEST_F(TextureOfFileTest, AMissingOrBrokenFileGivesAnErrorAndNull) {
    const std::string path = folder / "whole";
    const Held<IDirect3DTexture9> texture = Texture(Noise(9, 7, 41));
    for (const auto format : {D3DXIFF_BMP, D3DXIFF_TGA, D3DXIFF_PNG, D3DXIFF_DDS, D3DXIFF_JPG}) {
        ASSERT_EQ(D3D_OK,
                  D3DXSaveSurfaceToFileA(path.c_str(), format, Level(texture), nullptr, nullptr));
        const std::string whole = Bytes(path);
        ASSERT_GT(whole.size(), 30u);
        for (std::size_t size = 0; size < whole.size(); size += 1 + size / 40) {
            IDirect3DTexture9* out = texture;
            const std::string cut = folder.File("cut", whole.substr(0, size));
            const HRESULT result = D3DXCreateTextureFromFileA(device, cut.c_str(), &out);
            EXPECT_EQ(out == nullptr, FAILED(result)) << format << " " << size;
            EXPECT_TRUE(FAILED(result) || size >= 18) << format << " " << size;
            if (SUCCEEDED(result))
                out->Release();
        }
    }
    IDirect3DTexture9* out = texture;
    EXPECT_TRUE(FAILED(D3DXCreateTextureFromFileA(device, (folder / "none").c_str(), &out)));
    EXPECT_EQ(out, nullptr);
    out = texture;
    EXPECT_TRUE(FAILED(D3DXCreateTextureFromFileA(device, folder.Path().c_str(), &out)));
    EXPECT_EQ(out, nullptr) << "a folder";
    EXPECT_TRUE(FAILED(D3DXCreateTextureFromFileA(device, nullptr, &out)));
    EXPECT_TRUE(FAILED(D3DXCreateTextureFromFileA(device, path.c_str(), nullptr)));
    EXPECT_TRUE(FAILED(D3DXCreateTextureFromFileA(nullptr, path.c_str(), &out)));
}

TEST_F(TextureOfFileTest, ADdsWithPartOfItsLevelsGetsTheRestAndShowsTheFirstAsItIs) {
    // 8 by 8 in DXT1, two of its four levels: red blocks, then blue ones.
    std::string dds = "DDS ";
    const auto number = [&dds](std::uint32_t value) {
        for (int shift = 0; shift < 32; shift += 8)
            dds += static_cast<char>(value >> shift & 0xff);
    };
    for (const std::uint32_t value : {124u, 0x21007u, 8u, 8u, 32u, 0u, 2u})
        number(value);
    for (int i = 0; i < 11; ++i)
        number(0);
    for (const std::uint32_t value :
         {32u, 4u, 0x31545844u, 0u, 0u, 0u, 0u, 0u, 0x401008u, 0u, 0u, 0u, 0u})
        number(value);
    ASSERT_EQ(dds.size(), 128u);
    for (int i = 0; i < 5; ++i)
        dds += i < 4 ? std::string("\x00\xf8\x00\xf8\0\0\0\0", 8)
                     : std::string("\x1f\x00\x1f\x00\0\0\0\0", 8);
    const Held<IDirect3DTexture9> texture = Load(folder.File("half.tga", dds));
    ASSERT_NE(texture.Get(), nullptr);
    EXPECT_EQ(texture->GetLevelCount(), 4u);
    D3DSURFACE_DESC description = {};
    texture->GetLevelDesc(3, &description);
    EXPECT_EQ(description.Width, 1u);
    EXPECT_EQ(description.Format, D3DFMT_DXT1);
    Flat();
    device->SetTexture(0, texture);
    Sampler(D3DSAMP_MIPFILTER, D3DTEXF_POINT);
    Picture shown(Side, Side, black);
    const std::uint32_t colors[] = {red, blue, blue, blue}; // the rest is made of the last
    for (int level = 0; level < 4; ++level) {
        Image(0, 0, 8 >> level, 8 >> level);
        shown.Fill(0, 0, 8 >> level, 8 >> level, colors[level]);
        EXPECT_TRUE(Same(Screen(), shown, 4)) << level;
    }
}

} // namespace Tests
