// SPDX-License-Identifier: MIT
//
// What the platform's own interfaces lack and tests, samples and tools need: a hand on the machine
// below the engine. The engine itself never includes this header.
//
//   VornPlatform::HoldClock(VornPlatform::ClockFrequency * 100);
//   Vorn::DeltaClock::Instance()->Update();
//   VornPlatform::ReleaseClock();
#pragma once

#include <cstdint>
#include <string>

#pragma GCC visibility push(default)

namespace VornPlatform {

/// Counts per second of the performance counter.
inline constexpr std::int64_t ClockFrequency = 1'000'000'000;

/// From now on the performance counter answers `counts`, until the next HoldClock or ReleaseClock.
void HoldClock(std::int64_t counts);
/// The performance counter runs by the machine's clock again.
void ReleaseClock();

/// Windows that are made from now on have no display, whatever the machine has. Call before the
/// first window.
void ForceHeadless();
/// Whether somebody may see the window: false before the first one, and without a display.
bool HasDisplay();

// Input as a driver would send it: an event of SDL goes into SDL's own queue, for the window that
// was made last, and takes effect when the host next fetches its messages. Without a window nothing
// happens.

/// `virtualKey` is a Win32 code; one that no keyboard has, as a mouse button's, is passed over.
/// Down again without up is a repeat. The number pad's lock is lit at the start.
void SendKey(int virtualKey, bool down);
/// (unit: client pixels)
void SendMouseMove(int x, int y);
/// 1, 2 and 4 are the left, right and middle button, 5 and 6 the two at the side. At the place of
/// the last SendMouseMove.
void SendMouseButton(int virtualKey, bool down);
/// Away from the user is positive. A fraction waits until it is a whole unit of the message.
void SendMouseWheel(float notches);
/// Losing it lets go of all that was sent down.
void SendFocus(bool focused);
/// As a click on the cross of the window.
void SendClose();

/// A game pad that is plugged in for as long as the object lives. What is set takes effect when the
/// host next fetches its messages; without a window, with the next XInputGetState.
class VirtualPad {
public:
    /// Raises std::runtime_error where the machine cannot have one.
    VirtualPad();
    VirtualPad(const VirtualPad&) = delete;
    VirtualPad& operator=(const VirtualPad&) = delete;
    ~VirtualPad();

    /// The index for XInput, or -1 while four others have all of them.
    int Index() const;

    /// Any of the buttons of XInput, one or more.
    void Buttons(unsigned int buttons, bool down);
    /// Up is positive, as XInput has it.
    void LeftStick(int x, int y);
    void RightStick(int x, int y);
    /// From 0 to 255.
    void Triggers(int left, int right);
    /// What the pad was last told, from 0 to 65535.
    int LeftMotor() const;
    int RightMotor() const;

private:
    struct State;
    State* mState;
};

// Recording. Everything that comes in from below is kept frame by frame: messages, keys, cursor,
// pads, and each answer of the performance counter. A frame ends when the host has fetched its last
// message. A game that takes everything else from its files goes the same way again. Begin between
// two frames, and before the program keeps an answer of the counter: played answers are those of
// then. docs/input_recording.md describes the file.

/// Ends what is recorded or played. Raises std::runtime_error where the file cannot be made.
void RecordInput(const std::string& path);
/// Live input is kept away until the recording is at its end or stopped. Raises std::runtime_error,
/// with file and line, for a file that is missing or broken, and goes on as before.
void PlayInput(const std::string& path);
bool IsPlayingInput();
/// Ends recording and playing; keys that a recording held down come up, with their messages. Raises
/// std::runtime_error where a recording could not be written whole. Passed over if there is
/// neither.
void StopInput();

} // namespace VornPlatform

#pragma GCC visibility pop
