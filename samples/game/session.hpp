// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

namespace Lantern {

/// Lets the pilot play from the title on, and writes what came in to `file`. Time goes 60 frames to
/// a second, however long they take. Another seed is another player. Prints what happens, and the
/// hash of the state at the end.
void RecordSession(const std::string& file, int frames, unsigned int seed);

/// Frames of a session, from `first` to before `last`, of which every third becomes a picture.
struct Film {
    int first = 0, last = 0;
};

/// Plays a recording as it was, in simulated time, and leaves in `folder` a sheet of pictures
/// (sheet.png), those of the film (film000.png on), what was heard (heard.wav) and what happened
/// (log.txt), whose last line is the hash of the state. Without a folder nothing is drawn or
/// written but that hash.
/// @return the hash
unsigned long long PlaySession(const std::string& file, const std::string& folder, Film film = {});

// For all that drives the game frame by frame, in simulated time.

constexpr int FramesPerSecond = 60;
/// The counter stands where frame `frame` begins.
void HoldFrame(int frame);
void FetchMessages();
/// A best score kept apart from the player's own; who plays removes it.
std::filesystem::path ScratchScore();

} // namespace Lantern
