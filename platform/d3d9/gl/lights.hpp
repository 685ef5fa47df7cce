// SPDX-License-Identifier: MIT
//
// The lights of a draw as the vertex shader takes them, in the space of the view.
#pragma once

#include "platform/d3d9/state.hpp"

#include <array>

namespace VornPlatform {

inline constexpr std::size_t LightVectors = 5; // a light; fixed_function.cpp reads them

struct PackedLights {
    int count = 0; // that are on; the rest is zero
    std::array<std::array<float, 4>, MaxLights* LightVectors> vectors = {};

    bool operator==(const PackedLights&) const = default;
};

bool AnyLightOn(const State& state);
PackedLights PackLights(const std::array<Light, MaxLights>& lights, const D3DMATRIX& view);

} // namespace VornPlatform
