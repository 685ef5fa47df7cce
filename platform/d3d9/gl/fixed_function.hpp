// SPDX-License-Identifier: MIT
//
// The fixed function as the stages of a program: what differs between programs is the key, what
// differs between draws is uniform. Either stage may have a shader of the host in its place.
#pragma once

#include "platform/d3d9/state.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace VornPlatform {

enum class Lighting : std::uint8_t { Off, Black, Lit };

/// Keys that draw the same are the same: fields that have no say are 0.
struct FixedFunctionKey {
    bool hasColor = false, hasCoordinates = false;
    bool textured = false, transformed = false;
    Lighting lighting = Lighting::Off;
    // D3DTOP and D3DTA. Without a texture an operation that needs it gives the vertex's value.
    std::uint8_t colorOp = 0, colorArg1 = 0, colorArg2 = 0;
    std::uint8_t alphaOp = 0, alphaArg1 = 0, alphaArg2 = 0;
    std::uint8_t alphaTest = 0; // D3DCMP, 0 without

    bool operator==(const FixedFunctionKey&) const = default;
    std::uint64_t Packed() const;
};

struct FormatTraits {
    bool hasNormal, hasColor, hasCoordinates;
};
FixedFunctionKey KeyOf(const State& state, const FormatTraits& format);

/// Locations of the uniforms.
namespace Uniform {
enum : int {
    WorldViewProjection = 0,
    WorldView = 1,
    TextureMatrix = 2,
    AlphaReference = 3,
    LightCount = 4,
    Lights = 5,
    // Behind the lights, each of which takes its places.
    Place = 64,
    // Of draws that are merged.
    FirstRecord = 65,
    RecordShift = 66
};
} // namespace Uniform

/// The last line of every vertex shader: from Direct3D's clip space to where the pixels are, by
/// OutputState::Place.
inline constexpr const char* PlacePosition =
    "    gl_Position.xy = gl_Position.xy * vp_place.xy + gl_Position.w * vp_place.zw;\n";

/// Before a vertex shader of draws that are merged: VP_RECORD is the number of the vertex's draw.
inline constexpr const char* MergedRecordSource =
    "layout(location = 65) uniform int vp_firstRecord;\n"
    "layout(location = 66) uniform int vp_recordShift;\n"
    "#define VP_RECORD (vp_firstRecord + (gl_VertexID >> vp_recordShift))\n";

/// What goes from stage to stage, four numbers each: `vp_v10_0` for the colour.
struct Varying {
    BYTE usage, index;

    bool operator==(const Varying&) const = default;
    std::string Name() const {
        return "vp_v" + std::to_string(usage) + "_" + std::to_string(index);
    }
};
inline constexpr Varying VertexColor = {D3DDECLUSAGE_COLOR, 0};
inline constexpr Varying TextureCoordinates = {D3DDECLUSAGE_TEXCOORD, 0};

/// Behind the declarations of what all programs have. The vertex stage writes all of the
/// varyings, which are none but the two above.
/// @param blocks as many draws are one, with a matrix each; 0: a draw by itself. Only of a key that
///               is neither lit nor has its coordinates transformed.
std::string FixedVertexSource(const FixedFunctionKey& key, const std::vector<Varying>& varyings,
                              UINT blocks);
/// What is not among the varyings is white, or 0.
std::string FixedPixelSource(const FixedFunctionKey& key, const std::vector<Varying>& varyings);
/// The last lines of every pixel stage.
std::string AlphaTestSource(const FixedFunctionKey& key);

} // namespace VornPlatform
