// SPDX-License-Identifier: MIT
//
// The device's own surfaces, what it starts with, and how it is put back to that.
#include "platform/d3d9/device.hpp"
#include "platform/d3d9/faults.hpp"
#include "platform/d3d9/guarded.hpp"
#include "platform/d3d9/present_parameters.hpp"
#include "platform/d3d9/recorder/call_log.hpp"
#include "platform/window/window.hpp"

#include <utility>

namespace VornPlatform {

namespace {

D3DSURFACE_DESC ScreenDesc(const D3DPRESENT_PARAMETERS& parameters, D3DFORMAT format, DWORD usage) {
    return {format,
            D3DRTYPE_SURFACE,
            usage,
            D3DPOOL_DEFAULT,
            D3DMULTISAMPLE_NONE,
            0,
            parameters.BackBufferWidth,
            parameters.BackBufferHeight};
}

} // namespace

HRESULT Device::Reset(D3DPRESENT_PARAMETERS* parameters) {
    const CallScope call("Reset", parameters);
    if (!parameters)
        return D3DERR_INVALIDCALL;
    const auto fail = [this](HRESULT result) {
        if (mStatus == D3D_OK)
            mStatus = D3DERR_DEVICENOTRESET;
        return result;
    };
    if (const auto fault = TakeResetFault())
        return fail(*fault);
    // The device's own window may be gone: drawing and reading back go on.
    const HWND window = parameters->hDeviceWindow ? parameters->hDeviceWindow : mWindow;
    if (window != mWindow && !LiveWindow(window))
        return fail(D3DERR_INVALIDCALL);
    const auto filled = FillParameters(*parameters, window);
    if (!filled)
        return fail(D3DERR_INVALIDCALL);
    if (mStatus == D3DERR_DEVICELOST)
        return mStatus;
    if (mInTheWay > 0)
        return fail(D3DERR_INVALIDCALL);
    Screen screen;
    if (const HRESULT error = makeScreen(*filled, screen); FAILED(error))
        return fail(error);

    unbindAll();
    if (window != mWindow && mFullScreen)
        showFullScreen(false);
    mWindow = window;
    mStatus = D3D_OK;
    takeScreen(*filled, std::move(screen));
    showFullScreen(!filled->Windowed);
    *parameters = *filled;
    return D3D_OK;
}

HRESULT Device::makeScreen(const D3DPRESENT_PARAMETERS& parameters, Screen& screen) {
    const bool hasDepth = parameters.EnableAutoDepthStencil != FALSE;
    screen.colorDesc = ScreenDesc(parameters, parameters.BackBufferFormat, D3DUSAGE_RENDERTARGET);
    if (hasDepth)
        screen.depthDesc =
            ScreenDesc(parameters, parameters.AutoDepthStencilFormat, D3DUSAGE_DEPTHSTENCIL);
    return Guarded([&] {
        screen.color = makeTarget(screen.colorDesc);
        if (screen.color && hasDepth)
            screen.depth = makeTarget(screen.depthDesc);
        const bool whole = screen.color && (screen.depth || !hasDepth);
        return whole ? D3D_OK : D3DERR_OUTOFVIDEOMEMORY;
    });
}

void Device::takeScreen(const D3DPRESENT_PARAMETERS& parameters, Screen screen) {
    mParameters = parameters;
    mBackBuffer->Renew(screen.colorDesc, std::move(screen.color));
    mScreenDepth->Renew(screen.depthDesc, std::move(screen.depth));
    setDefaults();
}

void Device::showFullScreen(bool fullScreen) {
    HWND__* window = LiveWindow(mWindow);
    // What is there by its style is not the device's to end.
    mFullScreen = fullScreen && (mFullScreen || (window && !window->fullScreen));
    if (!window || window->lost)
        return;
    if (fullScreen)
        EnterFullScreen(*window);
    else
        LeaveFullScreen(*window);
}

void Device::unbindAll() {
    // What a host has let go of dies here, so no pointer to it may stay in the state.
    mState.textures = {};
    for (Texture*& texture : mTextures)
        if (Texture* bound = std::exchange(texture, nullptr))
            bound->Unbind();
    mState.format = nullptr;
    mState.vertices = nullptr;
    mState.indices = nullptr;
    mState.target = {};
    mState.vertexShader = mState.pixelShader = {};
    mLayout = nullptr;
    if (VertexShader* bound = std::exchange(mVertexShader, nullptr))
        bound->Unbind();
    if (PixelShader* bound = std::exchange(mPixelShader, nullptr))
        bound->Unbind();
    if (VertexDeclaration* bound = std::exchange(mDeclaration, nullptr))
        bound->Unbind();
    if (VertexBuffer* bound = std::exchange(mVertices, nullptr))
        bound->Unbind();
    if (IndexBuffer* bound = std::exchange(mIndices, nullptr))
        bound->Unbind();
    if (Surface* bound = std::exchange(mTarget, nullptr))
        bound->Owner().Unbind();
    if (Surface* bound = std::exchange(mDepth, nullptr))
        bound->Owner().Unbind();
}

void Device::setDefaults() {
    mInScene = false;
    mSomethingBehind = false;
    mMipsAreOld = false;
    mLightIsSet = {};
    mVertexConstants.registers = mPixelConstants.registers = {};
    mVertexConstants.gathered = mPixelConstants.gathered = nullptr;
    mEffectBlock.clear();
    mEffectVersion = ++mLastVersion;
    mConstantsBehind = false;
    mState = State();
    mState.depth.enable = mScreenDepth->Gpu() ? TRUE : FALSE;

    mTarget = mBackBuffer;
    mTarget->Owner().Bind();
    if (mScreenDepth->Gpu()) {
        mDepth = mScreenDepth;
        mDepth->Owner().Bind();
    }
    updateTarget();
    const D3DSURFACE_DESC& desc = mTarget->Desc();
    mState.viewport = {0, 0, desc.Width, desc.Height, 0, 1};
    mChanged = Changed::All;
}

} // namespace VornPlatform
