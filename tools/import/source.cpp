// SPDX-License-Identifier: MIT
#include "tools/import/source.hpp"

#include <algorithm>

namespace Import {
namespace {

Vec3 between(const Vec3& a, const Vec3& b, double t) {
    return Lerp(a, b, t);
}

Quat between(const Quat& a, const Quat& b, double t) {
    return Slerp(a, b, t);
}

/// Of a cubic curve, what two keys and their two tangents weigh.
std::array<double, 4> hermite(double t, double seconds) {
    const double t2 = t * t;
    const double t3 = t2 * t;
    return {2 * t3 - 3 * t2 + 1, 3 * t2 - 2 * t3, (t3 - 2 * t2 + t) * seconds, (t3 - t2) * seconds};
}

Vec3 mixed(const std::array<double, 4>& w, const Vec3& a, const Vec3& b, const Vec3& c,
           const Vec3& d) {
    return a * w[0] + b * w[1] + c * w[2] + d * w[3];
}

Quat mixed(const std::array<double, 4>& w, const Quat& a, const Quat& b, const Quat& c,
           const Quat& d) {
    return Normalized({a.x * w[0] + b.x * w[1] + c.x * w[2] + d.x * w[3],
                       a.y * w[0] + b.y * w[1] + c.y * w[2] + d.y * w[3],
                       a.z * w[0] + b.z * w[1] + c.z * w[2] + d.z * w[3],
                       a.w * w[0] + b.w * w[1] + c.w * w[2] + d.w * w[3]});
}

template <class T>
T valueAt(const SourceTrack<T>& track, double time) {
    const auto next =
        std::upper_bound(track.keys.begin(), track.keys.end(), time,
                         [](double t, const SourceKey<T>& key) { return t < key.time; });
    if (next == track.keys.begin())
        return next->value;
    const auto previous = next - 1;
    if (next == track.keys.end() || track.curve == Curve::Step)
        return previous->value;
    const double seconds = next->time - previous->time;
    const double part = (time - previous->time) / seconds;
    if (track.curve == Curve::Linear)
        return between(previous->value, next->value, part);
    return mixed(hermite(part, seconds), previous->value, next->value, previous->out, next->in);
}

/// A node's matrix taken apart as far as it goes, for lists that a channel lacks.
void decompose(const Affine& a, Rigid& rigid, Vec3& scale) {
    NearestRigid(a, rigid);
    const Affine stretch = ToAffine(Inverse(Rigid{{}, rigid.rotation})) * a;
    scale = {stretch.m[0], stretch.m[4], stretch.m[8]};
}

Affine channelAt(const SourceChannel& channel, const Affine& still, double time) {
    Rigid rigid;
    Vec3 scale;
    decompose(still, rigid, scale);
    if (!channel.positions.keys.empty())
        rigid.position = valueAt(channel.positions, time);
    if (!channel.rotations.keys.empty())
        rigid.rotation = valueAt(channel.rotations, time);
    if (!channel.scales.keys.empty())
        scale = valueAt(channel.scales, time);
    return Compose(rigid.position, rigid.rotation, scale);
}

} // namespace

std::vector<Affine> WorldsAt(const SourceScene& scene, const SourceAnimation* animation,
                             double time) {
    std::vector<Affine> worlds;
    worlds.reserve(scene.nodes.size());
    for (const SourceNode& node : scene.nodes)
        worlds.push_back(node.local);
    if (animation) {
        for (const SourceChannel& channel : animation->channels)
            worlds[channel.node] = channelAt(channel, scene.nodes[channel.node].local, time);
    }
    for (std::size_t i = 0; i < worlds.size(); ++i) {
        if (scene.nodes[i].parent != None)
            worlds[i] = worlds[scene.nodes[i].parent] * worlds[i];
    }
    return worlds;
}

bool Moves(const SourceChannel& channel) {
    const auto far = [](const Vec3& a, const Vec3& b) {
        return Length(a - b) > 1e-6 * (1 + Length(a));
    };
    const auto turned = [](const Quat& a, const Quat& b) { return AngleBetween(a, b) > 1e-6; };
    const auto moves = [](const auto& track, const auto& differ) {
        return std::any_of(track.keys.begin(), track.keys.end(), [&](const auto& key) {
            return track.curve == Curve::Cubic || differ(track.keys.front().value, key.value);
        });
    };
    return moves(channel.positions, far) || moves(channel.scales, far) ||
           moves(channel.rotations, turned);
}

} // namespace Import
