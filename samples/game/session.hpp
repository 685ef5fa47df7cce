// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace Lantern {

/// Lets the pilot play from the title on, and writes what came in to `file`. Time goes 60 frames to
/// a second, however long they take.
void RecordSession(const std::string& file, int frames);

/// Plays a recording as it was, in simulated time, and leaves in `folder` a sheet of pictures
/// (sheet.png, the fullest as picture.png), what was heard (heard.wav) and what happened (log.txt),
/// whose last line is the hash of the state. Without a folder nothing is drawn or written but that
/// hash.
/// @return the hash
unsigned long long PlaySession(const std::string& file, const std::string& folder);

/// Random input for so many frames, at 160 by 120, with what a machine does to a game: lost
/// devices, lost focus, pads that come and go. Raises std::runtime_error if memory grows.
void Soak(int frames, unsigned int seed);

} // namespace Lantern
