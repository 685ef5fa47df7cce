// SPDX-License-Identifier: MIT
//
// The meadow in a window, with somebody at the keys: arrow keys or the left stick of the first pad
// lead a sheep, A on the pad calls it to a halt with a shake, and S lets two more sheep in by a
// trigger script. It goes by the engine's clock and by what comes in, and by nothing else, so a
// recording of its input leads to the same state again.
//
//   Worlds::Pasture pasture("Pasture"); // opens the window
//   while (pasture.Frame())
//       Sleep(10);
#pragma once

#include "worlds/meadow/meadow.hpp"
#include "vorn/vorn.hpp"

#include <string>

namespace Worlds {

/// One at a time, and one in a program: the trigger manager keeps its script.
class Pasture {
public:
    /// Raises what Meadow does, and std::runtime_error without "data/trigger/sheep.json".
    explicit Pasture(const std::string& title);
    Pasture(const Pasture&) = delete;
    Pasture& operator=(const Pasture&) = delete;
    ~Pasture();

    /// A frame in the order of every host. False when the window is gone or Escape is hit.
    bool Frame();

    Vorn::Scene& Scene() { return mScene; }

private:
    void lead();

    Meadow mMeadow;
    Vorn::Scene mScene;
};

} // namespace Worlds
