// SPDX-License-Identifier: MIT
#include "platform/window/input_state.hpp"
#include "platform/window/session.hpp"
#include "platform/window/window.hpp"

#include <windows.h>

#include <SDL.h>

using namespace VornPlatform;

SHORT GetKeyState(int vk) {
    const auto index = static_cast<std::size_t>(vk);
    return index < Input().keys.size() ? static_cast<SHORT>(Input().keys[index]) : SHORT(0);
}

BOOL GetCursorPos(LPPOINT position) {
    if (!position)
        return FALSE;
    *position = Input().cursor;
    // The pointer moves between two messages too; a recording does not see that.
    const HWND__* active = ActiveWindow();
    const bool mapped = active && active->fullScreen;
    if (VideoRuns() && HasScreenPointer() && !mapped && !Source() && !Listener())
        SDL_GetGlobalMouseState(&position->x, &position->y);
    return TRUE;
}
