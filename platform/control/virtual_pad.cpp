// SPDX-License-Identifier: MIT
#include "platform/control/vorn_platform.hpp"
#include "platform/window/pad_buttons.hpp"
#include "platform/window/pads.hpp"
#include "platform/window/session.hpp"

#include <XInput.h>

#include <SDL.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace VornPlatform {

struct VirtualPad::State {
    SDL_Joystick* joystick = nullptr;
    SDL_JoystickID instance = -1;
    int left = 0, right = 0;
};

namespace {

// A trigger rests at the lower end of its axis.
Sint16 TriggerAxis(int value) {
    return static_cast<Sint16>(std::clamp(value, 0, 255) * 257 - 32768);
}

// Up is positive for the host, down for SDL.
Sint16 SidewaysAxis(int value) {
    return static_cast<Sint16>(std::clamp(value, -32768, 32767));
}
Sint16 UpAxis(int value) {
    return static_cast<Sint16>(-std::clamp(value, -32767, 32767));
}

void SetAxes(SDL_Joystick* joystick, int first, Sint16 a, int second, Sint16 b) {
    if (!PadsRun())
        return;
    SDL_JoystickSetVirtualAxis(joystick, first, a);
    SDL_JoystickSetVirtualAxis(joystick, second, b);
}

} // namespace

VirtualPad::VirtualPad() : mState(new State) {
    const auto fail = [this](const std::string& what) {
        const std::string reason = SDL_GetError();
        delete mState;
        throw std::runtime_error(what + ": " + reason);
    };
    if (!StartPads())
        fail("no game pads here");

    SDL_VirtualJoystickDesc description = {};
    description.version = SDL_VIRTUAL_JOYSTICK_DESC_VERSION;
    description.type = SDL_JOYSTICK_TYPE_GAMECONTROLLER;
    description.naxes = SDL_CONTROLLER_AXIS_MAX;
    description.nbuttons = SDL_CONTROLLER_BUTTON_MAX;
    description.name = "Virtual pad";
    description.userdata = mState;
    description.Rumble = [](void* state, Uint16 left, Uint16 right) {
        static_cast<State*>(state)->left = left;
        static_cast<State*>(state)->right = right;
        return 0;
    };
    const int device = SDL_JoystickAttachVirtualEx(&description);
    if (device < 0)
        fail("cannot plug in a virtual pad");
    mState->instance = SDL_JoystickGetDeviceInstanceID(device);
    mState->joystick = SDL_JoystickOpen(device);
    if (!mState->joystick) {
        SDL_JoystickDetachVirtual(device);
        fail("cannot open a virtual pad");
    }
    Triggers(0, 0);
    SeatPads();
}

VirtualPad::~VirtualPad() {
    if (PadsRun()) {
        for (int device = SDL_NumJoysticks() - 1; device >= 0; --device)
            if (SDL_JoystickGetDeviceInstanceID(device) == mState->instance)
                SDL_JoystickDetachVirtual(device);
        SDL_JoystickClose(mState->joystick);
    }
    delete mState;
}

int VirtualPad::Index() const {
    return SlotOf(mState->instance);
}

void VirtualPad::Buttons(unsigned int buttons, bool down) {
    if (!PadsRun())
        return;
    for (const auto& [button, bit] : PadButtons)
        if (buttons & bit)
            SDL_JoystickSetVirtualButton(mState->joystick, button, down ? 1 : 0);
}

void VirtualPad::LeftStick(int x, int y) {
    SetAxes(mState->joystick, SDL_CONTROLLER_AXIS_LEFTX, SidewaysAxis(x), SDL_CONTROLLER_AXIS_LEFTY,
            UpAxis(y));
}

void VirtualPad::RightStick(int x, int y) {
    SetAxes(mState->joystick, SDL_CONTROLLER_AXIS_RIGHTX, SidewaysAxis(x),
            SDL_CONTROLLER_AXIS_RIGHTY, UpAxis(y));
}

void VirtualPad::Triggers(int left, int right) {
    SetAxes(mState->joystick, SDL_CONTROLLER_AXIS_TRIGGERLEFT, TriggerAxis(left),
            SDL_CONTROLLER_AXIS_TRIGGERRIGHT, TriggerAxis(right));
}

int VirtualPad::LeftMotor() const {
    return mState->left;
}

int VirtualPad::RightMotor() const {
    return mState->right;
}

} // namespace VornPlatform
