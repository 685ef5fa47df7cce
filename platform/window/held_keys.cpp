// SPDX-License-Identifier: MIT
#include "platform/window/held_keys.hpp"
#include "platform/window/input_state.hpp"
#include "platform/window/key_table.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

namespace VornPlatform {

namespace {

// What each key of the keyboard went down as; 0 while it is up.
constinit std::array<std::uint8_t, SDL_NUM_SCANCODES> pressedAs{};

bool IsHeld(int virtualKey) {
    return (Input().keys[static_cast<std::size_t>(virtualKey)] & KeyDown) != 0;
}

// Several keys may share a code, as both Enters do and the two sides of Shift.
bool AnyPressedAs(int virtualKey) {
    return std::any_of(pressedAs.begin(), pressedAs.end(), [virtualKey](std::uint8_t pressed) {
        return pressed && (pressed == virtualKey || WithoutSide(pressed) == virtualKey);
    });
}

void UpdateKey(int virtualKey, bool down) {
    const WORD toggled = Input().keys[static_cast<std::size_t>(virtualKey)] & KeyToggled;
    SetKey(virtualKey, static_cast<WORD>((down ? KeyDown : 0) | toggled));
}

void UpdateKeys(int virtualKey) {
    UpdateKey(virtualKey, AnyPressedAs(virtualKey));
    if (const int both = WithoutSide(virtualKey); both != virtualKey)
        UpdateKey(both, AnyPressedAs(both));
}

void PostKey(HWND window, SDL_Scancode scancode, int virtualKey, bool down, bool wasDown) {
    // A key with Alt is one for the system, unless Ctrl makes it a third level of the layout.
    const int both = WithoutSide(virtualKey);
    const bool alt = IsHeld(VK_MENU);
    const bool forSystem = !IsHeld(VK_CONTROL) && (alt || both == VK_MENU || both == VK_F10);
    UINT message = down ? WM_KEYDOWN : WM_KEYUP;
    if (forSystem)
        message = down ? WM_SYSKEYDOWN : WM_SYSKEYUP;

    UINT bits = 1; // repeats
    bits |= static_cast<UINT>(ScanCodeOf(scancode)) << 16;
    bits |= alt ? 1u << 29 : 0;
    bits |= wasDown ? 1u << 30 : 0;
    bits |= down ? 0 : 1u << 31;
    PostInput(window, message, static_cast<WPARAM>(both), static_cast<LPARAM>(bits));

    // Keys whose text SDL leaves out.
    const bool hasText =
        both == VK_RETURN || both == VK_BACK || both == VK_TAB || both == VK_ESCAPE;
    if (down && hasText && !forSystem)
        PostInput(window, WM_CHAR, static_cast<WPARAM>(both), static_cast<LPARAM>(bits));
}

void Release(HWND window, SDL_Scancode scancode) {
    std::uint8_t& pressed = pressedAs[static_cast<std::size_t>(scancode)];
    const int virtualKey = pressed;
    pressed = 0;
    UpdateKeys(virtualKey);
    if (window)
        PostKey(window, scancode, virtualKey, false, true);
}

struct Button {
    int virtualKey;
    UINT down; // the message; "up" and "twice" follow it
    WORD held; // MK_
    WORD extra;
};
constexpr Button Buttons[] = {
    {VK_LBUTTON, WM_LBUTTONDOWN, MK_LBUTTON, 0},   {VK_MBUTTON, WM_MBUTTONDOWN, MK_MBUTTON, 0},
    {VK_RBUTTON, WM_RBUTTONDOWN, MK_RBUTTON, 0},   {VK_XBUTTON1, WM_XBUTTONDOWN, MK_XBUTTON1, 1},
    {VK_XBUTTON2, WM_XBUTTONDOWN, MK_XBUTTON2, 2},
};

void Press(HWND window, const Button& button, bool down, bool doubled, LPARAM lParam) {
    UpdateKey(button.virtualKey, down);
    if (!window)
        return;
    const UINT message = button.down + (down ? (doubled ? 2 : 0) : 1);
    PostInput(window, message, PackWords(HeldForMouse(), button.extra), lParam);
}

bool IsButton(int virtualKey) {
    return std::any_of(std::begin(Buttons), std::end(Buttons), [virtualKey](const Button& button) {
        return button.virtualKey == virtualKey;
    });
}

bool IsLock(int virtualKey) {
    return virtualKey == VK_CAPITAL || virtualKey == VK_NUMLOCK || virtualKey == VK_SCROLL;
}

// A code without a place on the keyboard comes up without a message.
void Clear(HWND window, int virtualKey) {
    const bool wasHeld = IsHeld(virtualKey);
    if (IsLock(virtualKey))
        UpdateKey(virtualKey, false);
    else
        SetKey(virtualKey, 0); // only a recording toggles other keys
    const auto place = KeysymOf(virtualKey);
    if (wasHeld && window && place && WithoutSide(virtualKey) == virtualKey)
        PostKey(window, place->scancode, virtualKey, false, true);
}

} // namespace

void OnKey(HWND window, const SDL_Keysym& key, bool down) {
    const auto index = static_cast<std::size_t>(key.scancode);
    if (index >= pressedAs.size())
        return;
    if (!down) {
        if (pressedAs[index])
            Release(window, key.scancode);
        return;
    }
    if (!window)
        return;
    const bool wasDown = pressedAs[index] != 0;
    const int virtualKey = wasDown ? pressedAs[index] : VirtualKeyOf(key);
    if (virtualKey == 0)
        return;
    pressedAs[index] = static_cast<std::uint8_t>(virtualKey);
    UpdateKeys(virtualKey);
    PostKey(window, key.scancode, virtualKey, true, wasDown);
}

void OnButton(HWND window, int sdlButton, bool down, bool doubled, LPARAM lParam) {
    if (sdlButton < 1 || sdlButton > static_cast<int>(std::size(Buttons)))
        return;
    const Button& button = Buttons[sdlButton - 1];
    if (IsHeld(button.virtualKey) != down && (window || !down))
        Press(window, button, down, doubled, lParam);
}

void SetLocks(int mod) {
    const auto set = [](int virtualKey, bool lit) {
        const WORD down = Input().keys[static_cast<std::size_t>(virtualKey)] & KeyDown;
        SetKey(virtualKey, static_cast<WORD>(down | (lit ? KeyToggled : 0)));
    };
    set(VK_CAPITAL, (mod & KMOD_CAPS) != 0);
    set(VK_NUMLOCK, (mod & KMOD_NUM) != 0);
    set(VK_SCROLL, (mod & KMOD_SCROLL) != 0);
}

void ReleaseKeys(HWND window, LPARAM pointer) {
    for (std::size_t i = 0; i < pressedAs.size(); ++i)
        if (pressedAs[i])
            Release(window, static_cast<SDL_Scancode>(i));
    // Keys that no keyboard holds are those of a recording.
    for (int key = 0; key < static_cast<int>(Input().keys.size()); ++key)
        if (!IsButton(key))
            Clear(window, key);
    for (const Button& button : Buttons) {
        if (IsHeld(button.virtualKey))
            Press(window, button, false, false, pointer);
        SetKey(button.virtualKey, 0);
    }
}

WORD HeldForMouse() {
    int held = 0;
    for (const Button& button : Buttons)
        if (IsHeld(button.virtualKey))
            held |= button.held;
    if (IsHeld(VK_SHIFT))
        held |= MK_SHIFT;
    if (IsHeld(VK_CONTROL))
        held |= MK_CONTROL;
    return static_cast<WORD>(held);
}

} // namespace VornPlatform
