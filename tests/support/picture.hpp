// SPDX-License-Identifier: MIT
//
// Pictures, how they are compared, and the plain twin of a rasteriser: integers, pixel by pixel.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace Tests {

/// 0xAARRGGBB, rows from the top.
struct Picture {
    int width = 0, height = 0;
    std::vector<std::uint32_t> pixels;

    Picture() = default;
    Picture(int w, int h, std::uint32_t color)
        : width(w), height(h), pixels(static_cast<std::size_t>(w * h), color) {}

    std::uint32_t& At(int x, int y) { return pixels.at(static_cast<std::size_t>(y * width + x)); }
    std::uint32_t At(int x, int y) const {
        return pixels.at(static_cast<std::size_t>(y * width + x));
    }
    /// `left` up to `right`, as a rectangle of the platform.
    void Fill(int left, int top, int right, int bottom, std::uint32_t color) {
        for (int y = std::max(top, 0); y < std::min(bottom, height); ++y)
            for (int x = std::max(left, 0); x < std::min(right, width); ++x)
                At(x, y) = color;
    }
    int Count(std::uint32_t color) const {
        return static_cast<int>(std::count(pixels.begin(), pixels.end(), color));
    }
};

/// Red, green, blue, alpha.
inline std::array<int, 4> Channels(std::uint32_t color) {
    const auto part = [color](int shift) { return static_cast<int>((color >> shift) & 0xff); };
    return {part(16), part(8), part(0), part(24)};
}
inline std::uint32_t Packed(int r, int g, int b, int a = 255) {
    const auto part = [](int value, int shift) {
        return static_cast<std::uint32_t>(std::clamp(value, 0, 255)) << shift;
    };
    return part(a, 24) | part(r, 16) | part(g, 8) | part(b, 0);
}
/// The largest difference of a channel.
inline int Distance(std::uint32_t a, std::uint32_t b) {
    int distance = 0;
    for (std::size_t i = 0; i < 4; ++i)
        distance = std::max(distance, std::abs(Channels(a)[i] - Channels(b)[i]));
    return distance;
}

inline std::string Hex(std::uint32_t color) {
    const char digits[] = "0123456789abcdef";
    std::string text = "0x";
    for (int shift = 28; shift >= 0; shift -= 4)
        text += digits[color >> shift & 15];
    return text;
}

inline testing::AssertionResult Same(const Picture& got, const Picture& expected,
                                     int tolerance = 0) {
    if (got.width != expected.width || got.height != expected.height)
        return testing::AssertionFailure() << got.width << " x " << got.height << " instead of "
                                           << expected.width << " x " << expected.height;
    int wrong = 0, worst = 0;
    std::size_t first = 0;
    for (std::size_t i = 0; i < got.pixels.size(); ++i) {
        const int distance = Distance(got.pixels[i], expected.pixels[i]);
        worst = std::max(worst, distance);
        if (distance > tolerance && wrong++ == 0)
            first = i;
    }
    if (wrong == 0)
        return testing::AssertionSuccess();
    const int at = static_cast<int>(first);
    return testing::AssertionFailure()
           << "first at (" << at % got.width << ", " << at / got.width
           << "): " << Hex(got.pixels[first]) << " instead of " << Hex(expected.pixels[first])
           << "; " << wrong << " pixels differ by up to " << worst;
}

/// Sixteenths of a pixel; pixel centres are at multiples of 16.
struct GridPoint {
    int x, y;
};

/// The top-left rule: inside, or on a left edge, or on an upper edge that is level.
inline void FillTriangle(Picture& picture, GridPoint a, GridPoint b, GridPoint c,
                         std::uint32_t color) {
    const auto side = [](GridPoint from, GridPoint to, GridPoint p) {
        return std::int64_t{to.x - from.x} * (p.y - from.y) -
               std::int64_t{to.y - from.y} * (p.x - from.x);
    };
    if (side(a, b, c) == 0)
        return;
    if (side(a, b, c) < 0)
        std::swap(b, c); // clockwise now, as seen with Y down
    const auto covers = [&side](GridPoint from, GridPoint to, GridPoint p) {
        const bool kept = to.y < from.y || (to.y == from.y && to.x > from.x);
        return side(from, to, p) > (kept ? -1 : 0);
    };
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            const GridPoint p = {x * 16, y * 16};
            if (covers(a, b, p) && covers(b, c, p) && covers(c, a, p))
                picture.At(x, y) = color;
        }
}

/// The same numbers on every machine.
class Dice {
public:
    explicit Dice(unsigned int seed) : mEngine(seed) {}
    /// From 0 up to `count`, without it.
    int operator()(int count) {
        return static_cast<int>(mEngine() % static_cast<unsigned int>(count));
    }
    std::uint32_t Bits() { return static_cast<std::uint32_t>(mEngine()); }
    float Unit() { return static_cast<float>((*this)(1 << 20)) / (1 << 20); }

private:
    std::mt19937 mEngine;
};

inline Picture Noise(int width, int height, unsigned int seed, std::uint32_t alpha = 0xff000000) {
    Dice dice(seed);
    Picture picture(width, height, 0);
    for (std::uint32_t& pixel : picture.pixels)
        pixel = dice.Bits() | alpha;
    return picture;
}

} // namespace Tests
