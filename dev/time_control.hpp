// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>

namespace Vorn::Dev {

/// The game's time, by holding the performance counter: whatever the game computes its frame time
/// with goes along. At full speed the counter is left alone.
class TimeControl {
public:
    ~TimeControl();

    bool paused = false;
    /// (unit: seconds of the game / second)
    float speed = 1.0f;
    /// The next frame is one of a sixtieth of a second, the one after it a paused one.
    void Step();

    /// Once a frame.
    void Update();

private:
    using Clock = std::chrono::steady_clock;

    bool mStep = false;
    bool mHeld = false;
    std::int64_t mCounts = 0;
    Clock::time_point mLast = Clock::now();
};

} // namespace Vorn::Dev
