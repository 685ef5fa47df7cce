// SPDX-License-Identifier: MIT
#include "tools/view/viewer.hpp"

#include "tools/view/overheard.hpp"
#include "tools/view/pose.hpp"

#include "vorn/core/file.hpp"
#include "vorn/render/graphic.hpp"
#include "vorn/shell/engine.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace View {
namespace {

namespace fs = std::filesystem;

constexpr float Degree = std::numbers::pi_v<float> / 180;
constexpr float SideOn = -90.0f; // flat things and particles are seen along Z

std::map<std::string, Stamp> StampsIn(const fs::path& folder) {
    std::map<std::string, Stamp> stamps;
    std::error_code none;
    for (fs::directory_iterator entry(folder, none), end; !none && entry != end;
         entry.increment(none))
        stamps.emplace(entry->path().string(), StampOf(entry->path()));
    return stamps;
}

std::map<std::string, std::string> TextsIn(const fs::path& folder) {
    std::map<std::string, std::string> texts;
    for (const auto& [path, stamp] : StampsIn(folder))
        if (fs::is_regular_file(path))
            texts.emplace(path, Vorn::TextFromFile(path));
    return texts;
}

} // namespace

Viewer::Viewer(const Options& options, const View::Stage& stage)
    : shown(options.shown), mOptions(options), mStage(stage),
      mSubject(MakeSubject(options, stage, mResources)), mShaderStamps(StampsIn(stage.Shaders())) {
    pose();
    const bool flat = mSubject->IsFlat(), particles = mSubject->HasParticles();
    const float yaw = flat ? SideOn : particles ? SideOn + 12 : SideOn + 35;
    mOrbit.Set(options.yaw.value_or(yaw), options.pitch.value_or(flat        ? 0.0f
                                                                 : particles ? 10.0f
                                                                             : 18.0f));
    if (flat)
        shown.grid = false;
    mExtent = mSubject->Extent();
    mOrbit.Frame(mExtent, freeAspect(), options.distance);
}

Viewer::~Viewer() = default;

float Viewer::aspect() const {
    const auto& graphic = *Vorn::Graphic::Instance();
    return static_cast<float>(graphic.BackBufferWidth()) /
           static_cast<float>(std::max(1u, graphic.BackBufferHeight()));
}

// What the panel covers of the picture, at most the half.
float Viewer::panelShare() const {
    constexpr float panel = 352;
    const auto width = static_cast<float>(Vorn::Graphic::Instance()->BackBufferWidth());
    return shown.panel ? std::min(panel / std::max(width, 1.0f), 0.5f) : 0.0f;
}

void Viewer::Update(float dt) {
    const float passed = playing ? dt * speed : 0.0f;
    mTime += passed;
    mNoteLeft = std::max(0.0f, mNoteLeft - dt);
    if (passed > 0)
        mSubject->Update(passed);
    if (const std::optional<Bounds> focus = mSubject->TakeFocus())
        mOrbit.Frame(*focus, freeAspect());
}

void Viewer::Tell(const std::string& note) {
    constexpr float Long = 4.0f; // (unit: seconds)
    mNote = note;
    mNoteLeft = Long;
}

void Viewer::FrameAll() {
    mExtent = mSubject->Extent();
    mOrbit.Frame(mExtent, freeAspect());
}

void Viewer::Restart() {
    mTime = 0.0f;
    mSubject->Restart();
}

float Viewer::Duration() const {
    float longest = 0.0f;
    for (const Part& part : mSubject->Parts())
        if (IsPosable(*part.mesh))
            longest = std::max(longest, part.mesh->mDuration);
    return longest;
}

bool Viewer::isPosed(const Part& part) const {
    return posed && IsPosable(*part.mesh);
}

// Each mesh has one clock, whoever wears it.
void Viewer::pose() const {
    for (const Part& part : mSubject->Parts())
        if (IsPosable(*part.mesh))
            View::Seek(*part.mesh, std::fmod(mTime, std::max(part.mesh->mDuration, 1e-6f)));
}

void Viewer::CheckFiles() {
    mStage.Refresh();
    mResources.Update();
    if (mSubject->IsStale())
        replaceSubject();
    if (StampsIn(mStage.Shaders()) != mShaderStamps)
        replaceShaders();
}

void Viewer::replaceSubject() {
    const std::string file = mStage.File().string();
    try {
        std::unique_ptr<View::Subject> fresh = MakeSubject(mOptions, mStage, mResources);
        fresh->TakeOver(*mSubject);
        mSubject = std::move(fresh);
        mProblems.erase(file);
    } catch (const std::exception& error) {
        mProblems[file] = error.what();
        mSubject->Accept();
    }
}

