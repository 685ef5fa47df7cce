// SPDX-License-Identifier: MIT
#include "vorn/math/color.hpp"

#include <limits>

namespace {

template <typename Operation>
Vorn3DColorSigned& Combine(Vorn3DColorSigned& c, const Vorn3DColorSigned& with,
                           Operation operation) {
    // 64 bits hold every sum, difference, product and quotient of two channels; what is kept wraps
    // at 32.
    const auto channel = [&](std::int64_t x, std::int64_t y) {
        return static_cast<std::int32_t>(operation(x, y));
    };
    c = {channel(c.a, with.a), channel(c.r, with.r), channel(c.g, with.g), channel(c.b, with.b)};
    return c;
}

template <typename Real>
std::int32_t Truncated(Real x) {
    constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
    if (x != x)
        return 0;
    if (x <= static_cast<Real>(lowest))
        return lowest;
    if (x >= static_cast<Real>(highest))
        return highest;
    return static_cast<std::int32_t>(x);
}

template <typename Real, typename Operation>
Vorn3DColorSigned& Scale(Vorn3DColorSigned& c, Operation operation) {
    const auto channel = [&](std::int32_t x) {
        return Truncated<Real>(operation(static_cast<Real>(x)));
    };
    c = {channel(c.a), channel(c.r), channel(c.g), channel(c.b)};
    return c;
}

std::int64_t Brightness(const Vorn3DColorSigned& c) {
    return std::int64_t{c.a} + c.r + c.g + c.b;
}

} // namespace

Vorn3DColorSigned& Vorn3DColorSigned::operator+=(const Vorn3DColorSigned& c) {
    return Combine(*this, c, [](auto x, auto y) { return x + y; });
}

Vorn3DColorSigned& Vorn3DColorSigned::operator-=(const Vorn3DColorSigned& c) {
    return Combine(*this, c, [](auto x, auto y) { return x - y; });
}

Vorn3DColorSigned& Vorn3DColorSigned::operator*=(const Vorn3DColorSigned& c) {
    return Combine(*this, c, [](auto x, auto y) { return x * y; });
}

Vorn3DColorSigned& Vorn3DColorSigned::operator/=(const Vorn3DColorSigned& c) {
    return Combine(*this, c, [](auto x, auto y) { return x / y; });
}

Vorn3DColorSigned& Vorn3DColorSigned::operator*=(float f) {
    return Scale<float>(*this, [f](float x) { return x * f; });
}

Vorn3DColorSigned& Vorn3DColorSigned::operator/=(float f) {
    return Scale<float>(*this, [f](float x) { return x / f; });
}

Vorn3DColorSigned& Vorn3DColorSigned::operator*=(const double& f) {
    return Scale<double>(*this, [f](double x) { return x * f; });
}

Vorn3DColorSigned& Vorn3DColorSigned::operator/=(const double& f) {
    return Scale<double>(*this, [f](double x) { return x / f; });
}

Vorn3DColorSigned operator+(Vorn3DColorSigned a, const Vorn3DColorSigned& b) {
    return a += b;
}

Vorn3DColorSigned operator-(Vorn3DColorSigned a, const Vorn3DColorSigned& b) {
    return a -= b;
}

Vorn3DColorSigned operator*(Vorn3DColorSigned a, const Vorn3DColorSigned& b) {
    return a *= b;
}

Vorn3DColorSigned operator/(Vorn3DColorSigned a, const Vorn3DColorSigned& b) {
    return a /= b;
}

Vorn3DColorSigned operator*(Vorn3DColorSigned c, float f) {
    return c *= f;
}

Vorn3DColorSigned operator/(Vorn3DColorSigned c, float f) {
    return c /= f;
}

Vorn3DColorSigned operator*(Vorn3DColorSigned c, const double& f) {
    return c *= f;
}

Vorn3DColorSigned operator/(Vorn3DColorSigned c, const double& f) {
    return c /= f;
}

bool operator<(const Vorn3DColorSigned& a, const Vorn3DColorSigned& b) {
    return Brightness(a) < Brightness(b);
}
