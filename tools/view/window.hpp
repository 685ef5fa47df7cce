// SPDX-License-Identifier: MIT
#pragma once

#include "tools/view/overheard.hpp"
#include "tools/view/viewer.hpp"

#include <windows.h>

namespace View {

/// The window with its device. A game's has one size; this one the user may change, and the picture
/// follows.
class Window {
public:
    /// Raises std::runtime_error where nothing can be drawn, with what `said` tells of shaders.
    Window(const Options& options, const Overheard& said);
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;
    ~Window();

    /// False when it was closed.
    static bool FetchMessages();
    /// Brings back a device that was lost, and gives the picture the size of the window
    /// (unit: seconds).
    void Update(Viewer& viewer, float dt);

private:
    POINT mSize{};       // as it was in the last frame (unit: pixels)
    float mSince = 0.0f; // for as long (unit: seconds)
};

} // namespace View
