// SPDX-License-Identifier: MIT
#include "tools/import/models.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

namespace Import {
namespace {

/// Numbers beyond this are none that a scene can mean, and would leave no room in floats.
constexpr double farthest = 1e15;

/// The offsets of bones, common to the meshes that were bound in the same pose.
using Binding = std::map<std::size_t, Rigid>;

/// One place of a mesh on its way into a model.
struct Part {
    std::size_t instance = 0;
    bool skinned = false;
    std::size_t binding = 0;
    /// For each bone of the mesh, and one more for the mesh's own node: what the bone makes of a
    /// point before its offset comes. Equal for all of them where the source is sound. A static
    /// part has the one of its node only.
    std::vector<Affine> bakes;
};

class Builder {
public:
    Builder(const SourceScene& scene, const Poses& poses, const Clip& clip, Report& report)
        : mScene(scene), mPoses(poses), mClip(clip), mReport(report) {}

    std::vector<BuiltModel> Build() {
        gatherParts();
        const std::vector<std::size_t> nodes = ChooseBones(mScene, mPoses, mWanted);
        const double extent = extentOfScene();
        ReportScales(mScene, mPoses, nodes, mReport);

        // One skeleton for all models, as long as it fits.
        std::vector<BuiltModel> models;
        for (const auto& [key, parts] : mGroups) {
            BuiltModel built;
            built.model.material = key.material;
            std::vector<std::size_t> own = nodes;
            if (nodes.size() > MaxBones)
                own = ChooseBones(mScene, mPoses, wantedBy(parts));
            if (key.skinned)
                skeleton(built.model, own, key, extent);
            for (const Part& part : parts)
                append(built, part, own);
            if (!built.model.indices.empty())
                models.push_back(std::move(built));
        }
        reportWeights();
        if (models.empty())
            throw std::runtime_error("it holds no triangles");
        return models;
    }

private:
    struct Group {
        std::size_t material = 0;
        bool skinned = false;
        std::size_t binding = 0;
        auto operator<=>(const Group&) const = default;
    };

    const SourceMesh& meshOf(const Part& part) const {
        return mScene.meshes[mScene.instances[part.instance].mesh];
    }

    std::size_t nodeOf(const Part& part, std::size_t bone) const {
        const SourceMesh& mesh = meshOf(part);
        return bone < mesh.bones.size() ? mesh.bones[bone].node
                                        : mScene.instances[part.instance].node;
    }

    static Affine offsetOf(const SourceMesh& mesh, std::size_t bone) {
        return bone < mesh.bones.size() ? mesh.bones[bone].offset : Affine{};
    }

    /// Which of a mesh's bones hold any vertex; one more for vertices that none holds.
    static std::vector<std::size_t> usedBones(const SourceMesh& mesh) {
        std::set<std::size_t> used;
        for (std::size_t v = 0; v < mesh.positions.size(); ++v) {
            if (mesh.influences.empty() || mesh.influences[v].empty())
                used.insert(mesh.bones.size());
            else
                for (const SourceInfluence& influence : mesh.influences[v])
                    used.insert(influence.bone);
        }
        return {used.begin(), used.end()};
    }

    void gatherParts() {
        std::set<std::size_t> skinnedMeshes;
        for (std::size_t i = 0; i < mScene.instances.size(); ++i) {
            const SourceInstance& instance = mScene.instances[i];
            const SourceMesh& mesh = mScene.meshes[instance.mesh];
            if (mesh.triangles.empty())
                continue;
            Part part;
            part.instance = i;
            part.skinned = !mesh.bones.empty() || mPoses.Moves(instance.node);
            if (!mesh.bones.empty() && !skinnedMeshes.insert(instance.mesh).second) {
                mReport.dropped.push_back(fmt::format(
                    "mesh \"{}\" hangs on several nodes: a skinned mesh stands where its bones "
                    "are, so it is taken once",
                    mesh.name));
                continue;
            }
            if (part.skinned)
                bind(part);
            else
                part.bakes.assign(mesh.bones.size() + 1, mPoses.Node(0, instance.node));
            mGroups[{mesh.material, part.skinned, part.binding}].push_back(std::move(part));
        }
    }

