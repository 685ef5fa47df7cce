// SPDX-License-Identifier: MIT
//
// A window and a device of Direct3D for each test, makers of what is drawn, and what came out.
//
//   class FooTest : public DeviceTest {};
//   TEST_F(FooTest, ...) { Flat(); Quad({8, 8, 16, 16}, red); EXPECT_TRUE(Same(Screen(), ...)); }
#pragma once

#include "platform/control/vorn_platform.hpp"
#include "tests/support/picture.hpp"

#include <d3d9.h>
#include <d3dx9.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tests {

/// Gives back what it holds.
template <typename T>
class Held {
public:
    Held() = default;
    explicit Held(T* object) : mObject(object) {}
    Held(Held&& other) noexcept : mObject(std::exchange(other.mObject, nullptr)) {}
    Held& operator=(Held&& other) noexcept {
        std::swap(mObject, other.mObject);
        return *this;
    }
    ~Held() { Free(); }

    /// What was held is given back first.
    T** Out() {
        Free();
        return &mObject;
    }
    ULONG Free() { return mObject ? std::exchange(mObject, nullptr)->Release() : 0; }
    T* Get() const { return mObject; }
    T* operator->() const { return mObject; }
    operator T*() const { return mObject; }

private:
    T* mObject = nullptr;
};

inline ULONG CountOf(IUnknown* object) {
    object->AddRef();
    return object->Release();
}

inline constexpr std::uint32_t black = 0xff000000, white = 0xffffffff, red = 0xffff0000,
                               green = 0xff00ff00, blue = 0xff0000ff;
inline constexpr DWORD flatFvf = 0x42, imageFvf = 0x142;

/// FVF 0x142; the first four make FVF 0x42.
struct Corner {
    float x, y, z;
    D3DCOLOR color;
    float u, v;
};
/// (unit: pixels) Edges; pixel centres are at whole numbers.
struct Box {
    float left, top, right, bottom;
};

class DeviceTest : public testing::Test {
protected:
    static constexpr int Side = 64;

