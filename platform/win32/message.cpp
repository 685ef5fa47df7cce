// SPDX-License-Identifier: MIT
#include "platform/window/input_state.hpp"
#include "platform/window/message_queue.hpp"
#include "platform/window/pump.hpp"
#include "platform/window/window.hpp"

#include <windows.h>

#include <optional>

using namespace VornPlatform;

namespace {

constinit std::optional<int> quitCode;

bool TakeQuit(MSG& message, bool remove) {
    if (!quitCode)
        return false;
    message = {nullptr, WM_QUIT, static_cast<WPARAM>(*quitCode), 0, MessageTime(), Input().cursor};
    if (remove)
        quitCode.reset();
    return true;
}

} // namespace

BOOL PeekMessageA(LPMSG message, HWND window, UINT min, UINT max, UINT remove) {
    if (!message)
        return FALSE;
    const bool take = (remove & PM_REMOVE) != 0;
    while (!TakeMessage(*message, window, min, max, take)) {
        if (TakeQuit(*message, take))
            return TRUE;
        if (!FetchInput())
            return FALSE;
    }
    return TRUE;
}

BOOL TranslateMessage(const MSG* /*message*/) {
    return FALSE;
}

LRESULT DispatchMessageA(const MSG* message) {
    if (!message)
        return 0;
    if (message->message == WM_MOUSEMOVE)
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the message bears the handle
        CallProcedure(message->hwnd, WM_SETCURSOR, reinterpret_cast<WPARAM>(message->hwnd),
                      static_cast<LPARAM>(PackWords(HTCLIENT, WM_MOUSEMOVE)));
    return CallProcedure(message->hwnd, message->message, message->wParam, message->lParam);
}

LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return CallProcedure(window, message, wParam, lParam);
}

BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (window && !LiveWindow(window))
        return FALSE;
    Enqueue({window, message, wParam, lParam, MessageTime(), Input().cursor});
    return TRUE;
}

void PostQuitMessage(int exitCode) {
    quitCode = exitCode;
}

LRESULT DefWindowProcA(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    const HWND__* window = LiveWindow(handle);
    if (!window)
        return 0;
    switch (message) {
    case WM_CLOSE:
        DestroyWindow(handle);
        return 0;
    case WM_SYSKEYDOWN:
        if (wParam == VK_F4)
            PostMessageA(handle, WM_CLOSE, 0, 0);
        return 0;
    case WM_SETCURSOR:
        if (LOWORD(lParam) == HTCLIENT && window->cursor)
            SetCursor(window->cursor);
        return 0;
    default:
        return 0;
    }
}
