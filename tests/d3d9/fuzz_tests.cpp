// SPDX-License-Identifier: MIT
//
// Calls in random order, with good and bad arguments: nothing crashes, and when all is given back
// nothing lives. The fixture counts.
#include "tests/support/device.hpp"

#include <cmath>
#include <functional>
#include <limits>

namespace Tests {

class FuzzTest : public BothTest {
protected:
    template <typename T>
    T* Any(std::vector<T*>& objects) { // or null
        return objects.empty() || dice(8) == 0
                   ? nullptr
                   : objects[static_cast<std::size_t>(dice(static_cast<int>(objects.size())))];
    }
    template <typename T>
    void Drop(std::vector<T*>& objects, bool all = false) {
        while (!objects.empty()) {
            const auto i = static_cast<std::size_t>(dice(static_cast<int>(objects.size())));
            objects[i]->Release();
            objects.erase(objects.begin() + static_cast<std::ptrdiff_t>(i));
            if (!all)
                return;
        }
    }
    template <typename T>
    void Take(std::vector<T*>& objects, HRESULT result, T* const& made) { // made by now
        if (SUCCEEDED(result) && made)
            objects.push_back(made);
        else
            EXPECT_EQ(made, nullptr) << "an out pointer of a failed call";
        if (objects.size() > 12)
            Drop(objects);
    }
    DWORD Small() { return static_cast<DWORD>(dice(12)); }
    DWORD Size() { // mostly sensible
        const DWORD odd[] = {0, 1, 3, 1000, 0x7fffffff, 0xffffffff};
        return dice(6) ? static_cast<DWORD>(1 << dice(8)) : odd[dice(6)];
    }
    float Number() {
        constexpr float nan = std::numeric_limits<float>::quiet_NaN();
        const float odd[] = {0, -1, 1e30f, -1e30f, nan, HUGE_VALF};
        return dice(6) ? dice.Unit() * 80 - 10 : odd[dice(6)];
    }
    D3DPOOL Pool() { return static_cast<D3DPOOL>(dice(8) ? dice(3) : 7); }
    D3DFORMAT Format() {
        const D3DFORMAT formats[] = {
            D3DFMT_A8R8G8B8, D3DFMT_X8R8G8B8, D3DFMT_A8,      D3DFMT_L8,  D3DFMT_DXT1,
            D3DFMT_DXT5,     D3DFMT_INDEX16,  D3DFMT_INDEX32, D3DFMT_D16, D3DFMT_UNKNOWN};
        return formats[dice(10)];
    }
    RECT Rect() { return {dice(70) - 3, dice(70) - 3, dice(70) - 3, dice(70) - 3}; }

