// SPDX-License-Identifier: MIT
//
// Rules without pixels: refusals, counts, locks, what is bound, the call log. On the recorder and
// on OpenGL alike.
#include "tests/support/device.hpp"

#include <gmock/gmock.h>

#include <functional>
#include <regex>

#include <sys/mman.h>
#include <unistd.h>

namespace Tests {

class RuleTest : public BothTest {};
INSTANTIATE_TEST_SUITE_P(, RuleTest, testing::Bool(), BackendName);

// Where a refused call would leave its answer.
template <typename T>
T* Untouched() {
    return reinterpret_cast<T*>(std::uintptr_t{0x5a5a});
}

TEST_P(RuleTest, TheInterfaceIsThereForItsVersionOnlyAndRefusesBadDevices) {
    EXPECT_EQ(Direct3DCreate9(31), nullptr);
    EXPECT_EQ(Direct3DCreate9(0), nullptr);
    Close();
    Held<IDirect3D9> d3d(Direct3DCreate9(D3D_SDK_VERSION));
    ASSERT_NE(d3d.Get(), nullptr);
    D3DPRESENT_PARAMETERS pp = Parameters();
    IDirect3DDevice9* out = Untouched<IDirect3DDevice9>();
    const auto create = [&](UINT adapter, D3DPRESENT_PARAMETERS* parameters) {
        return d3d->CreateDevice(adapter, D3DDEVTYPE_HAL, window, 0x40, parameters, &out);
    };
    EXPECT_EQ(D3DERR_INVALIDCALL, create(1, &pp));
    EXPECT_EQ(D3DERR_INVALIDCALL, create(0, nullptr));
    EXPECT_EQ(D3DERR_INVALIDCALL, d3d->CreateDevice(0, D3DDEVTYPE_HAL, window, 0x40, &pp, nullptr));
    EXPECT_EQ(out, Untouched<IDirect3DDevice9>());
    // A device holds the interface that made it.
    ASSERT_EQ(D3D_OK, create(0, &pp));
    EXPECT_EQ(pp.BackBufferCount, 1u);
    EXPECT_EQ(pp.BackBufferFormat, D3DFMT_X8R8G8B8);
    EXPECT_EQ(CountOf(d3d), 2u);
    EXPECT_EQ(out->Release(), 0u);
    EXPECT_EQ(CountOf(d3d), 1u);
}

TEST_P(RuleTest, BadCreationsAreRefusedAndLeaveTheirOutPointer) {
    auto* const vb = Untouched<IDirect3DVertexBuffer9>();
    auto* const ib = Untouched<IDirect3DIndexBuffer9>();
    auto* const tex = Untouched<IDirect3DTexture9>();
    auto* const surf = Untouched<IDirect3DSurface9>();
    auto* v = vb;
    auto* i = ib;
    auto* t = tex;
    auto* s = surf;
    auto* d = Untouched<IDirect3DVertexDeclaration9>();
    const auto vertices = [&](UINT length, DWORD usage, D3DPOOL pool) {
        return device->CreateVertexBuffer(length, usage, 0x142, pool, &v, nullptr);
    };
    const auto indices = [&](UINT length, D3DFORMAT format) {
        return device->CreateIndexBuffer(length, 8, format, D3DPOOL_DEFAULT, &i, nullptr);
    };
    const auto texture = [&](UINT w, UINT h, UINT levels, DWORD usage, DWORD format, D3DPOOL pool) {
        return device->CreateTexture(w, h, levels, usage, static_cast<D3DFORMAT>(format), pool, &t,
                                     nullptr);
    };
    const auto plain = [&](UINT w, UINT h, D3DPOOL pool) {
        return device->CreateOffscreenPlainSurface(w, h, D3DFMT_X8R8G8B8, pool, &s, nullptr);
    };
    std::vector<D3DVERTEXELEMENT9> endless(100, {0, 0, D3DDECLTYPE_FLOAT3, 0, 0, 0});
    const std::pair<const char*, std::function<HRESULT()>> cases[] = {
        {"vertex buffer of length 0", [&] { return vertices(0, 8, D3DPOOL_DEFAULT); }},
        {"managed length 0", [&] { return vertices(0, 0, D3DPOOL_MANAGED); }},
        {"dynamic and managed", [&] { return vertices(64, 0x200, D3DPOOL_MANAGED); }},
        {"no such pool", [&] { return vertices(64, 0, static_cast<D3DPOOL>(9)); }},
        {"no out pointer",
         [&] { return device->CreateVertexBuffer(64, 0, 0, D3DPOOL_MANAGED, nullptr, nullptr); }},
        {"index buffer of length 0", [&] { return indices(0, D3DFMT_INDEX32); }},
        {"indices that are colours", [&] { return indices(64, D3DFMT_X8R8G8B8); }},
        {"texture without width", [&] { return texture(0, 4, 1, 0, 22, D3DPOOL_MANAGED); }},
        {"texture without height", [&] { return texture(4, 0, 1, 0, 22, D3DPOOL_MANAGED); }},
        {"too wide", [&] { return texture(0x7fffffff, 4, 1, 0, 22, D3DPOOL_MANAGED); }},
        {"no such format", [&] { return texture(4, 4, 1, 0, 12345, D3DPOOL_MANAGED); }},
        {"more levels than there are", [&] { return texture(4, 4, 4, 0, 22, D3DPOOL_MANAGED); }},
        {"a managed target", [&] { return texture(4, 4, 1, 1, 22, D3DPOOL_MANAGED); }},
        {"a target in memory", [&] { return texture(4, 4, 1, 1, 22, D3DPOOL_SYSTEMMEM); }},
        {"generated levels by number",
         [&] { return texture(4, 4, 3, 0x401, 22, D3DPOOL_DEFAULT); }},
        {"a compressed target", [&] { return texture(4, 4, 1, 1, D3DFMT_DXT1, D3DPOOL_DEFAULT); }},
        {"plain surface without width", [&] { return plain(0, 4, D3DPOOL_SYSTEMMEM); }},
        {"plain surface that is managed", [&] { return plain(4, 4, D3DPOOL_MANAGED); }},
        {"back buffer 1", [&] { return device->GetBackBuffer(0, 1, D3DBACKBUFFER_TYPE_MONO, &s); }},
        {"swap chain 1", [&] { return device->GetBackBuffer(1, 0, D3DBACKBUFFER_TYPE_MONO, &s); }},
        {"declaration of nothing", [&] { return device->CreateVertexDeclaration(nullptr, &d); }},
        {"declaration without end",
         [&] { return device->CreateVertexDeclaration(endless.data(), &d); }},
    };
    for (const auto& [name, call] : cases)
        EXPECT_TRUE(FAILED(call())) << name;
    for (std::size_t k = 0; k < 2; ++k) // the one that the text gives a number
        EXPECT_EQ(D3DERR_INVALIDCALL, cases[k].second()) << cases[k].first;
    EXPECT_TRUE(v == vb && i == ib && t == tex && s == surf);
    EXPECT_EQ(d, Untouched<IDirect3DVertexDeclaration9>());
    EXPECT_EQ(VornPlatform::CountLiveObjects().devices, 1);
    EXPECT_EQ(CountOf(device), 1u) << "a refused creation keeps no reference";
}

TEST_P(RuleTest, BadCallsAreInvalidCalls) {
    const Held<IDirect3DTexture9> texture = Texture(8, 8), target = Target();
    const Held<IDirect3DSurface9> managed = Level(texture), surface = Level(target);
    Held<IDirect3DSurface9> memory, smaller;
    device->CreateOffscreenPlainSurface(Side, Side, D3DFMT_A8R8G8B8, D3DPOOL_SYSTEMMEM,
                                        memory.Out(), nullptr);
    device->CreateOffscreenPlainSurface(Side, 8, D3DFMT_A8R8G8B8, D3DPOOL_SYSTEMMEM, smaller.Out(),
                                        nullptr);
    const auto vertices = Vertices(Corners({0, 0, 1, 1}, 0), imageFvf);
    device->SetFVF(imageFvf);
    void* data = nullptr;
    D3DLOCKED_RECT locked = {};
    D3DSURFACE_DESC description = {};
    const RECT beyond = {4, 4, 9, 8}, empty = {4, 4, 4, 8}, left = {-1, 0, 4, 4};
    D3DLIGHT9 light = {};
    const Corner corner = {};
    const D3DRECT rect = {0, 0, 1, 1};
    const std::pair<const char*, std::function<HRESULT()>> cases[] = {
        {"scene in a scene", [&] { return device->BeginScene(), device->BeginScene(); }},
        {"no scene to end", [&] { return device->EndScene(), device->EndScene(); }},
        {"lock behind the end", [&] { return vertices->Lock(90, 16, &data, 0); }},
        {"lock that wraps", [&] { return vertices->Lock(8, 0xfffffffe, &data, 0); }},
        {"lock without out pointer", [&] { return vertices->Lock(0, 0, nullptr, 0); }},
        {"level beyond", [&] { return texture->LockRect(1, &locked, nullptr, 0); }},
        {"rectangle beyond", [&] { return texture->LockRect(0, &locked, &beyond, 0); }},
        {"rectangle left of it", [&] { return texture->LockRect(0, &locked, &left, 0); }},
        {"rectangle of nothing", [&] { return texture->LockRect(0, &locked, &empty, 0); }},
        {"locked twice",
         [&] {
             EXPECT_EQ(D3D_OK, texture->LockRect(0, &locked, nullptr, 0));
             return managed->LockRect(&locked, nullptr, 0);
         }},
        {"unlocked twice", [&] { return managed->UnlockRect(), texture->UnlockRect(0); }},
        {"a target's pixels", [&] { return surface->LockRect(&locked, nullptr, 0); }},
        {"description beyond", [&] { return texture->GetLevelDesc(1, &description); }},
        {"description into nothing", [&] { return surface->GetDesc(nullptr); }},
        {"no transform", [&] { return device->SetTransform(D3DTS_VIEW, nullptr); }},
        {"transform into nothing", [&] { return device->GetTransform(D3DTS_VIEW, nullptr); }},
        {"no viewport", [&] { return device->SetViewport(nullptr); }},
        {"viewport into nothing", [&] { return device->GetViewport(nullptr); }},
        {"no light", [&] { return device->SetLight(0, nullptr); }},
        {"light of no kind", [&] { return device->SetLight(0, &light); }},
        {"no target", [&] { return device->SetRenderTarget(0, nullptr); }},
        {"texture as target", [&] { return device->SetRenderTarget(0, managed); }},
        {"target as depth", [&] { return device->SetDepthStencilSurface(surface); }},
        {"data of another size", [&] { return device->GetRenderTargetData(surface, smaller); }},
        {"data into a target", [&] { return device->GetRenderTargetData(surface, surface); }},
        {"data of memory", [&] { return device->GetRenderTargetData(memory, memory); }},
        {"data of nothing", [&] { return device->GetRenderTargetData(nullptr, memory); }},
        {"vertices that are null",
         [&] { return device->DrawPrimitiveUP(D3DPT_TRIANGLELIST, 1, nullptr, 24); }},
        {"vertices without stride",
         [&] { return device->DrawPrimitiveUP(D3DPT_POINTLIST, 1, &corner, 0); }},
        {"no such primitive",
         [&] {
             return device->DrawPrimitiveUP(static_cast<D3DPRIMITIVETYPE>(77), 1, &corner, 24);
         }},
        {"stream 16", [&] { return device->SetStreamSource(16, vertices, 0, 24); }},
        {"reset to nothing", [&] { return device->Reset(nullptr); }},
    };
    for (const auto& [name, call] : cases)
        EXPECT_EQ(D3DERR_INVALIDCALL, call()) << name;
    EXPECT_EQ(D3D_OK, device->TestCooperativeLevel());
    EXPECT_EQ(D3D_OK, device->Clear(1, &rect, D3DCLEAR_TARGET, 0, 1, 0));
}

// Where an interface of any kind goes.
struct Out {
    IUnknown** out;
    template <typename T>
    operator T**() const {
        return reinterpret_cast<T**>(out);
    }
};

TEST_P(RuleTest, AChildHoldsItsDeviceAndADeviceDiesWithItsLastChild) {
    const std::vector<D3DVERTEXELEMENT9> elements = {{0, 0, D3DDECLTYPE_FLOAT3, 0, 0, 0},
                                                     D3DDECL_END()};
    const std::pair<const char*, std::function<HRESULT(Out)>> makers[] = {
        {"vertex buffer",
         [&](Out o) { return device->CreateVertexBuffer(64, 8, 0, D3DPOOL_DEFAULT, o, nullptr); }},
        {"index buffer",
         [&](Out o) {
             return device->CreateIndexBuffer(64, 8, D3DFMT_INDEX32, D3DPOOL_MANAGED, o, nullptr);
         }},
        {"texture",
         [&](Out o) {
             return device->CreateTexture(4, 4, 0, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, o, nullptr);
         }},
        {"plain surface",
         [&](Out o) {
             return device->CreateOffscreenPlainSurface(4, 4, D3DFMT_A8R8G8B8, D3DPOOL_SYSTEMMEM, o,
                                                        nullptr);
         }},
        {"depth surface",
         [&](Out o) {
             return device->CreateDepthStencilSurface(4, 4, D3DFMT_D24X8, D3DMULTISAMPLE_NONE, 0,
                                                      FALSE, o, nullptr);
         }},
        {"declaration", [&](Out o) { return device->CreateVertexDeclaration(elements.data(), o); }},
        {"back buffer",
         [&](Out o) { return device->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, o); }},
    };
    std::vector<IUnknown*> children;
    for (const auto& [name, make] : makers) {
        IUnknown* child = nullptr;
        const ULONG before = CountOf(device);
        ASSERT_EQ(D3D_OK, make({&child})) << name;
        EXPECT_EQ(CountOf(child), 1u) << name;
        EXPECT_EQ(CountOf(device), before + 1) << name;
        child->AddRef();
        EXPECT_EQ(CountOf(device), before + 1) << name << ": once, however often it is held";
        child->Release();
        children.push_back(child);
    }
    EXPECT_EQ(std::exchange(device, nullptr)->Release(), children.size());
    for (IUnknown* const child : children) {
        EXPECT_EQ(VornPlatform::CountLiveObjects().devices, 1);
        EXPECT_EQ(child->Release(), 0u);
    }
    EXPECT_EQ(VornPlatform::CountLiveObjects().devices, 0);
}

