// SPDX-License-Identifier: MIT
#include "tests/math/exact.hpp"
#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <type_traits>

namespace {

using Color = Vorn3DColorSigned;

constexpr int Highest = std::numeric_limits<int>::max();
constexpr int Lowest = std::numeric_limits<int>::min();

static_assert(sizeof(Color[2]) == 8 * sizeof(std::int32_t));
static_assert(std::is_standard_layout_v<Color> && std::is_trivially_copyable_v<Color>);

void ExpectIs(const Color& c, int a, int r, int g, int b) {
    EXPECT_EQ(c.a, a);
    EXPECT_EQ(c.r, r);
    EXPECT_EQ(c.g, g);
    EXPECT_EQ(c.b, b);
}

unsigned long Packed(const Color& c) {
    return c;
}

TEST(Color, ConstructorsFillTheChannelsInOrder) {
    ExpectIs(Color(), 0, 0, 0, 0);
    ExpectIs(Color(1), 1, 0, 0, 0);
    ExpectIs(Color(1, 2, 3), 1, 2, 3, 0);
    ExpectIs(Color(-1, 300, 4, -70000), -1, 300, 4, -70000);
    ExpectIs(Color(0x80402010ul), 0x80, 0x40, 0x20, 0x10);
    ExpectIs(Color(0xFFFEFDFCu), 255, 254, 253, 252);
    // Of a wider number the low 32 bits count.
    ExpectIs(Color(0x1280402010ul), 0x80, 0x40, 0x20, 0x10);
    ExpectIs(Color(~0ul), 255, 255, 255, 255);
}

TEST(Color, PackingTurnsUnpackingBack) {
    Exact::Random random(21);
    for (int i = 0; i < 500; ++i) {
        const auto packed = static_cast<std::uint32_t>(random.Int(Lowest, Highest));
        EXPECT_EQ(Packed(Color(packed)), packed);
        EXPECT_EQ(Packed(Color(static_cast<unsigned long>(packed))), packed);
    }
}

TEST(Color, AChannelOutOfRangeSpillsIntoItsNeighbour) {
    EXPECT_EQ(Packed(Color(1, 300, 0, 0)), 0x022C0000u);
    EXPECT_EQ(Packed(Color(0, 0, 256, 0)), 0x00010000u);
    EXPECT_EQ(Packed(Color(0, 0, 1, -1)), 0x000000FFu);
    // Spilling beyond the top byte is lost; a negative sum wraps within 32 bits.
    EXPECT_EQ(Packed(Color(256, 0, 0, 7)), 7u);
    EXPECT_EQ(Packed(Color(0, 0, 0, -1)), 0xFFFFFFFFu);
    EXPECT_EQ(Packed(Color(-1, 0, 0, 0)), 0xFF000000u);
    Exact::Random random(22);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const int reach = i % 2 == 0 ? 1000 : Highest;
        const Color c(random.Int(-reach, reach), random.Int(-reach, reach),
                      random.Int(-reach, reach), random.Int(-reach, reach));
        // Place values in 64 bits, where nothing but the top of `a` can wrap.
        const std::int64_t sum = (static_cast<std::int64_t>(c.a) << 24) +
                                 (static_cast<std::int64_t>(c.r) << 16) +
                                 (static_cast<std::int64_t>(c.g) << 8) + c.b;
        EXPECT_EQ(Packed(c), static_cast<std::uint64_t>(sum) & 0xFFFFFFFFu);
    }
}

TEST(Color, IntegerArithmeticWorksOnAllFourChannelsWithoutClamping) {
    const Color a(200, -100, 30, 7);
    const Color b(100, 200, -40, 2);
    ExpectIs(a + b, 300, 100, -10, 9);
    ExpectIs(a - b, 100, -300, 70, 5);
    ExpectIs(a * b, 20000, -20000, -1200, 14);
    ExpectIs(a / b, 2, 0, 0, 3);
    // Towards zero, not downwards.
    ExpectIs(Color(-7, 7, -7, -1) / Color(2, -2, -2, 2), -3, -3, 3, 0);
    ExpectIs(a, 200, -100, 30, 7);
    ExpectIs(b, 100, 200, -40, 2);

    Color c = a;
    EXPECT_EQ(&(c += b), &c);
    ExpectIs(c, 300, 100, -10, 9);
    EXPECT_EQ(&(c -= a), &c);
    ExpectIs(c, 100, 200, -40, 2);
    EXPECT_EQ(&(c *= a), &c);
    ExpectIs(c, 20000, -20000, -1200, 14);
    EXPECT_EQ(&(c /= b), &c);
    ExpectIs(c, 200, -100, 30, 7);
}

TEST(Color, ArithmeticTakesItselfAsOperand) {
    Color c(3, -4, 500, 1);
    const Color& same = c;
    c *= same;
    ExpectIs(c, 9, 16, 250000, 1);
    c /= same;
    ExpectIs(c, 1, 1, 1, 1);
    c += same;
    ExpectIs(c, 2, 2, 2, 2);
    c -= same;
    ExpectIs(c, 0, 0, 0, 0);
}