    /// Finds the offsets for a part's bones. With B the bone's pose (rigid) and X what the source
    /// makes of a point of the mesh, L = inverse(B) * X is constant as long as no scale changes,
    /// and the engine is to compute B * offset * baked point: so offset * bake = L. Of the ways to
    /// share L out, the bake is the mesh as it stands at rest.
    void bind(Part& part) {
        const SourceMesh& mesh = meshOf(part);
        const std::vector<std::size_t> used = usedBones(mesh);
        std::vector<Affine> locals(mesh.bones.size() + 1);
        for (const std::size_t bone : used) {
            const std::size_t node = nodeOf(part, bone);
            const std::size_t sample = mPoses.ScaleSample(node);
            locals[bone] = ToAffine(Inverse(mPoses.Bone(sample, node))) *
                           mPoses.Node(sample, node) * offsetOf(mesh, bone);
            mWanted.push_back(node);
        }
        for (part.binding = 0;; ++part.binding) {
            const bool fresh = part.binding == mBindings.size();
            if (fresh)
                mBindings.emplace_back();
            Binding binding = mBindings[part.binding];
            const bool sound = bindTo(binding, part, used, locals);
            if (sound || fresh) {
                mBindings[part.binding] = std::move(binding);
                if (!sound)
                    mReport.warnings.push_back(fmt::format(
                        "mesh \"{}\": its bones scale it differently, and a bone of the engine "
                        "has no scale: vertices between them are blended",
                        mesh.name));
                return;
            }
        }
    }

    /// False: the bones do not agree about the bake.
    bool bindTo(Binding& binding, Part& part, const std::vector<std::size_t>& used,
                const std::vector<Affine>& locals) const {
        const SourceMesh& mesh = meshOf(part);
        const auto bakeBy = [&](std::size_t bone) {
            return ToAffine(Inverse(binding.at(nodeOf(part, bone)))) * locals[bone];
        };
        Affine bake = mPoses.RestNode(nodeOf(part, used.front())) * offsetOf(mesh, used.front());
        for (const std::size_t bone : used) {
            if (binding.contains(nodeOf(part, bone))) {
                bake = bakeBy(bone);
                break;
            }
        }
        part.bakes.assign(locals.size(), bake);
        const double size = std::cbrt(std::abs(Determinant(bake)));
        bool sound = true;
        for (const std::size_t bone : used) {
            Rigid offset;
            NearestRigid(locals[bone] * Inverse(bake), offset);
            binding.emplace(nodeOf(part, bone), offset);
            part.bakes[bone] = bakeBy(bone);
            sound = sound && LinearDifference(part.bakes[bone], bake) <= 1e-3 * size;
            sound = sound && Length(part.bakes[bone].t - bake.t) <= 1e-3 * extentOf(mesh) * size;
        }
        return sound;
    }

    static double extentOf(const SourceMesh& mesh) {
        Vec3 low = mesh.positions.front();
        Vec3 high = low;
        for (const Vec3& p : mesh.positions) {
            low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
        }
        const double extent = Length(high - low);
        return std::isfinite(extent) && extent > 0 ? extent : 1;
    }

    double extentOfScene() const {
        double extent = 0;
        for (const auto& [key, parts] : mGroups) {
            for (const Part& part : parts)
                extent = std::max(extent, extentOf(meshOf(part)) *
                                              std::cbrt(std::abs(Determinant(part.bakes.front()))));
        }
        return extent > 0 ? extent : 1;
    }

    std::vector<std::size_t> wantedBy(const std::vector<Part>& parts) const {
        std::vector<std::size_t> wanted;
        for (const Part& part : parts) {
            for (const std::size_t bone : usedBones(meshOf(part)))
                wanted.push_back(nodeOf(part, bone));
        }
        return wanted;
    }

    void skeleton(Model& model, const std::vector<std::size_t>& nodes, const Group& key,
                  double extent) const {
        if (nodes.size() > MaxBones)
            throw std::runtime_error(fmt::format(
                "material \"{}\" is moved by {} bones, and a model file holds {}: give parts of "
                "the mesh materials of their own",
                mScene.materials[key.material].name, nodes.size(), MaxBones));
        model.duration = static_cast<float>(mClip.length);
        model.bones = BuildBones(mScene, mPoses, mClip, nodes, extent);
        for (std::size_t b = 0; b < nodes.size(); ++b) {
            const Binding& binding = mBindings[key.binding];
            const auto bound = binding.find(nodes[b]);
            model.bones[b].offset =
                bound == binding.end() ? Inverse(mPoses.Bone(0, nodes[b])) : bound->second;
            model.bones[b].bind = Inverse(model.bones[b].offset);
        }
    }

