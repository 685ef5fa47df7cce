// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/math/vector3.hpp"

#include <cstdint>

namespace Vorn {

/// Opaque packed colours:
///   31..24 alpha   23..16 red   15..8 green   7..0 blue
enum COLORS : std::uint32_t {};

/// A debug line that waits to be drawn, in the world.
struct Line {
    Vector3 start;
    Vector3 end;
    COLORS color;

    Line(const Vector3& a, const Vector3& b, const COLORS& c) : start(a), end(b), color(c) {}
};

} // namespace Vorn
