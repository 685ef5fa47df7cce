// SPDX-License-Identifier: MIT
#include "platform/window/input_state.hpp"

#include <windows.h>

using namespace VornPlatform;

SHORT GetKeyState(int vk) {
    const auto index = static_cast<std::size_t>(vk);
    return index < Input().keys.size() ? static_cast<SHORT>(Input().keys[index]) : SHORT(0);
}

BOOL GetCursorPos(LPPOINT position) {
    if (!position)
        return FALSE;
    *position = Input().cursor;
    return TRUE;
}
