// SPDX-License-Identifier: MIT
//
// The performance counter as it runs by itself, for who stands in for it and hands it back.
#pragma once

#include <cstdint>

namespace VornPlatform {

std::int64_t RunningCounter();
/// It runs on from `counts` now.
void ContinueCounter(std::int64_t counts);

} // namespace VornPlatform
