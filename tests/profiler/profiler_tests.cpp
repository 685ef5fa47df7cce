// SPDX-License-Identifier: MIT
//
// When the profiler takes a sample, which it keeps, and what it draws of them, by its calls.
#include "tests/support/engine_device.hpp"

#include <cmath>
#include <functional>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;
using Tests::Texts;
using Vorn::COLORS;
using Vorn::Point2;
using Vorn::PROFILE_GRAPHICS;
using Vorn::PROFILE_PHYSICS;
using Vorn::PROFILE_TYPE;

constexpr COLORS Yellow{0xFFFFFF00u};

class Profile : public Tests::RecorderTest {
protected:
    Profile() {
        forgetAll();
        profiler.SetDebugOn(true);
    }
    ~Profile() override {
        forgetAll();
        profiler.SetDebugOn(false);
        VornPlatform::ReleaseClock();
    }

    /// A stretch of that many microseconds, a second after the one before.
    void Stretch(std::int64_t length, PROFILE_TYPE type = PROFILE_PHYSICS) {
        mNow += VornPlatform::ClockFrequency;
        VornPlatform::HoldClock(mNow);
        profiler.StartClock(type);
        VornPlatform::HoldClock(mNow + length * (VornPlatform::ClockFrequency / 1'000'000));
        profiler.EndClock(type);
    }
    /// A sample each.
    void Sample(const std::vector<std::int64_t>& lengths, PROFILE_TYPE type = PROFILE_PHYSICS) {
        for (const std::int64_t length : lengths) {
            Stretch(length, type);
            for (int i = 1; i < 60; ++i)
                profiler.EndClock(type);
        }
    }
    /// (unit: microseconds)
    std::vector<int> Samples(PROFILE_TYPE type = PROFILE_PHYSICS) {
        std::vector<int> lengths;
        for (const float seconds : profiler.PerformanceTime(type))
            lengths.push_back(static_cast<int>(std::lround(static_cast<double>(seconds) * 1e6)));
        return lengths;
    }
    static Texts Calls(const std::function<void()>& action) {
        VornPlatform::CallLog log;
        action();
        return Tests::Take(log);
    }
    Texts Output(PROFILE_TYPE type, float baseY, float height) {
        return Calls([&] { profiler.Output(type, Yellow, baseY, height); });
    }
    Texts Text(int y, const std::string& text) {
        return Calls([&] { graphic.RenderText(0, y, 0xFFFF0000u, text.c_str()); });
    }
    /// The calls for nine points, 100 pixels apart.
    Texts Graph(const std::vector<float>& heights) {
        std::vector<Point2> points;
        for (const float y : heights)
            points.emplace_back(static_cast<float>(points.size()) * 100, y);
        points.emplace_back(); // left out
        return Calls([&] { graphic.Draw2DLine(points.data(), 10, Yellow, 2); });
    }

    Vorn::Profiler& profiler = *Vorn::Profiler::Instance();

private:
    void forgetAll() {
        profiler.SetDebugOn(true);
        for (const int type : {0, 1, 7})
            profiler.Unregister(static_cast<PROFILE_TYPE>(type));
    }

    // A hundred days: counts that only whole numbers tell apart.
    std::int64_t mNow = std::int64_t{8'640'000} * VornPlatform::ClockFrequency;
};

TEST_F(Profile, TheFirstStretchAndEachSixtiethAfterItIsASample) {
    for (int i = 1; i <= 121; ++i) {
        Stretch(i);
        EXPECT_THAT(Samples(), SizeIs(static_cast<std::size_t>((i + 59) / 60))) << i;
    }
    EXPECT_THAT(Samples(), ElementsAre(1, 61, 121));
    EXPECT_EQ(profiler.PerformanceTime(PROFILE_PHYSICS).back(), 0.000121f);
    // Only ends are counted, and of starts before an end the last one counts.
    profiler.Unregister(PROFILE_PHYSICS);
    Sample({5});
    for (int i = 0; i < 100; ++i)
        profiler.StartClock(PROFILE_PHYSICS);
    Stretch(7);
    EXPECT_THAT(Samples(), ElementsAre(5, 7));
}

