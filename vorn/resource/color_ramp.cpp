// SPDX-License-Identifier: MIT
#include "vorn/resource/color_ramp.hpp"

namespace Vorn {

void ColorRamp::Advance(double dt) {
    if (!mTarget)
        return;
    *mTarget += mRate * dt;
    // Colours compare by the sums of their channels.
    const bool rises = mStart < mEnd;
    if (rises ? mEnd < *mTarget : *mTarget < mEnd)
        *mTarget = mEnd;
}

} // namespace Vorn
