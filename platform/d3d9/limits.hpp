// SPDX-License-Identifier: MIT
//
// The limits of the device, all in one place.
#pragma once

#include <windows.h>

#include <cstdint>

namespace VornPlatform {

inline constexpr UINT MaxTextures = 16; // stages and samplers
// Of Direct3D; beyond the first they are always empty.
inline constexpr UINT MaxStreams = 16, MaxTargets = 4;
inline constexpr UINT MaxLights = 8;
// Of four floats, for each of the two stages. Direct3D has 256; these hold the matrices of 256
// bones.
inline constexpr UINT MaxRegisters = 1100;
inline constexpr UINT MaxTextureSize = 16384;
inline constexpr UINT MaxElements = 16; // of a vertex declaration
inline constexpr UINT MaxStride = 2048; // of vertices (unit: bytes)
// The most that a buffer takes, and the most primitives of one draw.
inline constexpr UINT MaxBufferSize = 0x7fffffff;
inline constexpr UINT MaxPrimitives = 0xffffff;

inline constexpr bool IsTextureSize(std::uint64_t width, std::uint64_t height) {
    return width >= 1 && width <= MaxTextureSize && height >= 1 && height <= MaxTextureSize;
}
inline constexpr bool IsDepthValue(float z) {
    return z >= 0 && z <= 1; // no NaN either
}

} // namespace VornPlatform
