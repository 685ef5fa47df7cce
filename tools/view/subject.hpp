// SPDX-License-Identifier: MIT
//
// What is shown: a model, a material on a shape, an entity, a scene, an effect, a picture. It is
// made of the file as that is now; where the file changes a new one is made, and takes the place of
// the old one only if it could be.
#pragma once

#include "tools/view/lines.hpp"
#include "tools/view/options.hpp"
#include "tools/view/resources.hpp"
#include "tools/view/stage.hpp"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace View {

/// A mesh that is drawn with a material.
struct Part {
    Vorn::Mesh* mesh = nullptr;
    Vorn::Material* material = nullptr;
    Vorn::Matrix4 world;
    std::string name;
};

/// A line of the panel: "Triangles", "1,204". An empty value makes a heading.
using Numbers = std::vector<std::pair<std::string, std::string>>;

/// What a subject that draws itself needs of the frame.
struct Frame {
    Vorn::Vector3 eye, light;
    Vorn::Matrix4 view, projection;
    float time = 0.0f; // since the subject is shown (unit: seconds)
};

class Subject {
public:
    Subject() = default;
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;
    virtual ~Subject() = default;

    /// Drawn by the viewer, lit and posed.
    virtual std::vector<Part> Parts() const = 0;
    /// Drawn in place of the parts, whose lines and bounds still count. False for no such thing.
    virtual bool Draw(const Frame& /*unused*/) { return false; }
    /// (unit: seconds)
    virtual void Update(float /*unused*/) {}
    /// Anew from the start.
    virtual void Restart() {}
    virtual bool HasParticles() const { return false; }
    /// Whether it is flat and shown from the front.
    virtual bool IsFlat() const { return false; }
    /// Of the parts as they are, if a subject does not know better.
    virtual Bounds Extent() const;
    /// Of the parts: a box and a sphere about each mesh.
    virtual void AddVolumes(Lines& lines) const;
    /// What is chosen in its panel.
    virtual void AddMarks(Lines& /*unused*/) const {}
    /// Once, when the panel asks the camera to go there.
    virtual std::optional<Bounds> TakeFocus() { return {}; }
    virtual Numbers Describe() const = 0;
    /// In the panel, with Dear ImGui.
    virtual void Controls() {}
    virtual const Problems& Faults() const { return mProblems; }
    /// Objects of the device that are in the way of its reset.
    virtual void BeforeReset() {}
    virtual void AfterReset() {}
    /// What was chosen in the panel of the one before it.
    virtual void TakeOver(const Subject& /*unused*/) {}

    /// Whether one of its own files has changed; not those that Resources looks after.
    bool IsStale() const;
    /// They are as they should be, whatever they are.
    void Accept();

protected:
    void dependOn(const std::filesystem::path& file) { mFiles[file] = StampOf(file); }

    Problems mProblems;

private:
    std::map<std::filesystem::path, Stamp> mFiles;
};

/// Raises std::exception, with the fault and no file's name where it is the subject's own.
std::unique_ptr<Subject> MakeSubject(const Options& options, const Stage& stage,
                                     Resources& resources);

// Shared by their kinds.

void DescribeMesh(const Vorn::Mesh& mesh, Numbers& numbers);
void DescribeMaterial(Vorn::Material& material, Numbers& numbers);
void DescribeTexture(const Vorn::Texture* texture, Numbers& numbers);
std::string Counted(std::uint64_t number);
std::string Written(const Vorn::Vector3& v);
/// Choices of the panel: a shape's name, or a mesh's of the game.
Vorn::Mesh* MeshNamed(const std::string& name, Resources& resources);
/// A list to choose from; whether another one was chosen.
bool Choose(const char* label, std::string& chosen, const std::vector<std::string>& from);
/// Of the fields that follow in the panel: so wide that a label of that many pixels is seen whole
/// beside them. ImGui::PopItemWidth ends it.
void PushFieldWidth(float label);
/// The shapes first, then the game's meshes.
std::vector<std::string> MeshChoices();

} // namespace View
