// SPDX-License-Identifier: MIT
#include "vorn/core/timer.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace {

using Vorn::Timer;

TEST(Timer, ExactlyNothingLeftIsNotOver) {
    for (Timer timer : {Timer(), Timer(3.0, true)}) {
        EXPECT_FALSE(timer.Update(0.0, false));
        EXPECT_FALSE(timer.Update(0.0, true));
        EXPECT_FALSE(timer.Status());
        EXPECT_EQ(timer.Percentage(), 1.0);
        EXPECT_TRUE(timer.Update(std::numeric_limits<double>::denorm_min(), false));
        EXPECT_TRUE(timer.Status());
        EXPECT_EQ(timer.Percentage(), 1.0);
    }

    Timer half(0.5, false);
    EXPECT_FALSE(half.Update(0.5, true));
    EXPECT_FALSE(half.Status());
    EXPECT_EQ(half.Percentage(), 1.0);
    EXPECT_TRUE(half.Update(1e-9, false));
}

TEST(Timer, WithoutRestartItStaysOverByOneHoweverFarItRan) {
    Timer timer(2.0, false);
    EXPECT_TRUE(timer.Update(1000.0, false));
    EXPECT_TRUE(timer.Update(0.0, false));
    EXPECT_TRUE(timer.Update(-0.5, false));
    EXPECT_TRUE(timer.Status());
    EXPECT_FALSE(timer.Update(-1.0, false)) << "one unit back is exactly nothing left";
    EXPECT_FALSE(timer.Status());
    EXPECT_TRUE(timer.Update(0.25, false));
    timer.Reset();
    EXPECT_FALSE(timer.Status());
    EXPECT_EQ(timer.Percentage(), 0.0);
}

TEST(Timer, RestartDropsTheOvershoot) {
    Timer timer(4.0, false);
    EXPECT_TRUE(timer.Update(7.0, true));
    EXPECT_FALSE(timer.Status());
    EXPECT_EQ(timer.Percentage(), 0.0);
    EXPECT_FALSE(timer.Update(1.0, true));
    EXPECT_EQ(timer.Percentage(), 0.25);
    EXPECT_FALSE(timer.Update(3.0, true));
    EXPECT_TRUE(timer.Update(0.125, true));
    EXPECT_EQ(timer.Percentage(), 0.0);

    // One that was left over comes back by a restart too.
    EXPECT_TRUE(timer.Update(5.0, false));
    EXPECT_TRUE(timer.Update(0.0, true));
    EXPECT_FALSE(timer.Status());
    EXPECT_EQ(timer.Percentage(), 0.0);
}

TEST(Timer, DurationsOfZeroAndBelow) {
    Timer zero(0.0, false);
    EXPECT_EQ(zero.Percentage(), 1.0);
    EXPECT_FALSE(zero.Status());
    EXPECT_TRUE(zero.Update(0.1, true));
    EXPECT_FALSE(zero.Status()) << "restarted at exactly nothing left";
    EXPECT_FALSE(zero.Update(0.0, true));

    Timer below(-3.0, false);
    EXPECT_TRUE(below.Status());
    EXPECT_EQ(below.Percentage(), 1.0);
    EXPECT_TRUE(below.Update(0.0, true));
    EXPECT_TRUE(below.Update(-2.5, true)) << "restarted at -3";
    EXPECT_FALSE(below.Update(-3.0, true));
}

TEST(Timer, InitLoadsBothOfARunningTimer) {
    Timer timer(1.0, false);
    timer.Update(5.0, false);
    timer.Init(8.0, false);
    EXPECT_FALSE(timer.Status());
    EXPECT_FALSE(timer.Update(2.0, false));
    EXPECT_EQ(timer.Percentage(), 0.25);
    timer.Init(5.0, true);
    EXPECT_EQ(timer.Percentage(), 1.0);
    EXPECT_FALSE(timer.Status());
    timer.Reset();
    EXPECT_FALSE(timer.Update(4.0, false));
    EXPECT_EQ(timer.Percentage(), 1.0 - 1.0 / 5.0);
}

TEST(Timer, TimeThatRunsBackwardsGivesAShareBelowZero) {
    Timer timer(4.0, false);
    EXPECT_FALSE(timer.Update(-2.0, true));
    EXPECT_EQ(timer.Percentage(), -0.5);
}

TEST(Timer, RunsLikeAPlainCountDown) {
    std::mt19937 random(921);
    std::uniform_real_distribution<double> times(-0.05, 0.3);
    for (int round = 0; round < 50; ++round) {
        SCOPED_TRACE(round);
        const double duration = times(random) * 4.0;
        const bool expired = random() % 2 == 0;
        double left = expired ? 0.0 : duration;
        Timer timer(duration, expired);

        for (int step = 0; step < 200; ++step) {
            SCOPED_TRACE(step);
            const double dt = times(random);
            const bool restart = random() % 2 == 0;
            left -= dt;
            const bool over = left < 0.0;
            if (over)
                left = restart ? duration : -1.0;
            ASSERT_EQ(timer.Update(dt, restart), over);
            if (random() % 16 == 0) {
                timer.Reset();
                left = duration;
            }
            ASSERT_EQ(timer.Status(), left < 0.0);
            ASSERT_EQ(timer.Percentage(), left > 0.0 ? 1.0 - left / duration : 1.0);
        }
    }
}

} // namespace
