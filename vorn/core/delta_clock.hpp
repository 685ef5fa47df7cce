// SPDX-License-Identifier: MIT
//
// The frame clock.
//
//   Vorn::DeltaClock::Instance()->Update();                        // once a frame
//   const double dt = Vorn::DeltaClock::Instance()->GetDeltaTime(); // (unit: seconds)
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"
#include "vorn/math/fwd.hpp"

#include <cstdint>

namespace Vorn {

class VORN_API DeltaClock : public Singleton<DeltaClock> {
public:
    /// Once a frame: measures the time since the last call. The first one measures since long ago.
    void Update();

    /// Time between the last two updates (unit: seconds). 0 when they lie more than 2 seconds
    /// apart: after a stop at a breakpoint, or at the start, the world does not leap.
    double GetDeltaTime() const { return mDeltaTime; }
    /// One over the measured time, the long ones included (unit: 1 / seconds). Infinite for two
    /// updates within one count of the clock.
    double GetFrameRate() const { return mFrameRate; }

    /// Do nothing.
    void Tweakinit(Point2&) {}
    void TweakBarDelete() {}

private:
    std::int64_t mCounter = 0;
    std::int64_t mPrevCounter = 0;
    std::int64_t mFrequency = 0;
    double mDeltaTime = 0.0;
    double mFrameRate = 0.0;
};

template <>
VORN_API DeltaClock Singleton<DeltaClock>::mSingleton;

} // namespace Vorn
