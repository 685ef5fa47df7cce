// SPDX-License-Identifier: MIT
#include "vorn/core/delta_clock.hpp"

#include <windows.h>

namespace Vorn {

void DeltaClock::Update() {
    LARGE_INTEGER frequency, counter;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&counter);
    mFrequency = frequency.QuadPart;
    mPrevCounter = mCounter;
    mCounter = counter.QuadPart;

    const double seconds =
        static_cast<double>(mCounter - mPrevCounter) / static_cast<double>(mFrequency);
    mFrameRate = 1.0 / seconds;
    mDeltaTime = seconds > 2.0 ? 0.0 : seconds;
}

} // namespace Vorn
