// SPDX-License-Identifier: MIT
//
// The window of the game and its device: one, with a switch between window and full screen. The
// engine has no loop; the host fetches the window's messages and stops when IsShutdown says so.
//
//   auto* engine = Vorn::Engine::Instance();
//   engine->Init("Meadow", 800, 600, false);
//   while (!engine->IsShutdown()) {
//       for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
//           TranslateMessage(&message);
//           DispatchMessageA(&message);
//       }
//       // input, triggers, scene, picture
//       if (!engine->CheckContext())
//           engine->Reset();
//   }
//   Vorn::RscPackManager::Instance()->Free();
//   engine->Free();
//
// The window's procedure, which runs inside the host's dispatching, feeds the focus to `isActive`
// and the switches of SoundManager, and mouse and wheel to the functions of keyboard_mouse.hpp. All
// state is static: there is one window, whoever asks.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"
#include "vorn/render/fwd.hpp"
#include "vorn/resource/fwd.hpp"

#include <windows.h>

#include <string>

namespace Vorn {

class VORN_API Engine : public Singleton<Engine> {
public:
    /// Makes the window, shows it, and makes the device with a back buffer of that size; `title`
    /// names the window's class too (unit of size: client pixels). Of the window no result is
    /// looked at: what cannot be made is null, and everything goes on. The cursor is
    /// "data/cursor_pointer.ani", if that is there; over the client area the pointer is hidden.
    /// Raises as Graphic::Init does where the machine has no such device; the window stays then.
    void Init(const std::string& title, unsigned int width, unsigned int height, bool fullscreen);
    /// Ends the device; the window stays. Free the resource packs before.
    void Free();

    /// Whether the device works. When it does not, Reset waits until it can be brought back.
    bool CheckContext();
    /// Brings a lost device back, with what the stores have on it: their entries and all pointers
    /// to them stay. Raises as Graphic::Reset does; the stores are released then, and a later Reset
    /// brings them back.
    void Reset();
    /// Resets the device in the other mode, as Reset does, and then changes the window. Remembers
    /// the window's placement on the way to full screen, and brings it back on the way to a window.
    /// A game that started in full screen comes up in the corner of the screen. If the reset
    /// raises, the mode is the old one.
    void ToggleFullScreen();

    void DisplayWindow();
    /// The window's outer edges (unit: screen pixels); all 0 without a window.
    RECT GetRect() const;

    /// The host is to stop: as if the window had been closed, which stays.
    void Shutdown() { isShutdown = true; }
    bool IsShutdown() const { return isShutdown; }
    bool IsActive() const { return isActive; }
    void IsActive(bool active) { isActive = active; }
    bool IsFullscreen() const { return isFullscreen; }
    /// The size that Init was given.
    unsigned int WindowWidth() const { return mWindowWidth; }
    unsigned int WindowHeight() const { return mWindowHeight; }

    static bool isFullscreen;
    /// The window has the focus: false before its first WM_ACTIVATE. Input reads as let go of while
    /// it is false.
    static bool isActive;
    static bool isShutdown;
    /// The window's menu while full screen has taken it away.
    static HMENU mMenu;
    /// The placement that ToggleFullScreen comes back to.
    static RECT mRectWindow;
    static WNDCLASSEXA mWc;
    static unsigned int mWindowWidth;
    static unsigned int mWindowHeight;
    static HWND mWnd;
    static std::string mWindowTitle;
    static Graphic* mGraphics;
    static RscPackManager* mResourcePackManager;
    static HCURSOR mCursor;
};

template <>
VORN_API Engine Singleton<Engine>::mSingleton;

} // namespace Vorn
