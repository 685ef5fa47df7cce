// SPDX-License-Identifier: MIT
#include "vorn/core/timer.hpp"

namespace Vorn {

void Timer::Init(double duration, bool expired) {
    mDuration = duration;
    mRemaining = expired ? 0.0 : duration;
}

bool Timer::Update(double dt, bool restart) {
    mRemaining -= dt;
    if (mRemaining >= 0.0)
        return false;
    mRemaining = restart ? mDuration : -1.0;
    return true;
}

} // namespace Vorn
