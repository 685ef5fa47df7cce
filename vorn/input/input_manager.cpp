// SPDX-License-Identifier: MIT
#include "vorn/input/input_manager.hpp"

#include "vorn/input/keyboard_mouse.hpp"
#include "vorn/shell/engine.hpp"

namespace Vorn {

InputManager::InputManager()
    : mControllers{CXBOXController(1), CXBOXController(2), CXBOXController(3), CXBOXController(4)} {
}

void InputManager::Update() {
    InputUpdate();
    for (CXBOXController& pad : mControllers)
        pad.Update();
    mPrevMouse = mCurrMouse;
    GetClientMousePos(mCurrMouse);
    if (mScrollCurr != 0)
        mScrollPrev = mScrollCurr;
    mScrollCurr = GetScrollEvent() ? MouseIsScrolled() : short{0};
}

bool InputManager::IsKeyPressed(ControlType type, unsigned int key) {
    CXBOXController* pad = controllerCheck(type);
    return pad ? pad->IsKeyPressed(key) : KeyIsPressed(key);
}

bool InputManager::IsKeyTriggered(ControlType type, unsigned int key) {
    CXBOXController* pad = controllerCheck(type);
    return pad ? pad->IsKeyTriggered(key) : KeyIsTriggered(key);
}

bool InputManager::IsKeyReleased(ControlType type, unsigned int key) {
    CXBOXController* pad = controllerCheck(type);
    return pad ? pad->IsKeyReleased(key) : KeyIsReleased(key);
}

bool InputManager::IsConnected(ControlType type) {
    CXBOXController* pad = controllerCheck(type);
    return pad && pad->IsConnected();
}

void InputManager::vibrateTrigger(ControlType type, double seconds) {
    if (CXBOXController* pad = controllerCheck(type))
        pad->vibrateTrigger(seconds);
}

bool InputManager::TriggerLeftStatus(ControlType type, char* value) {
    CXBOXController* pad = controllerCheck(type);
    return pad && pad->TriggerLeftStatus(value);
}

bool InputManager::TriggerRightStatus(ControlType type, char* value) {
    CXBOXController* pad = controllerCheck(type);
    return pad && pad->TriggerRightStatus(value);
}

AnalogMovement InputManager::AnalogLeftMove(ControlType type) {
    CXBOXController* pad = controllerCheck(type);
    return pad ? pad->AnalogLeftMove() : ANALOG_NONE;
}

AnalogMovement InputManager::AnalogRightMove(ControlType type) {
    CXBOXController* pad = controllerCheck(type);
    return pad ? pad->AnalogRightMove() : ANALOG_NONE;
}

AnalogMovement InputManager::AnalogLeftTriggered(ControlType type) {
    CXBOXController* pad = controllerCheck(type);
    return pad ? pad->AnalogLeftTriggered() : ANALOG_NONE;
}

AnalogMovement InputManager::AnalogRightTriggered(ControlType type) {
    CXBOXController* pad = controllerCheck(type);
    return pad ? pad->AnalogRightTriggered() : ANALOG_NONE;
}

bool InputManager::MmouseIsPressed(unsigned int button) {
    return MouseIsPressed(button);
}

bool InputManager::MmouseIsTrigger(unsigned int button) {
    return MouseIsTriggered(button);
}

bool InputManager::MmouseIsReleased(unsigned int button) {
    return MouseIsReleased(button);
}

void InputManager::GetMouseMovement(Point2& movement) const {
    movement = mCurrMouse - mPrevMouse;
}

Point2 InputManager::GetOriginalMousePos() const {
    Point2 position;
    GetClientMousePos(position);
    return position;
}

Point2 InputManager::MGetScreenMousePos() const {
    const Point2 position = GetOriginalMousePos();
    return {position.x / 800.0f * 2.0f - 1.0f, position.y / 600.0f * 2.0f - 1.0f};
}

CXBOXController* InputManager::controllerCheck(ControlType type) {
    if (type < CONTROL_PAD1 || type > CONTROL_PAD4)
        return nullptr;
    return &mControllers[static_cast<std::size_t>(type - CONTROL_PAD1)];
}

} // namespace Vorn
