// SPDX-License-Identifier: MIT
//
// The game pads of SDL in their four slots. A pad takes the lowest free slot when it comes, and
// gives it back when it goes; one that found none waits for that.
#pragma once

#include <windows.h>

namespace VornPlatform {

/// Which pad has its buttons where, beyond what SDL knows by itself: gamecontrollerdb.txt in the
/// folder of the program and in the current one, whose lines count above those. Files that are not
/// there and lines that are none are passed over. Once SDL's pads run.
void ReadPadMappings();
/// Sees who came and went, and brings the answers of the slots up to date. Nothing without pads.
void UpdatePads();
/// Sees who came and went; the answers stay but for those.
void SeatPads();
/// The slot of a pad, by SDL's number for it, or -1.
int SlotOf(int instance);
/// Zeros on a pad that stands still cost nothing.
void Rumble(DWORD index, WORD left, WORD right);
void ClosePads();
/// SDL is gone, and its pads with it.
void ForgetPads();

} // namespace VornPlatform
