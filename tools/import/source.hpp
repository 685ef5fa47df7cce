// SPDX-License-Identifier: MIT
//
// A scene as its file holds it, in the file's own axes and units, free of the reader's types: what
// all steps of the conversion read, and what the check at the end compares with.
#pragma once

#include "tools/import/affine.hpp"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace Import {

inline constexpr std::size_t None = std::numeric_limits<std::size_t>::max();

struct SourceNode {
    std::string name;
    /// None for the root. Parents stand before their children.
    std::size_t parent = None;
    /// Relative to the parent, without any animation.
    Affine local;
};

struct SourceInfluence {
    std::size_t bone = 0;
    double weight = 0;
};

struct SourceBone {
    std::size_t node = 0;
    /// From the mesh to the bone as it stood when they were bound.
    Affine offset;
};

struct SourceMesh {
    std::string name;
    std::size_t material = 0;
    std::vector<Vec3> positions;
    std::vector<Vec3> normals;
    /// Origin at the bottom left; empty where the source has none.
    std::vector<std::pair<double, double>> uvs;
    std::vector<std::array<std::uint32_t, 3>> triangles;
    std::vector<SourceBone> bones;
    /// For each vertex, the weights summing to 1; empty lists where no bone holds a vertex.
    std::vector<std::vector<SourceInfluence>> influences;
    std::size_t morphTargets = 0;
    std::size_t pointsAndLines = 0;
    std::size_t uvSets = 0;
    bool colors = false;
    bool normalsMade = false;
};

/// One place where a mesh stands.
struct SourceInstance {
    std::size_t mesh = 0;
    std::size_t node = 0;
};

struct SourceTexture {
    /// As the source writes it; empty without one.
    std::string path;
    /// Bytes of a file where the source holds it itself.
    std::string embedded;
    bool wantsTransform = false;
};

struct SourceMaterial {
    std::string name;
    std::array<double, 4> diffuse{1, 1, 1, 1};
    std::array<double, 4> ambient{0, 0, 0, 1};
    std::array<double, 4> specular{0, 0, 0, 1};
    std::array<double, 4> emissive{0, 0, 0, 1};
    double shininess = 1;
    bool lighting = true;
    bool transparency = false;
    SourceTexture texture;
    /// What kinds of textures there are beyond the one, in words.
    std::vector<std::string> otherTextures;
};

template <class T>
struct SourceKey {
    /// (unit: seconds)
    double time = 0;
    T value;
    /// Change a second before and after the key; of cubic curves only.
    T in{};
    T out{};
};

/// What is between two keys: a straight way, the first key's value, or a cubic curve.
enum class Curve { Linear, Step, Cubic };

template <class T>
struct SourceTrack {
    std::vector<SourceKey<T>> keys;
    Curve curve = Curve::Linear;
};

/// How one node moves. A track without keys: as the node stands.
struct SourceChannel {
    std::size_t node = 0;
    SourceTrack<Vec3> positions;
    SourceTrack<Quat> rotations;
    SourceTrack<Vec3> scales;
};

struct SourceAnimation {
    std::string name;
    /// (unit: seconds)
    double duration = 0;
    std::vector<SourceChannel> channels;
    std::size_t morphChannels = 0;
    /// Channels of nodes that are not there.
    std::size_t strayChannels = 0;
};

struct SourceScene {
    std::string format;
    std::vector<SourceNode> nodes;
    std::vector<SourceMesh> meshes;
    std::vector<SourceInstance> instances;
    std::vector<SourceMaterial> materials;
    std::vector<SourceAnimation> animations;
    std::size_t cameras = 0;
    std::size_t lights = 0;
    /// Metres to one unit of the scene; 1 where the format does not say.
    double unit = 1;
    std::string unitText;
    std::string axesText;
    /// From the scene's axes to right-handed ones with Y up.
    Affine axes;
    /// What the reader already had to leave out.
    std::vector<std::string> readerNotes;
};

/// The matrix of every node in the scene at `time`, the plain way: each channel's keys interpolated
/// and composed, held before the first and behind the last, then down from the root. Without an
/// animation (null), as the nodes stand.
std::vector<Affine> WorldsAt(const SourceScene& scene, const SourceAnimation* animation,
                             double time);

/// Whether any of the three tracks ever leaves its first value.
bool Moves(const SourceChannel& channel);

} // namespace Import
