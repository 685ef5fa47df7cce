// SPDX-License-Identifier: MIT
#include "tools/import/skeleton.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace Import {
namespace {

/// The mirroring of Z carries right-handed coordinates to ours. It is its own inverse.
const Affine mirror{{1, 0, 0, 0, 1, 0, 0, 0, -1}, {}};

/// Samples between keys, for rotations and scales that do not run straight: this many to the
/// shortest distance of two keys, while the matrices of all nodes stay within a bound.
constexpr double samplesToSpacing = 4;
constexpr std::size_t mostMatrices = 2'000'000;

/// Where ways of the source bend: its keys, in no order.
std::vector<double> bends(const Clip& clip) {
    std::vector<double> times;
    const auto add = [&](const auto& track) {
        for (const auto& key : track.keys) {
            times.push_back(key.time - clip.start);
            // A step becomes a ramp as short as keys may be apart, and ends where it should.
            if (track.curve == Curve::Step)
                times.push_back(key.time - clip.start - clip.spacing);
        }
    };
    if (!clip.animation)
        return times;
    for (const SourceChannel& channel : clip.animation->channels) {
        if (!Moves(channel))
            continue;
        add(channel.positions);
        add(channel.rotations);
        add(channel.scales);
    }
    return times;
}

/// Times that are closer together are one.
double sameTime(const Clip& clip) {
    return std::max(clip.length * 1e-6, 1e-6);
}

std::vector<double> sampleTimes(const Clip& clip, std::size_t nodes) {
    std::vector<double> times = bends(clip);
    if (clip.animation) {
        const double most = static_cast<double>(std::max<std::size_t>(mostMatrices / nodes, 16));
        const double steps =
            std::clamp(std::ceil(clip.length / clip.spacing * samplesToSpacing), 8.0, most);
        for (double i = 1; i < steps; ++i)
            times.push_back(clip.length * i / steps);
    }
    std::erase_if(times, [&](double time) { return !(time > 0 && time < clip.length); });
    times.insert(times.end(), {0, clip.length});
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end(),
                            [&](double a, double b) { return b - a < sameTime(clip); }),
                times.end());
    // The end is exact, even where a key stood just before it.
    times.back() = clip.length;
    return times;
}

/// Which of the samples stand where the source bends.
std::vector<bool> bendsAt(const std::vector<double>& samples, const Clip& clip) {
    std::vector<bool> bend(samples.size());
    for (const double time : bends(clip)) {
        const auto near = std::lower_bound(samples.begin(), samples.end(), time - sameTime(clip));
        if (near != samples.end() && *near <= time + sameTime(clip))
            bend[static_cast<std::size_t>(near - samples.begin())] = true;
    }
    return bend;
}

/// The nearest node above that is a bone, or None.
std::size_t boneAbove(const SourceScene& scene, const std::vector<std::size_t>& boneOfNode,
                      std::size_t node) {
    for (std::size_t up = scene.nodes[node].parent; up != None; up = scene.nodes[up].parent) {
        if (boneOfNode[up] != None)
            return boneOfNode[up];
    }
    return None;
}

/// The keys of a track, from the left: each as far from the last as a straight way stays within the
/// tolerance, but no nearer than keys may be.
class KeyFit {
public:
    KeyFit(const Poses& poses, const std::vector<Rigid>& locals, double spacing, double extent,
           double tolerance)
        : mPoses(poses), mTimes(poses.Times()), mLocals(locals), mSpacing(spacing * (1 - 1e-6)),
          mExtent(extent), mTolerance(tolerance) {}

    std::vector<std::size_t> Fit() const {
        std::vector<std::size_t> kept{0};
        while (kept.back() != last())
            kept.push_back(next(kept.back()));
        return kept;
    }

private:
    std::size_t last() const { return mTimes.size() - 1; }

