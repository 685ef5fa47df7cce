// SPDX-License-Identifier: MIT
#include "vorn/input/controller.hpp"

#include "vorn/shell/engine.hpp"

namespace Vorn {

namespace {

// The buttons with edges, in the order of their states.
constexpr std::array<unsigned int, 9> Tracked{
    XINPUT_GAMEPAD_DPAD_UP,    XINPUT_GAMEPAD_DPAD_DOWN, XINPUT_GAMEPAD_DPAD_LEFT,
    XINPUT_GAMEPAD_DPAD_RIGHT, XINPUT_GAMEPAD_A,         XINPUT_GAMEPAD_B,
    XINPUT_GAMEPAD_X,          XINPUT_GAMEPAD_Y,         XINPUT_GAMEPAD_START};

constexpr std::size_t NotTracked = Tracked.size();

std::size_t TrackedIndex(unsigned int key) {
    std::size_t index = 0;
    while (index < Tracked.size() && Tracked[index] != key)
        ++index;
    return index;
}

// Half-width of a stick's centre, for both sticks.
constexpr int Band = 7849;

// Bits of a direction.
constexpr int Right = 1;
constexpr int Left = 2;
constexpr int Down = 4;
constexpr int Up = 8;

std::int64_t Now() {
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    return counter.QuadPart;
}

double SecondsSince(std::int64_t start) {
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(Now() - start) / static_cast<double>(frequency.QuadPart);
}

bool PullOf(BYTE pull, char* value) {
    if (!Engine::isActive)
        return false;
    if (value)
        *value = static_cast<char>(pull);
    return pull != 0;
}

} // namespace

CXBOXController::CXBOXController(int player) : mIndex(player - 1), mVibrateStart(Now()) {
    static_assert(TrackedCount == Tracked.size());
}

void CXBOXController::Update() {
    mConnected = read() == ERROR_SUCCESS;
    if (mConnected) {
        mPrevButtons = mCurrButtons;
        mPrevLeft = mCurrLeft;
        mPrevRight = mCurrRight;
        const XINPUT_GAMEPAD& pad = mState.Gamepad;
        for (std::size_t i = 0; i < Tracked.size(); ++i)
            mCurrButtons[i] = (pad.wButtons & Tracked[i]) != 0;
        mCurrLeft = {pad.sThumbLX, pad.sThumbLY};
        mCurrRight = {pad.sThumbRX, pad.sThumbRY};
    }
    // Asked this way round, so that a time that is no number does not vibrate for ever.
    if (!(SecondsSince(mVibrateStart) < mVibrateTime))
        Vibrate(0, 0);
}

XINPUT_STATE CXBOXController::GetState() {
    read();
    return mState;
}

bool CXBOXController::IsConnected() {
    return read() == ERROR_SUCCESS;
}

bool CXBOXController::IsKeyPressed(unsigned int key) {
    return Engine::isActive && (key & GetState().Gamepad.wButtons) != 0;
}

bool CXBOXController::IsKeyTriggered(unsigned int key) {
    const std::size_t i = TrackedIndex(key);
    return Engine::isActive && i != NotTracked && mCurrButtons[i] && !mPrevButtons[i];
}

bool CXBOXController::IsKeyReleased(unsigned int key) {
    if (!Engine::isActive)
        return true;
    const std::size_t i = TrackedIndex(key);
    return i != NotTracked && !mCurrButtons[i] && mPrevButtons[i];
}

void CXBOXController::Vibrate(unsigned short left, unsigned short right) {
    XINPUT_VIBRATION speeds{left, right};
    XInputSetState(static_cast<DWORD>(mIndex), &speeds);
}

void CXBOXController::vibrateTrigger(double seconds) {
    mVibrateTime = seconds;
    Vibrate(65535, 65535);
    mVibrateStart = Now();
}

AnalogMovement CXBOXController::AnalogLeftMove() {
    return move(mCurrLeft);
}

AnalogMovement CXBOXController::AnalogRightMove() {
    return move(mCurrRight);
}

AnalogMovement CXBOXController::AnalogLeftTriggered() {
    return triggered(mCurrLeft, mPrevLeft);
}

AnalogMovement CXBOXController::AnalogRightTriggered() {
    return triggered(mCurrRight, mPrevRight);
}

bool CXBOXController::TriggerLeftStatus(char* value) {
    return PullOf(mState.Gamepad.bLeftTrigger, value);
}

bool CXBOXController::TriggerRightStatus(char* value) {
    return PullOf(mState.Gamepad.bRightTrigger, value);
}

DWORD CXBOXController::read() {
    mState = {};
    return XInputGetState(static_cast<DWORD>(mIndex), &mState);
}

AnalogMovement CXBOXController::move(const Stick& now) const {
    int code = 0;
    if (now.x > Band)
        code += Right;
    else if (now.x < -Band)
        code += Left;
    if (now.y < -Band)
        code += Down;
    else if (now.y > Band)
        code += Up;
    return mConnected ? directionCheck(static_cast<char>(code)) : ANALOG_NONE;
}

// A value of exactly the band counts as outside where it stood before, and as inside where it
// stands now.
AnalogMovement CXBOXController::triggered(const Stick& now, const Stick& before) const {
    int code = 0;
    if (now.x > Band && before.x < Band)
        code += Right;
    else if (now.x < -Band && before.x > -Band)
        code += Left;
    if (now.y < -Band && before.y > -Band)
        code += Down;
    else if (now.y > Band && before.y < Band)
        code += Up;
    return mConnected ? directionCheck(static_cast<char>(code)) : ANALOG_NONE;
}

AnalogMovement CXBOXController::directionCheck(char code) const {
    if (!Engine::isActive)
        return ANALOG_NONE;
    switch (code) {
    case Right:
        return ANALOG_RIGHT;
    case Left:
        return ANALOG_LEFT;
    case Down:
        return ANALOG_DOWN;
    case Down + Right:
        return ANALOG_DOWN_RIGHT;
    case Down + Left:
        return ANALOG_DOWN_LEFT;
    case Up:
        return ANALOG_UP;
    case Up + Right:
        return ANALOG_UP_RIGHT;
    case Up + Left:
        return ANALOG_UP_LEFT;
    default:
        return ANALOG_NONE;
    }
}

} // namespace Vorn
