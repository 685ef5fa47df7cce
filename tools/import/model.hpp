// SPDX-License-Identifier: MIT
//
// One model file in memory, in the engine's axes, and its bytes. docs/import.md has the layout.
#pragma once

#include "tools/import/affine.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Import {

inline constexpr std::size_t MaxBones = 256;
/// The longest name of a bone, without its end.
inline constexpr std::size_t MaxBoneName = 107;

/// No padding inside: vertices are compared by their bytes.
struct ModelVertex {
    std::array<float, 3> position{};
    std::array<float, 3> normal{};
    /// Origin at the top left.
    std::array<float, 2> uv{};
    std::array<float, 4> weights{};
    std::array<std::uint8_t, 4> bones{};
};
static_assert(sizeof(ModelVertex) == 52);

struct ModelKey {
    /// (unit: seconds)
    float time = 0;
    std::array<float, 3> position{};
    std::array<float, 4> rotation{0, 0, 0, 1};
};
static_assert(sizeof(ModelKey) == 32);

struct ModelBone {
    std::string name;
    /// -1 for a root; else before this bone.
    std::int32_t parent = -1;
    /// From the bone to the model, as both stand in the vertices.
    Rigid bind;
    /// From the model to the bone: what the engine applies before the bone's pose.
    Rigid offset;
    std::vector<ModelKey> keys;
};

struct Model {
    /// Without directory and ending.
    std::string name;
    std::size_t material = 0;
    std::vector<ModelVertex> vertices;
    /// Three to a triangle, clockwise seen from outside.
    std::vector<std::uint32_t> indices;
    /// Empty: a static model.
    std::vector<ModelBone> bones;
    /// (unit: seconds)
    float duration = 0;
};

/// The whole file.
std::string EncodeModel(const Model& model);

/// The skinning matrix of every bone at `time`, by the engine's rule: the interval of keys around
/// `time`, positions interpolated along the line and rotations along the arc, parents first.
std::vector<Rigid> SkinningAt(const Model& model, double time);

/// A vertex as those matrices move it.
Vec3 SkinVertex(const Model& model, const std::vector<Rigid>& skinning, const ModelVertex& vertex);

} // namespace Import
