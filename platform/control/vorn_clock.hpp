// SPDX-License-Identifier: MIT
//
// The other end of HoldClock, for who holds the clock while a game runs.
#pragma once

#pragma GCC visibility push(default)

namespace VornPlatform {

/// The performance counter runs by the machine's clock again, on from where it is held: no time has
/// gone by meanwhile. Nothing if it is not held.
void ResumeClock();

} // namespace VornPlatform

#pragma GCC visibility pop