TEST_P(RuleTest, ALevelSharesTheCountOfItsTexture) {
    Held<IDirect3DTexture9> texture = Texture(8, 8, 0);
    const ULONG before = CountOf(device);
    IDirect3DSurface9 *first = nullptr, *again = nullptr, *second = nullptr;
    ASSERT_EQ(D3D_OK, texture->GetSurfaceLevel(0, &first));
    ASSERT_EQ(D3D_OK, texture->GetSurfaceLevel(0, &again));
    ASSERT_EQ(D3D_OK, texture->GetSurfaceLevel(1, &second));
    EXPECT_EQ(first, again);
    EXPECT_NE(first, second);
    EXPECT_EQ(CountOf(device), before);
    EXPECT_EQ(CountOf(texture), 4u);
    EXPECT_EQ(CountOf(second), 4u);
    EXPECT_EQ(first->Release(), 3u);
    EXPECT_EQ(texture.Free(), 2u);
    D3DSURFACE_DESC description = {};
    EXPECT_EQ(D3D_OK, second->GetDesc(&description)); // alive through its levels
    EXPECT_EQ(description.Width, 4u);
    EXPECT_EQ(again->Release(), 1u);
    EXPECT_EQ(second->Release(), 0u);
    EXPECT_EQ(CountOf(device), before - 1);
}

