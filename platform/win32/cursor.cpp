// SPDX-License-Identifier: MIT
#include "platform/window/cursors.hpp"

#include <windows.h>

#include <algorithm>

using namespace VornPlatform;

HCURSOR LoadCursorFromFileA(LPCSTR) {
    return nullptr;
}

HANDLE LoadImageA(HINSTANCE, LPCSTR, UINT, int, int, UINT) {
    return nullptr;
}

HCURSOR SetCursor(HCURSOR cursor) {
    return ShowCursorPicture(cursor);
}

int ShowCursor(BOOL show) {
    static int count = 0;
    count = std::clamp(count + (show ? 1 : -1), -1, 0);
    ShowPointer(count >= 0);
    return count;
}
