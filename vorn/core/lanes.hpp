// SPDX-License-Identifier: MIT
//
// Code that is compiled twice: for four floats at a time, which every machine has, and for eight,
// which take AVX2. It stands in a file of its own that knows VORN_LANES and what lane_types.inl
// declares, and lanes.inl puts it into the namespaces Four and Eight:
//
//   #define VORN_LANES_FILE "vorn/physics/pair_lanes.inl"
//   #include "vorn/core/lanes.inl"
//   ...
//   #if VORN_HAS_EIGHT_LANES
//       if (__builtin_cpu_supports("avx2"))
//           return Eight::Judge(pairs);
//   #endif
//       return Four::Judge(pairs);
//
// Lanes never meet, and no product is fused with a sum, so that both give the same bits.
#pragma once

#include "vorn/core/float4.hpp"

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#define VORN_HAS_EIGHT_LANES 1
#else
#define VORN_HAS_EIGHT_LANES 0
#endif
