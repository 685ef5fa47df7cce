// SPDX-License-Identifier: MIT
//
// What the host sees of keys, pointer and pads, and the one door through which anything new comes
// in. It changes only while messages are fetched, so that all questions of a frame meet the same
// state, and a recording of what passes the door is complete.
#pragma once

#include <XInput.h>
#include <windows.h>

#include <array>
#include <cstdint>

namespace VornPlatform {

struct PadAnswer {
    bool connected = false;
    XINPUT_STATE state = {};
};

struct InputState {
    std::array<WORD, 256> keys{}; // as GetKeyState: bit 15 down, bit 0 toggled
    POINT cursor = {};            // (unit: screen pixels)
    std::array<PadAnswer, 4> pads{};
};

constexpr WORD KeyDown = 0x8000;
constexpr WORD KeyToggled = 1;

const InputState& Input();

void SetKey(int virtualKey, WORD state);
void SetPointer(POINT position);
void SetPad(DWORD index, const PadAnswer& answer);
/// A message from below, at the end of the queue.
void PostInput(const MSG& message);
/// The same, with the time and the pointer of now.
void PostInput(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/// Two 16-bit numbers in one, as wParam and lParam have them.
constexpr UINT PackWords(int low, int high) {
    return static_cast<UINT>(static_cast<WORD>(low)) | static_cast<UINT>(static_cast<WORD>(high))
                                                           << 16;
}

/// Is told of all that comes in, before the host sees it.
class InputListener {
public:
    virtual ~InputListener() = default;
    virtual void OnKey(int virtualKey, WORD state) = 0;
    virtual void OnCursor(POINT position) = 0;
    virtual void OnPad(DWORD index, const PadAnswer& answer) = 0;
    virtual void OnMessage(const MSG& message) = 0;
    virtual void OnCounter(std::int64_t counts) = 0;
    /// One event is in, with all the changes and messages that it makes.
    virtual void OnEventEnd() = 0;
    /// The host has fetched its last message for now.
    virtual void OnFrameEnd() = 0;
};
/// One at a time; null for none.
void ListenToInput(InputListener* listener);
InputListener* Listener();
/// Nobody listens while one lives: what a call of the host does by itself, it does again when the
/// recording is played.
class Unheard {
public:
    Unheard() : mListener(Listener()) { ListenToInput(nullptr); }
    Unheard(const Unheard&) = delete;
    Unheard& operator=(const Unheard&) = delete;
    ~Unheard() { ListenToInput(mListener); }

private:
    InputListener* mListener;
};

/// Stands in for the machine. Live events are read and thrown away meanwhile.
class InputSource {
public:
    virtual ~InputSource() = default;
    /// Lets the next of what comes in through the door; false when this frame has no more.
    virtual bool Next() = 0;
    virtual std::int64_t Counter() = 0;
    /// Nothing is left. The host may still be in the last frame.
    virtual bool IsOver() const = 0;
    /// It comes from a desktop, so that the windows' focus is part of it.
    virtual bool TellsFocus() const = 0;
    virtual void End() = 0;
};
void TakeInputFrom(InputSource* source);
InputSource* Source();

} // namespace VornPlatform
