// SPDX-License-Identifier: MIT
#include "platform/d3d9/device.hpp"
#include "platform/d3d9/counters.hpp"
#include "platform/d3d9/faults.hpp"
#include "platform/d3d9/guarded.hpp"
#include "platform/d3d9/recorder/call_log.hpp"

#include <utility>

namespace VornPlatform {

Device::Device(Direct3D& direct3D, std::unique_ptr<Backend> backend, HWND window)
    : LiveObject(ObjectKind::Device), mBackend(std::move(backend)), mDirect3D(direct3D),
      mWindow(window) {
    AddDevice(*this);
    mDirect3D.Hold();
}

Device::~Device() {
    RemoveDevice(*this);
    unbindAll();
    if (mBackBuffer)
        mBackBuffer->Unbind();
    if (mScreenDepth)
        mScreenDepth->Unbind();
    if (mFullScreen)
        showFullScreen(false);
    mDirect3D.LetGo();
}

HRESULT Device::Make(Direct3D& direct3D, std::unique_ptr<Backend> backend, HWND window,
                     const D3DPRESENT_PARAMETERS& filled, D3DPRESENT_PARAMETERS& parameters,
                     IDirect3DDevice9** device) {
    struct Destroyer {
        void operator()(Device* unfinished) const { delete unfinished; }
    };
    std::unique_ptr<Device, Destroyer> made(new Device(direct3D, std::move(backend), window));
    Screen screen;
    if (const HRESULT error = made->makeScreen(filled, screen); FAILED(error))
        return error;
    const auto surface = [&made](const D3DSURFACE_DESC& desc) {
        auto* part =
            new PlainSurface(*made, PlainSurface::Use::OfDevice, desc, nullptr, std::nullopt);
        part->Bind();
        return part;
    };
    made->mBackBuffer = surface(screen.colorDesc);
    made->mScreenDepth = surface(screen.depthDesc);
    LayoutOfFvf(0); // makes them all, since SetFVF has no answer for want of memory
    made->takeScreen(filled, std::move(screen));
    if (!filled.Windowed)
        made->showFullScreen(true);
    parameters = filled;
    *device = made.release();
    return D3D_OK;
}

ULONG Device::AddRef() {
    const CallScope call("AddRef");
    return ++mCount;
}

ULONG Device::Release() {
    const CallScope call("Release");
    const ULONG left = --mCount;
    if (left == 0)
        delete this;
    return left;
}

void Device::OnChildHeld(bool isInTheWay) {
    ++mCount;
    mInTheWay += isInTheWay;
}

void Device::OnChildLetGo(bool wasInTheWay) {
    mInTheWay -= wasInTheWay;
    if (--mCount == 0)
        delete this;
}

HRESULT Device::TestCooperativeLevel() {
    const CallScope call("TestCooperativeLevel");
    return mStatus;
}

void Device::Restore() {
    if (mStatus == D3DERR_DEVICELOST)
        mStatus = D3DERR_DEVICENOTRESET;
}

HRESULT Device::BeginScene() {
    const CallScope call("BeginScene");
    if (mInScene || mStatus != D3D_OK)
        return D3DERR_INVALIDCALL;
    mInScene = true;
    return D3D_OK;
}

HRESULT Device::EndScene() {
    const CallScope call("EndScene");
    if (!mInScene)
        return D3DERR_INVALIDCALL;
    mInScene = false;
    finishMips();
    return D3D_OK;
}

HRESULT Device::Present(const RECT* src, const RECT* dst, HWND window, const void* dirtyRegion) {
    const CallScope call("Present", src, dst, window, dirtyRegion);
    if (mStatus != D3D_OK)
        return D3DERR_DEVICELOST;
    // Parts of the picture are for another swap effect than DISCARD.
    if (mInScene || src || dst || dirtyRegion)
        return D3DERR_INVALIDCALL;
    const bool wait = mParameters.PresentationInterval != D3DPRESENT_INTERVAL_IMMEDIATE;
    return Guarded([&] {
        mBackend->Present(*mBackBuffer->Gpu(), mParameters.BackBufferWidth,
                          mParameters.BackBufferHeight, window ? window : mWindow, wait);
        BeginFrameCount();
        return D3D_OK;
    });
}

} // namespace VornPlatform
