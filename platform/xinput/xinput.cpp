// SPDX-License-Identifier: MIT
#include "platform/window/input_state.hpp"
#include "platform/window/pads.hpp"
#include "platform/window/session.hpp"
#include "platform/window/window.hpp"

#include <XInput.h>

using namespace VornPlatform;

namespace {

// Brings the pads up, and looks at them for the first time.
void Begin() {
    if (!PadsRun() && StartPads() && !Source())
        UpdatePads();
}

// Without a window there are no messages whose fetching would bring the pads up to date.
bool FollowMessages() {
    return NewestWindow() || Listener() || Source();
}

} // namespace

DWORD XInputGetState(DWORD index, XINPUT_STATE* state) {
    Begin();
    if (!FollowMessages())
        UpdatePads();
    if (index >= Input().pads.size() || !Input().pads[index].connected)
        return ERROR_DEVICE_NOT_CONNECTED;
    if (!state)
        return ERROR_BAD_ARGUMENTS;
    *state = Input().pads[index].state;
    return ERROR_SUCCESS;
}

DWORD XInputSetState(DWORD index, XINPUT_VIBRATION* vibration) {
    Begin();
    if (index >= Input().pads.size())
        return ERROR_DEVICE_NOT_CONNECTED;
    if (!vibration)
        return ERROR_BAD_ARGUMENTS;
    Rumble(index, vibration->wLeftMotorSpeed, vibration->wRightMotorSpeed);
    return Input().pads[index].connected ? ERROR_SUCCESS : ERROR_DEVICE_NOT_CONNECTED;
}