TEST_P(RuleTest, TheBackBufferIsOneObject) {
    const ULONG before = CountOf(device);
    Held<IDirect3DSurface9> first = BackBuffer(), second = BackBuffer(), target;
    EXPECT_EQ(first.Get(), second.Get());
    EXPECT_EQ(CountOf(first), 2u);
    EXPECT_EQ(CountOf(device), before + 1);
    EXPECT_EQ(D3D_OK, device->GetRenderTarget(0, target.Out()));
    EXPECT_EQ(target.Get(), first.Get());
    D3DSURFACE_DESC description = {};
    EXPECT_EQ(D3D_OK, first->GetDesc(&description));
    EXPECT_TRUE(description.Width == Side && description.Height == Side &&
                description.Format == D3DFMT_X8R8G8B8 && description.Pool == D3DPOOL_DEFAULT &&
                (description.Usage & D3DUSAGE_RENDERTARGET) &&
                description.Type == D3DRTYPE_SURFACE);
    IDirect3DSurface9* const was = first.Get();
    first.Free(), second.Free(), target.Free();
    EXPECT_EQ(CountOf(device), before);
    EXPECT_EQ(BackBuffer().Get(), was);
}

TEST_P(RuleTest, BindingShowsInNoCount) {
    const auto vertices = Vertices(Corners({0, 0, 1, 1}, 0), imageFvf);
    const auto indices = Indices<DWORD>({0, 1, 2});
    const Held<IDirect3DTexture9> texture = Texture(4, 4), target = Target();
    const Held<IDirect3DSurface9> surface = Level(target);
    const ULONG before = CountOf(device);
    device->SetStreamSource(0, vertices, 0, sizeof(Corner));
    device->SetIndices(indices);
    device->SetTexture(0, texture), device->SetTexture(1, texture);
    device->SetRenderTarget(0, surface);
    EXPECT_EQ(CountOf(vertices), 1u);
    EXPECT_EQ(CountOf(indices), 1u);
    EXPECT_EQ(CountOf(texture), 1u);
    EXPECT_EQ(CountOf(surface), 2u);
    EXPECT_EQ(CountOf(device), before);
    Held<IDirect3DBaseTexture9> bound;
    EXPECT_EQ(D3D_OK, device->GetTexture(1, bound.Out()));
    EXPECT_EQ(bound.Get(), texture.Get());
    EXPECT_EQ(CountOf(texture), 2u) << "what is asked for is counted";
    device->SetRenderTarget(0, BackBuffer());
}

