// SPDX-License-Identifier: MIT
#pragma once

#include "samples/game/game.hpp"

#include <random>

namespace Lantern {

/// Plays by itself, through the same keys and mouse that a player has: to record sessions, and for
/// runs of many hours.
class Pilot {
public:
    explicit Pilot(unsigned int seed) : mDice(seed) {}
    /// Before the messages of a frame are fetched.
    void Fly(Game& game);
    /// Presses what comes, sense or not.
    void Flail(unsigned int width, unsigned int height);

private:
    void hold(int key, bool down);
    unsigned int below(unsigned int count) { return static_cast<unsigned int>(mDice() % count); }

    std::mt19937 mDice;
    bool mHeld[256] = {};
    int mFrame = 0;
};

} // namespace Lantern
