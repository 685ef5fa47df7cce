// SPDX-License-Identifier: MIT
//
// A scene of any game as it starts: nothing in it acts, since its acts are the game's code, but
// emitters play and skinned models move.
#include "tools/view/entities.hpp"
#include "tools/view/pose.hpp"
#include "tools/view/subjects.hpp"

#include "vorn/core/json.hpp"
#include "vorn/render/emitter_cmpt.hpp"
#include "vorn/scene/scene.hpp"

#include <fmt/format.h>
#include <imgui.h>

#include <algorithm>
#include <set>
#include <stdexcept>

namespace View {
namespace {

constexpr std::uint32_t ChosenColor = 0xFFFFD24Au;

/// Looks nothing up: Dress gives its entities what there is.
class PlainScene : public Vorn::Scene {
protected:
    void initEntity(Vorn::Entity* /*unused*/) override {}
    void deinitEntity(Vorn::Entity* /*unused*/) override {}
};

class WholeScene : public Subject {
public:
    WholeScene(const Stage& stage, Resources& resources) : mTypes(prepare(stage)) {
        Json::Value root = ReadJson(stage.File());
        dependOn(stage.File());
        for (const EntityFile& file : mTypes.Files())
            dependOn(file.path);
        mProblems = mTypes.Faults();
        adapt(root, stage.File().string());
        mScene.DeserializeValue(root);
        mTypes.Register();
        try {
            mScene.Init();
        } catch (...) {
            mScene.Deinit();
            throw;
        }
        dress(root, resources);
    }
    WholeScene(const WholeScene&) = delete;
    WholeScene& operator=(const WholeScene&) = delete;
    ~WholeScene() override {
        // Another scene's pools may be registered by now.
        mTypes.Register();
        mScene.Deinit();
    }

    std::vector<Part> Parts() const override { return PartsOf(mDressed); }
    bool HasParticles() const override {
        return std::any_of(mDressed.begin(), mDressed.end(),
                           [](const Dressed& one) { return one.entity->Emitter(); });
    }
    void Update(float dt) override {
        for (const Dressed& one : mDressed)
            if (Vorn::EmitterCmpt* const emitter = one.entity->Emitter()) {
                emitter->Emit(dt);
                emitter->Update(dt);
            }
    }
    void Restart() override {
        for (const Dressed& one : mDressed)
            if (Vorn::EmitterCmpt* const emitter = one.entity->Emitter())
                if (emitter->GetTexture())
                    StartEmitter(*emitter);
    }

    Bounds Extent() const override {
        Bounds bounds = Subject::Extent();
        for (const Dressed& one : mDressed)
            bounds.Add(one.entity->Position());
        return bounds;
    }
    void AddVolumes(Lines& lines) const override {
        for (const Dressed& one : mDressed)
            AddVolume(one, lines);
    }
    void AddMarks(Lines& lines) const override {
        // What nothing is seen of has a cross.
        for (const Dressed& one : mDressed)
            if (!one.mesh)
                cross(lines, one.entity->Position(), 0xB0FFFFFFu);
        if (mChosen < mDressed.size()) {
            const Dressed& chosen = mDressed[mChosen];
            lines.Box({}, boundsOf(chosen), ChosenColor);
            lines.Write(chosen.entity->Position(), titleOf(mChosen), ChosenColor);
        }
    }
    std::optional<Bounds> TakeFocus() override {
        if (!mFocus || mChosen >= mDressed.size())
            return {};
        mFocus = false;
        return boundsOf(mDressed[mChosen]);
    }

    Numbers Describe() const override {
        std::set<const Vorn::Mesh*> meshes;
        std::set<const Vorn::Material*> materials;
        std::uint64_t triangles = 0;
        for (const Dressed& one : mDressed)
            if (one.mesh) {
                meshes.insert(one.mesh);
                materials.insert(one.material);
                triangles += one.mesh->mIndexCount / 3;
            }
        Numbers numbers;
        numbers.emplace_back("Scene", "");
        numbers.emplace_back("Entities", Counted(mDressed.size()));
        numbers.emplace_back("Meshes", Counted(meshes.size()));
        numbers.emplace_back("Materials", Counted(materials.size()));
        numbers.emplace_back("Triangles", Counted(triangles));
        numbers.emplace_back("Resource pack",
                             mScene.ResourcePack().empty() ? "none" : mScene.ResourcePack());
        if (mChosen < mDressed.size())
            describeChosen(mDressed[mChosen], numbers);
        return numbers;
    }

