// SPDX-License-Identifier: MIT
//
// The player's door to recordings, by variables of the environment, so that no game has to do
// anything for it: docs/input_recording.md tells a player how.
//
//   VORN_RECORD=~/session.input ./meadow
//   VORN_PLAY=~/session.input ./meadow
#pragma once

namespace VornPlatform {

/// Before a window is made: records or plays as the environment says, if it does. Each variable
/// counts once, and programs that this one starts do not inherit it. Nothing where the host itself
/// records or plays already. A file that cannot be recorded into is told on standard error; one
/// that cannot be played raises std::runtime_error.
void FollowEnvironment();

} // namespace VornPlatform
