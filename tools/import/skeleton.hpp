// SPDX-License-Identifier: MIT
//
// From the nodes of a source to bones whose key frames hold positions and rotations only. The scene
// is sampled: at any time a bone's pose is the rigid part of its node's matrix in our axes, so that
// scales, mirrorings and nodes that are no bones are baked in by themselves. What a scale does to
// the mesh goes into its vertices (mesh.hpp).
#pragma once

#include "tools/import/model.hpp"
#include "tools/import/report.hpp"
#include "tools/import/source.hpp"

#include <cstddef>
#include <vector>

namespace Import {

/// What of a source is played, and how densely it may be written.
struct Clip {
    /// Null: the scene as it stands.
    const SourceAnimation* animation = nullptr;
    /// (unit: seconds), on the animation's own clock
    double start = 0;
    /// (unit: seconds), above 0
    double length = 1;
    /// Keys of a track are at least this far apart: the engine moves on by one key a frame at the
    /// most, so that denser ones would leave it behind. (unit: seconds)
    double spacing = 1.0 / 30;
    /// Length of the source's unit in the game's.
    double scale = 1;
};

/// The source sampled over a clip, in our axes and units.
class Poses {
public:
    Poses(const SourceScene& scene, const Clip& clip);

    /// From a node of the source to our space, still with the source's handedness before it: what
    /// meshes take. Times count from the start of the clip, and are those of Times().
    Affine Node(std::size_t sample, std::size_t node) const;
    /// Position and rotation of a node in our space.
    const Rigid& Bone(std::size_t sample, std::size_t node) const {
        return mBones[sample * mNodes + node];
    }
    /// As the nodes stand without an animation.
    Affine RestNode(std::size_t node) const { return mToOurs * mRest[node]; }

    /// In rising order: from 0 to the clip's length, every key of the source, and enough in between
    /// to see what is not straight.
    const std::vector<double>& Times() const { return mTimes; }
    /// Whether the source has a key at a sample.
    bool Bends(std::size_t sample) const { return mBends[sample]; }
    /// Whether a node or one above it moves.
    bool Moves(std::size_t node) const { return mMoves[node]; }
    /// Whether a node itself has keys that move it.
    bool HasOwnMotion(std::size_t node) const { return mOwnMotion[node]; }
    /// The sample at which a node's scale is the one to keep: the first, unless it is smaller there
    /// than elsewhere (what grows from nothing has its size later).
    std::size_t ScaleSample(std::size_t node) const;

private:
    std::size_t mNodes;
    Affine mToOurs;
    std::vector<Affine> mRest;
    std::vector<double> mTimes;
    std::vector<bool> mBends;
    std::vector<Affine> mWorlds;
    std::vector<Rigid> mBones;
    std::vector<bool> mMoves;
    std::vector<bool> mOwnMotion;
};

/// The nodes that become bones, in order: those that `wanted` names and the moving ones above them.
std::vector<std::size_t> ChooseBones(const SourceScene& scene, const Poses& poses,
                                     const std::vector<std::size_t>& wanted);

/// Bones with names, parents and key frames; offset and bind are the mesh's to set. `extent` is the
/// size of the model, by which tolerances are measured. Every track has at least two keys with
/// rising times, and no more than it needs.
std::vector<ModelBone> BuildBones(const SourceScene& scene, const Poses& poses, const Clip& clip,
                                  const std::vector<std::size_t>& nodes, double extent);

/// Reports scales that change and thus are lost.
void ReportScales(const SourceScene& scene, const Poses& poses,
                  const std::vector<std::size_t>& nodes, Report& report);

} // namespace Import
