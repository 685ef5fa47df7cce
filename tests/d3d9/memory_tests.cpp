// SPDX-License-Identifier: MIT
//
// Where there is no memory, nothing is raised and nothing stays behind. The program replaces the
// global operator new, the library's too, and lets a single allocation fail.
#include "tests/support/device.hpp"

#include <cstdlib>
#include <functional>
#include <new>

namespace {

// Of this thread: OpenGL's own are left alone. -1: none fails.
thread_local int untilFailure = -1;

} // namespace

// Where gcc takes some of these into their callers and others not, it sees a mismatch.
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return untilFailure >= 0 && untilFailure-- == 0 ? nullptr : std::malloc(size ? size : 1);
}
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (void* memory = operator new(size, std::nothrow))
        return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}

namespace Tests {

class MemoryTest : public BothTest {
protected:
    /// Lets the first allocation of a call fail, then the second, until all are granted.
    void Starve(
        const char* name, const std::function<HRESULT()>& call,
        const std::function<void()>& undo = [] {}) {
        const auto live = VornPlatform::CountLiveObjects();
        const auto gpu = VornPlatform::CountGpuObjects();
        const ULONG held = CountOf(device);
        for (int failing = 0;; ++failing) {
            HRESULT result = D3D_OK;
            untilFailure = failing;
            EXPECT_NO_THROW(result = call()) << name << failing;
            const bool granted = untilFailure >= 0;
            untilFailure = -1;
            if (granted) {
                EXPECT_GT(failing, 0) << name << " needs memory";
                EXPECT_EQ(D3D_OK, result) << name;
                return undo();
            }
            ASSERT_EQ(D3DERR_OUTOFVIDEOMEMORY, result) << name << failing;
            EXPECT_EQ(VornPlatform::CountLiveObjects(), live) << name << failing;
            EXPECT_EQ(VornPlatform::CountGpuObjects(), gpu) << name << failing;
            EXPECT_EQ(CountOf(device), held) << name << failing;
        }
    }
};
INSTANTIATE_TEST_SUITE_P(, MemoryTest, testing::Bool(), BackendName);

TEST_P(MemoryTest, CreationsThatFindNoMemorySaySoAndLeaveNothingBehind) {
    IUnknown* out = nullptr;
    const auto as = [&out]<typename T>(T*) { return reinterpret_cast<T**>(&out); };
    const auto free = [&out] { out->Release(); };
    const std::vector<D3DVERTEXELEMENT9> elements = {{0, 0, D3DDECLTYPE_FLOAT3, 0, 0, 0},
                                                     D3DDECL_END()};
    const std::pair<const char*, std::function<HRESULT()>> cases[] = {
        {"vertex buffer ",
         [&] {
             return device->CreateVertexBuffer(64, 8, 0, D3DPOOL_DEFAULT,
                                               as(static_cast<IDirect3DVertexBuffer9*>(nullptr)),
                                               nullptr);
         }},
        {"index buffer ",
         [&] {
             return device->CreateIndexBuffer(64, 8, D3DFMT_INDEX16, D3DPOOL_MANAGED,
                                              as(static_cast<IDirect3DIndexBuffer9*>(nullptr)),
                                              nullptr);
         }},
        {"texture ",
         [&] {
             return device->CreateTexture(8, 8, 0, 0, D3DFMT_DXT1, D3DPOOL_MANAGED,
                                          as(static_cast<IDirect3DTexture9*>(nullptr)), nullptr);
         }},
        {"plain surface ",
         [&] {
             return device->CreateOffscreenPlainSurface(
                 4, 4, D3DFMT_A8R8G8B8, D3DPOOL_SYSTEMMEM,
                 as(static_cast<IDirect3DSurface9*>(nullptr)), nullptr);
         }},
        {"depth buffer ",
         [&] {
             return device->CreateDepthStencilSurface(
                 4, 4, D3DFMT_D16, D3DMULTISAMPLE_NONE, 0, FALSE,
                 as(static_cast<IDirect3DSurface9*>(nullptr)), nullptr);
         }},
        {"declaration ",
         [&] {
             return device->CreateVertexDeclaration(
                 elements.data(), as(static_cast<IDirect3DVertexDeclaration9*>(nullptr)));
         }},
        {"render to surface ",
         [&] {
             return D3DXCreateRenderToSurface(device, 8, 8, D3DFMT_X8R8G8B8, TRUE, D3DFMT_D16,
                                              as(static_cast<ID3DXRenderToSurface*>(nullptr)));
         }},
        {"line ", [&] { return D3DXCreateLine(device, as(static_cast<ID3DXLine*>(nullptr))); }},
    };
    for (const auto& [name, call] : cases)
        Starve(name, call, free);

    const Held<IDirect3DTexture9> texture = Texture(8, 8, 0);
    Held<IDirect3DSurface9> level;
    Starve("level ", [&] { return texture->GetSurfaceLevel(1, level.Out()); });
}

TEST_P(MemoryTest, DevicesAndResetsThatFindNoMemorySaySoAndMayBeTriedAgain) {
    D3DPRESENT_PARAMETERS pp = Parameters();
    Starve("reset ", [&] { return device->Reset(&pp); });
    EXPECT_EQ(D3D_OK, device->TestCooperativeLevel());
    Clear(red);
    EXPECT_TRUE(Same(Screen(), Picture(Side, Side, red)));

    const Held<IDirect3D9> d3d(Direct3DCreate9(D3D_SDK_VERSION));
    Held<IDirect3DDevice9> second;
    if (GetParam()) // OpenGL starts with programs, whose compiler asks for memory too
        Starve("device ", [&] {
            return d3d->CreateDevice(0, D3DDEVTYPE_HAL, window, 0x40, &pp, second.Out());
        });
    EXPECT_EQ(CountOf(d3d), second.Get() ? 2u : 1u);
}

} // namespace Tests