    std::size_t next(std::size_t from) const {
        // The nearest that may follow, and the last one behind which there is room for the end.
        std::size_t low = from + 1;
        while (low < last() && mTimes[low] - mTimes[from] < mSpacing)
            ++low;
        std::size_t high = last();
        while (high > low && mTimes[last()] - mTimes[high] < mSpacing)
            --high;
        if (mTimes[last()] - mTimes[low] < mSpacing || straight(from, last()))
            return last();

        // Doubling, then halving: the first stretch that bends is found without walking the rest.
        std::size_t good = low;
        std::size_t step = 1;
        while (good < high && straight(from, std::min(good + step, high))) {
            good = std::min(good + step, high);
            step *= 2;
        }
        std::size_t bad = std::min(good + step, high);
        while (bad > good + 1) {
            const std::size_t middle = good + (bad - good) / 2;
            (straight(from, middle) ? good : bad) = middle;
        }
        // Back to where the source bends: a key behind it would leave too little room for one at
        // the next bend.
        for (std::size_t at = good; at >= low; --at) {
            if (mPoses.Bends(at))
                return at;
        }
        return good;
    }

    bool straight(std::size_t from, std::size_t to) const {
        for (std::size_t i = from + 1; i < to; ++i) {
            if (errorAt(from, i, to) > mTolerance)
                return false;
        }
        return true;
    }

    /// In parts of the model's size: the position, and what the rotation does at the model's rim.
    double errorAt(std::size_t from, std::size_t at, std::size_t to) const {
        const double part = (mTimes[at] - mTimes[from]) / (mTimes[to] - mTimes[from]);
        const Vec3 position = Lerp(mLocals[from].position, mLocals[to].position, part);
        const Quat rotation = Slerp(mLocals[from].rotation, mLocals[to].rotation, part);
        return std::max(Length(position - mLocals[at].position) / mExtent,
                        AngleBetween(rotation, mLocals[at].rotation));
    }

    const Poses& mPoses;
    const std::vector<double>& mTimes;
    const std::vector<Rigid>& mLocals;
    double mSpacing;
    double mExtent;
    double mTolerance;
};

ModelKey key(double time, const Rigid& local) {
    const auto narrow = [](double number) { return static_cast<float>(number); };
    const Vec3& p = local.position;
    const Quat& q = local.rotation;
    return {narrow(time),
            {narrow(p.x), narrow(p.y), narrow(p.z)},
            {narrow(q.x), narrow(q.y), narrow(q.z), narrow(q.w)}};
}

} // namespace

Poses::Poses(const SourceScene& scene, const Clip& clip)
    : mNodes(scene.nodes.size()), mToOurs(mirror * Scaling(clip.scale) * scene.axes),
      mRest(WorldsAt(scene, nullptr, 0)), mTimes(sampleTimes(clip, mNodes)),
      mBends(bendsAt(mTimes, clip)), mMoves(mNodes), mOwnMotion(mNodes) {
    if (clip.animation) {
        for (const SourceChannel& channel : clip.animation->channels)
            mOwnMotion[channel.node] = mOwnMotion[channel.node] || Import::Moves(channel);
    }
    for (std::size_t i = 0; i < mNodes; ++i) {
        const std::size_t parent = scene.nodes[i].parent;
        mMoves[i] = mOwnMotion[i] || (parent != None && mMoves[parent]);
    }

    mWorlds.reserve(mTimes.size() * mNodes);
    mBones.reserve(mTimes.size() * mNodes);
    for (std::size_t s = 0; s < mTimes.size(); ++s) {
        // The loop never shows its very end: what jumps there would be seen as a ramp before it.
        const double time = std::min(mTimes[s], clip.length * (1 - 1e-9));
        const std::vector<Affine> worlds = WorldsAt(scene, clip.animation, clip.start + time);
        for (std::size_t i = 0; i < mNodes; ++i) {
            mWorlds.push_back(worlds[i]);
            Rigid bone;
            // Where a scale has squeezed a bone to nothing, it keeps the way it stood.
            if (!NearestRigid(mToOurs * worlds[i] * mirror, bone) && s > 0)
                bone.rotation = Bone(s - 1, i).rotation;
            // Of the two quaternions of a rotation, the one near the last: straight to the next.
            if (s > 0 && Dot(bone.rotation, Bone(s - 1, i).rotation) < 0)
                bone.rotation = {-bone.rotation.x, -bone.rotation.y, -bone.rotation.z,
                                 -bone.rotation.w};
            mBones.push_back(bone);
        }
    }
}

