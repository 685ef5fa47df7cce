// SPDX-License-Identifier: MIT
#include "vorn/input/keyboard_mouse.hpp"

#include "vorn/math/point2.hpp"
#include "vorn/shell/engine.hpp"
#include "vorn/trigger/trigger_manager.hpp"

#include <windows.h>

#include <array>
#include <cstdint>

namespace Vorn {

namespace {

constexpr unsigned int KeyCount = 256;
constexpr unsigned int FirstKey = 8; // below are the buttons of the mouse
constexpr unsigned int LastListened = 221;
constexpr unsigned int LastButton = 4;

// The high byte of GetKeyState for each code: the top bit says that the key is down.
std::array<unsigned char, KeyCount> gKeyCurrent{};
std::array<unsigned char, KeyCount> gKeyPrevious{};
POINT gMousePos{};
std::int16_t gScrollDelta = 0;
bool gScrollPending = false; // since the last sample
bool gScrollEvent = false;   // in the frame that the last sample closed

bool IsDown(unsigned char state) {
    return (state & 0x80) != 0;
}

bool IsDown(unsigned int code) {
    return IsDown(gKeyCurrent[code]);
}

bool WentDown(unsigned int code) {
    return IsDown(gKeyCurrent[code]) && !IsDown(gKeyPrevious[code]);
}

bool WentUp(unsigned int code) {
    return !IsDown(gKeyCurrent[code]) && IsDown(gKeyPrevious[code]);
}

bool IsKey(unsigned int code) {
    return code >= FirstKey && code < KeyCount;
}

bool IsButton(unsigned int code) {
    return code <= LastButton;
}

template <typename Event>
void Raise(unsigned int key) {
    Event event(key);
    TriggerManager::Instance()->Raise(event);
}

using Trigger::EventType::Key_Pressed;
using Trigger::EventType::Key_Released;
using Trigger::EventType::Key_Triggered;

// Whoever a condition calls may take the focus away, so it is asked before each event.
void RaiseEvents(unsigned int key) {
    if (Engine::isActive && WentDown(key))
        Raise<Key_Triggered>(key);
    if (Engine::isActive && IsDown(key))
        Raise<Key_Pressed>(key);
    if (Engine::isActive && WentUp(key))
        Raise<Key_Released>(key);
}

Point2 StoredMousePos() {
    return {static_cast<float>(gMousePos.x), static_cast<float>(gMousePos.y)};
}

} // namespace

void InputUpdate() {
    gScrollEvent = gScrollPending;
    gScrollPending = false;
    for (unsigned int code = 0; code < KeyCount; ++code) {
        gKeyPrevious[code] = gKeyCurrent[code];
        const auto state = static_cast<std::uint16_t>(GetKeyState(static_cast<int>(code)));
        gKeyCurrent[code] = static_cast<unsigned char>(state >> 8);
        if (IsKey(code))
            RaiseEvents(code);
    }
}

void InputReset() {
    gKeyCurrent.fill(0);
    gKeyPrevious.fill(0);
}

void GetMousePos(long& position) {
    const auto packed = static_cast<std::uint32_t>(position);
    gMousePos.x = static_cast<std::uint16_t>(packed);
    gMousePos.y = static_cast<std::int16_t>(packed >> 16);
}

void GetMouseScroll(unsigned int& wheel) {
    gScrollDelta = static_cast<std::int16_t>(wheel >> 16);
    gScrollPending = true;
}

bool KeyIsPressed(unsigned int key) {
    if (!Engine::isActive || !IsKey(key) || !IsDown(key))
        return false;
    Raise<Key_Pressed>(key);
    return true;
}

bool KeyIsTriggered(unsigned int key) {
    if (!Engine::isActive || !IsKey(key) || !WentDown(key))
        return false;
    Raise<Key_Triggered>(key);
    return true;
}

bool KeyIsReleased(unsigned int key) {
    if (!Engine::isActive)
        return true;
    if (!IsKey(key) || !WentUp(key))
        return false;
    Raise<Key_Released>(key);
    return true;
}

unsigned int KeyListener() {
    if (!Engine::isActive)
        return 0;
    for (unsigned int key = FirstKey; key <= LastListened; ++key) {
        if (WentDown(key)) {
            Raise<Key_Triggered>(key);
            return key;
        }
    }
    return 0;
}

bool MouseIsPressed(unsigned int button) {
    return Engine::isActive && IsButton(button) && IsDown(button);
}

bool MouseIsTriggered(unsigned int button) {
    return Engine::isActive && IsButton(button) && WentDown(button);
}

bool MouseIsReleased(unsigned int button) {
    return !Engine::isActive || (IsButton(button) && WentUp(button));
}

short MouseIsScrolled() {
    return Engine::isActive ? gScrollDelta : short{0};
}

bool GetScrollEvent() {
    return gScrollEvent;
}

void GetClientMousePos(Point2& position) {
    position = StoredMousePos();
}

void GetScreenMousePos(Point2& position) {
    GetCursorPos(&gMousePos);
    position = StoredMousePos();
}

} // namespace Vorn
