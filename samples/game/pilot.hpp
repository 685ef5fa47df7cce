// SPDX-License-Identifier: MIT
#pragma once

#include "samples/game/game.hpp"

#include <random>
#include <vector>

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
    struct Seen {
        Vorn::Vector3 place, velocity; // (unit: distance / second)
        float radius = 0.0f;           // to keep out of
        float reach = 0.0f;            // beyond that, where it begins to matter
        float weight = 0.0f;           // how much; below 0 for what is wanted
        bool foe = false, rock = false;
    };

    void look(Game& game);
    void steer();
    float danger(const Vorn::Vector3& way) const;
    bool isHidden(const Vorn::Vector3& prey, const Vorn::Vector3& from) const;
    void shoot(const Game& game);
    void hold(int key, bool down);
    unsigned int below(unsigned int count) { return static_cast<unsigned int>(mDice() % count); }

    std::mt19937 mDice;
    std::vector<Seen> mSeen;
    int mClose = 0;      // dangers about the boat
    Vorn::Vector3 mPrey; // what it shoots at
    bool mHunts = false;
    bool mHeld[256] = {};
    int mFrame = 0, mThinks = 0;
};

} // namespace Lantern
