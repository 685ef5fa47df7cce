// SPDX-License-Identifier: MIT
#pragma once

namespace Lantern {

/// Random input for so many frames, at 160 by 120, with all that a machine and its owner do to a
/// game: lost devices, resets that fail, lost focus, full screen, pads that come and go, the window
/// closed, levels that end at once. Prints what was thrown in and, every 10,000 frames, what is in
/// memory. Raises std::runtime_error if that grows from frame 10,000 on.
void Soak(int frames, unsigned int seed);

} // namespace Lantern