TEST_P(RuleTest, ABoundObjectThatWasReleasedGoesOnDrawing) {
    device->Present(nullptr, nullptr, nullptr, nullptr);
    Clear(black);
    Flat();
    Picture expected(Side, Side, black);
    {
        const auto vertices = Vertices(Corners({7.5f, 7.5f, 15.5f, 15.5f}, white), imageFvf);
        const auto indices = Indices<DWORD>({0, 1, 2, 2, 1, 3});
        const Held<IDirect3DTexture9> texture = Texture(Picture(4, 4, red));
        device->SetFVF(imageFvf);
        device->SetStreamSource(0, vertices, 0, sizeof(Corner));
        device->SetIndices(indices);
        device->SetTexture(0, texture);
    }
    EXPECT_EQ(CountOf(device), 1u);
    device->BeginScene();
    EXPECT_EQ(D3D_OK, device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, 4, 0, 2));
    device->EndScene();
    if (!GetParam()) {
        expected.Fill(8, 8, 16, 16, red);
        EXPECT_TRUE(Same(Screen(), expected));
    }
    EXPECT_EQ(VornPlatform::CountFrame().primitives, 2);
    device->SetStreamSource(0, nullptr, 0, 0), device->SetIndices(nullptr);
    device->SetTexture(0, nullptr);
    EXPECT_EQ(VornPlatform::CountLiveObjects().textures, 0);
    EXPECT_EQ(VornPlatform::CountLiveObjects().vertexBuffers, 0);
}

