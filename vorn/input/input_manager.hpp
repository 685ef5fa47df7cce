// SPDX-License-Identifier: MIT
//
// Keyboard, mouse and four pads behind one set of operations.
//
//   auto* input = Vorn::InputManager::Instance();
//   input->Update(); // once a frame, after the window's messages, before anything reads input
//   if (input->IsKeyTriggered(Vorn::CONTROL_KEYBOARD, VK_SPACE) ||
//       input->IsKeyTriggered(Vorn::CONTROL_PAD1, XINPUT_GAMEPAD_A))
//       Jump();
//
// `type` says who is asked, CONTROL_KEYBOARD to CONTROL_PAD4 and nothing else. Keys are virtual key
// codes for the keyboard and XINPUT_GAMEPAD_... for a pad. keyboard_mouse.hpp and controller.hpp
// tell the rules of each.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"
#include "vorn/input/control.hpp"
#include "vorn/input/controller.hpp"
#include "vorn/math/point2.hpp"

#include <array>

namespace Vorn {

class VORN_API InputManager : public Singleton<InputManager> {
public:
    InputManager();

    /// Samples everything, and raises the key events of the triggers. Once a frame: a second call
    /// would wipe the edges of the frame.
    void Update();

    bool IsKeyPressed(ControlType type, unsigned int key);
    bool IsKeyTriggered(ControlType type, unsigned int key);
    bool IsKeyReleased(ControlType type, unsigned int key);

    // Of the keyboard: not connected, never pulled, always at rest.
    bool IsConnected(ControlType type);
    void vibrateTrigger(ControlType type, double seconds);
    bool TriggerLeftStatus(ControlType type, char* value);
    bool TriggerRightStatus(ControlType type, char* value);
    AnalogMovement AnalogLeftMove(ControlType type);
    AnalogMovement AnalogRightMove(ControlType type);
    AnalogMovement AnalogLeftTriggered(ControlType type);
    AnalogMovement AnalogRightTriggered(ControlType type);

    bool MmouseIsPressed(unsigned int button);
    bool MmouseIsTrigger(unsigned int button);
    bool MmouseIsReleased(unsigned int button);
    /// Whether the wheel turned in this frame.
    bool MmouseIsScrolled() const { return mScrollCurr != 0; }
    /// By how much it turned in this frame, 0 if it did not; 120 is a notch, away from the user is
    /// positive.
    short MmouseScrollCurr() const { return mScrollCurr; }
    /// By how much it turned the last time before this frame.
    short MmouseScrollPrev() const { return mScrollPrev; }

    /// How far the mouse moved between the last two updates (unit: pixels).
    void GetMouseMovement(Point2& movement) const;
    /// See GetClientMousePos.
    Point2 GetOriginalMousePos() const;
    /// The same from -1 to 1 across a client area of 800 by 600, whatever the size of the window
    /// is, with Y running down.
    Point2 MGetScreenMousePos() const;

private:
    CXBOXController* controllerCheck(ControlType type);

    std::array<CXBOXController, 4> mControllers;
    Point2 mPrevMouse;
    Point2 mCurrMouse;
    short mScrollPrev = 0;
    short mScrollCurr = 0;
};

template <>
VORN_API InputManager Singleton<InputManager>::mSingleton;

} // namespace Vorn