    void Controls() override {
        ImGui::InputTextWithHint("##filter", "find an entity", mFilter, sizeof mFilter);
        ImGui::BeginChild("entities", ImVec2(0, 160), true);
        for (std::size_t i = 0; i < mDressed.size(); ++i) {
            const std::string title = titleOf(i);
            if (title.find(mFilter) == std::string::npos)
                continue;
            if (ImGui::Selectable(fmt::format("{}##{}", title, i).c_str(), i == mChosen))
                mChosen = i;
            if (ImGui::IsItemHovered() && ImGui::IsMouseDoubleClicked(0))
                mFocus = true;
        }
        ImGui::EndChild();
        if (ImGui::Button("Go there") && mChosen < mDressed.size())
            mFocus = true;
    }

    void TakeOver(const Subject& old) override {
        if (const auto* const scene = dynamic_cast<const WholeScene*>(&old))
            mChosen = scene->mChosen;
    }

private:
    static EntityTypes prepare(const Stage& stage) {
        LearnPhysicsNames(stage);
        return EntityTypes(stage.EntityFolders());
    }

    /// Types and variants that no file describes are shown as plain ones, and noted.
    void adapt(Json::Value& root, const std::string& file) {
        if (!root["Entities"].isArray())
            return; // the scene says so
        std::set<std::string> unknown;
        for (Json::Value& element : root["Entities"]) {
            if (!element.isObject())
                continue;
            LearnPhysicsNames(element);
            const std::string type = Vorn::JsonString(element, "Type", "typeless");
            const std::string variant = Vorn::JsonString(element, "Variant", "master");
            if (!mTypes.Knows(type, "master") && unknown.insert(type).second)
                mTypes.Make(type);
            if (variant != "master" && !mTypes.Knows(type, variant)) {
                unknown.insert(type + " " + variant);
                element["Variant"] = "master";
            }
        }
        std::string names;
        for (const std::string& name : unknown)
            names += (names.empty() ? "" : ", ") + name;
        if (!names.empty())
            mProblems[file] = "no entity file describes " + names;
    }

    void dress(const Json::Value& root, Resources& resources) {
        Json::ArrayIndex i = 0;
        for (Vorn::Entity* entity : mScene.EntityList()) {
            const Json::Value& element = root["Entities"][i++];
            const std::string type = Vorn::JsonString(element, "Type", "typeless");
            const std::string variant = Vorn::JsonString(element, "Variant", "master");
            mDressed.push_back(
                Dress(*entity, Layered(mTypes.Merged(type, variant), element), resources));
        }
    }

    Bounds boundsOf(const Dressed& one) const {
        Bounds bounds;
        if (one.mesh) {
            const Vorn::Matrix4 world = one.entity->GetWorld();
            for (std::uint32_t i = 0; i < one.mesh->mVertexCount; ++i)
                bounds.Add(world * PlaceVertex(*one.mesh, i, IsPosable(*one.mesh)).at);
        }
        if (bounds.Empty()) {
            bounds.Add(one.entity->Position() - Vorn::Vector3(0.5f, 0.5f, 0.5f));
            bounds.Add(one.entity->Position() + Vorn::Vector3(0.5f, 0.5f, 0.5f));
        }
        return bounds;
    }

    std::string titleOf(std::size_t index) const {
        const Vorn::Entity& entity = *mDressed[index].entity;
        std::string title = entity.Type();
        if (entity.Variant() != "master")
            title += ' ' + entity.Variant();
        if (!entity.Name().empty())
            title += " \"" + entity.Name() + '"';
        return title;
    }

    void describeChosen(const Dressed& chosen, Numbers& numbers) const {
        numbers.emplace_back(titleOf(mChosen), "");
        numbers.emplace_back("Position", Written(chosen.entity->Position()));
        numbers.emplace_back("Orientation", Written(chosen.entity->Orientation()));
        numbers.emplace_back("Scale", Written(chosen.entity->Scale()));
        DescribeEmitter(*chosen.entity, numbers);
        if (!chosen.mesh)
            return;
        DescribeMesh(*chosen.mesh, numbers);
        DescribeMaterial(*chosen.material, numbers);
    }

    static void cross(Lines& lines, const Vorn::Vector3& at, std::uint32_t color) {
        constexpr float arm = 0.25f;
        for (const Vorn::Vector3& way :
             {Vorn::Vector3(arm, 0, 0), Vorn::Vector3(0, arm, 0), Vorn::Vector3(0, 0, arm)})
            lines.Add(at - way, at + way, color);
    }

    EntityTypes mTypes;
    PlainScene mScene;
    std::vector<Dressed> mDressed;
    std::size_t mChosen = ~std::size_t{0};
    bool mFocus = false;
    char mFilter[64] = {};
};

} // namespace

std::unique_ptr<Subject> MakeScene(const Stage& stage, Resources& resources) {
    return std::make_unique<WholeScene>(stage, resources);
}

} // namespace View
