// SPDX-License-Identifier: MIT
//
// The part of XInput that Vorn and its hosts use: up to four pads, asked by their index.
//
//   XINPUT_STATE state = {};
//   if (XInputGetState(0, &state) == ERROR_SUCCESS && (state.Gamepad.wButtons & XINPUT_GAMEPAD_A))
//       Jump();
//
//   [X] buttons, sticks, triggers, both motors
//   [ ] capabilities, batteries, keystrokes, sound
#ifndef VORN_PLATFORM_XINPUT_H
#define VORN_PLATFORM_XINPUT_H
#pragma GCC system_header

#include <windows.h>

struct XINPUT_GAMEPAD {
    WORD wButtons;
    BYTE bLeftTrigger, bRightTrigger;             // 0 to 255
    SHORT sThumbLX, sThumbLY, sThumbRX, sThumbRY; // -32768 to 32767, right and up are positive
};
struct XINPUT_STATE {
    DWORD dwPacketNumber; // changes with the state
    XINPUT_GAMEPAD Gamepad;
};
struct XINPUT_VIBRATION {
    WORD wLeftMotorSpeed, wRightMotorSpeed;
};
enum : WORD {
    XINPUT_GAMEPAD_DPAD_UP = 0x0001,
    XINPUT_GAMEPAD_DPAD_DOWN = 0x0002,
    XINPUT_GAMEPAD_DPAD_LEFT = 0x0004,
    XINPUT_GAMEPAD_DPAD_RIGHT = 0x0008,
    XINPUT_GAMEPAD_START = 0x0010,
    XINPUT_GAMEPAD_BACK = 0x0020,
    XINPUT_GAMEPAD_LEFT_THUMB = 0x0040,
    XINPUT_GAMEPAD_RIGHT_THUMB = 0x0080,
    XINPUT_GAMEPAD_LEFT_SHOULDER = 0x0100,
    XINPUT_GAMEPAD_RIGHT_SHOULDER = 0x0200,
    XINPUT_GAMEPAD_A = 0x1000,
    XINPUT_GAMEPAD_B = 0x2000,
    XINPUT_GAMEPAD_X = 0x4000,
    XINPUT_GAMEPAD_Y = 0x8000
};
#define ERROR_SUCCESS 0
#define ERROR_BAD_ARGUMENTS 160
#define ERROR_DEVICE_NOT_CONNECTED 1167

#pragma GCC visibility push(default)

// A pad has the lowest index that is free when it comes, and keeps it until it goes. While there is
// a window, pads are brought up to date when the host fetches messages, like the keys; without one,
// by XInputGetState itself. The focus does not matter. An index above 3 is a pad that is not there.

/// ERROR_SUCCESS, or ERROR_DEVICE_NOT_CONNECTED with the record as it was. Null is
/// ERROR_BAD_ARGUMENTS on a pad that is there.
DWORD XInputGetState(DWORD index, XINPUT_STATE*);
/// Motor speeds from 0 to 65535, until the next call; the left motor is the heavy one. Zeros on a
/// pad that stands still, or is not there, cost nothing.
DWORD XInputSetState(DWORD index, XINPUT_VIBRATION*);

#pragma GCC visibility pop

#endif
