// SPDX-License-Identifier: MIT
#include "platform/control/vorn_platform.hpp"

#include <windows.h>

#include <chrono>
#include <optional>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

// A machine that has just started must not look like a clock that has just been updated: the first
// difference against a counter of zero has to be longer than any frame.
constexpr std::chrono::nanoseconds HeadStart = std::chrono::seconds(10);

std::optional<std::int64_t> heldCounts;

} // namespace

BOOL QueryPerformanceCounter(LARGE_INTEGER* counter) {
    const std::chrono::nanoseconds now = Clock::now().time_since_epoch() + HeadStart;
    counter->QuadPart = heldCounts.value_or(now.count());
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

void HoldClock(std::int64_t counts) {
    heldCounts = counts;
}

void ReleaseClock() {
    heldCounts.reset();
}

} // namespace VornPlatform
