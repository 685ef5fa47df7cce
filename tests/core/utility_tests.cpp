// SPDX-License-Identifier: MIT
#include "platform/control/vorn_platform.hpp"
#include "vorn/vorn.hpp"

#include <windows.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

using Vorn::Timer;

constexpr std::int64_t Second = VornPlatform::ClockFrequency;

TEST(Clock, LongFramesTakeNoTimeButKeepTheirRate) {
    struct Frame {
        std::int64_t counts;
        double time, rate;
    };
    constexpr std::int64_t Late = std::int64_t{1} << 62;
    Vorn::DeltaClock clock;
    std::int64_t now = 0;
    for (const Frame& frame :
         {Frame{10 * Second, 0, 0.1}, // the first measures from zero
          Frame{2 * Second, 2, 0.5}, Frame{2 * Second + 1, 0, 1 / 2.000000001},
          Frame{1000 * Second, 0, 0.001}, Frame{Second / 2, 0.5, 2},
          Frame{0, 0, std::numeric_limits<double>::infinity()}, Frame{1, 1e-9, 1 / 1e-9},
          Frame{-4 * Second, -4, -0.25}, // no lower limit
          Frame{Late, 0, 1 / (Late / 1e9)},
          Frame{3, 3e-9, 1 / 3e-9}}) { // the counter itself does not fit a double
        VornPlatform::HoldClock(now += frame.counts);
        clock.Update();
        EXPECT_EQ(clock.GetDeltaTime(), frame.time) << frame.counts;
        EXPECT_EQ(clock.GetFrameRate(), frame.rate) << frame.counts;
    }
    VornPlatform::ReleaseClock();
    clock.Update();
    EXPECT_LT(clock.GetDeltaTime(), -4e9) << "the machine's own clock";
}

struct Step {
    double dt;
    bool restart, over;
    double percentage;
};

void ExpectRun(Timer timer, std::initializer_list<Step> steps) {
    for (const Step& step : steps) {
        SCOPED_TRACE(step.dt);
        EXPECT_EQ(timer.Update(step.dt, step.restart), step.over);
        EXPECT_EQ(timer.Status(), step.over && !step.restart);
        EXPECT_EQ(timer.Percentage(), step.percentage);
    }
}

TEST(Timer, ExactlyNothingLeftIsNotOver) {
    ExpectRun(Timer(3, true), {{0, true, false, 1}, {1e-9, false, true, 1}});
    ExpectRun(Timer(0.5, false), {{0.5, true, false, 1}, {1e-9, false, true, 1}});
}

TEST(Timer, StaysOverByOneOrStartsAnewWithoutTheOvershoot) {
    ExpectRun(Timer(4, false),
              {{7, true, true, 0}, {1, true, false, 0.25}, {-2, true, false, -0.25}});
    ExpectRun(Timer(4, false), {{99, false, true, 1}, {-0.5, false, true, 1}, {0, true, true, 0}});
    ExpectRun(Timer(4, false), {{99, false, true, 1}, {-1, false, false, 1}});
    Timer timer(8, true);
    EXPECT_EQ(timer.Percentage(), 1.0);
    timer.Reset();
    EXPECT_EQ(timer.Percentage(), 0.0);
    timer.Init(-3, false);
    EXPECT_TRUE(timer.Status());
}

TEST(Clamp, KeepsWithinTheBoundsOrWrapsByOneSpan) {
    struct Case {
        float value, low, high, clamped, wrapped;
    };
    for (const Case& c :
         {Case{0.5f, 0, 1, 0.5f, 0.5f}, Case{360, 0, 360, 360, 360}, Case{370, 0, 360, 360, 10},
          Case{-10, 0, 360, 0, 350}, Case{0, 0, 360, 0, 0}, Case{800, 0, 360, 360, 440},
          Case{-800, 0, 360, 0, -440}, Case{7, 3, 3, 3, 7}, Case{5, 10, 0, 10, -5},
          Case{20, 10, 0, 0, 30}}) {
        EXPECT_EQ(Vorn::fclamp(c.value, c.low, c.high), c.clamped) << c.value;
        EXPECT_EQ(Vorn::fclampw(c.value, c.low, c.high), c.wrapped) << c.value;
    }
    EXPECT_TRUE(std::isnan(Vorn::fclamp(NAN, 0, 1)) && std::isnan(Vorn::fclampw(NAN, 0, 1)));
}

TEST(Random, TakesOneOfTenThousandStepsAndBoundsInEitherOrder) {
    for (unsigned int seed = 1; seed < 500; ++seed) {
        const auto share = [] { return 9.999999747378752e-05 * (std::rand() % 10000); };
        std::srand(seed);
        const double x = share();
        const double y = 50 + 50 * share();
        const double z = -7 + share();
        const int after = std::rand();
        std::srand(seed);
        Vorn::Vector3 drawn(0, 100, -7);
        Vorn::RandomVector(drawn, Vorn::Vector3(1, 50, -6), drawn);
        EXPECT_EQ(std::rand(), after);
        EXPECT_EQ(drawn.x, static_cast<float>(x));
        EXPECT_NEAR(static_cast<double>(drawn.y), y, 1e-5);
        EXPECT_NEAR(static_cast<double>(drawn.z), z, 1e-6);
    }
    EXPECT_EQ(Vorn::Random(3, 3), 3.0f);
}

TEST(Angles, ConvertByTheFloatFactors) {
    // Where the exact factors give another float.
    EXPECT_EQ(Vorn::DegToRad(27), 0.471238881f);
    EXPECT_EQ(Vorn::RadToDeg(9), 515.662048f);
}

} // namespace
