// SPDX-License-Identifier: MIT
//
// Which device is asked, and what a stick says.
#pragma once

#include "vorn/input/fwd.hpp"

namespace Vorn {

enum ControlType : int {
    CONTROL_KEYBOARD, // and the mouse
    CONTROL_PAD1,
    CONTROL_PAD2,
    CONTROL_PAD3,
    CONTROL_PAD4
};

/// One of eight directions, or none inside the dead zone.
enum AnalogMovement : int {
    ANALOG_NONE,
    ANALOG_LEFT,
    ANALOG_RIGHT,
    ANALOG_UP,
    ANALOG_DOWN,
    ANALOG_UP_LEFT,
    ANALOG_UP_RIGHT,
    ANALOG_DOWN_LEFT,
    ANALOG_DOWN_RIGHT
};

} // namespace Vorn
