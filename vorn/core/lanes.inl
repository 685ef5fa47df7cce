// SPDX-License-Identifier: MIT
//
// Takes in VORN_LANES_FILE twice; see lanes.hpp.

namespace Four {
#define VORN_LANES 4
#include "vorn/core/lane_types.inl"
#include VORN_LANES_FILE
#undef VORN_LANES
} // namespace Four

#if VORN_HAS_EIGHT_LANES
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2")
#endif
namespace Eight {
#define VORN_LANES 8
#include "vorn/core/lane_types.inl"
#include VORN_LANES_FILE
#undef VORN_LANES
} // namespace Eight
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
#endif
#undef VORN_LANES_FILE