    void Create() {
        IDirect3DVertexBuffer9* v = nullptr;
        IDirect3DIndexBuffer9* i = nullptr;
        IDirect3DTexture9* t = nullptr;
        IDirect3DSurface9* s = nullptr;
        IDirect3DVertexDeclaration9* d = nullptr;
        const DWORD usages[] = {0, 8, 0x200, 0x208, 1, 0x401, 2};
        switch (dice(7)) {
        case 0:
            return Take(
                buffers,
                device->CreateVertexBuffer(Size() % 5000, usages[dice(5)], 0, Pool(), &v, nullptr),
                v);
        case 1:
            return Take(indices,
                        device->CreateIndexBuffer(Size() % 5000, usages[dice(5)],
                                                  dice(4) ? D3DFMT_INDEX32 : Format(), Pool(), &i,
                                                  nullptr),
                        i);
        case 2:
            return Take(textures,
                        device->CreateTexture(Size(), Size() % 300, Small(), usages[dice(7)],
                                              Format(), Pool(), &t, nullptr),
                        t);
        case 3:
            return Take(surfaces,
                        device->CreateOffscreenPlainSurface(Size() % 300, Size(), Format(), Pool(),
                                                            &s, nullptr),
                        s);
        case 4:
            return Take(
                surfaces,
                device->GetBackBuffer(0, dice(5) ? 0 : Small(), D3DBACKBUFFER_TYPE_MONO, &s), s);
        case 5:
            if (IDirect3DTexture9* const from = Any(textures))
                Take(surfaces, from->GetSurfaceLevel(Small() / 4, &s), s);
            return;
        default:
            const D3DVERTEXELEMENT9 elements[] = {
                {0, static_cast<WORD>(dice(64)), static_cast<BYTE>(dice(7)), 0, 0, 0},
                {static_cast<WORD>(dice(2)), 12, static_cast<BYTE>(dice(20)), 0,
                 static_cast<BYTE>(dice(12)), static_cast<BYTE>(dice(3))},
                D3DDECL_END()};
            return Take(declarations, device->CreateVertexDeclaration(elements, &d), d);
        }
    }
    void Fill() {
        void* data = nullptr;
        D3DLOCKED_RECT locked = {};
        const RECT rect = Rect();
        const DWORD flags[] = {0, D3DLOCK_READONLY, D3DLOCK_DISCARD, D3DLOCK_NOOVERWRITE};
        const UINT offset = dice(3) ? 0 : Size(), size = dice(3) ? 64 : Size();
        if (auto* const buffer = dice(2) ? Any(buffers) : nullptr) {
            if (SUCCEEDED(buffer->Lock(offset, size, &data, flags[dice(4)]))) {
                if (size && size <= 4096)
                    std::memset(data, dice(256), size);
                if (dice(10))
                    buffer->Unlock(); // or it stays locked
            }
        } else if (auto* const index = dice(2) ? Any(indices) : nullptr) {
            if (SUCCEEDED(index->Lock(offset, size, &data, 0)) && size && size <= 4096)
                std::memset(data, dice(3), size);
            index->Unlock();
        } else if (auto* const surface = Any(surfaces)) {
            if (SUCCEEDED(surface->LockRect(&locked, dice(2) ? &rect : nullptr, 0)))
                *static_cast<char*>(locked.pBits) = 1;
            if (dice(10))
                surface->UnlockRect();
        }
    }
    void SetSomething() {
        const auto index = [this](int sensible) { return dice(sensible) ? 0 : Size(); };
        const std::function<void()> setters[] = {
            [&] {
                device->SetStreamSource(static_cast<UINT>(dice(3)), Any(buffers), index(4),
                                        dice(4) ? 24 : Size());
            },
            [&] { device->SetIndices(Any(indices)); },
            [&] { device->SetTexture(index(4), Any(textures)); },
            [&] { device->SetRenderTarget(index(6), Any(surfaces)); },
            [&] { device->SetDepthStencilSurface(Any(surfaces)); },
            [&] { device->SetVertexDeclaration(Any(declarations)); },
            [&] {
                const DWORD fvfs[] = {0x42, 0x52, 0x142, 0x152, 2, 0, dice.Bits()};
                device->SetFVF(fvfs[dice(7)]);
            },
            [&] {
                device->SetRenderState(static_cast<D3DRENDERSTATETYPE>(dice(220)),
                                       dice(5) ? Small() : dice.Bits());
            },
            [&] {
                device->SetTextureStageState(
                    index(4), static_cast<D3DTEXTURESTAGESTATETYPE>(dice(30)), Small());
            },
            [&] {
                device->SetSamplerState(index(4), static_cast<D3DSAMPLERSTATETYPE>(dice(14)),
                                        Small());
            },
            [&] {
                D3DXMATRIX m;
                for (auto& row : m.m)
                    for (float& element : row)
                        element = Number();
                device->SetTransform(static_cast<D3DTRANSFORMSTATETYPE>(dice(300)), &m);
                const D3DVIEWPORT9 viewport = {Size(), Size(), Size(), Size(), Number(), Number()};
                device->SetViewport(&viewport);
            },
            [&] {
                D3DLIGHT9 light = {};
                light.Type = static_cast<D3DLIGHTTYPE>(dice(5));
                light.Diffuse = {Number(), Number(), Number(), Number()};
                light.Position = {Number(), Number(), Number()};
                light.Range = Number(), light.Attenuation0 = Number();
                device->SetLight(Size(), &light);
                device->LightEnable(Size(), dice(2));
            }};
        setters[dice(12)]();
    }
    void Draw() {
        std::vector<Corner> corners(30);
        for (Corner& corner : corners)
            corner = {Number(), Number(), Number(), dice.Bits(), Number(), Number()};
        const auto type = static_cast<D3DPRIMITIVETYPE>(dice(8));
        switch (dice(4)) {
        case 0:
            device->DrawPrimitiveUP(type, static_cast<UINT>(dice(10)), corners.data(), 24);
            break;
        case 1:
            device->DrawPrimitive(type, dice(2) ? 0 : Size(), dice(4) ? Small() : Size());
            break;
        case 2:
            device->DrawIndexedPrimitive(type, dice(10) - 2, dice(4) ? 0 : Size(), Size(),
                                         dice(2) ? 0 : Size(), dice(4) ? Small() : Size());
            break;
        default:
            const D3DRECT rects[] = {{dice(70), dice(70), dice(70), dice(70)}, {-5, -5, 9, 9}};
            device->Clear(static_cast<DWORD>(dice(3)), rects, Small(), dice.Bits(), Number(), 0);
        }
    }
    void Step() {
        switch (dice(16)) {
        case 0:
        case 1:
        case 2:
            return Create();
        case 3:
            Drop(buffers), Drop(indices);
            return Drop(textures);
        case 4:
            Drop(surfaces);
            return Drop(declarations);
        case 5:
        case 6:
            return Fill();
        case 7:
            dice(2) ? device->BeginScene() : device->EndScene();
            return;
        case 8:
            if (dice(8) == 0) {
                D3DPRESENT_PARAMETERS pp = Parameters(static_cast<UINT>(dice(200)), 64, dice(2));
                if (dice(2))
                    Drop(surfaces, true), Drop(textures, true), Drop(buffers, true),
                        Drop(indices, true);
                device->Reset(&pp);
            } else if (dice(20) == 0) {
                VornPlatform::LoseDevice();
                Draw(), Create();
                VornPlatform::RestoreDevice();
            } else {
                device->Present(nullptr, nullptr, nullptr, nullptr);
            }
            return;
        case 9:
            device->GetRenderTargetData(Any(surfaces), Any(surfaces));
            VornPlatform::ReadPixels(Any(surfaces));
            return;
        case 10:
        case 11:
        case 12:
            return SetSomething();
        default:
            return Draw();
        }
    }

