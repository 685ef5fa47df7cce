// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/color.hpp"

namespace Vorn {

/// Changes a colour over time, from `mStart` to `mEnd`. The library sets no rate by itself.
///
///   ramp.mStart = *ramp.mTarget, ramp.mEnd = Vorn3DColorSigned(255, 255, 0, 0);
///   ramp.mRate = Vorn3DColorSigned(0, 120, -60, -60);
struct VORN_API ColorRamp {
    Vorn3DColorSigned mStart;
    Vorn3DColorSigned mEnd;
    /// (unit: 1 / second)
    Vorn3DColorSigned mRate;
    /// The colour that changes; null stops the ramp.
    Vorn3DColorSigned* mTarget = nullptr;

    /// Adds the rate for `dt` (unit: seconds), each channel cut towards zero, so a rate of less
    /// than one a frame changes nothing. Once the sum of the target's channels is past that of
    /// `mEnd`, seen from `mStart`, the target is `mEnd`; single channels may go past it before.
    void Advance(double dt);
};

} // namespace Vorn