    /// The four largest weights of a vertex, and what the bones bake into it.
    Affine weigh(ModelVertex& vertex, const Part& part, std::uint32_t v,
                 const std::vector<std::size_t>& nodes) {
        const SourceMesh& mesh = meshOf(part);
        std::vector<SourceInfluence> influences;
        if (!mesh.influences.empty())
            influences = mesh.influences[v];
        if (influences.empty()) {
            influences.push_back({mesh.bones.size(), 1});
            mWeightless += mesh.bones.empty() ? 0U : 1U;
        }
        std::stable_sort(influences.begin(), influences.end(),
                         [](const auto& a, const auto& b) { return a.weight > b.weight; });
        double kept = 0;
        for (std::size_t i = 0; i < std::min<std::size_t>(influences.size(), 4); ++i)
            kept += influences[i].weight;
        if (influences.size() > 4) {
            ++mOverweight;
            mLargestLoss = std::max(mLargestLoss, 1 - kept);
            influences.resize(4);
        }

        Affine bake{{}, {}};
        for (std::size_t i = 0; i < influences.size(); ++i) {
            const double weight = influences[i].weight / kept;
            AddWeighted(bake, part.bakes[influences[i].bone], weight);
            const auto node =
                std::lower_bound(nodes.begin(), nodes.end(), nodeOf(part, influences[i].bone));
            vertex.weights[i] = static_cast<float>(weight);
            vertex.bones[i] = static_cast<std::uint8_t>(node - nodes.begin());
        }
        return bake;
    }

    void append(BuiltModel& built, const Part& part, const std::vector<std::size_t>& nodes) {
        const SourceMesh& mesh = meshOf(part);
        const auto base = static_cast<std::uint32_t>(built.model.vertices.size());
        std::vector<bool> mirrors;
        std::vector<Vec3> places;
        for (std::uint32_t v = 0; v < mesh.positions.size(); ++v) {
            ModelVertex vertex;
            Affine bake = part.bakes.back();
            if (part.skinned)
                bake = weigh(vertex, part, v, nodes);
            mirrors.push_back(Determinant(bake) < 0);
            const Vec3 p = bake * mesh.positions[v];
            Vec3 n = TransformNormal(bake, mesh.normals[v]);
            const double length = Length(n);
            n = std::isfinite(length) && length > 0 ? n * (1 / length) : Vec3{0, 1, 0};
            const auto narrow = [](double number) { return static_cast<float>(number); };
            vertex.position = {narrow(p.x), narrow(p.y), narrow(p.z)};
            vertex.normal = {narrow(n.x), narrow(n.y), narrow(n.z)};
            if (!mesh.uvs.empty() && std::isfinite(mesh.uvs[v].first + mesh.uvs[v].second))
                vertex.uv = {narrow(mesh.uvs[v].first), narrow(1 - mesh.uvs[v].second)};
            places.push_back(p);
            built.model.vertices.push_back(vertex);
            built.origins.push_back({part.instance, v});
        }

        // Clockwise in left-handed coordinates is counter-clockwise in the source's: only what the
        // baking mirrors changes its order, and the change of handedness is a mirroring itself.
        std::size_t flat = 0;
        for (auto [a, b, c] : mesh.triangles) {
            const double area = Length(Cross(places[b] - places[a], places[c] - places[a]));
            const double reach = Length(places[a]) + Length(places[b]) + Length(places[c]);
            if (!(area > 0) || !(reach < farthest)) {
                ++flat;
                continue;
            }
            if (mirrors[a])
                std::swap(b, c);
            for (const std::uint32_t corner : {a, b, c})
                built.model.indices.push_back(base + corner);
        }
        if (flat > 0)
            mReport.dropped.push_back(
                fmt::format("mesh \"{}\": {} triangle(s) without an area or out of all bounds",
                            mesh.name, flat));
    }

    void reportWeights() {
        if (mOverweight > 0)
            mReport.changed.push_back(
                fmt::format("{} vertices had more than four weights: the four largest are kept, "
                            "the largest loss is {:.1f} %",
                            mOverweight, mLargestLoss * 100));
        if (mWeightless > 0)
            mReport.changed.push_back(fmt::format(
                "{} vertices of skinned meshes had no weight: they follow their mesh's node",
                mWeightless));
    }

    const SourceScene& mScene;
    const Poses& mPoses;
    const Clip& mClip;
    Report& mReport;
    std::vector<Binding> mBindings;
    std::map<Group, std::vector<Part>> mGroups;
    std::vector<std::size_t> mWanted;
    std::size_t mOverweight = 0;
    std::size_t mWeightless = 0;
    double mLargestLoss = 0;
};

} // namespace

std::vector<BuiltModel> BuildModels(const SourceScene& scene, const Poses& poses, const Clip& clip,
                                    Report& report) {
    std::vector<BuiltModel> models = Builder(scene, poses, clip, report).Build();
    for (BuiltModel& built : models)
        Optimize(built);
    return models;
}

double Extent(const Model& model) {
    std::array<double, 3> low{};
    std::array<double, 3> high{};
    for (std::size_t i = 0; i < model.vertices.size(); ++i) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const double at = static_cast<double>(model.vertices[i].position[axis]);
            low[axis] = i == 0 ? at : std::min(low[axis], at);
            high[axis] = i == 0 ? at : std::max(high[axis], at);
        }
    }
    return Length({high[0] - low[0], high[1] - low[1], high[2] - low[2]});
}

} // namespace Import
