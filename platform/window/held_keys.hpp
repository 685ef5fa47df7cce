// SPDX-License-Identifier: MIT
//
// The keys and buttons that are held, as the fetched events have left them: their state for
// GetKeyState, and the messages of each change.
#pragma once

#include <windows.h>

#include <SDL.h>

namespace VornPlatform {

/// A key went down or up, or repeats. A key that comes up is what it was when it went down,
/// whatever the layout is now. The window may be null: then there is no message, and no key goes
/// down.
void OnKey(HWND window, const SDL_Keysym& key, bool down);
/// `lParam` holds the place; `doubled` says that it is the second click of a double one.
void OnButton(HWND window, int sdlButton, bool down, bool doubled, LPARAM lParam);
/// The locks that are lit, as `mod` of SDL has them.
void SetLocks(int mod);

/// All that is held comes up, with the messages of that.
void ReleaseKeys(HWND window, LPARAM pointer);

/// MK_LBUTTON and the like, for wParam of mouse messages.
WORD HeldForMouse();

} // namespace VornPlatform
