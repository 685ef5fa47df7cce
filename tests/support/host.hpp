// SPDX-License-Identifier: MIT
//
// The host's half of a frame: the loop that fetches the messages of the engine's window, and keys,
// mouse and focus as a driver would send them.
#pragma once

#include "platform/control/vorn_platform.hpp"
#include "vorn/vorn.hpp"

#include <windows.h>

namespace Tests {

inline void Pump() {
    MSG message = {};
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

/// Two words as a message packs them; values beyond 16 bits are cut.
inline LPARAM Packed(int low, int high) {
    return static_cast<LPARAM>((static_cast<unsigned int>(high) << 16) |
                               (static_cast<unsigned int>(low) & 0xffff));
}

/// The engine's window, one for a whole program, at a place away from the corner. It starts with
/// the focus, no key down, the mouse at 0, 0 and no edge in the frame; it leaves all keys up.
class Host {
public:
    Host() {
        static const bool opened = [] {
            VornPlatform::ForceHeadless();
            Vorn::Engine::Instance()->Init("Vorn tests", 800, 600, false);
            SetWindowPos(Vorn::Engine::mWnd, HWND_NOTOPMOST, 60, 40, 800, 600, SWP_SHOWWINDOW);
            return true;
        }();
        static_cast<void>(opened);
        Focus(true);
        Calm();
    }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    ~Host() { Calm(); }

    static void Key(int code, bool down) {
        code > VK_MBUTTON ? VornPlatform::SendKey(code, down)
                          : VornPlatform::SendMouseButton(code, down);
        Pump();
    }
    static void Focus(bool focused) {
        VornPlatform::SendFocus(focused);
        Pump();
    }
    static void MoveMouse(int x, int y) {
        VornPlatform::SendMouseMove(x, y);
        Pump();
    }
    static void Wheel(float notches) {
        VornPlatform::SendMouseWheel(notches);
        Pump();
    }
    static LRESULT Send(UINT message, WPARAM wParam, LPARAM lParam) {
        return SendMessageA(Vorn::Engine::mWnd, message, wParam, lParam);
    }

private:
    static void Calm() {
        for (int code = 0; code < 256; ++code)
            if (GetKeyState(code) < 0)
                Key(code, false);
        MoveMouse(1, 1);
        MoveMouse(0, 0);
        Vorn::InputReset();
        for (int i = 0; i < 2; ++i)
            Vorn::InputUpdate();
    }
};

} // namespace Tests
