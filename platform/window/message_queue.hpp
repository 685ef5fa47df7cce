// SPDX-License-Identifier: MIT
//
// The messages that wait for the host, in the order in which they came, and the way to a window's
// procedure.
#pragma once

#include <windows.h>

namespace VornPlatform {

void Enqueue(const MSG& message);
/// Copies the first that passes the filters, as PeekMessageA has them, and takes it out if `remove`
/// says so; false if there is none.
bool TakeMessage(MSG& message, HWND window, UINT first, UINT last, bool remove);
void DropMessages(HWND window);
void DropMessages(HWND window, UINT message);

/// Milliseconds since some moment before the first message.
DWORD MessageTime();

/// Runs the window's procedure, and notes what it is told by WM_ACTIVATE; 0 without such a window.
LRESULT CallProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

} // namespace VornPlatform
