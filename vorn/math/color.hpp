// SPDX-License-Identifier: MIT
//
// The one colour type: four signed channels, normally 0 to 255, that arithmetic may take anywhere.
//
//   Vorn3DColorSigned glow(255, 255, 128, 0);
//   glow *= 0.5f;
//   const unsigned long packed = glow;      // 0x7F7F4000
//
// Nothing clamps a channel. Packing adds and does not mask, so a channel outside 0 to 255 spills
// into its neighbour: bring a colour into range before it is packed. Integer arithmetic wraps at 32
// bits. A product or quotient with a floating-point number is truncated towards zero; beyond the
// range of an int it stays at its end, and a NaN gives 0.
#pragma once

#include "vorn/core/api.hpp"

#include <cstdint>

class VORN_API Vorn3DColorSigned {
public:
    std::int32_t a;
    std::int32_t r;
    std::int32_t g;
    std::int32_t b;

    constexpr Vorn3DColorSigned(int alpha = 0, int red = 0, int green = 0, int blue = 0)
        : a(alpha), r(red), g(green), b(blue) {}
    /// From a packed colour, of which the low 32 bits count:
    ///   31..24 alpha   23..16 red   15..8 green   7..0 blue
    constexpr Vorn3DColorSigned(unsigned int packed)
        : a(static_cast<int>(packed >> 24)), r(static_cast<int>(packed >> 16 & 255)),
          g(static_cast<int>(packed >> 8 & 255)), b(static_cast<int>(packed & 255)) {}
    constexpr Vorn3DColorSigned(unsigned long packed)
        : Vorn3DColorSigned(static_cast<unsigned int>(packed & 0xFFFFFFFFul)) {}

    /// ((a * 256 + r) * 256 + g) * 256 + b, in 32 bits.
    constexpr operator unsigned long() const {
        return ((static_cast<std::uint32_t>(a) * 256u + static_cast<std::uint32_t>(r)) * 256u +
                static_cast<std::uint32_t>(g)) *
                   256u +
               static_cast<std::uint32_t>(b);
    }

    Vorn3DColorSigned& operator+=(const Vorn3DColorSigned& c);
    Vorn3DColorSigned& operator-=(const Vorn3DColorSigned& c);
    Vorn3DColorSigned& operator*=(const Vorn3DColorSigned& c);
    /// No channel of `c` may be 0.
    Vorn3DColorSigned& operator/=(const Vorn3DColorSigned& c);
    Vorn3DColorSigned& operator*=(float f);
    Vorn3DColorSigned& operator/=(float f);
    Vorn3DColorSigned& operator*=(const double& f);
    Vorn3DColorSigned& operator/=(const double& f);
};

VORN_API Vorn3DColorSigned operator+(Vorn3DColorSigned a, const Vorn3DColorSigned& b);
VORN_API Vorn3DColorSigned operator-(Vorn3DColorSigned a, const Vorn3DColorSigned& b);
VORN_API Vorn3DColorSigned operator*(Vorn3DColorSigned a, const Vorn3DColorSigned& b);
VORN_API Vorn3DColorSigned operator/(Vorn3DColorSigned a, const Vorn3DColorSigned& b);
VORN_API Vorn3DColorSigned operator*(Vorn3DColorSigned c, float f);
VORN_API Vorn3DColorSigned operator/(Vorn3DColorSigned c, float f);
VORN_API Vorn3DColorSigned operator*(Vorn3DColorSigned c, const double& f);
VORN_API Vorn3DColorSigned operator/(Vorn3DColorSigned c, const double& f);

/// By the sum of the channels: an order of brightness, in which two different colours may be equal.
VORN_API bool operator<(const Vorn3DColorSigned& a, const Vorn3DColorSigned& b);

static_assert(sizeof(Vorn3DColorSigned) == 16);
