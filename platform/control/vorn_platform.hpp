// SPDX-License-Identifier: MIT
//
// What the platform's own interfaces lack and tests, samples and tools need: a hand on the machine
// below the engine. The engine itself never includes this header.
//
//   VornPlatform::HoldClock(VornPlatform::ClockFrequency * 100);
//   Vorn::DeltaClock::Instance()->Update();
//   VornPlatform::ReleaseClock();
#pragma once

#include <cstdint>

#pragma GCC visibility push(default)

namespace VornPlatform {

/// Counts per second of the performance counter.
inline constexpr std::int64_t ClockFrequency = 1'000'000'000;

/// From now on the performance counter answers `counts`, until the next HoldClock or ReleaseClock.
void HoldClock(std::int64_t counts);
/// The performance counter runs by the machine's clock again.
void ReleaseClock();

} // namespace VornPlatform

#pragma GCC visibility pop
