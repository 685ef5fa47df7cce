// SPDX-License-Identifier: MIT
#include "platform/win32/clock.hpp"
#include "platform/control/vorn_clock.hpp"
#include "platform/control/vorn_platform.hpp"
#include "platform/window/input_state.hpp"

#include <windows.h>

#include <chrono>
#include <optional>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

// A machine that has just started must not look like a clock that has just been updated: the first
// difference against a counter of zero has to be longer than any frame.
constexpr std::chrono::nanoseconds HeadStart = std::chrono::seconds(10);

constinit std::optional<std::int64_t> heldCounts;
// What a recording has put the counter ahead of the machine's, or behind it.
constinit std::int64_t shift = 0;

std::int64_t MachineCounter() {
    return std::chrono::nanoseconds(Clock::now().time_since_epoch() + HeadStart).count();
}

std::int64_t Answer() {
    using namespace VornPlatform;
    if (Source())
        return Source()->Counter();
    return heldCounts ? *heldCounts : RunningCounter();
}

} // namespace

BOOL QueryPerformanceCounter(LARGE_INTEGER* counter) {
    counter->QuadPart = Answer();
    if (VornPlatform::InputListener* listener = VornPlatform::Listener())
        listener->OnCounter(counter->QuadPart);
    return TRUE;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency) {
    frequency->QuadPart = VornPlatform::ClockFrequency;
    return TRUE;
}

void Sleep(DWORD milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

namespace VornPlatform {

std::int64_t RunningCounter() {
    return MachineCounter() + shift;
}

void ContinueCounter(std::int64_t counts) {
    shift = counts - MachineCounter();
}

void HoldClock(std::int64_t counts) {
    heldCounts = counts;
}

void ResumeClock() {
    if (heldCounts)
        ContinueCounter(*heldCounts);
    heldCounts.reset();
}

void ReleaseClock() {
    heldCounts.reset();
}

} // namespace VornPlatform