TEST_P(RuleTest, LocksGivePlainMemoryThatKeepsWhatWasWritten) {
    for (const D3DPOOL pool : {D3DPOOL_DEFAULT, D3DPOOL_MANAGED, D3DPOOL_SYSTEMMEM}) {
        std::vector<unsigned char> content(1000);
        for (std::size_t i = 0; i < content.size(); ++i)
            content[i] = static_cast<unsigned char>(i * 7);
        const auto buffer = Vertices(content, 0, pool, 0);
        unsigned char* data = nullptr;
        const auto out = reinterpret_cast<void**>(&data);
        ASSERT_EQ(D3D_OK, buffer->Lock(100, 50, out, 0));
        EXPECT_EQ(0, std::memcmp(data, &content[100], 50));
        std::memset(data, 9, 50), std::memset(&content[100], 9, 50);
        EXPECT_EQ(D3D_OK, buffer->Unlock());
        ASSERT_EQ(D3D_OK, buffer->Lock(0, 0, out, D3DLOCK_READONLY));
        EXPECT_EQ(0, std::memcmp(data, content.data(), content.size())) << pool;
        EXPECT_EQ(D3D_OK, buffer->Unlock());
    }
}

TEST_P(RuleTest, ClearFillsItsTargetAndPixelsReadBackEverywhere) {
    Clear(0xff123456);
    const D3DRECT rect = {1, 2, 3, 4};
    device->Clear(1, &rect, D3DCLEAR_TARGET, 0x00abcdef, 1, 0);
    Picture expected(Side, Side, 0xff123456);
    expected.Fill(1, 2, 3, 4, 0xffabcdef);
    EXPECT_TRUE(Same(Screen(), expected)) << "X is 0xff";
    const Picture noise = Noise(5, 3, 20, 0);
    EXPECT_TRUE(Same(Read(Texture(noise)), noise));
    const Held<IDirect3DTexture9> packed = Texture(4, 4, 1, 0, D3DFMT_DXT1);
    EXPECT_TRUE(VornPlatform::ReadPixels(Level(packed)).empty());
    EXPECT_TRUE(VornPlatform::ReadPixels(nullptr).empty());
}

