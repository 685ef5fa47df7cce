// SPDX-License-Identifier: MIT
//
// What an expression of an effect file is worth with the values that parameters have now.
//
//   ExpressionValue value = Evaluate(state.value, {places, block.data()});
//   device.SetRenderState(D3DRS_ALPHAREF, ToDword(value[0]));
#pragma once

#include "platform/d3dx9/effect/places.hpp"

#include <array>

namespace VornPlatform {

/// Up to a matrix, row by row. What is beyond is 0, but one number stands for all.
struct ExpressionValue {
    std::array<double, 16> numbers = {};
    UINT count = 1;
    UINT columns = 1; // of a matrix; else as many as count

    double operator[](UINT i) const { return i < count ? numbers[i] : count == 1 ? numbers[0] : 0; }
};

struct ParameterValues {
    const Places& places;
    const std::byte* block;
};

/// A name that is none, and an element that is not there, is 0.
ExpressionValue Evaluate(const Expression& expression, const ParameterValues& values);

/// Whole numbers by their value, negative ones from the top; 0 for what is beyond.
DWORD ToDword(double number);

} // namespace VornPlatform
