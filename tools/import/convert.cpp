// SPDX-License-Identifier: MIT
#include "tools/import/convert.hpp"

#include "tools/import/assets.hpp"
#include "tools/import/models.hpp"
#include "tools/import/read_assimp.hpp"
#include "tools/import/report.hpp"
#include "tools/import/skeleton.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <set>
#include <stdexcept>

namespace Import {
namespace {

/// A part of a model's size that a vertex may be off before it is worth a warning.
constexpr double tolerance = 2e-3;

const SourceAnimation* chooseAnimation(const SourceScene& scene, const std::string& wanted) {
    const std::vector<SourceAnimation>& animations = scene.animations;
    if (wanted == "none" || (wanted.empty() && animations.empty()))
        return nullptr;
    if (wanted.empty()) {
        for (const SourceAnimation& animation : animations) {
            if (std::any_of(animation.channels.begin(), animation.channels.end(), Moves))
                return &animation;
        }
        return &animations.front();
    }
    for (const SourceAnimation& animation : animations) {
        if (animation.name == wanted)
            return &animation;
    }
    std::size_t index = 0;
    const char* end = wanted.data() + wanted.size();
    const auto [rest, error] = std::from_chars(wanted.data(), end, index);
    if (error == std::errc() && rest == end && index < animations.size())
        return &animations[index];

    std::string names;
    for (std::size_t i = 0; i < animations.size(); ++i)
        names += fmt::format("\n  {}: \"{}\"", i, animations[i].name);
    throw std::runtime_error(fmt::format("it has no animation \"{}\"; it has{}", wanted,
                                         names.empty() ? " none" : ":" + names));
}

Clip chooseClip(const SourceScene& scene, const Options& options, Report& report) {
    Clip clip;
    clip.animation = chooseAnimation(scene, options.animation);
    clip.scale = scene.unit * options.scale;
    clip.spacing = 1 / options.rate;
    if (!clip.animation)
        return clip;
    const double end =
        options.to < 0 ? clip.animation->duration : std::min(options.to, clip.animation->duration);
    clip.start = options.from;
    clip.length = end - options.from;
    if (options.to >= 0 && options.to <= options.from)
        throw std::runtime_error("its loop is to end before it begins");
    if (clip.length <= 0 && options.from > 0)
        throw std::runtime_error(fmt::format("animation \"{}\" has only {:.3f} s",
                                             clip.animation->name, clip.animation->duration));
    // A loop of no length would stand still for ever.
    if (!(clip.length > 1e-3)) {
        clip.length = 1;
        report.changed.push_back(fmt::format(
            "animation \"{}\" has no length: it stands still for 1 s", clip.animation->name));
    }
    return clip;
}

void reportScene(const SourceScene& scene, const Clip& clip, Report& report) {
    report.changed.push_back("axes: right-handed to left-handed, Z mirrored; the order of "
                             "triangles' corners and V of texture coordinates turned with it");
    if (clip.scale != 1)
        report.changed.push_back(
            fmt::format("units: {}; all lengths times {:g}", scene.unitText, clip.scale));
    for (const SourceMesh& mesh : scene.meshes) {
        const auto drop = [&](bool present, std::string what) {
            if (present)
                report.dropped.push_back(fmt::format("mesh \"{}\": {}", mesh.name, what));
        };
        drop(mesh.morphTargets > 0, fmt::format("{} morph targets", mesh.morphTargets));
        drop(mesh.pointsAndLines > 0, fmt::format("{} points and lines", mesh.pointsAndLines));
        drop(mesh.colors, "colours of its vertices");
        drop(mesh.uvSets > 1,
             fmt::format("{} further sets of texture coordinates", mesh.uvSets - 1));
        if (mesh.normalsMade && !mesh.triangles.empty())
            report.changed.push_back(fmt::format(
                "mesh \"{}\" has no normals: smooth ones, with edges from 60 degrees", mesh.name));
    }
    for (const SourceAnimation& animation : scene.animations) {
        if (&animation != clip.animation)
            report.dropped.push_back(
                fmt::format("animation \"{}\": a model file holds one", animation.name));
    }
    const auto steps = [](const SourceChannel& channel) {
        return channel.positions.curve == Curve::Step || channel.rotations.curve == Curve::Step ||
               channel.scales.curve == Curve::Step;
    };
    if (clip.animation &&
        std::any_of(clip.animation->channels.begin(), clip.animation->channels.end(), steps))
        report.changed.push_back(
            fmt::format("steps of the animation: ramps of {:.3f} s, the least that keys are apart",
                        clip.spacing));
    if (clip.animation && clip.animation->morphChannels > 0)
        report.dropped.push_back("the animation's morph tracks");
    if (clip.animation && clip.animation->strayChannels > 0)
        report.dropped.push_back(
            fmt::format("{} tracks of nodes that are not there", clip.animation->strayChannels));
    if (scene.cameras + scene.lights > 0)
        report.dropped.push_back(
            fmt::format("{} camera(s), {} light(s)", scene.cameras, scene.lights));
    report.warnings.insert(report.warnings.end(), scene.readerNotes.begin(),
                           scene.readerNotes.end());
}

/// A single model has the name alone; several are told apart by their materials, or by a number
/// where those have no names of their own.
void nameModels(std::vector<BuiltModel>& models, const SourceScene& scene,
                const std::string& name) {
    std::set<std::string> taken;
    for (std::size_t i = 0; i < models.size(); ++i) {
        std::string& own = models[i].model.name;
        own = name;
        if (models.size() == 1)
            return;
        const std::string material = SafeName(scene.materials[models[i].model.material].name);
        own += "_" + (material.empty() ? std::to_string(i) : material);
        if (!taken.insert(own).second)
            taken.insert(own += "_" + std::to_string(i));
    }
}

/// Triangles whose sides disagree with their normals: a sign of a model turned inside out.
std::size_t turnedTriangles(const Model& model) {
    std::size_t turned = 0;
    const auto vector = [](const std::array<float, 3>& v) {
        return Vec3{static_cast<double>(v[0]), static_cast<double>(v[1]),
                    static_cast<double>(v[2])};
    };
    for (std::size_t i = 0; i + 2 < model.indices.size(); i += 3) {
        const ModelVertex* corners[3];
        Vec3 normals;
        for (std::size_t c = 0; c < 3; ++c) {
            corners[c] = &model.vertices[model.indices[i + c]];
            normals = normals + vector(corners[c]->normal);
        }
        const Vec3 origin = vector(corners[0]->position);
        const Vec3 face =
            Cross(vector(corners[1]->position) - origin, vector(corners[2]->position) - origin);
        turned += Dot(face, normals) < 0 ? 1U : 0U;
    }
    return turned;
}

/// Whether some keys stand as close together as they may: more of them could come nearer.
bool keysAreDense(const Model& model, const Clip& clip) {
    for (const ModelBone& bone : model.bones) {
        for (std::size_t k = 1; k < bone.keys.size(); ++k) {
            if (static_cast<double>(bone.keys[k].time - bone.keys[k - 1].time) < 1.1 * clip.spacing)
                return true;
        }
    }
    return false;
}

std::string checkModel(const SourceScene& scene, const Clip& clip, const BuiltModel& built,
                       Report& report) {
    const Difference difference = Compare(scene, clip, built);
    const double extent = Extent(built.model);
    const double part = extent > 0 ? difference.distance / extent : 0;
    const std::size_t triangles = built.model.indices.size() / 3;
    if (part > tolerance)
        report.warnings.push_back(fmt::format(
            "\"{}\" comes out other than in the source: a vertex of bone \"{}\" is {:.4g} off at "
            "{:.2f} s, {:.1f} % of the model's size{}",
            built.model.name, difference.bone, difference.distance, difference.time, part * 100,
            keysAreDense(built.model, clip) ? "; its keys stand as close as --rate lets them"
                                            : ""));
    if (const std::size_t turned = turnedTriangles(built.model); turned * 2 > triangles)
        report.warnings.push_back(fmt::format("\"{}\": {} of {} triangles face against their "
                                              "normals: is the source inside out?",
                                              built.model.name, turned, triangles));
    return fmt::format("largest difference from the source {:.2g} ({:.3f} % of its size)",
                       difference.distance, part * 100);
}

std::string modelLine(const Model& model) {
    std::string line = fmt::format("  data/mesh/{}.mesh: {} vertices, {} triangles", model.name,
                                   model.vertices.size(), model.indices.size() / 3);
    if (model.bones.empty())
        return line;
    std::size_t keys = 0;
    for (const ModelBone& bone : model.bones)
        keys += bone.keys.size();
    return line + fmt::format(", {} bones, {} keys, {:.3f} s", model.bones.size(), keys,
                              static_cast<double>(model.duration));
}

} // namespace

void Convert(const Options& options, Channel& channel) {
    int told = -1;
    const SourceScene scene = ReadSource(options.file, [&](double part) {
        if (const int percent = static_cast<int>(part * 100); percent != told)
            channel.Progress(fmt::format("reading {} %", told = percent));
    });
    if (options.list) {
        channel.Report(options.file + "\n" + Describe(scene));
        return;
    }

    channel.Progress("converting");
    Report report;
    const Clip clip = chooseClip(scene, options, report);
    reportScene(scene, clip, report);
    const Poses poses(scene, clip);
    std::vector<BuiltModel> models = BuildModels(scene, poses, clip, report);
    std::string name = options.name;
    if (name.empty())
        name = SafeName(std::filesystem::path(options.file).stem().string());
    if (name.empty())
        name = "model";
    nameModels(models, scene, name);

    std::string text = fmt::format(
        "{}: {} mesh(es), {} material(s), {}\n", options.file, scene.meshes.size(),
        scene.materials.size(),
        clip.animation ? fmt::format("animation \"{}\"", clip.animation->name) : "no animation");
    Assets assets(options.file, report);
    std::set<std::size_t> materials;
    for (const BuiltModel& built : models) {
        channel.Progress("checking " + built.model.name);
        text += modelLine(built.model) + "\n";
        text += "    " + checkModel(scene, clip, built, report) + "\n";
        assets.AddModel(built.model.name, EncodeModel(built.model));
        if (!materials.insert(built.model.material).second)
            continue;
        const SourceMaterial& material = scene.materials[built.model.material];
        const std::string texture = assets.AddMaterial(built.model.name, material);
        text += fmt::format("    data/mat/{}.json: texture {}\n", built.model.name, texture);
    }
    text += fmt::format("  data/pack/{}.json lists them\n", name);
    for (const OutputFile& file : assets.Finish(name))
        channel.File(file);
    channel.Report(text + report.Text());
}

} // namespace Import
