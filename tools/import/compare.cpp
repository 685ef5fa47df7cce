// SPDX-License-Identifier: MIT
//
// The check on ourselves: the written bones against the source's own matrices. It shares with the
// conversion neither the poses nor the baking.
#include "tools/import/models.hpp"

#include <algorithm>
#include <cmath>

namespace Import {
namespace {

Vec3 sourcePoint(const SourceScene& scene, const std::vector<Affine>& worlds,
                 const Origin& origin) {
    const SourceInstance& instance = scene.instances[origin.instance];
    const SourceMesh& mesh = scene.meshes[instance.mesh];
    const Vec3& point = mesh.positions[origin.vertex];
    if (mesh.influences.empty() || mesh.influences[origin.vertex].empty())
        return worlds[instance.node] * point;
    Vec3 sum;
    for (const SourceInfluence& influence : mesh.influences[origin.vertex]) {
        const SourceBone& bone = mesh.bones[influence.bone];
        sum = sum + worlds[bone.node] * (bone.offset * point) * influence.weight;
    }
    return sum;
}

/// Whether the time falls on one of the ramps that steps become, where nothing can be compared.
bool onRamp(const Clip& clip, double time) {
    const auto before = [&](const auto& track) {
        return track.curve == Curve::Step &&
               std::any_of(track.keys.begin(), track.keys.end(), [&](const auto& key) {
                   const double left = key.time - clip.start - time;
                   return std::abs(left) < 2 * clip.spacing;
               });
    };
    return clip.animation && std::any_of(clip.animation->channels.begin(),
                                         clip.animation->channels.end(), [&](const auto& channel) {
                                             return before(channel.positions) ||
                                                    before(channel.rotations) ||
                                                    before(channel.scales);
                                         });
}

} // namespace

Difference Compare(const SourceScene& scene, const Clip& clip, const BuiltModel& built) {
    // Off any round part of a second, where keys like to stand.
    constexpr int moments = 30;
    std::vector<double> times{0};
    if (!built.model.bones.empty()) {
        for (int i = 0; i < moments; ++i) {
            const double time = clip.length * (i + 0.37) / moments;
            if (!onRamp(clip, time))
                times.push_back(time);
        }
    }

    Difference largest;
    for (const double time : times) {
        const std::vector<Affine> worlds = WorldsAt(scene, clip.animation, clip.start + time);
        const std::vector<Rigid> skinning = SkinningAt(built.model, time);
        for (std::size_t v = 0; v < built.origins.size(); ++v) {
            const ModelVertex& vertex = built.model.vertices[v];
            const Vec3 wanted =
                scene.axes * sourcePoint(scene, worlds, built.origins[v]) * clip.scale;
            const Vec3 found = SkinVertex(built.model, skinning, vertex);
            const double distance = Length(found - Vec3{wanted.x, wanted.y, -wanted.z});
            if (distance <= largest.distance)
                continue;
            largest = {distance, time, {}};
            if (!built.model.bones.empty())
                largest.bone = built.model.bones[vertex.bones[0]].name;
        }
    }
    return largest;
}

} // namespace Import
