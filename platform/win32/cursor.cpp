// SPDX-License-Identifier: MIT
#include "platform/window/cursors.hpp"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <utility>

using namespace VornPlatform;

HCURSOR LoadCursorFromFileA(LPCSTR path) {
    if (!path)
        return nullptr;
    auto picture = ReadCursorFile(path);
    return picture ? KeepCursor(std::move(*picture)) : nullptr;
}

HANDLE LoadImageA(HINSTANCE /*instance*/, LPCSTR name, UINT type, int /*cx*/, int /*cy*/,
                  UINT /*flags*/) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): a resource number in a pointer
    const bool isNumber = reinterpret_cast<std::uintptr_t>(name) <= 0xFFFF;
    return type == IMAGE_CURSOR && !isNumber ? LoadCursorFromFileA(name) : nullptr;
}

HCURSOR SetCursor(HCURSOR cursor) {
    return ShowCursorPicture(cursor);
}

int ShowCursor(BOOL show) {
    static int count = 0;
    // No further: the engine hides the pointer with every WM_SETCURSOR.
    count = std::clamp(count + (show ? 1 : -1), -1, 0);
    ShowPointer(count >= 0);
    return count;
}
