// SPDX-License-Identifier: MIT
#include "platform/window/session.hpp"
#include "platform/window/window.hpp"

#include <windows.h>

#include <SDL.h>

#include <cstdint>
#include <cstring>

using namespace VornPlatform;

namespace {

// SDL would look for a desktop by itself, also where we were told to have none.
bool HasDesktop() {
    return StartVideo() && !IsHeadless();
}

} // namespace

int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type) {
    if (!HasDesktop())
        return 0;
    constexpr UINT Icons = 0xF0;
    Uint32 flags = SDL_MESSAGEBOX_INFORMATION;
    if ((type & Icons) == MB_ICONERROR)
        flags = SDL_MESSAGEBOX_ERROR;
    else if ((type & Icons) == MB_ICONWARNING)
        flags = SDL_MESSAGEBOX_WARNING;
    HWND__* const window = LiveWindow(owner);
    const bool shown =
        SDL_ShowSimpleMessageBox(flags, caption ? caption : "Error", text ? text : "",
                                 window ? window->window : nullptr) == 0;
    return shown ? IDOK : 0;
}

HINSTANCE ShellExecuteA(HWND /*owner*/, LPCSTR operation, LPCSTR file, LPCSTR /*parameters*/,
                        LPCSTR /*directory*/, INT /*show*/) {
    constexpr std::intptr_t Refused = 31, Done = 33; // no program for it; all above 32 is success
    const bool open = !operation || std::strcmp(operation, "open") == 0;
    const bool done = file && open && HasDesktop() && SDL_OpenURL(file) == 0;
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): a number in a handle
    return reinterpret_cast<HINSTANCE>(done ? Done : Refused);
}
