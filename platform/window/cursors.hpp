// SPDX-License-Identifier: MIT
//
// The pictures of the pointer. A handle stays good until the process ends; what SDL needs for it is
// made when it is first shown, since a game loads its cursor before it has a window.
#pragma once

#include "platform/window/cursor_file.hpp"

#include <windows.h>

namespace VornPlatform {

HCURSOR KeepCursor(CursorPicture picture);
/// Shows the cursor, null for none, and gives the one before; at first that is the system's arrow.
/// A handle that is no cursor's changes nothing and gives null.
HCURSOR ShowCursorPicture(HCURSOR cursor);
/// The pointer as a whole, apart from its picture.
void ShowPointer(bool shown);

/// Video has come up: it shows what was asked for before.
void RefreshPointer();
/// Video ends: what SDL holds of the pictures goes.
void DropCursors();
/// SDL is gone, and what it held of the pictures with it.
void ForgetCursors();

} // namespace VornPlatform
