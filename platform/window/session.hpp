// SPDX-License-Identifier: MIT
//
// SDL, from the first call that needs a part of it until the process ends.
//
//   if (!StartVideo())
//       return nullptr;
//
// At the end of the process everything is taken down before the objects die that were there before
// SDL came up. Calls after that find no window and no pad, and bring nothing up again.
#pragma once

namespace VornPlatform {

/// Video and events; true if they are there. Without a display they come up on the driver that
/// draws into memory, unless SDL_VIDEODRIVER names another.
bool StartVideo();
/// Game pads; true if they are there.
bool StartPads();

/// Both notice when the host has ended SDL by itself, and forget all that was SDL's. Whatever
/// follows a pointer to something of SDL's asks first.
bool VideoRuns();
bool PadsRun();
/// Video runs, and nobody can see the windows.
bool IsHeadless();
/// Video runs on a driver that tells where the pointer is on the screen.
bool HasScreenPointer();

} // namespace VornPlatform