    Dice dice{0};
    std::vector<IDirect3DVertexBuffer9*> buffers;
    std::vector<IDirect3DIndexBuffer9*> indices;
    std::vector<IDirect3DTexture9*> textures;
    std::vector<IDirect3DSurface9*> surfaces;
    std::vector<IDirect3DVertexDeclaration9*> declarations;
};
INSTANTIATE_TEST_SUITE_P(, FuzzTest, testing::Bool(), BackendName);

TEST_P(FuzzTest, CallsInAnyOrderEndWithNothingAlive) {
    for (unsigned int seed = 1; seed <= 6; ++seed) {
        SCOPED_TRACE(seed);
        dice = Dice(seed);
        for (int i = 0; i < 1500; ++i)
            Step();
        if (seed % 2) { // the device first
            IDirect3DDevice9* const last = std::exchange(device, nullptr);
            last->Release();
        }
        Drop(surfaces, true), Drop(buffers, true), Drop(textures, true);
        Drop(indices, true), Drop(declarations, true);
        Open(Parameters()); // closes the other, which must be the last to hold it
        ASSERT_NE(device, nullptr);
        VornPlatform::LiveObjects one;
        one.devices = 1;
        EXPECT_EQ(VornPlatform::CountLiveObjects(), one);
    }
}

} // namespace Tests
