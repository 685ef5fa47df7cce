// SPDX-License-Identifier: MIT
//
// From the meshes of a source to models: all places of meshes with one material become one model,
// static ones apart from those that bones move.
#pragma once

#include "tools/import/model.hpp"
#include "tools/import/report.hpp"
#include "tools/import/skeleton.hpp"
#include "tools/import/source.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Import {

/// Which vertex of the source a vertex of a model was.
struct Origin {
    std::size_t instance = 0;
    std::uint32_t vertex = 0;
};

struct BuiltModel {
    Model model;
    /// One to a vertex.
    std::vector<Origin> origins;
};

/// The models, still without names. Raises std::runtime_error where there is nothing to draw or a
/// model needs more than MaxBones bones.
std::vector<BuiltModel> BuildModels(const SourceScene& scene, const Poses& poses, const Clip& clip,
                                    Report& report);

/// Merges equal vertices and orders triangles and vertices as a graphics card likes them.
void Optimize(BuiltModel& built);

/// The largest distance between a vertex of the model and where the source puts it, over times
/// spread on the clip.
struct Difference {
    double distance = 0;
    /// (unit: seconds)
    double time = 0;
    /// What moves that vertex most, empty for a static model.
    std::string bone;
};
Difference Compare(const SourceScene& scene, const Clip& clip, const BuiltModel& built);

/// The diagonal of the model's box.
double Extent(const Model& model);

} // namespace Import
