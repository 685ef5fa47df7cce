// SPDX-License-Identifier: MIT
//
// The windows behind the handles. A handle from outside is looked up here before it is followed:
//
//   if (HWND__* window = LiveWindow(handle))
//       SDL_SetWindowTitle(window->window, title);
//
// A record stays when its window is destroyed, so that no other window ever has its address, and a
// stale handle is refused for good.
#pragma once

#include <windows.h>

#include <SDL.h>

#include <string>
#include <vector>

struct HWND__ {
    SDL_Window* window = nullptr; // null once it is destroyed
    bool lost = false;            // to the host, which has ended SDL; WM_DESTROY is still to come
    WNDPROC procedure = nullptr;
    UINT classStyle = 0;
    HCURSOR cursor = nullptr; // of the class
    DWORD style = 0;
    // What the host takes the client area for. In full screen the desktop keeps its resolution,
    // and positions are mapped to this size.
    int width = 0, height = 0;
    // Where the window is when it is not in full screen.
    RECT placement = {};
    bool fullScreen = false;
    bool focused = false; // as SDL says
    bool active = false;  // as the last WM_ACTIVATE says, which may still wait in the queue
    bool told = false;    // as the last WM_ACTIVATE said that has reached the procedure
    bool dying = false;
};

namespace VornPlatform {

struct WindowClass {
    std::string name;
    WNDPROC procedure = nullptr;
    UINT style = 0;
    HCURSOR cursor = nullptr;
};
/// Keeps the class, in place of one with the same name; the number stands for it.
ATOM KeepClass(WindowClass windowClass);
/// By name, in any case, or by number as MAKEINTRESOURCEA packs it; null if there is none.
const WindowClass* FindClass(LPCSTR nameOrNumber);

/// The record of a window that lives, or null.
HWND__* LiveWindow(HWND window);
HWND__* WindowOfSdl(Uint32 id);
HWND__* NewestWindow();
HWND__* ActiveWindow();
/// The newest that is shown and stays, or null.
HWND__* NewestShownWindow();
/// All that live, the oldest first. A copy: procedures make and destroy windows.
std::vector<HWND> LiveWindows();

/// Takes over the SDL window of the record.
HWND AddWindow(const HWND__& window);
/// Delivers WM_ACTIVATE 0 if it was told 1, and WM_DESTROY; then the handle is void. Passed over
/// when it is being destroyed already.
void DestroyLiveWindow(HWND__& window);
/// Without a word to the procedures: the process ends.
void DestroyWindows();
/// SDL is gone, and its windows with it. The handles are good until the procedures are told.
void LoseWindows();
/// Tells the procedures of lost windows WM_DESTROY, which ends them; true if there were any.
bool DestroyLostWindows();

void EnterFullScreen(HWND__& window);
/// Back to the placement that the window had before.
void LeaveFullScreen(HWND__& window);
/// In full screen: the placement to come back to, and the size that the host works in.
void PlaceWindow(HWND__& window, const RECT& rect);
/// The rectangle that the host sees, in screen pixels. In full screen: the display's corner, and
/// the size that the host takes the client area for.
RECT WindowRect(const HWND__& window);
/// From SDL's pixels to those of the host.
POINT ToClient(const HWND__& window, int x, int y);
POINT ClientToScreen(const HWND__& window, POINT client);

} // namespace VornPlatform