TEST_P(RuleTest, SetRenderTargetSetsTheViewportToTheWhole) {
    const Held<IDirect3DTexture9> target = Target(24, 16);
    D3DVIEWPORT9 viewport = {3, 4, 5, 6, 0.25f, 0.5f};
    device->SetViewport(&viewport);
    device->SetRenderTarget(0, Level(target));
    EXPECT_EQ(D3D_OK, device->GetViewport(&viewport));
    EXPECT_TRUE(viewport.X == 0 && viewport.Y == 0 && viewport.Width == 24 &&
                viewport.Height == 16 && viewport.MinZ == 0 && viewport.MaxZ == 1);
    device->SetRenderTarget(0, BackBuffer());
    device->GetViewport(&viewport);
    EXPECT_EQ(viewport.Width, static_cast<DWORD>(Side));
}

TEST_P(RuleTest, CountersOfAFrameStartAnewWithPresent) {
    device->Present(nullptr, nullptr, nullptr, nullptr);
    Flat();
    Quad({0, 0, 4, 4}, white);
    const std::vector<Corner> corners = Corners({0, 0, 1, 1}, white);
    device->BeginScene();
    device->DrawPrimitiveUP(D3DPT_TRIANGLESTRIP, 0, corners.data(), sizeof(Corner));
    device->EndScene();
    EXPECT_EQ(VornPlatform::CountFrame().draws, 1) << "that drew something";
    EXPECT_EQ(VornPlatform::CountFrame().primitives, 2);
    EXPECT_EQ(D3D_OK, device->Present(nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(VornPlatform::CountFrame().draws, 0);
    EXPECT_EQ(VornPlatform::CountFrame().drawCalls, 0);
}

TEST_P(RuleTest, TheCallLogTellsEachCallInOrder) {
    const auto held = Texture(4, 4);
    const std::string name = VornPlatform::ObjectName(held);
    EXPECT_TRUE(std::regex_match(name, std::regex("Texture [0-9]+"))) << name;
    EXPECT_NE(name, VornPlatform::ObjectName(Texture(4, 4)));
    EXPECT_EQ(VornPlatform::ObjectName(nullptr), "null");
    const auto buffer = Vertices<int>({1, 2, 3, 4}, 0);
    const std::string vertices = VornPlatform::ObjectName(buffer);
    EXPECT_EQ(vertices.rfind("VertexBuffer ", 0), 0u) << vertices;
    D3DXMATRIX m;
    D3DXMatrixIdentity(&m);
    m._41 = -2.5f;
    const D3DVIEWPORT9 viewport = {1, 2, 3, 4, 0, 0.75f};
    device->SetRenderState(D3DRS_LIGHTING, 1); // before there is a log
    {
        VornPlatform::CallLog log;
        device->SetRenderState(D3DRS_ALPHABLENDENABLE, 1);
        device->SetRenderState(D3DRS_ALPHABLENDENABLE, 1); // said twice, told twice
        device->Clear(0, nullptr, 3, 0xff0000ff, 0.5f, 0);
        device->SetTexture(0, held);
        device->SetTexture(0, nullptr);
        device->SetFVF(0x142);
        device->SetStreamSource(0, buffer, 0, 56);
        device->SetSamplerState(0, D3DSAMP_MAGFILTER, 2);
        device->SetTextureStageState(0, D3DTSS_ALPHAARG1, 0);
        device->LightEnable(1, TRUE);
        device->BeginScene();
        device->BeginScene(); // refused, and told
        device->EndScene();
        device->Present(nullptr, nullptr, nullptr, nullptr);
        const std::vector<std::string> calls = log.Calls();
        EXPECT_THAT(calls,
                    testing::ElementsAre(
                        "SetRenderState(27, 1)", "SetRenderState(27, 1)",
                        "Clear(0, null, 3, 4278190335, 0.5, 0)", "SetTexture(0, " + name + ")",
                        "SetTexture(0, null)", "SetFVF(322)",
                        "SetStreamSource(0, " + vertices + ", 0, 56)", "SetSamplerState(0, 5, 2)",
                        "SetTextureStageState(0, 5, 0)", "LightEnable(1, 1)", "BeginScene()",
                        "BeginScene()", "EndScene()", "Present(null, null, null, null)"));
        log.Clear();
        device->SetTransform(D3DTS_WORLD, &m);
        device->SetViewport(&viewport);
        const auto made = Indices<WORD>({1, 2, 3});
        ASSERT_GE(log.Calls().size(), 3u);
        EXPECT_EQ(log.Calls()[0],
                  "SetTransform(256, [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -2.5, 0, 0, 1])");
        EXPECT_EQ(log.Calls()[1], "SetViewport([1, 2, 3, 4, 0, 0.75])");
        EXPECT_EQ(log.Calls()[2].rfind("CreateIndexBuffer(6, 8, 101, 1", 0), 0u) << log.Calls()[2];
    }
    device->SetRenderState(D3DRS_ALPHABLENDENABLE, 0); // and after it nobody listens
}

TEST_P(RuleTest, TheCallLogReadsNoMoreOfTheHostsMemoryThanASoundCallMay) {
    // A page that ends the host's memory.
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    auto* const memory = static_cast<std::byte*>(
        mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(static_cast<void*>(memory), MAP_FAILED);
    ASSERT_EQ(0, mprotect(memory + page, page, PROT_NONE));
    const std::vector<D3DVERTEXELEMENT9> same(2, {0, 0, D3DDECLTYPE_FLOAT3, 0, 0, 0}),
        wrong = {{3, 0, D3DDECLTYPE_FLOAT3, 0, 0, 0}};
    device->SetFVF(flatFvf);
    device->BeginScene();
    VornPlatform::CallLog log;
    for (const auto& elements : {same, wrong}) {
        const std::size_t size = elements.size() * sizeof(D3DVERTEXELEMENT9);
        auto* const end = memory + page - size;
        std::memcpy(end, elements.data(), size);
        Held<IDirect3DVertexDeclaration9> declaration;
        EXPECT_EQ(D3DERR_INVALIDCALL,
                  device->CreateVertexDeclaration(reinterpret_cast<const D3DVERTEXELEMENT9*>(end),
                                                  declaration.Out()));
    }
    const std::pair<UINT, UINT> draws[] = {
        {0xffffffff, 16}, {1, 0xfffffff0}, {0xffffff, 2048}, {1, 12}};
    for (const auto& [count, stride] : draws)
        EXPECT_EQ(D3DERR_INVALIDCALL,
                  device->DrawPrimitiveUP(D3DPT_TRIANGLELIST, count, memory + page - 16, stride))
            << count << " " << stride;
    EXPECT_EQ(D3DERR_INVALIDCALL,
              device->Clear(0xffffffff, reinterpret_cast<const D3DRECT*>(memory + page - 16), 0, 0,
                            1, 0));
    EXPECT_EQ(log.Calls().size(), 7u);
    device->EndScene();
    munmap(memory, 2 * page);
}

TEST_P(RuleTest, CallsThatAskForNothingAreTaken) {
    EXPECT_EQ(D3D_OK, device->SetStreamSource(15, nullptr, 0, 0));
    EXPECT_EQ(D3DERR_INVALIDCALL, device->SetStreamSource(16, nullptr, 0, 0));
    EXPECT_EQ(D3D_OK, device->SetRenderTarget(3, nullptr));
    EXPECT_EQ(D3DERR_INVALIDCALL, device->SetRenderTarget(4, nullptr));
    EXPECT_EQ(D3DERR_INVALIDCALL, device->SetRenderTarget(1, BackBuffer()));
    EXPECT_EQ(D3D_OK, device->SetSamplerState(0, D3DSAMP_MINFILTER, D3DTEXF_ANISOTROPIC));
    const DWORD all = D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER | D3DCLEAR_STENCIL;
    EXPECT_EQ(D3DERR_INVALIDCALL, device->Clear(0, nullptr, all, red, 1, 0)) << "D16";
    D3DPRESENT_PARAMETERS pp = Parameters();
    pp.AutoDepthStencilFormat = D3DFMT_D24S8;
    Open(pp);
    EXPECT_EQ(D3D_OK, device->Clear(0, nullptr, all, red, 1, 0));
    EXPECT_TRUE(Same(Screen(), Picture(Side, Side, red)));
}

TEST_P(RuleTest, TwoDevicesOneAfterTheOtherAndTwoAtOnce) {
    for (int i = 0; i < 3; ++i) {
        Open(Parameters());
        Clear(red);
        EXPECT_TRUE(Same(Screen(), Picture(Side, Side, red)));
    }
    const Held<IDirect3D9> d3d(Direct3DCreate9(D3D_SDK_VERSION));
    D3DPRESENT_PARAMETERS pp = Parameters();
    IDirect3DDevice9* first = device;
    IDirect3DDevice9* second = nullptr;
    ASSERT_EQ(D3D_OK, d3d->CreateDevice(0, D3DDEVTYPE_HAL, window, 0x40, &pp, &second));
    const Held<IDirect3DTexture9> texture = Texture(Picture(4, 4, blue));
    device = second;
    Clear(green);
    device = first;
    EXPECT_TRUE(Same(Screen(), Picture(Side, Side, red)));
    EXPECT_TRUE(Same(Read(texture), Picture(4, 4, blue)));
    device = second;
    EXPECT_TRUE(Same(Screen(), Picture(Side, Side, green)));
    EXPECT_EQ(second->Release(), 0u);
    device = first;
    EXPECT_TRUE(Same(Screen(), Picture(Side, Side, red)));
}

TEST_P(RuleTest, AWindowThatIsDestroyedBeforeTheDeviceHarmsNothing) {
    const Held<IDirect3DTexture9> texture = Texture(4, 4);
    Clear(red);
    DestroyWindow(window);
    for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);)
        DispatchMessageA(&message);
    // Whatever these answer.
    device->Clear(0, nullptr, 3, green, 1, 0);
    device->BeginScene();
    const std::vector<Corner> corners = Corners({0, 0, 1, 1}, white);
    device->SetFVF(imageFvf), device->SetTexture(0, texture);
    device->DrawPrimitiveUP(D3DPT_TRIANGLESTRIP, 2, corners.data(), sizeof(Corner));
    device->EndScene();
    device->Present(nullptr, nullptr, nullptr, nullptr);
    device->TestCooperativeLevel();
    D3DPRESENT_PARAMETERS pp = Parameters();
    device->Reset(&pp);
    Held<IDirect3DVertexBuffer9> buffer;
    device->CreateVertexBuffer(64, 8, 0, D3DPOOL_DEFAULT, buffer.Out(), nullptr);
    buffer.Free();
    device->SetTexture(0, nullptr);
    window = OpenWindow(); // and a device on a new one works
}

} // namespace Tests
