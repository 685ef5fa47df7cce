// SPDX-License-Identifier: MIT
//
// Loss and reset of the device.
#include "tests/support/device.hpp"

#include <functional>
#include <memory>

namespace Tests {

class ResetTest : public BothTest {
protected:
    HRESULT Reset() {
        D3DPRESENT_PARAMETERS pp = Parameters();
        return device->Reset(&pp);
    }
    HRESULT Present() { return device->Present(nullptr, nullptr, nullptr, nullptr); }
    HRESULT ClearNow() { return device->Clear(0, nullptr, 3, red, 1, 0); }
};
INSTANTIATE_TEST_SUITE_P(, ResetTest, testing::Bool(), BackendName);

TEST_P(ResetTest, IsRefusedWhileAnObjectOfTheDefaultPoolIsHeld) {
    using Any = std::shared_ptr<void>;
    const auto keep = [](auto held) -> Any {
        return std::make_shared<decltype(held)>(std::move(held));
    };
    const std::pair<const char*, std::function<Any()>> blockers[] = {
        {"vertex buffer", [&] { return keep(Vertices<int>({1}, 0, D3DPOOL_DEFAULT)); }},
        {"index buffer", [&] { return keep(Indices<WORD>({1}, D3DPOOL_DEFAULT)); }},
        {"target", [&] { return keep(Target()); }},
        {"surface of a target", [&] { return keep(Level(Target())); }},
        {"texture", [&] { return keep(Texture(4, 4, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_DEFAULT)); }},
        {"back buffer", [&] { return keep(BackBuffer()); }},
        {"depth buffer",
         [&] {
             Held<IDirect3DSurface9> surface;
             device->GetDepthStencilSurface(surface.Out());
             return keep(std::move(surface));
         }},
        {"plain surface",
         [&] {
             Held<IDirect3DSurface9> surface;
             device->CreateOffscreenPlainSurface(4, 4, D3DFMT_X8R8G8B8, D3DPOOL_DEFAULT,
                                                 surface.Out(), nullptr);
             return keep(std::move(surface));
         }},
    };
    for (const auto& [name, make] : blockers) {
        Any blocker = make();
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(D3DERR_INVALIDCALL, Reset()) << name;
        EXPECT_EQ(D3DERR_DEVICENOTRESET, device->TestCooperativeLevel()) << name;
        EXPECT_TRUE(FAILED(ClearNow())) << name;
        EXPECT_EQ(D3DERR_DEVICELOST, Present()) << name;
        blocker.reset();
        EXPECT_EQ(D3DERR_DEVICENOTRESET, device->TestCooperativeLevel()) << name;
        EXPECT_EQ(D3D_OK, Reset()) << name;
        EXPECT_EQ(D3D_OK, device->TestCooperativeLevel()) << name;
        EXPECT_EQ(D3D_OK, ClearNow()) << name;
        EXPECT_EQ(D3D_OK, Present()) << name;
    }
}

TEST_P(ResetTest, ManagedAndMemoryObjectsAndWhatIsOnlyBoundDoNotBlockAndContentSurvives) {
    const Picture noise = Noise(8, 8, 21, 0);
    const std::vector<int> numbers = {1, 2, 3, 4};
    const Held<IDirect3DTexture9> texture = Texture(noise);
    const auto vertices = Vertices(numbers, 0), memory = Vertices(numbers, 0, D3DPOOL_SYSTEMMEM, 0);
    Held<IDirect3DSurface9> plain;
    device->CreateOffscreenPlainSurface(4, 4, D3DFMT_X8R8G8B8, D3DPOOL_SYSTEMMEM, plain.Out(),
                                        nullptr);
    device->SetStreamSource(0, Vertices(numbers, 0, D3DPOOL_DEFAULT), 0, 4);
    device->SetIndices(Indices<WORD>({1}, D3DPOOL_DEFAULT));
    device->SetTexture(0, Target());
    device->SetRenderTarget(0, Level(Target()));
    EXPECT_EQ(D3D_OK, Reset());
    EXPECT_TRUE(Same(Read(texture), noise));
    for (const auto* buffer : {&vertices, &memory}) {
        void* data = nullptr;
        ASSERT_EQ(D3D_OK, (*buffer)->Lock(0, 0, &data, 0));
        EXPECT_EQ(0, std::memcmp(data, numbers.data(), 16));
        (*buffer)->Unlock();
    }
    VornPlatform::LiveObjects left;
    left.devices = left.textures = left.surfaces = 1;
    left.vertexBuffers = 2;
    EXPECT_EQ(VornPlatform::CountLiveObjects(), left) << "what was only bound is gone";
    Held<IDirect3DSurface9> target;
    device->GetRenderTarget(0, target.Out());
    EXPECT_EQ(target.Get(), BackBuffer().Get());
    if (GetParam())
        return;
    Flat();
    Clear(black);
    device->SetTexture(0, texture);
    Image(0, 0, 8, 8);
    Picture expected(Side, Side, black);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            expected.At(x, y) = noise.At(x, y) | black;
    EXPECT_TRUE(Same(Screen(), expected));
}

TEST_P(ResetTest, EndsAnOpenScene) {
    ASSERT_EQ(D3D_OK, device->BeginScene());
    EXPECT_EQ(D3D_OK, Reset());
    EXPECT_EQ(D3DERR_INVALIDCALL, device->EndScene());
    EXPECT_EQ(D3D_OK, device->BeginScene());
    EXPECT_EQ(D3D_OK, device->EndScene());
}

TEST_P(ResetTest, PutsEveryStateBackToItsDefault) {
    const auto check = [this](const char* when) {
        const std::pair<D3DRENDERSTATETYPE, DWORD> states[] = {
            {D3DRS_ZENABLE, 1},           {D3DRS_FILLMODE, 3},
            {D3DRS_ZWRITEENABLE, 1},      {D3DRS_ALPHATESTENABLE, 0},
            {D3DRS_SRCBLEND, 2},          {D3DRS_DESTBLEND, 1},
            {D3DRS_CULLMODE, 3},          {D3DRS_ZFUNC, 4},
            {D3DRS_ALPHAREF, 0},          {D3DRS_ALPHAFUNC, 8},
            {D3DRS_ALPHABLENDENABLE, 0},  {D3DRS_LIGHTING, 1},
            {D3DRS_COLORWRITEENABLE, 15}, {D3DRS_BLENDOP, 1}};
        for (const auto& [state, value] : states) {
            DWORD got = ~value;
            EXPECT_EQ(D3D_OK, device->GetRenderState(state, &got));
            EXPECT_EQ(got, value) << when << " " << state;
            device->SetRenderState(state, value == 1 ? 2 : 1);
            if (value) // one of the two is no value of its
                device->SetRenderState(state, 0);
            device->GetRenderState(state, &got);
            EXPECT_NE(got, value) << state;
        }
        const std::pair<D3DTEXTURESTAGESTATETYPE, DWORD> stages[] = {
            {D3DTSS_COLOROP, 4},
            {D3DTSS_COLORARG1, 2},
            {D3DTSS_COLORARG2, 1},
            {D3DTSS_ALPHAOP, 2},
            {D3DTSS_ALPHAARG1, 2},
            {D3DTSS_ALPHAARG2, 1},
            {D3DTSS_TEXTURETRANSFORMFLAGS, 0}};
        for (const auto& [state, value] : stages) {
            DWORD got = 99;
            EXPECT_EQ(D3D_OK, device->GetTextureStageState(0, state, &got));
            EXPECT_EQ(got, value) << when << " " << state;
            device->SetTextureStageState(0, state, value < 2 ? 2 : 1);
        }
        const std::pair<D3DSAMPLERSTATETYPE, DWORD> samplers[] = {
            {D3DSAMP_ADDRESSU, 1},  {D3DSAMP_ADDRESSV, 1},  {D3DSAMP_BORDERCOLOR, 0},
            {D3DSAMP_MAGFILTER, 1}, {D3DSAMP_MINFILTER, 1}, {D3DSAMP_MIPFILTER, 0}};
        for (const auto& [state, value] : samplers) {
            DWORD got = 99;
            EXPECT_EQ(D3D_OK, device->GetSamplerState(0, state, &got));
            EXPECT_EQ(got, value) << when << " " << state;
            device->SetSamplerState(0, state, 2);
        }
        D3DXMATRIX identity, m;
        D3DXMatrixIdentity(&identity);
        for (const D3DTRANSFORMSTATETYPE state :
             {D3DTS_VIEW, D3DTS_PROJECTION, D3DTS_TEXTURE0, D3DTS_WORLD}) {
            device->GetTransform(state, &m);
            EXPECT_EQ(0, std::memcmp(&m, &identity, sizeof m)) << when << " " << state;
            m._23 = 3;
            device->SetTransform(state, &m);
        }
        D3DVIEWPORT9 v = {};
        device->GetViewport(&v);
        EXPECT_TRUE(v.X == 0 && v.Y == 0 && v.Width == Side && v.Height == Side && v.MinZ == 0 &&
                    v.MaxZ == 1)
            << when;
        v.X = 5, v.Width = 6, v.MinZ = 0.5f;
        device->SetViewport(&v);
        Held<IDirect3DBaseTexture9> texture;
        EXPECT_EQ(D3D_OK, device->GetTexture(0, texture.Out()));
        EXPECT_EQ(texture.Get(), nullptr) << when;
        device->SetTexture(0, Texture(4, 4));
        device->LightEnable(0, TRUE);
    };
    check("at start");
    EXPECT_EQ(D3D_OK, Reset());
    check("after a reset");
    EXPECT_EQ(D3D_OK, Reset());
    if (!GetParam()) { // the light is out too, and draws take their format anew
        Set(D3DRS_CULLMODE, D3DCULL_NONE);
        const float corners[3][7] = {
            {-1, 3, 0, 0, 0, -1, 0}, {3, -1, 0, 0, 0, -1, 0}, {-1, -1, 0, 0, 0, -1, 0}};
        Clear(red);
        device->BeginScene();
        EXPECT_TRUE(FAILED(device->DrawPrimitiveUP(D3DPT_TRIANGLELIST, 1, corners, 28)));
        device->SetFVF(0x52);
        EXPECT_EQ(D3D_OK, device->DrawPrimitiveUP(D3DPT_TRIANGLELIST, 1, corners, 28));
        device->EndScene();
        EXPECT_EQ(Screen().At(32, 32), black);
    }
}

TEST_P(ResetTest, TakesTheNewSizeAndFillsInFormatAndCount) {
    D3DPRESENT_PARAMETERS pp = Parameters(40, 30);
    pp.BackBufferFormat = D3DFMT_UNKNOWN, pp.BackBufferCount = 0;
    ASSERT_EQ(D3D_OK, device->Reset(&pp));
    EXPECT_EQ(pp.BackBufferFormat, 22u);
    EXPECT_EQ(pp.BackBufferCount, 1u);
    D3DVIEWPORT9 viewport = {};
    device->GetViewport(&viewport);
    EXPECT_TRUE(viewport.Width == 40 && viewport.Height == 30);
    Clear(green);
    EXPECT_TRUE(Same(Screen(), Picture(40, 30, green)));
    pp.EnableAutoDepthStencil = FALSE;
    ASSERT_EQ(D3D_OK, device->Reset(&pp));
    EXPECT_EQ(D3DERR_INVALIDCALL, device->Clear(0, nullptr, D3DCLEAR_ZBUFFER, 0, 1, 0));
}

TEST_P(ResetTest, LossRunsFromLostToNotResetToReset) {
    const Held<IDirect3DTexture9> managed = Texture(Picture(4, 4, red));
    VornPlatform::LoseDevice();
    EXPECT_EQ(D3DERR_DEVICELOST, device->TestCooperativeLevel());
    EXPECT_EQ(D3DERR_DEVICELOST, Present());
    EXPECT_TRUE(FAILED(Reset())) << "while it is lost";
    EXPECT_EQ(D3DERR_DEVICELOST, device->TestCooperativeLevel());
    VornPlatform::RestoreDevice();
    EXPECT_EQ(D3DERR_DEVICENOTRESET, device->TestCooperativeLevel());
    EXPECT_EQ(D3DERR_DEVICELOST, Present());
    EXPECT_EQ(D3D_OK, Reset());
    EXPECT_EQ(D3D_OK, device->TestCooperativeLevel());
    EXPECT_EQ(D3D_OK, Present());
    EXPECT_TRUE(Same(Read(managed), Picture(4, 4, red)));
    VornPlatform::LoseDevice(); // a device may go while it is lost
    Held<IDirect3DTexture9> none;
    device->SetTexture(0, managed);
    VornPlatform::RestoreDevice();
    EXPECT_EQ(D3D_OK, Reset());
}

TEST_P(ResetTest, FailResetsFailsSoManyWithSuchAResult) {
    VornPlatform::FailResets(2, D3DERR_DRIVERINTERNALERROR);
    EXPECT_EQ(D3DERR_DRIVERINTERNALERROR, Reset());
    EXPECT_EQ(D3DERR_DRIVERINTERNALERROR, Reset());
    EXPECT_EQ(D3D_OK, Reset());
    EXPECT_EQ(D3D_OK, device->TestCooperativeLevel());
}

TEST_P(ResetTest, ParametersThatMakeNoSenseFailLikeAnyOther) {
    const HWND other = OpenWindow();
    DestroyWindow(other);
    const std::pair<const char*, std::function<void(D3DPRESENT_PARAMETERS&)>> cases[] = {
        {"too wide", [](auto& pp) { pp.BackBufferWidth = 99999; }},
        {"no such format", [](auto& pp) { pp.BackBufferFormat = D3DFMT_DXT1; }},
        {"another window that is gone", [&](auto& pp) { pp.hDeviceWindow = other; }},
    };
    for (const auto& [name, spoil] : cases) {
        D3DPRESENT_PARAMETERS pp = Parameters();
        spoil(pp);
        EXPECT_EQ(D3DERR_INVALIDCALL, device->Reset(&pp)) << name;
        EXPECT_EQ(D3DERR_DEVICENOTRESET, device->TestCooperativeLevel()) << name;
        EXPECT_EQ(D3D_OK, Reset()) << name;
        EXPECT_EQ(D3D_OK, device->TestCooperativeLevel()) << name;
    }
    DestroyWindow(window);
    EXPECT_EQ(D3D_OK, Reset()) << "the device's own window may be gone";
}

TEST_P(ResetTest, FullScreenEndsWithTheDeviceAndWhenItMovesToAnotherWindow) {
    const auto open = [] {
        return CreateWindowExA(0, "Device", "", 0xCA0000, 0, 0, 100, 80, nullptr, nullptr, nullptr,
                               nullptr);
    };
    const auto isMovable = [](HWND handle) { // in full screen it stays in the corner
        SetWindowPos(handle, nullptr, 30, 20, 100, 80, 0);
        RECT rect = {};
        GetWindowRect(handle, &rect);
        return rect.left == 30 && rect.top == 20;
    };
    const HWND first = open(), second = open();
    D3DPRESENT_PARAMETERS pp = Parameters();
    pp.hDeviceWindow = first, pp.Windowed = FALSE;
    Open(pp);
    EXPECT_FALSE(isMovable(first));
    pp.hDeviceWindow = second;
    ASSERT_EQ(D3D_OK, device->Reset(&pp));
    EXPECT_TRUE(isMovable(first));
    EXPECT_FALSE(isMovable(second));
    Close();
    EXPECT_TRUE(isMovable(second));
    DestroyWindow(first), DestroyWindow(second);
}

} // namespace Tests
