// SPDX-License-Identifier: MIT
//
// Keyboard and mouse as they are in this frame. InputManager wraps these functions and samples the
// keys once a frame; a host that uses it never calls InputUpdate itself.
//
//   if (Vorn::KeyIsTriggered(VK_SPACE))
//       Jump();
//
// Codes are virtual key codes. The functions for keys take 8 to 255, those for the mouse 0 to 4, of
// which VK_LBUTTON, VK_RBUTTON and VK_MBUTTON are buttons; any other code counts as a key that is
// up. A key that goes down and up between two samples is never seen.
//
// While the window is not active (Engine::isActive) everything reads as let go of: nothing is
// pressed or triggered, and every code of every kind is released, in each call.
//
// A function for keys that finds what it is asked for also raises the event of that name with the
// triggers, in each call.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/fwd.hpp"

namespace Vorn {

/// Samples all keys and raises Key_Triggered, Key_Pressed and Key_Released, in this order, for each
/// code from 8 upwards; none while the window is not active. InputManager::Update calls it. A
/// second call in a frame would wipe the edges of the frame.
VORN_API void InputUpdate();
/// All keys read as up, now and before, and nothing is raised; for a change of scene. A key that is
/// held across it is newly triggered in the next sample.
VORN_API void InputReset();

// What the window's procedure feeds. Despite their names these two set; a game does not call them.

/// From the `lParam` of WM_MOUSEMOVE. X is taken without a sign: left of the window's client area
/// it reads as a large number. Y has its sign.
VORN_API void GetMousePos(long& position);
/// From the `wParam` of WM_MOUSEWHEEL.
VORN_API void GetMouseScroll(unsigned int& wheel);

/// Down now.
VORN_API bool KeyIsPressed(unsigned int key);
/// Down now and up in the sample before.
VORN_API bool KeyIsTriggered(unsigned int key);
/// Up now and down in the sample before.
VORN_API bool KeyIsReleased(unsigned int key);
/// The lowest code from 8 to 221 that went down in this frame, 0 if none did. Raises Key_Triggered
/// with it.
VORN_API unsigned int KeyListener();

VORN_API bool MouseIsPressed(unsigned int button);
VORN_API bool MouseIsTriggered(unsigned int button);
VORN_API bool MouseIsReleased(unsigned int button);
/// By how much the wheel turned last, whether or not it did in this frame; 120 is a notch, away
/// from the user is positive. 0 while the window is not active.
VORN_API short MouseIsScrolled();
/// Whether the wheel turned in the frame that the last sample closed, also while the window is not
/// active.
VORN_API bool GetScrollEvent();

/// Where the mouse was in the window's last message (unit: client pixels), or the cursor at the
/// last GetScreenMousePos, if that came after it.
VORN_API void GetClientMousePos(Point2& position);
/// Where the cursor is now (unit: screen pixels). This takes the place of the stored position, for
/// everybody who reads it, until the mouse moves again.
VORN_API void GetScreenMousePos(Point2& position);

} // namespace Vorn