TEST(Color, IntegerArithmeticWrapsAtTheEndsOfItsRange) {
    ExpectIs(Color(Highest, Lowest, 0, 5) + Color(1, -1, 0, 0), Lowest, Highest, 0, 5);
    ExpectIs(Color(Lowest, Highest, 0, 5) - Color(1, -1, Lowest, 0), Highest, Lowest, Lowest, 5);
    ExpectIs(Color(65536, Highest, Lowest, 5) * Color(65536, 2, -1, 1), 0, -2, Lowest, 5);
    // The one quotient that does not fit.
    ExpectIs(Color(Lowest, Lowest, Highest, 5) / Color(-1, 1, -1, 5), Lowest, Lowest, -Highest, 1);
}

TEST(Color, FloatingPointArithmeticTruncatesTowardsZero) {
    ExpectIs(Color(255, 255, 255, 255) * 0.5f, 127, 127, 127, 127);
    ExpectIs(Color(255, -255, 1, -1) * 0.5f, 127, -127, 0, 0);
    ExpectIs(Color(255, -255, 1, -1) * 0.5, 127, -127, 0, 0);
    ExpectIs(Color(255, -255, 7, -7) / 2.0f, 127, -127, 3, -3);
    ExpectIs(Color(255, -255, 7, -7) / 2.0, 127, -127, 3, -3);
    ExpectIs(Color(100, 200, 0, -3) * 3.0f, 300, 600, 0, -9);
    ExpectIs(Color(100, 200, 0, -3) * -1.5, -150, -300, 0, 4);
    ExpectIs(Color(100, 200, 0, -3) / 0.25f, 400, 800, 0, -12);

    Color c(200, 101, -101, 3);
    EXPECT_EQ(&(c *= 0.5f), &c);
    ExpectIs(c, 100, 50, -50, 1);
    EXPECT_EQ(&(c /= 4.0f), &c);
    ExpectIs(c, 25, 12, -12, 0);
    EXPECT_EQ(&(c *= 2.5), &c);
    ExpectIs(c, 62, 30, -30, 0);
    EXPECT_EQ(&(c /= 0.5), &c);
    ExpectIs(c, 124, 60, -60, 0);
}

TEST(Color, DoublePrecisionKeepsWhatSinglePrecisionRounds) {
    // 2^24 + 1 is no float, and 255 * 0.9999999999 is 255 in single precision.
    ExpectIs(Color(16777217, Highest, Lowest, 255) * 1.0, 16777217, Highest, Lowest, 255);
    ExpectIs(Color(16777217, Highest, Lowest, 255) / 1.0, 16777217, Highest, Lowest, 255);
    EXPECT_EQ((Color(16777217) * 1.0f).a, 16777216);
    EXPECT_EQ((Color(255) * 0.9999999999).a, 254);
    EXPECT_EQ((Color(255) / 1.0000000001).a, 254);
    Exact::Random random(23);
    for (int i = 0; i < 500; ++i) {
        SCOPED_TRACE(i);
        const int channel = random.Int(-100000, 100000);
        const auto factor = static_cast<double>(random.Float(-50, 50));
        const double product = channel * factor;
        const int truncated = (Color(channel) * factor).a;
        EXPECT_LE(std::abs(truncated), std::abs(product));
        EXPECT_LT(std::abs(product - truncated), 1);
    }
}

TEST(Color, WhatNoIntegerCanHoldStaysAtTheEndOfTheRange) {
    ExpectIs(Color(255, -255, 0, 1) * 1e30f, Highest, Lowest, 0, Highest);
    ExpectIs(Color(255, -255, 0, 1) * 1e300, Highest, Lowest, 0, Highest);
    ExpectIs(Color(255, -255, 0, 1) / 0.0f, Highest, Lowest, 0, Highest);
    ExpectIs(Color(255, -255, 0, 1) / 0.0, Highest, Lowest, 0, Highest);
    // The highest integer itself is beyond the range once it is a float.
    ExpectIs(Color(Highest, Lowest, 1, 2) * 1.0f, Highest, Lowest, 1, 2);
    ExpectIs(Color(255, -255, 0, 1) * std::numeric_limits<float>::quiet_NaN(), 0, 0, 0, 0);
}

TEST(Color, OrderIsThatOfTheSums) {
    EXPECT_TRUE(Color(0, 0, 0, 1) < Color(0, 1, 1, 0));
    EXPECT_FALSE(Color(0, 1, 1, 0) < Color(0, 0, 0, 1));
    // The packed number of the first is far greater.
    EXPECT_TRUE(Color(200, 0, 0, 0) < Color(0, 0, 0, 201));
    EXPECT_TRUE(Color(0, 0, 0, -1) < Color());
    EXPECT_TRUE(Color(300, -400, 0, 0) < Color(0, -99, 0, 0));
    const Color red(0, 255, 0, 0);
    const Color blue(0, 0, 0, 255);
    EXPECT_FALSE(red < blue);
    EXPECT_FALSE(blue < red);
    EXPECT_FALSE(red < red);
}

} // namespace
