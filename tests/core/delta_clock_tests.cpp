// SPDX-License-Identifier: MIT
#include "vorn/core/delta_clock.hpp"
#include "vorn/math/point2.hpp"

#include "platform/control/vorn_platform.hpp"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>

namespace {

using Vorn::DeltaClock;

constexpr std::int64_t Second = VornPlatform::ClockFrequency;

std::int64_t Counts() {
    LARGE_INTEGER counts{};
    EXPECT_EQ(QueryPerformanceCounter(&counts), TRUE);
    return counts.QuadPart;
}

class Clock : public testing::Test {
protected:
    ~Clock() override { VornPlatform::ReleaseClock(); }

    void UpdateAt(std::int64_t counts) {
        VornPlatform::HoldClock(counts);
        mClock.Update();
    }

    DeltaClock mClock;
};

TEST_F(Clock, StartsWithoutTimeAndMeasuresFirstFromZero) {
    EXPECT_EQ(mClock.GetDeltaTime(), 0.0);
    EXPECT_EQ(mClock.GetFrameRate(), 0.0);
    UpdateAt(10 * Second);
    EXPECT_EQ(mClock.GetDeltaTime(), 0.0);
    EXPECT_EQ(mClock.GetFrameRate(), 0.1);

    DeltaClock early;
    VornPlatform::HoldClock(Second / 4);
    early.Update();
    EXPECT_EQ(early.GetDeltaTime(), 0.25);
    EXPECT_EQ(early.GetFrameRate(), 4.0);
}

TEST_F(Clock, TwoSecondsPassAndOneCountMoreDoesNot) {
    UpdateAt(100 * Second);
    UpdateAt(102 * Second);
    EXPECT_EQ(mClock.GetDeltaTime(), 2.0);
    EXPECT_EQ(mClock.GetFrameRate(), 0.5);
    UpdateAt(104 * Second + 1);
    EXPECT_EQ(mClock.GetDeltaTime(), 0.0);
    EXPECT_EQ(mClock.GetFrameRate(), 1.0 / 2.000000001);
    UpdateAt(1104 * Second + 1);
    EXPECT_EQ(mClock.GetDeltaTime(), 0.0);
    EXPECT_EQ(mClock.GetFrameRate(), 0.001);
    // What came before a pause counts for nothing in the frame after it.
    UpdateAt(1104 * Second + 1 + Second / 2);
    EXPECT_EQ(mClock.GetDeltaTime(), 0.5);
    EXPECT_EQ(mClock.GetFrameRate(), 2.0);
}

TEST_F(Clock, AFrameOfNoTimeHasAnInfiniteRate) {
    UpdateAt(50 * Second);
    UpdateAt(50 * Second);
    EXPECT_EQ(mClock.GetDeltaTime(), 0.0);
    EXPECT_EQ(mClock.GetFrameRate(), std::numeric_limits<double>::infinity());
    UpdateAt(50 * Second + 1);
    EXPECT_EQ(mClock.GetDeltaTime(), 1e-9);
    EXPECT_EQ(mClock.GetFrameRate(), 1.0 / 1e-9);
}

TEST_F(Clock, HasNoLowerLimit) {
    UpdateAt(50 * Second);
    UpdateAt(46 * Second);
    EXPECT_EQ(mClock.GetDeltaTime(), -4.0);
    EXPECT_EQ(mClock.GetFrameRate(), -0.25);
}

TEST_F(Clock, TakesTheDifferenceInSixtyFourBits) {
    const std::int64_t late = std::int64_t{1} << 62;
    UpdateAt(late);
    UpdateAt(late + 3);
    EXPECT_EQ(mClock.GetDeltaTime(), 3e-9) << "the counter itself does not fit a double";
    UpdateAt(late + 3 + (std::int64_t{1} << 32) + Second / 8);
    EXPECT_EQ(mClock.GetDeltaTime(), 0.0) << "more than four seconds";
    EXPECT_LT(mClock.GetFrameRate(), 0.25);
}

TEST_F(Clock, DividesCountsByTheFrequency) {
    std::mt19937_64 random(92);
    std::int64_t counts = 77 * Second;
    UpdateAt(counts);
    for (int i = 0; i < 1000; ++i) {
        SCOPED_TRACE(i);
        const auto elapsed =
            static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(3 * Second)) + 1;
        counts += elapsed;
        UpdateAt(counts);
        const double seconds = static_cast<double>(elapsed) / static_cast<double>(Second);
        ASSERT_EQ(mClock.GetDeltaTime(), seconds > 2.0 ? 0.0 : seconds);
        ASSERT_EQ(mClock.GetFrameRate(), 1.0 / seconds);
    }
}

TEST_F(Clock, OnlyUpdateMeasures) {
    UpdateAt(20 * Second);
    UpdateAt(21 * Second);
    VornPlatform::HoldClock(30 * Second);
    Vorn::Point2 point{};
    mClock.Tweakinit(point);
    mClock.TweakBarDelete();
    EXPECT_EQ(mClock.GetDeltaTime(), 1.0);
    EXPECT_EQ(mClock.GetFrameRate(), 1.0);
    UpdateAt(22 * Second);
    EXPECT_EQ(mClock.GetDeltaTime(), 1.0);
}

TEST_F(Clock, IsSharedThroughItsInstance) {
    DeltaClock::Instance()->Update();
    VornPlatform::HoldClock(500 * Second);
    DeltaClock::Instance()->Update();
    VornPlatform::HoldClock(500 * Second + Second / 2);
    DeltaClock::Instance()->Update();
    EXPECT_EQ(DeltaClock::mSingleton.GetDeltaTime(), 0.5);
    EXPECT_EQ(mClock.GetDeltaTime(), 0.0);
}

TEST_F(Clock, RunsByTheMachineUnlessHeld) {
    LARGE_INTEGER frequency{};
    EXPECT_EQ(QueryPerformanceFrequency(&frequency), TRUE);
    EXPECT_EQ(frequency.QuadPart, Second);

    const std::int64_t before = Counts();
    EXPECT_GE(before, 10 * Second);
    mClock.Update();
    EXPECT_EQ(mClock.GetDeltaTime(), 0.0) << "the first frame of a host is one of no time";
    EXPECT_GT(mClock.GetFrameRate(), 0.0);

    std::int64_t last = Counts();
    for (int i = 0; i < 1000; ++i) {
        const std::int64_t now = Counts();
        ASSERT_GE(now, last);
        last = now;
    }
    VornPlatform::HoldClock(3);
    EXPECT_EQ(Counts(), 3);
    VornPlatform::HoldClock(5);
    EXPECT_EQ(Counts(), 5);
    EXPECT_EQ(Counts(), 5);
    VornPlatform::ReleaseClock();
    EXPECT_GE(Counts(), last);
}

} // namespace