    explicit DeviceTest(bool recorder = false) {
        VornPlatform::ForceHeadless();
        VornPlatform::UseRecorder(recorder);
        window = OpenWindow();
        Open(Parameters());
    }
    ~DeviceTest() override {
        Close();
        VornPlatform::FailResets(0, D3D_OK);
        DestroyWindow(window);
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);)
            DispatchMessageA(&message);
        VornPlatform::UseRecorder(false);
        EXPECT_EQ(VornPlatform::CountLiveObjects(), VornPlatform::LiveObjects{});
        EXPECT_EQ(VornPlatform::CountGpuObjects(), VornPlatform::GpuObjects{});
    }
    void SetUp() override { ASSERT_NE(device, nullptr); }

    static HWND OpenWindow() {
        WNDCLASSEXA description = {};
        description.lpfnWndProc = DefWindowProcA;
        description.lpszClassName = "Device";
        RegisterClassExA(&description);
        return CreateWindowExA(0, "Device", "", WS_POPUP, 0, 0, 320, 240, nullptr, nullptr, nullptr,
                               nullptr);
    }
    D3DPRESENT_PARAMETERS Parameters(UINT width = Side, UINT height = Side, bool depth = true) {
        D3DPRESENT_PARAMETERS pp = {};
        pp.BackBufferWidth = width, pp.BackBufferHeight = height;
        pp.SwapEffect = D3DSWAPEFFECT_DISCARD;
        pp.hDeviceWindow = window, pp.Windowed = TRUE;
        pp.EnableAutoDepthStencil = depth, pp.AutoDepthStencilFormat = D3DFMT_D16;
        pp.PresentationInterval = D3DPRESENT_INTERVAL_IMMEDIATE;
        return pp;
    }
    void Open(D3DPRESENT_PARAMETERS pp) {
        Close();
        const Held<IDirect3D9> d3d(Direct3DCreate9(D3D_SDK_VERSION));
        ASSERT_NE(d3d.Get(), nullptr);
        ASSERT_EQ(D3D_OK, d3d->CreateDevice(0, D3DDEVTYPE_HAL, window,
                                            D3DCREATE_HARDWARE_VERTEXPROCESSING, &pp, &device));
        Clear(black);
    }
    void Close() {
        if (device) {
            EXPECT_EQ(std::exchange(device, nullptr)->Release(), 0u) << "a child is still there";
        }
    }

    void Clear(D3DCOLOR color, float z = 1) {
        D3DVIEWPORT9 viewport = {};
        device->GetViewport(&viewport);
        Held<IDirect3DSurface9> depth;
        device->GetDepthStencilSurface(depth.Out());
        EXPECT_EQ(D3D_OK,
                  device->Clear(0, nullptr, depth ? 3u : D3DCLEAR_TARGET + 0u, color, z, 0));
    }
    void Set(D3DRENDERSTATETYPE state, DWORD value) {
        EXPECT_EQ(D3D_OK, device->SetRenderState(state, value)) << state;
    }
    void Sampler(D3DSAMPLERSTATETYPE state, DWORD value) {
        EXPECT_EQ(D3D_OK, device->SetSamplerState(0, state, value)) << state;
    }
    void Stage(D3DTEXTURESTAGESTATETYPE state, DWORD value) {
        EXPECT_EQ(D3D_OK, device->SetTextureStageState(0, state, value)) << state;
    }
    /// Vertices are pixels from now on, and depth; both sides show, and no light.
    void Flat(int width = Side, int height = Side) {
        D3DXMATRIX m;
        device->SetTransform(D3DTS_WORLD, D3DXMatrixIdentity(&m));
        device->SetTransform(D3DTS_VIEW, &m);
        D3DXMatrixOrthoOffCenterLH(&m, 0, static_cast<float>(width), static_cast<float>(height), 0,
                                   0, 1);
        device->SetTransform(D3DTS_PROJECTION, &m);
        Set(D3DRS_LIGHTING, FALSE);
        Set(D3DRS_CULLMODE, D3DCULL_NONE);
    }
    template <typename Vertex>
    void Draw(D3DPRIMITIVETYPE type, const std::vector<Vertex>& vertices, DWORD fvf) {
        const auto n = static_cast<UINT>(vertices.size());
        const UINT counts[] = {0, n, n / 2, n - 1, n / 3, n - 2, n - 2};
        device->SetFVF(fvf);
        const HRESULT begun = device->BeginScene(); // or a test did
        EXPECT_EQ(D3D_OK,
                  device->DrawPrimitiveUP(type, counts[type], vertices.data(), sizeof(Vertex)));
        if (begun == D3D_OK)
            device->EndScene();
    }
    static std::vector<Corner> Corners(Box b, D3DCOLOR color, float z = 0.5f,
                                       Box uv = {0, 0, 1, 1}) {
        return {{b.left, b.top, z, color, uv.left, uv.top},
                {b.right, b.top, z, color, uv.right, uv.top},
                {b.left, b.bottom, z, color, uv.left, uv.bottom},
                {b.right, b.bottom, z, color, uv.right, uv.bottom}};
    }
    void Quad(Box box, D3DCOLOR color, float z = 0.5f) {
        Draw(D3DPT_TRIANGLESTRIP, Corners(box, color, z), flatFvf);
    }
    /// Whole pixels from left, top on, as exact as the shift of half a pixel makes it.
    void Image(int left, int top, int width, int height, D3DCOLOR color = white,
               Box uv = {0, 0, 1, 1}) {
        const float l = static_cast<float>(left) - 0.5f, t = static_cast<float>(top) - 0.5f;
        Draw(D3DPT_TRIANGLESTRIP,
             Corners({l, t, l + static_cast<float>(width), t + static_cast<float>(height)}, color,
                     0.5f, uv),
             imageFvf);
    }

    Held<IDirect3DTexture9> Texture(int width, int height, UINT levels = 1, DWORD usage = 0,
                                    D3DFORMAT format = D3DFMT_A8R8G8B8,
                                    D3DPOOL pool = D3DPOOL_MANAGED) {
        Held<IDirect3DTexture9> texture;
        EXPECT_EQ(D3D_OK,
                  device->CreateTexture(static_cast<UINT>(width), static_cast<UINT>(height), levels,
                                        usage, format, pool, texture.Out(), nullptr));
        return texture;
    }
    Held<IDirect3DTexture9> Texture(const Picture& picture) {
        Held<IDirect3DTexture9> texture = Texture(picture.width, picture.height);
        FillLevel(texture, 0, picture);
        return texture;
    }
    Held<IDirect3DTexture9> Target(int width = Side, int height = Side,
                                   D3DFORMAT format = D3DFMT_A8R8G8B8, DWORD usage = 0) {
        return Texture(width, height, usage ? 0 : 1, usage | D3DUSAGE_RENDERTARGET, format,
                       D3DPOOL_DEFAULT);
    }
    static void FillLevel(IDirect3DTexture9* texture, UINT level, const Picture& picture) {
        D3DLOCKED_RECT locked = {};
        ASSERT_EQ(D3D_OK, texture->LockRect(level, &locked, nullptr, 0));
        for (int y = 0; y < picture.height; ++y)
            std::memcpy(static_cast<char*>(locked.pBits) + y * locked.Pitch,
                        &picture.pixels[static_cast<std::size_t>(y * picture.width)],
                        static_cast<std::size_t>(picture.width) * 4);
        EXPECT_EQ(D3D_OK, texture->UnlockRect(level));
    }
    static Held<IDirect3DSurface9> Level(IDirect3DTexture9* texture, UINT level = 0) {
        Held<IDirect3DSurface9> surface;
        EXPECT_EQ(D3D_OK, texture->GetSurfaceLevel(level, surface.Out()));
        return surface;
    }
    Held<IDirect3DSurface9> BackBuffer() {
        Held<IDirect3DSurface9> surface;
        EXPECT_EQ(D3D_OK, device->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, surface.Out()));
        return surface;
    }
    template <typename T>
    Held<IDirect3DVertexBuffer9> Vertices(const std::vector<T>& content, DWORD fvf,
                                          D3DPOOL pool = D3DPOOL_MANAGED, DWORD usage = 8) {
        Held<IDirect3DVertexBuffer9> buffer;
        EXPECT_EQ(D3D_OK, device->CreateVertexBuffer(static_cast<UINT>(content.size() * sizeof(T)),
                                                     usage, fvf, pool, buffer.Out(), nullptr));
        Write(buffer.Get(), content);
        return buffer;
    }
    template <typename T>
    Held<IDirect3DIndexBuffer9> Indices(const std::vector<T>& content,
                                        D3DPOOL pool = D3DPOOL_MANAGED) {
        Held<IDirect3DIndexBuffer9> buffer;
        EXPECT_EQ(D3D_OK,
                  device->CreateIndexBuffer(static_cast<UINT>(content.size() * sizeof(T)), 8,
                                            sizeof(T) == 4 ? D3DFMT_INDEX32 : D3DFMT_INDEX16, pool,
                                            buffer.Out(), nullptr));
        Write(buffer.Get(), content);
        return buffer;
    }
    template <typename Buffer, typename T>
    static void Write(Buffer* buffer, const std::vector<T>& content) {
        void* data = nullptr;
        ASSERT_EQ(D3D_OK, buffer->Lock(0, 0, &data, 0));
        std::memcpy(data, content.data(), content.size() * sizeof(T));
        EXPECT_EQ(D3D_OK, buffer->Unlock());
    }

    static Picture Read(IDirect3DSurface9* surface) {
        D3DSURFACE_DESC description = {};
        surface->GetDesc(&description);
        Picture picture;
        picture.width = static_cast<int>(description.Width);
        picture.height = static_cast<int>(description.Height);
        picture.pixels = VornPlatform::ReadPixels(surface);
        EXPECT_EQ(picture.pixels.size(), static_cast<std::size_t>(picture.width * picture.height));
        picture.pixels.resize(static_cast<std::size_t>(picture.width * picture.height));
        return picture;
    }
    static Picture Read(IDirect3DTexture9* texture) { return Read(Level(texture)); }
    Picture Screen() { return Read(BackBuffer()); }

    HWND window = nullptr;
    IDirect3DDevice9* device = nullptr;
};

/// What holds with and without OpenGL: the parameter is whether the recorder is used.
class BothTest : public DeviceTest, public testing::WithParamInterface<bool> {
protected:
    BothTest() : DeviceTest(GetParam()) {}
};
inline std::string BackendName(const testing::TestParamInfo<bool>& info) {
    return info.param ? "Recorder" : "OpenGL";
}

} // namespace Tests