// The copies that worked come back where the new ones do not.
void Viewer::replaceShaders() {
    mShaderStamps = StampsIn(mStage.Shaders());
    const std::map<std::string, std::string> before = TextsIn("data/shaders");
    const std::string folder = mStage.Shaders().string();
    mSubject->BeforeReset();
    const Overheard overheard;
    try {
        mStage.CopyShaders();
        Vorn::Engine::Instance()->Reset();
        mProblems.erase(folder);
    } catch (const std::exception& error) {
        const std::string text = overheard.Text();
        mProblems[folder] = text.empty() ? error.what() : text;
        for (const auto& [path, bytes] : before)
            Vorn::SaveToFile(path, bytes.data(), static_cast<unsigned int>(bytes.size()));
        Vorn::Engine::Instance()->Reset();
    }
    mSubject->AfterReset();
}

Problems Viewer::Faults() const {
    Problems all = mProblems;
    all.insert(mSubject->Faults().begin(), mSubject->Faults().end());
    all.insert(mResources.Faults().begin(), mResources.Faults().end());
    return all;
}

void Viewer::placeLight() {
    const float yaw = (mOrbit.Yaw() + lightYaw) * Degree;
    const float pitch = std::clamp(mOrbit.Pitch() + lightPitch, -89.0f, 89.0f) * Degree;
    const float away = std::max(3 * mExtent.Radius(), 0.01f);
    const Vorn::Vector3 way(std::cos(pitch) * std::cos(yaw), std::sin(pitch),
                            -std::cos(pitch) * std::sin(yaw));
    mLight = mOrbit.Camera().LookAt() + way * away;
    // As bright where the thing is as a light that is near: the shader's has half at 100.
    const float bright = lightStrength * (1 + away * away / 10000);
    auto& graphic = *Vorn::Graphic::Instance();
    graphic.SetPointLightPosition(mLight);
    graphic.SetPointLightSettings({bright, bright, bright}, {bright, bright, bright}, {0, 0, 0});
    graphic.CameraPos(mOrbit.Eye());
}

void Viewer::gatherLines() {
    mLines.Clear();
    mFront.Clear();
    if (shown.grid)
        mGridCell = AddGrid(mLines, mExtent);
    if (shown.volumes)
        mSubject->AddVolumes(mLines);
    mSubject->AddMarks(mFront);
    for (const Part& part : mSubject->Parts()) {
        if (shown.wire)
            addWire(part);
        if (shown.normals)
            addNormals(part);
        if (shown.bones)
            addBones(part);
    }
}

void Viewer::addWire(const Part& part) {
    constexpr std::uint32_t color = 0xB0101418u;
    const bool asPosed = isPosed(part);
    std::vector<Vorn::Vector3> points(part.mesh->mVertexCount);
    for (std::uint32_t i = 0; i < part.mesh->mVertexCount; ++i)
        points[i] = part.world * PlaceVertex(*part.mesh, i, asPosed).at;
    for (std::uint32_t i = 0; i + 2 < part.mesh->mIndexCount; i += 3) {
        const unsigned int* const corner = part.mesh->mIndices + i;
        for (std::size_t side = 0; side < 3; ++side) {
            const unsigned int a = corner[side], b = corner[(side + 1) % 3];
            if (a < points.size() && b < points.size())
                mLines.Add(points[a], points[b], color);
        }
    }
}

void Viewer::addNormals(const Part& part) {
    constexpr std::uint32_t color = 0xFF58C8F0u;
    const float length = mExtent.Radius() * 0.05f;
    for (std::uint32_t i = 0; i < part.mesh->mVertexCount; ++i) {
        const Placed vertex = PlaceVertex(*part.mesh, i, isPosed(part));
        const Vorn::Vector3 at = part.world * vertex.at;
        Vorn::Vector3 way = part.world * (vertex.at + vertex.normal) - at;
        way.Normalize();
        mLines.Add(at, at + way * length, color);
    }
}

// A line from each bone to its parent, a small cross at its joint, and its name.
void Viewer::addBones(const Part& part) {
    constexpr std::uint32_t line = 0xFFFFD24Au, joint = 0xFFFF8A3Cu, name = 0xFFFFE9A8u;
    const float size = BoundsOf(*part.mesh, false).Radius() * 0.02f;
    const std::vector<Vorn::Bone>& bones = part.mesh->mBones;
    for (const Vorn::Bone& bone : bones) {
        const Vorn::Vector3 at = part.world * bone.mWorld.Col4ToVec3();
        if (bone.mParent >= 0)
            mFront.Add(part.world *
                           bones[static_cast<std::size_t>(bone.mParent)].mWorld.Col4ToVec3(),
                       at, line);
        for (const Vorn::Vector3& way :
             {Vorn::Vector3(size, 0, 0), Vorn::Vector3(0, size, 0), Vorn::Vector3(0, 0, size)})
            mFront.Add(at - way, at + way, joint);
        mFront.Write(at, bone.mName, name);
    }
}

} // namespace View
