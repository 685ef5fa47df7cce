// SPDX-License-Identifier: MIT
//
// The limits of the device, all in one place.
#pragma once

#include <windows.h>

namespace VornPlatform {

inline constexpr UINT MaxTextures = 16; // stages and samplers
inline constexpr UINT MaxLights = 8;
inline constexpr UINT MaxTextureSize = 16384;
inline constexpr UINT MaxElements = 16; // of a vertex declaration
inline constexpr UINT MaxStride = 2048; // of vertices (unit: bytes)
// The most that a buffer takes, and the most primitives of one draw.
inline constexpr UINT MaxBufferSize = 0x7fffffff;
inline constexpr UINT MaxPrimitives = 0xffffff;

} // namespace VornPlatform
