// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/fwd.hpp"

#include <d3dx9.h>

namespace Vorn {

/// Two floats: a position on the screen or in a texture.
class VORN_API Point2 {
public:
    float x = 0.0f;
    float y = 0.0f;

    constexpr Point2() = default;
    constexpr Point2(float ax, float ay) : x(ax), y(ay) {}

    operator D3DXVECTOR2() const { return {x, y}; }

    Point2& operator-=(const Point2& p) {
        x -= p.x;
        y -= p.y;
        return *this;
    }
};

inline Point2 operator-(Point2 a, const Point2& b) {
    return a -= b;
}

static_assert(sizeof(Point2) == sizeof(D3DXVECTOR2));

} // namespace Vorn
