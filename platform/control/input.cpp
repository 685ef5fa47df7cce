// SPDX-License-Identifier: MIT
#include "platform/control/vorn_platform.hpp"
#include "platform/window/key_table.hpp"
#include "platform/window/window.hpp"

#include <SDL.h>

#include <bitset>
#include <cmath>

namespace VornPlatform {

namespace {

// A keyboard as it was left by what was sent: a driver's events say which modifiers are held, which
// locks are lit, and whether a key was down already.
constinit std::bitset<256> sentDown;
constinit int sentMod = KMOD_NUM;
constinit int sentX = 0, sentY = 0;
constinit Uint32 sentButtons = 0;

struct Modifier {
    SDL_Scancode scancode;
    int mod;
};
constexpr Modifier Modifiers[] = {
    {SDL_SCANCODE_LSHIFT, KMOD_LSHIFT}, {SDL_SCANCODE_RSHIFT, KMOD_RSHIFT},
    {SDL_SCANCODE_LCTRL, KMOD_LCTRL},   {SDL_SCANCODE_RCTRL, KMOD_RCTRL},
    {SDL_SCANCODE_LALT, KMOD_LALT},     {SDL_SCANCODE_RALT, KMOD_RALT},
    {SDL_SCANCODE_LGUI, KMOD_LGUI},     {SDL_SCANCODE_RGUI, KMOD_RGUI},
};
constexpr Modifier Locks[] = {
    {SDL_SCANCODE_CAPSLOCK, KMOD_CAPS},
    {SDL_SCANCODE_NUMLOCKCLEAR, KMOD_NUM},
    {SDL_SCANCODE_SCROLLLOCK, KMOD_SCROLL},
};

void UpdateMod(SDL_Scancode scancode, bool down, bool repeats) {
    for (const Modifier& modifier : Modifiers)
        if (modifier.scancode == scancode)
            sentMod = down ? sentMod | modifier.mod : sentMod & ~modifier.mod;
    for (const Modifier& lock : Locks)
        if (lock.scancode == scancode && down && !repeats)
            sentMod ^= lock.mod;
}

Uint32 Target() {
    const HWND__* window = NewestWindow();
    return window ? SDL_GetWindowID(window->window) : 0;
}

void SendWindowEvent(SDL_WindowEventID kind) {
    SDL_Event event = {};
    event.type = SDL_WINDOWEVENT;
    event.window.windowID = Target();
    event.window.event = static_cast<Uint8>(kind);
    if (event.window.windowID)
        SDL_PushEvent(&event);
}

int SdlButton(int virtualKey) {
    switch (virtualKey) {
    case VK_LBUTTON:
        return SDL_BUTTON_LEFT;
    case VK_RBUTTON:
        return SDL_BUTTON_RIGHT;
    case VK_MBUTTON:
        return SDL_BUTTON_MIDDLE;
    case VK_XBUTTON1:
        return SDL_BUTTON_X1;
    case VK_XBUTTON2:
        return SDL_BUTTON_X2;
    default:
        return 0;
    }
}

} // namespace

void SendKey(int virtualKey, bool down) {
    const Uint32 target = Target();
    const std::optional<SDL_Keysym> key = KeysymOf(virtualKey);
    if (!target || !key)
        return;
    const bool repeats = down && sentDown.test(static_cast<std::size_t>(virtualKey));
    sentDown.set(static_cast<std::size_t>(virtualKey), down);
    UpdateMod(key->scancode, down, repeats);

    SDL_Event event = {};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.windowID = target;
    event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
    event.key.repeat = repeats;
    event.key.keysym = *key;
    event.key.keysym.mod = static_cast<Uint16>(sentMod);
    SDL_PushEvent(&event);
}

void SendMouseMove(int x, int y) {
    SDL_Event event = {};
    event.type = SDL_MOUSEMOTION;
    event.motion.windowID = Target();
    if (!event.motion.windowID)
        return;
    event.motion.state = sentButtons;
    event.motion.x = x;
    event.motion.y = y;
    event.motion.xrel = x - sentX;
    event.motion.yrel = y - sentY;
    sentX = x;
    sentY = y;
    SDL_PushEvent(&event);
}

void SendMouseButton(int virtualKey, bool down) {
    SDL_Event event = {};
    const int button = SdlButton(virtualKey);
    event.type = down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
    event.button.windowID = Target();
    if (!event.button.windowID || !button)
        return;
    const Uint32 bit = SDL_BUTTON(static_cast<Uint32>(button));
    sentButtons = down ? sentButtons | bit : sentButtons & ~bit;
    event.button.button = static_cast<Uint8>(button);
    event.button.state = down ? SDL_PRESSED : SDL_RELEASED;
    event.button.clicks = 1;
    event.button.x = sentX;
    event.button.y = sentY;
    SDL_PushEvent(&event);
}

void SendMouseWheel(float notches) {
    SDL_Event event = {};
    event.type = SDL_MOUSEWHEEL;
    event.wheel.windowID = Target();
    if (!event.wheel.windowID || !std::isfinite(notches))
        return;
    event.wheel.preciseY = notches;
    event.wheel.y = static_cast<int>(std::fmin(std::fmax(notches, -1e6f), 1e6f));
    event.wheel.mouseX = sentX;
    event.wheel.mouseY = sentY;
    SDL_PushEvent(&event);
}

void SendFocus(bool focused) {
    if (!focused) {
        sentDown.reset();
        sentMod &= KMOD_CAPS | KMOD_NUM | KMOD_SCROLL;
        sentButtons = 0;
    }
    SendWindowEvent(focused ? SDL_WINDOWEVENT_FOCUS_GAINED : SDL_WINDOWEVENT_FOCUS_LOST);
}

void SendClose() {
    SendWindowEvent(SDL_WINDOWEVENT_CLOSE);
}

} // namespace VornPlatform
