// SPDX-License-Identifier: MIT
#include "platform/window/window.hpp"
#include "platform/control/environment.hpp"
#include "platform/window/input_state.hpp"
#include "platform/window/pump.hpp"
#include "platform/window/session.hpp"

#include <windows.h>

#include <algorithm>

using namespace VornPlatform;

namespace {

constexpr int FarAway = 1'000'000; // no screen is there, and sums stay small
constexpr int DefaultWidth = 800, DefaultHeight = 600;

SDL_Window* MakeWindow(LPCSTR title, DWORD style, int x, int y, int w, int h) {
    constexpr int Anywhere = SDL_WINDOWPOS_UNDEFINED;
    const auto place = [x](int position) {
        return x == CW_USEDEFAULT ? Anywhere : std::clamp(position, -FarAway, FarAway);
    };
    const int left = place(x), top = place(y == CW_USEDEFAULT ? 0 : y);
    Uint32 flags = SDL_WINDOW_HIDDEN;
    if (style & WS_THICKFRAME)
        flags |= SDL_WINDOW_RESIZABLE;
    // A picture needs OpenGL; a machine without it still has the input.
    const Uint32 kinds[] = {SDL_WINDOW_OPENGL, 0};
    for (const Uint32 kind : kinds)
        if (SDL_Window* window = SDL_CreateWindow(title, left, top, w, h, flags | kind))
            return window;
    return nullptr;
}

// Nobody else gives a window the focus where there is no desktop. While a recording is played that
// means where it was made.
bool FocusIsOurs() {
    return Source() ? !Source()->TellsFocus() : IsHeadless();
}

void GiveFocus(HWND handle) {
    if (IsHeadless())
        for (HWND window : LiveWindows())
            window->focused = window == handle;
    if (FocusIsOurs())
        ActivateAtOnce(handle, true);
}

// The active window has gone.
void GiveFocusToNext() {
    HWND__* next = NewestShownWindow();
    if (next && !ActiveWindow())
        GiveFocus(next);
}

void Hide(HWND__& window) {
    SDL_HideWindow(window.window);
    if (IsHeadless())
        window.focused = false;
    if (!FocusIsOurs())
        return;
    const bool wasActive = window.active;
    ActivateAtOnce(&window, false);
    if (wasActive)
        GiveFocusToNext();
}

void Show(HWND__& window) {
    SDL_ShowWindow(window.window);
    if (!window.dying && !(window.active && window.told))
        GiveFocus(&window);
}

} // namespace

HMODULE GetModuleHandleA(LPCSTR /*name*/) {
    static char module;
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): an opaque handle
    return reinterpret_cast<HMODULE>(&module);
}

ATOM RegisterClassExA(const WNDCLASSEXA* description) {
    if (!description || !description->lpfnWndProc || !description->lpszClassName ||
        !*description->lpszClassName)
        return 0;
    return KeepClass({description->lpszClassName, description->lpfnWndProc, description->style,
                      description->hCursor});
}

BOOL AdjustWindowRect(LPRECT rect, DWORD /*style*/, BOOL /*menu*/) {
    return rect ? TRUE : FALSE;
}

HWND CreateWindowExA(DWORD /*exStyle*/, LPCSTR cls, LPCSTR title, DWORD style, int x, int y, int w,
                     int h, HWND /*parent*/, HMENU /*menu*/, HINSTANCE /*instance*/,
                     LPVOID /*param*/) {
    FollowEnvironment();
    const WindowClass* found = FindClass(cls);
    if (!found || !StartVideo())
        return nullptr;
    HWND__ window;
    window.procedure = found->procedure;
    window.classStyle = found->style;
    window.cursor = found->cursor;
    window.style = style;
    window.width = w == CW_USEDEFAULT ? DefaultWidth : std::max(w, 1);
    window.height = w == CW_USEDEFAULT || h == CW_USEDEFAULT ? DefaultHeight : std::max(h, 1);
    window.window = MakeWindow(title ? title : "", style, x, y, window.width, window.height);
    if (!window.window)
        return nullptr;
    HWND handle = AddWindow(window);
    if (style & WS_POPUP)
        EnterFullScreen(*handle);
    return handle;
}

BOOL DestroyWindow(HWND handle) {
    HWND__* window = LiveWindow(handle);
    if (!window)
        return FALSE;
    const bool wasActive = window->active; // false while it is being destroyed
    DestroyLiveWindow(*window);
    if (wasActive)
        GiveFocusToNext();
    return TRUE;
}

BOOL ShowWindow(HWND handle, int command) {
    HWND__* window = LiveWindow(handle);
    if (!window)
        return FALSE;
    const bool shown = (SDL_GetWindowFlags(window->window) & SDL_WINDOW_SHOWN) != 0;
    switch (command) {
    case SW_HIDE:
        Hide(*window);
        break;
    case SW_MINIMIZE:
    case SW_SHOWMINIMIZED:
        SDL_MinimizeWindow(window->window);
        break;
    case SW_MAXIMIZE:
        SDL_MaximizeWindow(window->window);
        Show(*window);
        break;
    case SW_RESTORE:
    case SW_SHOWNORMAL:
        SDL_RestoreWindow(window->window);
        Show(*window);
        break;
    default:
        Show(*window);
        break;
    }
    return shown;
}

BOOL UpdateWindow(HWND window) {
    return LiveWindow(window) != nullptr;
}

BOOL GetWindowRect(HWND handle, LPRECT rect) {
    const HWND__* window = LiveWindow(handle);
    if (!window || !rect)
        return FALSE;
    *rect = WindowRect(*window);
    return TRUE;
}

LONG SetWindowLongA(HWND handle, int index, LONG value) {
    HWND__* window = LiveWindow(handle);
    if (!window || index != GWL_STYLE)
        return 0;
    const auto before = static_cast<LONG>(window->style);
    window->style = static_cast<DWORD>(value);
    if (window->style & WS_POPUP) {
        EnterFullScreen(*window);
    } else {
        LeaveFullScreen(*window);
        SDL_SetWindowResizable(window->window,
                               window->style & WS_THICKFRAME ? SDL_TRUE : SDL_FALSE);
    }
    return before;
}

HMENU GetMenu(HWND /*window*/) {
    return nullptr;
}

BOOL SetMenu(HWND window, HMENU /*menu*/) {
    return LiveWindow(window) != nullptr;
}

BOOL SetWindowPos(HWND handle, HWND /*after*/, int x, int y, int cx, int cy, UINT flags) {
    HWND__* window = LiveWindow(handle);
    if (!window)
        return FALSE;
    RECT rect = window->fullScreen ? window->placement : WindowRect(*window);
    const SDL_Point size = {rect.right - rect.left, rect.bottom - rect.top};
    if (!(flags & SWP_NOMOVE)) {
        rect.left = std::clamp(x, -FarAway, FarAway);
        rect.top = std::clamp(y, -FarAway, FarAway);
    }
    rect.right = rect.left + (flags & SWP_NOSIZE ? size.x : std::clamp(cx, 0, FarAway));
    rect.bottom = rect.top + (flags & SWP_NOSIZE ? size.y : std::clamp(cy, 0, FarAway));
    PlaceWindow(*window, rect);
    if (flags & SWP_SHOWWINDOW)
        Show(*window);
    if (flags & SWP_HIDEWINDOW)
        Hide(*window);
    return TRUE;
}
