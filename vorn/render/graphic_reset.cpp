// SPDX-License-Identifier: MIT
//
// A device that is lost, and its way back.
#include "vorn/render/graphic.hpp"
#include "vorn/resource/device_object.hpp"

#include <stdexcept>

namespace Vorn {

namespace {

constexpr DWORD Pause = 10; // (unit: milliseconds)
constexpr int MostRefusals = 100;
constexpr int MostMessages = 1000; // in a pause: a procedure may post itself the next one for ever

// A device that a host has made itself may have no window that we know of.
bool HasGone(HWND window) {
    RECT rect;
    return window && !GetWindowRect(window, &rect);
}

// The window while the device stays lost. A device in full screen comes back with the focus, and
// the focus comes with messages; and whoever cannot get the picture back must be able to close the
// window. Messages of the host's own, which have no window, wait for the host.
class Patience {
public:
    explicit Patience(HWND window) : mWindow(window) {}

    /// Dispatches what has come and sleeps a little. False when there is nothing to wait for: the
    /// window has gone, also before this wait began, or the host is to quit, which it is told
    /// again.
    bool Wait() {
        MSG message;
        for (int i = 0; i < MostMessages && PeekMessageA(&message, mWindow, 0, 0, PM_REMOVE); ++i) {
            if (message.message == WM_QUIT) {
                PostQuitMessage(static_cast<int>(message.wParam));
                return false;
            }
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
        if (HasGone(mWindow))
            return false;
        Sleep(Pause);
        return true;
    }

private:
    HWND mWindow;
};

} // namespace

bool Graphic::CheckContext() {
    return LiveDevice() && m3DDevice->TestCooperativeLevel() == D3D_OK;
}

void Graphic::WaitForLostDevice() {
    Patience patience(mWnd);
    while (LiveDevice() && m3DDevice->TestCooperativeLevel() == D3DERR_DEVICELOST)
        if (!patience.Wait())
            return;
}

void Graphic::SetFullscreen(bool fullscreen) {
    m3Dpp = fullscreen ? m3DppFull : m3DppWindow;
    Reset();
}

void Graphic::Reset() {
    if (!LiveDevice())
        return;
    releaseForReset();
    const bool works = resetDevice();
    if (!LiveDevice())
        return;
    // Where the window has gone the rest fails, call by call, and nobody looks at it.
    setDefaults(200000.0f);
    makeHelpers();
    loadQuad();
    try {
        InitShaders();
    } catch (...) {
        if (!works || HasGone(mWnd))
            return;
        releaseForReset();
        throw;
    }
}

void Graphic::releaseForReset() {
    ReleaseObject(mFont);
    ReleaseObject(mLine);
    ReleaseObject(mQuadVB);
    ReleaseObject(mQuadIB);
    releaseShaders();
    releaseTargets();
}

// Whether the device works again.
bool Graphic::resetDevice() {
    Patience patience(mWnd);
    int refusals = 0;
    while (LiveDevice()) { // a message may have ended it
        const HRESULT result = m3DDevice->Reset(&m3Dpp);
        if (result == D3D_OK)
            return true;
        if (result == D3DERR_DRIVERINTERNALERROR) {
            DestroyWindow(mWnd);
            return false;
        }
        refusals = result == D3DERR_DEVICELOST ? 0 : refusals + 1;
        if (refusals == MostRefusals)
            throw std::runtime_error("cannot reset the device: an object in the default pool is "
                                     "still alive");
        if (!patience.Wait())
            return false;
    }
    return false;
}

} // namespace Vorn
