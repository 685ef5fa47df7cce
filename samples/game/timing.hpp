// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace Lantern {

/// Plays a recording without drawing and then with every frame drawn, and prints where the time of
/// a frame goes: the mean, and what the slowest frame in a hundred takes.
void TimeSession(const std::string& file);

} // namespace Lantern
