// SPDX-License-Identifier: MIT
//
// A count-down.
//
//   Vorn::Timer reload(0.5, true);
//   reload.Update(dt, false); // every frame
//   if (fire && reload.Status()) { shoot(); reload.Reset(); }
//
// The unit is that of the `dt` that the caller passes: seconds when it comes from DeltaClock.
#pragma once

#include "vorn/core/api.hpp"

namespace Vorn {

class VORN_API Timer {
public:
    Timer() = default;
    Timer(double duration, bool expired) { Init(duration, expired); }

    /// Starts with nothing left if `expired`, else with `duration` left.
    void Init(double duration, bool expired);
    /// Takes `dt` off and tells whether the time is over: what is left is below 0, exactly 0 is not
    /// over. With `restart` the next period is a whole one from now, the overshoot is dropped;
    /// without it the timer stays over.
    bool Update(double dt, bool restart);
    /// The whole duration is left again.
    void Reset() { mRemaining = mDuration; }

    /// True if what is left is below 0.
    bool Status() const { return mRemaining < 0.0; }
    /// The share that has passed, 0 to 1; 1 when nothing is left.
    double Percentage() const { return mRemaining > 0.0 ? 1.0 - mRemaining / mDuration : 1.0; }

private:
    double mRemaining = 0.0;
    double mDuration = 0.0;
};

} // namespace Vorn
