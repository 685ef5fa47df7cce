// SPDX-License-Identifier: MIT
#include "vorn/core/utility.hpp"
#include "vorn/math/vector3.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <set>
#include <utility>

namespace {

using Vorn::Vector3;

constexpr float Infinity = std::numeric_limits<float>::infinity();
constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
constexpr double Step = 9.999999747378752e-05; // 0.0001 as a float

// The share of the range that a number of rand stands for.
float Share(int number) {
    return static_cast<float>(number % 10000 * Step);
}

// Draws of a host's own seed must come out alike whatever ran before.
class RandomNumbers : public testing::Test {
protected:
    ~RandomNumbers() override { std::srand(1); }
};

TEST(Clamp, KeepsWhatLiesInsideAndTheBoundsThemselves) {
    EXPECT_EQ(Vorn::fclamp(0.5f, 0.0f, 1.0f), 0.5f);
    EXPECT_EQ(Vorn::fclamp(0.0f, 0.0f, 1.0f), 0.0f);
    EXPECT_EQ(Vorn::fclamp(1.0f, 0.0f, 1.0f), 1.0f);
    EXPECT_EQ(Vorn::fclamp(-3.0f, -2.0f, -1.0f), -2.0f);
    EXPECT_EQ(Vorn::fclamp(3.0f, -2.0f, -1.0f), -1.0f);
    EXPECT_EQ(Vorn::fclamp(-Infinity, -2.0f, 2.0f), -2.0f);
    EXPECT_EQ(Vorn::fclamp(Infinity, -2.0f, 2.0f), 2.0f);
    EXPECT_EQ(Vorn::fclamp(std::nextafter(1.0f, 2.0f), 0.0f, 1.0f), 1.0f);
    EXPECT_EQ(Vorn::fclamp(std::nextafter(1.0f, 0.0f), 0.0f, 1.0f), std::nextafter(1.0f, 0.0f));
}

TEST(Clamp, NeitherBelowNorAboveIsTheValue) {
    EXPECT_TRUE(std::isnan(Vorn::fclamp(NaN, 0.0f, 1.0f)));
    EXPECT_TRUE(std::signbit(Vorn::fclamp(-0.0f, 0.0f, 1.0f)));
    EXPECT_FALSE(std::signbit(Vorn::fclamp(0.0f, -1.0f, -0.0f)));
    EXPECT_EQ(Vorn::fclamp(7.0f, NaN, 1.0f), 1.0f);
    EXPECT_EQ(Vorn::fclamp(7.0f, 0.0f, NaN), 7.0f);
}

TEST(Clamp, TheLowerBoundIsAskedFirst) {
    EXPECT_EQ(Vorn::fclamp(5.0f, 10.0f, 0.0f), 10.0f);
    EXPECT_EQ(Vorn::fclamp(10.0f, 10.0f, 0.0f), 0.0f);
    EXPECT_EQ(Vorn::fclamp(20.0f, 10.0f, 0.0f), 0.0f);
    EXPECT_EQ(Vorn::fclamp(-5.0f, 10.0f, 0.0f), 10.0f);
}

TEST(Wrap, GoesOneSpanAtMost) {
    EXPECT_EQ(Vorn::fclampw(370.0f, 0.0f, 360.0f), 10.0f);
    EXPECT_EQ(Vorn::fclampw(-10.0f, 0.0f, 360.0f), 350.0f);
    EXPECT_EQ(Vorn::fclampw(800.0f, 0.0f, 360.0f), 440.0f);
    EXPECT_EQ(Vorn::fclampw(-800.0f, 0.0f, 360.0f), -440.0f);
    EXPECT_EQ(Vorn::fclampw(0.0f, 0.0f, 360.0f), 0.0f);
    EXPECT_EQ(Vorn::fclampw(360.0f, 0.0f, 360.0f), 360.0f);
    EXPECT_EQ(Vorn::fclampw(720.0f, 0.0f, 360.0f), 360.0f);
    EXPECT_EQ(Vorn::fclampw(-360.0f, 0.0f, 360.0f), 0.0f);
    EXPECT_EQ(Vorn::fclampw(7.0f, 3.0f, 3.0f), 7.0f);
    EXPECT_TRUE(std::isnan(Vorn::fclampw(NaN, 0.0f, 1.0f)));

    // Bounds in the wrong order have a span below zero, and the lower one is asked first.
    EXPECT_EQ(Vorn::fclampw(5.0f, 10.0f, 0.0f), -5.0f);
    EXPECT_EQ(Vorn::fclampw(20.0f, 10.0f, 0.0f), 30.0f);

    std::mt19937 random(370);
    std::uniform_int_distribution<int> eighths(-4000, 4000);
    for (int i = 0; i < 2000; ++i) {
        SCOPED_TRACE(i);
        const double value = eighths(random) / 8.0;
        const double low = eighths(random) / 8.0;
        const double high = eighths(random) / 8.0;
        double expected = value;
        if (value < low)
            expected = value + (high - low);
        else if (value > high)
            expected = value - (high - low);
        ASSERT_EQ(Vorn::fclampw(static_cast<float>(value), static_cast<float>(low),
                                static_cast<float>(high)),
                  static_cast<float>(expected));
    }
}

TEST_F(RandomNumbers, HaveTenThousandStepsAndNeverReachTheUpperBound) {
    std::set<float> seen;
    std::srand(7);
    for (int i = 0; i < 250'000; ++i)
        seen.insert(Vorn::Random(0.0f, 1.0f));
    EXPECT_EQ(seen.size(), 10'000u);
    EXPECT_EQ(*seen.begin(), 0.0f);
    EXPECT_EQ(*seen.rbegin(), static_cast<float>(9999 * Step));
    int number = 0;
    for (const float value : seen)
        ASSERT_EQ(value, static_cast<float>(number++ * Step));
}

TEST_F(RandomNumbers, TakeOneNumberOfTheRuntimeEach) {
    constexpr int Count = 3000;
    std::mt19937 random(5);
    std::uniform_real_distribution<float> bounds(-1000.0f, 1000.0f);
    for (unsigned int seed : {1u, 2u, 921u}) {
        SCOPED_TRACE(seed);
        std::srand(seed);
        int numbers[Count + 1];
        for (int& number : numbers)
            number = std::rand();
        std::srand(seed);
        for (int i = 0; i < Count; ++i) {
            SCOPED_TRACE(i);
            float low = bounds(random);
            float high = bounds(random);
            if (i % 5 == 0)
                low = high;
            const float value = Vorn::Random(low, high);
            if (!(high > low))
                std::swap(low, high);
            const double expected =
                static_cast<double>(low) + (static_cast<double>(high) - static_cast<double>(low)) *
                                               static_cast<double>(Share(numbers[i]));
            // Three roundings to float at most, each at the size of the bounds.
            ASSERT_NEAR(static_cast<double>(value), expected, 2000.0 * 1.2e-7);
            ASSERT_GE(value, low);
            ASSERT_LE(value, high);
        }
        EXPECT_EQ(std::rand(), numbers[Count]);
    }
}

TEST_F(RandomNumbers, RangesThatBeginAtZeroAreExact) {
    for (const float high : {1.0f, 3.0f, 0.1f, 6.2831855f, 1e30f, 1e-30f}) {
        SCOPED_TRACE(high);
        std::srand(33);
        int numbers[500];
        for (int& number : numbers)
            number = std::rand();
        std::srand(33);
        for (const int number : numbers)
            ASSERT_EQ(
                Vorn::Random(0.0f, high),
                static_cast<float>(static_cast<double>(high) * static_cast<double>(Share(number))));
    }
}

TEST_F(RandomNumbers, BoundsComeInEitherOrder) {
    for (unsigned int seed = 1; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        std::srand(seed);
        const float straight = Vorn::Random(1.0f, 5.0f);
        std::srand(seed);
        EXPECT_EQ(Vorn::Random(5.0f, 1.0f), straight);
        EXPECT_GE(straight, 1.0f);
        EXPECT_LT(straight, 5.0f);
        EXPECT_EQ(Vorn::Random(3.0f, 3.0f), 3.0f);
        const float negative = Vorn::Random(-2.0f, -4.0f);
        EXPECT_GE(negative, -4.0f);
        EXPECT_LT(negative, -2.0f);
    }
}

TEST_F(RandomNumbers, VectorsDrawInTheOrderOfTheirAxes) {
    const Vector3 low(0.0f, 100.0f, -7.0f);
    const Vector3 high(1.0f, 50.0f, -7.0f);
    for (unsigned int seed = 1; seed < 50; ++seed) {
        SCOPED_TRACE(seed);
        std::srand(seed);
        const float x = Vorn::Random(low.x, high.x);
        const float y = Vorn::Random(low.y, high.y);
        const float z = Vorn::Random(low.z, high.z);
        const int next = std::rand();

        std::srand(seed);
        Vector3 drawn(9.0f, 9.0f, 9.0f);
        Vorn::RandomVector(low, high, drawn);
        EXPECT_EQ(drawn, Vector3(x, y, z));
        EXPECT_EQ(std::rand(), next);

        Vector3 inLow = low;
        std::srand(seed);
        Vorn::RandomVector(inLow, high, inLow);
        EXPECT_EQ(inLow, Vector3(x, y, z));
        Vector3 inHigh = high;
        std::srand(seed);
        Vorn::RandomVector(low, inHigh, inHigh);
        EXPECT_EQ(inHigh, Vector3(x, y, z));
    }
}

TEST(Angles, ConvertByTheFloatFactors) {
    EXPECT_EQ(Vorn::RadToDeg(1.0f), 57.29578f);
    EXPECT_EQ(Vorn::DegToRad(1.0f), 0.017453292f);
    EXPECT_EQ(Vorn::DegToRad(180.0f), static_cast<float>(180.0 * 0.01745329238474369));
    EXPECT_TRUE(std::signbit(Vorn::RadToDeg(-0.0f)));
    EXPECT_EQ(Vorn::RadToDeg(1e38f), Infinity);
    EXPECT_EQ(Vorn::DegToRad(-Infinity), -Infinity);

    std::mt19937 random(180);
    for (int i = 0; i < 20'000; ++i) {
        const auto bits = static_cast<std::uint32_t>(random());
        float angle;
        std::memcpy(&angle, &bits, sizeof angle);
        if (std::isnan(angle))
            continue;
        SCOPED_TRACE(angle);
        ASSERT_EQ(Vorn::RadToDeg(angle),
                  static_cast<float>(static_cast<double>(angle) * 57.295780181884766));
        ASSERT_EQ(Vorn::DegToRad(angle),
                  static_cast<float>(static_cast<double>(angle) * 0.01745329238474369));
    }
}

} // namespace
