// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace View {

/// What is drawn besides the thing itself.
struct Shown {
    bool grid = true;
    bool bones = false;
    bool volumes = false;
    bool wire = false;
    bool normals = false;
    bool texture = false; // with the model's u, v over it
    bool panel = true;
    bool pointer = true; // where the mouse is
};

struct Options {
    std::string file;
    std::string picture; // empty for a window
    unsigned int width = 1280, height = 800;
    // What is not told is chosen so that all of it is seen.
    std::optional<float> yaw, pitch; // (unit: degrees)
    std::optional<float> distance;
    float time = 0.0f; // that has passed when the picture is taken (unit: seconds)
    std::string on;    // the mesh that a material or an effect is shown on
    Shown shown;
    bool panel = false; // in a picture; a window has it
};

/// "1280x800". False for anything else, and for a size that makes no sense; nothing changes then.
bool ReadSize(const std::string& text, Options& options);
/// "bones,volumes": what it names is shown and all else but the panel is not. False for a word that
/// is none of it.
bool ReadShown(const std::string& list, Shown& shown);

} // namespace View
