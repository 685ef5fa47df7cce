// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

namespace Import {

/// What the command line says.
struct Options {
    std::string file;
    /// The game's folder, the one that holds data/.
    std::string out = ".";
    /// What the results are called; empty: as the file.
    std::string name;
    /// A name or a number; empty: the first that moves anything; "none": the scene as it stands.
    std::string animation;
    /// (unit: seconds) of the animation; a negative end is the animation's own
    double from = 0;
    double to = -1;
    double scale = 1;
    /// The most keys a second.
    double rate = 30;
    /// Replace results that are there and differ.
    bool force = false;
    bool list = false;
    unsigned int seconds = 600;
    unsigned int megabytes = 8192;
};

/// One file of the result, relative to the game's folder.
struct OutputFile {
    std::string path;
    std::string bytes;
};

} // namespace Import
