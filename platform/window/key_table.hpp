// SPDX-License-Identifier: MIT
//
// From SDL's keys to virtual key codes and back.
//
// Letters and digits go by their label in the user's layout, all else by its place on the keyboard:
// what says A is 'A' wherever it lies, and keyboards whose labels are not Latin have the codes of
// the places.
#pragma once

#include <windows.h>

#include <SDL.h>

#include <optional>

namespace VornPlatform {

/// With the side, as VK_LSHIFT; 0 for a key that has no code.
int VirtualKeyOf(const SDL_Keysym& key);
/// VK_SHIFT for VK_LSHIFT, and so on; the code itself where there are no sides.
int WithoutSide(int virtualKey);
/// The number that the keyboard itself sends for the key, 0x100 added for those that came with the
/// second generation of keyboards; 0 where there is none.
int ScanCodeOf(SDL_Scancode scancode);
/// What a driver would send for the key, but for `mod`; the left key where a code has two sides.
std::optional<SDL_Keysym> KeysymOf(int virtualKey);

} // namespace VornPlatform
