// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace Lantern {

/// The best score there was, in a file of the player's: where the system keeps such things, or at a
/// path that is told. A file that is missing or broken counts as 0.
class ScoreFile {
public:
    explicit ScoreFile(std::filesystem::path path) : mPath(std::move(path)) {}
    /// $XDG_DATA_HOME/vorn-lantern/best, or below .local/share of the home folder.
    static std::filesystem::path UsualPath();

    int Best() const;
    /// The old file is there until the new one is whole and on the disk, so that no crash loses
    /// both. False where it cannot be written.
    bool Keep(int score) const;

private:
    std::filesystem::path mPath;
};

} // namespace Lantern
