// SPDX-License-Identifier: MIT
//
// What comes in from below, an event at a time: SDL's, or those of a recording in their place.
#pragma once

#include <windows.h>

namespace VornPlatform {

/// Takes in the next event; false when there is none for now, which ends a frame. The machine is
/// asked once a frame, so that a mouse that never rests cannot hold the host in its loop.
bool FetchInput();

/// Tells the window that it has the focus or has lost it, with the next messages; once for each
/// change. What was held comes up before.
void Activate(HWND window, bool active);
/// The same before it returns, where no desktop gives the focus. What still waits to be told of it
/// is told now or dropped.
void ActivateAtOnce(HWND window, bool active);
/// Activates the window that has the focus, and no other.
void ActivateFocused();

} // namespace VornPlatform
