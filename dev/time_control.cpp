// SPDX-License-Identifier: MIT
#include "dev/time_control.hpp"

#include "platform/control/vorn_clock.hpp"
#include "platform/control/vorn_platform.hpp"

#include <windows.h>

#include <algorithm>
#include <utility>

namespace Vorn::Dev {

namespace {

constexpr std::int64_t StepCounts = VornPlatform::ClockFrequency / 60;
constexpr double LongestFrame = 0.25; // (unit: seconds)

} // namespace

TimeControl::~TimeControl() {
    if (mHeld)
        VornPlatform::ResumeClock();
}

void TimeControl::Step() {
    paused = mStep = true;
}

void TimeControl::Update() {
    const Clock::time_point now = Clock::now();
    const double seconds = std::min(
        std::chrono::duration<double>(now - std::exchange(mLast, now)).count(), LongestFrame);
    if (!paused && speed == 1.0f) {
        if (std::exchange(mHeld, false))
            VornPlatform::ResumeClock();
        return;
    }
    if (!std::exchange(mHeld, true)) {
        LARGE_INTEGER counter;
        QueryPerformanceCounter(&counter);
        mCounts = counter.QuadPart;
    }
    if (!paused)
        mCounts += static_cast<std::int64_t>(seconds * static_cast<double>(speed) *
                                             static_cast<double>(VornPlatform::ClockFrequency));
    else if (std::exchange(mStep, false))
        mCounts += StepCounts;
    VornPlatform::HoldClock(mCounts);
}

} // namespace Vorn::Dev