Affine Poses::Node(std::size_t sample, std::size_t node) const {
    return mToOurs * mWorlds[sample * mNodes + node];
}

std::size_t Poses::ScaleSample(std::size_t node) const {
    std::size_t best = 0;
    const auto size = [&](std::size_t s) { return std::abs(Determinant(Node(s, node))); };
    for (std::size_t s = 1; s < mTimes.size(); ++s) {
        if (size(s) > size(best) * 1.01)
            best = s;
    }
    return best;
}

std::vector<std::size_t> ChooseBones(const SourceScene& scene, const Poses& poses,
                                     const std::vector<std::size_t>& wanted) {
    std::vector<bool> chosen(scene.nodes.size());
    for (const std::size_t node : wanted) {
        chosen[node] = true;
        for (std::size_t up = scene.nodes[node].parent; up != None; up = scene.nodes[up].parent) {
            // The reader's own helpers about a pivot turn and move one bone: they are baked.
            if (poses.HasOwnMotion(up) &&
                scene.nodes[up].name.find("$AssimpFbx$") == std::string::npos)
                chosen[up] = true;
        }
    }
    std::vector<std::size_t> nodes;
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        if (chosen[i])
            nodes.push_back(i);
    }
    return nodes;
}

std::vector<ModelBone> BuildBones(const SourceScene& scene, const Poses& poses, const Clip& clip,
                                  const std::vector<std::size_t>& nodes, double extent) {
    std::vector<std::size_t> boneOfNode(scene.nodes.size(), None);
    for (std::size_t b = 0; b < nodes.size(); ++b)
        boneOfNode[nodes[b]] = b;

    // What the bones of a limb are off adds up from its root to its tip.
    std::vector<std::size_t> depths;
    for (const std::size_t node : nodes) {
        const std::size_t parent = boneAbove(scene, boneOfNode, node);
        depths.push_back(parent == None ? 1 : depths[parent] + 1);
    }
    const double tolerance =
        5e-5 / static_cast<double>(*std::max_element(depths.begin(), depths.end()));

    const std::vector<double>& times = poses.Times();
    std::vector<ModelBone> bones;
    for (const std::size_t node : nodes) {
        ModelBone bone;
        bone.name = scene.nodes[node].name;
        const std::size_t parent = boneAbove(scene, boneOfNode, node);
        bone.parent = parent == None ? -1 : static_cast<std::int32_t>(parent);

        std::vector<Rigid> locals;
        for (std::size_t s = 0; s < times.size(); ++s) {
            const Rigid& world = poses.Bone(s, node);
            locals.push_back(parent == None ? world
                                            : Inverse(poses.Bone(s, nodes[parent])) * world);
        }
        for (const std::size_t s : KeyFit(poses, locals, clip.spacing, extent, tolerance).Fit())
            bone.keys.push_back(key(times[s], locals[s]));
        bones.push_back(std::move(bone));
    }
    return bones;
}

void ReportScales(const SourceScene& scene, const Poses& poses,
                  const std::vector<std::size_t>& nodes, Report& report) {
    // The stretch that is left when the rotation is taken off.
    const auto stretch = [&](std::size_t sample, std::size_t node) {
        Affine back = ToAffine(Inverse(Rigid{{}, poses.Bone(sample, node).rotation}));
        return back * poses.Node(sample, node);
    };
    for (const std::size_t node : nodes) {
        const std::size_t kept = poses.ScaleSample(node);
        const Affine reference = stretch(kept, node);
        const double size = std::cbrt(std::abs(Determinant(reference)));
        double largest = 0;
        std::size_t where = 0;
        for (std::size_t s = 0; s < poses.Times().size(); ++s) {
            const double difference = LinearDifference(reference, stretch(s, node));
            if (difference > largest) {
                largest = difference;
                where = s;
            }
        }
        if (largest > 1e-3 * size)
            report.warnings.push_back(fmt::format(
                "the scale of bone \"{}\" changes (most at {:.2f} s): a key frame holds no scale, "
                "so it keeps the size that it has at {:.2f} s",
                scene.nodes[node].name, poses.Times()[where], poses.Times()[kept]));
    }
}

} // namespace Import
