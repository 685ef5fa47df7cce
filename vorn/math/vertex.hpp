// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"

#include <cstddef>
#include <cstdint>

namespace Vorn {

/// The vertex of all meshes, laid out as the vertex stream reads it.
struct VORN_API Vertex_UTx {
    float x = 0.0f, y = 0.0f, z = 0.0f;
    float nx = 0.0f, ny = 0.0f, nz = 0.0f;
    /// Packed: 31..24 alpha   23..16 red   15..8 green   7..0 blue
    std::uint32_t color = 0xFFFFFFFFu;
    float u = 0.0f, v = 0.0f;
    float weights[4] = {};
    std::uint8_t bones[4] = {};

    Vertex_UTx() = default;
    Vertex_UTx(float ax, float ay, float az, float anx, float any, float anz, float au, float av)
        : x(ax), y(ay), z(az), nx(anx), ny(any), nz(anz), u(au), v(av) {}
    Vertex_UTx(const Vertex_UTx&) = default;
    /// Takes over position, normal, colour, u and v; the target's weights and bones stay.
    Vertex_UTx& operator=(const Vertex_UTx& vertex);
};

static_assert(sizeof(Vertex_UTx) == 56);
static_assert(offsetof(Vertex_UTx, nx) == 12 && offsetof(Vertex_UTx, color) == 24);
static_assert(offsetof(Vertex_UTx, u) == 28 && offsetof(Vertex_UTx, weights) == 36);
static_assert(offsetof(Vertex_UTx, bones) == 52);

} // namespace Vorn