TEST_F(Profile, TenSamplesAreKeptOfEachTypeApart) {
    const std::list<float>& physics = profiler.PerformanceTime(PROFILE_PHYSICS);
    Sample({1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    EXPECT_THAT(Samples(), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10));
    Sample({11, 12});
    Sample({99}, PROFILE_GRAPHICS);
    EXPECT_THAT(Samples(), ElementsAre(3, 4, 5, 6, 7, 8, 9, 10, 11, 12));
    EXPECT_THAT(Samples(PROFILE_GRAPHICS), ElementsAre(99));
    EXPECT_EQ(&physics, &profiler.PerformanceTime(PROFILE_PHYSICS));
}

TEST_F(Profile, OffItTakesNoSampleAndKeepsWhatItHas) {
    Open();
    profiler.SetDebugOn(false);
    Sample({1, 2});
    EXPECT_THAT(Samples(), IsEmpty());
    profiler.SetDebugOn(true);
    EXPECT_TRUE(profiler.GetDebugOn());
    Sample({3});
    Stretch(4);
    for (int i = 1; i < 50; ++i)
        profiler.EndClock(PROFILE_PHYSICS);
    profiler.SetDebugOn(false);
    Sample({5}); // counts no end either
    profiler.Unregister(PROFILE_PHYSICS);
    EXPECT_THAT(Output(PROFILE_PHYSICS, 100, 10), IsEmpty());
    EXPECT_THAT(
        Calls([&] { profiler.RenderDebugText(30, -4, "still there"); }),
        ElementsAreArray(Calls([&] { graphic.RenderText(30, -4, 0xFFFF0000u, "still there"); })));
    EXPECT_THAT(Samples(), ElementsAre(3, 4));
    profiler.SetDebugOn(true);
    for (int i = 0; i < 10; ++i)
        profiler.EndClock(PROFILE_PHYSICS);
    EXPECT_THAT(Samples(), ElementsAre(3, 4));
    Stretch(6);
    EXPECT_THAT(Samples(), ElementsAre(3, 4, 6));
}

TEST_F(Profile, UnregisterForgetsSoThatTheNextStretchIsASample) {
    Sample({1});
    Stretch(2);
    profiler.Unregister(PROFILE_GRAPHICS);
    EXPECT_THAT(Samples(), ElementsAre(1, 2));
    profiler.Unregister(PROFILE_PHYSICS);
    EXPECT_THAT(Samples(), IsEmpty());
    Stretch(3);
    EXPECT_THAT(Samples(), ElementsAre(3));
}

TEST_F(Profile, TheGraphHasEachSampleOverTheRangeUpToIt) {
    Open();
    Sample({2000, 2000, 4000, 3000, 1000, 6000, 6000, 1500, 500, 9000});
    // Without a range at the base; 4 of a range from 2 to 4, 3 of the same, then 1 of 1 to 4, ...
    const Texts graph =
        Graph({300, 300, 300 - 60 * 2.0f, 300 - 60 * 1.5f, 300 - 60 / 3.0f, 300 - 60 * 1.2f,
               300 - 60 * 1.2f, 300 - 60 * 0.3f, 300 - 60 / 11.0f});
    Texts expected = graph;
    for (const std::string& call : Text(300, "Physics : Min: 0.000500, Max: 0.009000"))
        expected.push_back(call);
    EXPECT_THAT(Output(PROFILE_PHYSICS, 300, 60), ElementsAreArray(expected));
    // The one that goes out of the list goes out of the range.
    Sample({9000, 9000, 9000, 9000, 9000, 9000, 9000, 9000, 9000}, PROFILE_GRAPHICS);
    EXPECT_THAT(Output(PROFILE_GRAPHICS, 300, 60),
                ElementsAreArray(Text(300, "Graphics : Min: 0.009000, Max: 0.009000")));
    Sample({9000}, PROFILE_GRAPHICS);
    expected = Graph(std::vector<float>(9, -20.75f));
    for (const std::string& call : Text(-20, "Graphics : Min: 0.009000, Max: 0.009000"))
        expected.push_back(call);
    EXPECT_THAT(Output(PROFILE_GRAPHICS, -20.75f, -1), ElementsAreArray(expected));
}

TEST_F(Profile, WithoutSamplesItDrawsItsTextAlone) {
    Open();
    EXPECT_THAT(Output(PROFILE_PHYSICS, 50.9f, 10),
                ElementsAreArray(Text(50, "Physics : Min: 1000.000000, Max: -1.000000")));
    EXPECT_THAT(Text(1, "x"), SizeIs(1));
    EXPECT_THAT(Calls([&] { profiler.Output(PROFILE_GRAPHICS, 3); }), IsEmpty());
    Sample({2000, 3000}, PROFILE_GRAPHICS);
    EXPECT_THAT(Output(PROFILE_GRAPHICS, 50, 10),
                ElementsAreArray(Text(50, "Graphics : Min: 0.002000, Max: 0.003000")));
    const auto other = static_cast<PROFILE_TYPE>(7); // that has no name
    Sample({2000}, other);
    EXPECT_THAT(Output(other, 50, 10),
                ElementsAreArray(Text(50, " : Min: 0.002000, Max: 0.002000")));
    Close();
    EXPECT_THAT(Output(PROFILE_GRAPHICS, 50, 10), IsEmpty());
}

} // namespace
