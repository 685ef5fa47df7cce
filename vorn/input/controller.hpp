// SPDX-License-Identifier: MIT
//
// One pad: its buttons with their edges, its sticks as eight directions, its triggers, and
// vibration that stops by itself. InputManager holds four of them.
//
//   Vorn::CXBOXController pad(1);
//   pad.Update(); // once a frame
//   if (pad.IsKeyTriggered(XINPUT_GAMEPAD_A))
//       Jump();
//
// While the window is not active (Engine::isActive) nothing is pressed or triggered, everything is
// released, and the sticks are at rest.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/input/control.hpp"

#include <XInput.h>

#include <array>
#include <cstdint>

namespace Vorn {

class VORN_API CXBOXController {
public:
    /// `player` counts from 1 to 4.
    explicit CXBOXController(int player);

    /// Samples the pad, and stops both motors if the time of vibrateTrigger is over, also those
    /// that Vibrate started. While the pad is not there, buttons and sticks keep their last values.
    void Update();

    /// Reads the pad, now.
    XINPUT_STATE GetState();
    bool IsConnected();

    /// Whether one of the buttons in `key`, any of XINPUT_GAMEPAD_..., is down now: the pad is
    /// read, so the answer may be newer than Update.
    bool IsKeyPressed(unsigned int key);
    /// Of the samples of the last two updates. `key` is exactly one of the four directions, A, B,
    /// X, Y and START; any other is never triggered or released.
    bool IsKeyTriggered(unsigned int key);
    bool IsKeyReleased(unsigned int key);

    /// Motor speeds from 0 to 65535. The next Update stops them unless vibrateTrigger's time runs.
    void Vibrate(unsigned short left, unsigned short right);
    /// Both motors at full speed until the first Update after `seconds`.
    void vibrateTrigger(double seconds);

    /// Where the stick is, in every frame; ANALOG_NONE for a pad that is not connected. An axis is
    /// off its centre above 7849 or below -7849.
    AnalogMovement AnalogLeftMove();
    AnalogMovement AnalogRightMove();
    /// The same, but an axis counts only in the frame in which it leaves the centre, from strictly
    /// inside -7849 to 7849.
    AnalogMovement AnalogLeftTriggered();
    AnalogMovement AnalogRightTriggered();

    /// Whether the analog trigger is pulled, as the pad was read last. `value`, unless null, takes
    /// how far: 0 to 255, to be read as unsigned. It stays as it was while the window is not
    /// active.
    bool TriggerLeftStatus(char* value);
    bool TriggerRightStatus(char* value);

private:
    static constexpr std::size_t TrackedCount = 9;
    using Buttons = std::array<unsigned char, TrackedCount>;
    struct Stick {
        short x = 0;
        short y = 0;
    };

    DWORD read();
    AnalogMovement move(const Stick& now) const;
    AnalogMovement triggered(const Stick& now, const Stick& before) const;
    AnalogMovement directionCheck(char code) const;

    XINPUT_STATE mState{};
    int mIndex;
    Buttons mPrevButtons{};
    Buttons mCurrButtons{};
    Stick mPrevLeft;
    Stick mCurrLeft;
    Stick mPrevRight;
    Stick mCurrRight;
    bool mConnected = false;
    std::int64_t mVibrateStart; // counts of the performance counter
    double mVibrateTime = 0.0;  // (unit: seconds)
};

} // namespace Vorn
