// SPDX-License-Identifier: MIT
//
// Renders a scene to a surface, with a depth buffer of its own. What was set before is held from
// BeginScene to EndScene only.
#include "platform/d3dx9/device_object.hpp"

#include <new>

namespace VornPlatform {

namespace {

struct Kind {
    UINT width, height;
    D3DFORMAT format;
};

class RenderToSurface final : public DeviceObject<ID3DXRenderToSurface> {
public:
    RenderToSurface(IDirect3DDevice9* device, const Kind& kind, Held<IDirect3DSurface9> depth)
        : DeviceObject(ObjectKind::RenderToSurface, device), mKind(kind), mDepth(std::move(depth)) {
    }

    HRESULT BeginScene(IDirect3DSurface9* surface, const D3DVIEWPORT9* viewport) override {
        const CallScope call("BeginScene", surface, viewport);
        if (mInScene || !surface || !isOfKind(*surface) || (viewport && !isInside(*viewport)))
            return D3DERR_INVALIDCALL;
        // First of all, since this is what fails inside a scene.
        HRESULT result = Device().BeginScene();
        if (FAILED(result))
            return result;
        result = set(*surface, viewport);
        if (SUCCEEDED(result)) {
            mInScene = true;
            return result;
        }
        Device().EndScene();
        putBack();
        return result;
    }

    HRESULT EndScene(DWORD mipFilter) override {
        const CallScope call("EndScene", mipFilter);
        if (!mInScene)
            return D3DERR_INVALIDCALL;
        mInScene = false;
        const HRESULT result = Device().EndScene();
        putBack();
        return result;
    }

private:
    ~RenderToSurface() override {
        if (mInScene)
            EndScene(D3DX_FILTER_NONE);
    }

    bool isOfKind(IDirect3DSurface9& surface) const {
        D3DSURFACE_DESC desc = {};
        return SUCCEEDED(surface.GetDesc(&desc)) && desc.Width == mKind.width &&
               desc.Height == mKind.height && desc.Format == mKind.format;
    }

    bool isInside(const D3DVIEWPORT9& viewport) const {
        return viewport.X <= mKind.width && viewport.Width <= mKind.width - viewport.X &&
               viewport.Y <= mKind.height && viewport.Height <= mKind.height - viewport.Y;
    }

    HRESULT set(IDirect3DSurface9& surface, const D3DVIEWPORT9* viewport) {
        IDirect3DDevice9& device = Device();
        IDirect3DSurface9* before = nullptr;
        HRESULT result = device.GetRenderTarget(0, &before);
        if (FAILED(result))
            return result;
        mOldTarget.reset(before);
        before = nullptr;
        // Fails where there is none, and then none is put back.
        if (SUCCEEDED(device.GetDepthStencilSurface(&before)))
            mOldDepth.reset(before);
        device.GetViewport(&mOldViewport);

        const D3DVIEWPORT9 whole = {0, 0, mKind.width, mKind.height, 0, 1};
        result = device.SetRenderTarget(0, &surface);
        if (SUCCEEDED(result))
            result = device.SetDepthStencilSurface(mDepth.get());
        if (SUCCEEDED(result))
            result = device.SetViewport(viewport ? viewport : &whole);
        return result;
    }

    void putBack() {
        if (!mOldTarget)
            return;
        Device().SetRenderTarget(0, mOldTarget.get());
        Device().SetDepthStencilSurface(mOldDepth.get());
        Device().SetViewport(&mOldViewport);
        mOldTarget.reset();
        mOldDepth.reset();
    }

    Kind mKind;
    Held<IDirect3DSurface9> mDepth; // null: none
    bool mInScene = false;

    Held<IDirect3DSurface9> mOldTarget, mOldDepth;
    D3DVIEWPORT9 mOldViewport = {};
};

} // namespace

} // namespace VornPlatform

HRESULT D3DXCreateRenderToSurface(IDirect3DDevice9* device, UINT w, UINT h, D3DFORMAT format,
                                  BOOL depth, D3DFORMAT depthFormat,
                                  ID3DXRenderToSurface** renderToSurface) {
    using namespace VornPlatform;
    const CallScope call("D3DXCreateRenderToSurface", device, w, h, format, depth, depthFormat);
    if (!renderToSurface)
        return D3DERR_INVALIDCALL;
    *renderToSurface = nullptr;
    if (!device || w == 0 || h == 0)
        return D3DERR_INVALIDCALL;
    Held<IDirect3DSurface9> held;
    if (depth) {
        IDirect3DSurface9* surface = nullptr;
        const HRESULT result = device->CreateDepthStencilSurface(
            w, h, depthFormat, D3DMULTISAMPLE_NONE, 0, TRUE, &surface, nullptr);
        if (FAILED(result))
            return result;
        held.reset(surface);
    }
    *renderToSurface =
        new (std::nothrow) RenderToSurface(device, Kind{w, h, format}, std::move(held));
    return *renderToSurface ? D3D_OK : D3DERR_OUTOFVIDEOMEMORY;
}
