// SPDX-License-Identifier: MIT
#include "dev/panel.hpp"

#include "dev/entity_patch.hpp"
#include "dev/messages.hpp"
#include "dev/time_control.hpp"
#include "vorn/physics/physics_cmpt.hpp"
#include "vorn/render/emitter_cmpt.hpp"
#include "vorn/render/graphics_cmpt.hpp"
#include "vorn/resource/mesh.hpp"
#include "vorn/resource/texture.hpp"
#include "vorn/scene/entity.hpp"
#include "vorn/scene/scene.hpp"
#include "vorn/scene/scene_manager.hpp"

#include <imgui.h>
#include <imgui_stdlib.h>

#include <algorithm>
#include <exception>
#include <string>
#include <vector>

namespace Vorn::Dev {

namespace {

constexpr ImGuiTreeNodeFlags Open = ImGuiTreeNodeFlags_DefaultOpen;

bool Edit(const char* label, Vector3& vector, float speed = 0.05f) {
    float axes[] = {vector.x, vector.y, vector.z};
    if (!ImGui::DragFloat3(label, axes, speed))
        return false;
    vector = Vector3(axes[0], axes[1], axes[2]);
    return true;
}

bool EditColor(const char* label, unsigned int& argb) {
    const auto channel = [argb](int shift) {
        return static_cast<float>(argb >> shift & 0xff) / 255.0f;
    };
    float color[] = {channel(16), channel(8), channel(0), channel(24)};
    if (!ImGui::ColorEdit4(label, color, ImGuiColorEditFlags_AlphaPreviewHalf))
        return false;
    const auto packed = [&color](int i, int shift) {
        return static_cast<unsigned int>(color[i] * 255.0f + 0.5f) << shift;
    };
    argb = packed(0, 16) | packed(1, 8) | packed(2, 0) | packed(3, 24);
    return true;
}

void Show(const char* label, const Vector4& v) {
    ImGui::Text("%s  %.2f %.2f %.2f %.2f", label, static_cast<double>(v.x),
                static_cast<double>(v.y), static_cast<double>(v.z), static_cast<double>(v.w));
}

/// A value of one of the kinds that a line can show; true when it was changed.
bool Edit(const char* label, Json::Value& value) {
    if (value.isBool()) {
        bool on = value.asBool();
        const bool changed = ImGui::Checkbox(label, &on);
        value = on;
        return changed;
    }
    if (value.isIntegral()) {
        int number = value.isInt() ? value.asInt() : 0;
        const bool changed = ImGui::DragInt(label, &number);
        value = number;
        return changed;
    }
    if (value.isDouble()) {
        float number = value.asFloat();
        const bool changed = ImGui::DragFloat(label, &number, 0.05f);
        if (changed)
            value = static_cast<double>(number);
        return changed;
    }
    if (value.isString()) {
        std::string text = value.asString();
        const bool changed = ImGui::InputText(label, &text, ImGuiInputTextFlags_EnterReturnsTrue);
        value = text;
        return changed;
    }
    bool changed = false;
    if (value.isObject() && ImGui::TreeNode(label)) {
        for (const std::string& key : value.getMemberNames())
            changed |= Edit(key.c_str(), value[key]);
        ImGui::TreePop();
    }
    return changed;
}

std::string TitleOf(const Entity& entity) {
    std::string title = entity.Name().empty() ? entity.Type() : entity.Name();
    if (title != entity.Type())
        title += "  " + entity.Type();
    if (entity.Variant() != "master" && entity.Variant() != entity.Type())
        title += " / " + entity.Variant();
    return title;
}

} // namespace

void Panel::AddVolumes() const {
    const Scene* scene = SceneManager::Instance()->CurrentScene();
    if (!scene || !open)
        return;
    for (const Entity* entity : scene->EntityList())
        if (entity->Physics() && (mAllVolumes || (mChosenVolume && entity == mChosen)))
            entity->Physics()->DrawDebug();
}

void Panel::Draw() {
    const ImVec2 screen = ImGui::GetIO().DisplaySize;
    const float width = std::min(330.0f, screen.x - 16);
    ImGui::SetNextWindowPos({screen.x - width - 8, 8}, ImGuiCond_FirstUseEver);
    ImGui::SetNextWindowSize({width, screen.y - 16}, ImGuiCond_FirstUseEver);
    ImGui::SetNextWindowBgAlpha(0.9f);
    if (ImGui::Begin("Development", &open)) {
        ImGui::PushItemWidth(ImGui::GetContentRegionAvail().x * 0.62f);
        drawTime();
        ImGui::Checkbox("all volumes", &mAllVolumes);
        ImGui::SameLine();
        ImGui::Checkbox("the chosen one's", &mChosenVolume);
        if (!mMessages.Faults().empty() && ImGui::Button("forget the faults"))
            mMessages.ForgetFaults();
        if (const Scene* scene = SceneManager::Instance()->CurrentScene())
            drawList(*scene);
        else
            ImGui::TextDisabled("no scene runs");
        ImGui::PopItemWidth();
    }
    ImGui::End();
}

void Panel::drawTime() {
    if (ImGui::Button(mTime.paused ? "go on" : "pause", {70, 0}))
        mTime.paused = !mTime.paused;
    ImGui::SameLine();
    if (ImGui::Button("step", {50, 0}))
        mTime.Step();
    ImGui::SameLine();
    if (ImGui::Button("1 x", {40, 0}))
        mTime.speed = 1.0f;
    ImGui::SameLine();
    ImGui::Text("%.1f ms", static_cast<double>(1000.0f / ImGui::GetIO().Framerate));
    ImGui::SliderFloat("speed", &mTime.speed, 0.05f, 8.0f, "%.2f x",
                       ImGuiSliderFlags_Logarithmic | ImGuiSliderFlags_AlwaysClamp);
}

void Panel::drawList(const Scene& scene) {
    ImGui::InputTextWithHint("filter", "name, type or variant", mFilter, sizeof mFilter);
    std::vector<Entity*> shown;
    std::vector<std::string> titles;
    for (Entity* entity : scene.EntityList()) {
        std::string title = TitleOf(*entity);
        if (title.find(mFilter) == std::string::npos)
            continue;
        shown.push_back(entity);
        titles.push_back(std::move(title));
    }
    ImGui::TextDisabled("%zu of %zu in %s", shown.size(), scene.EntityList().size(),
                        scene.Path().empty() ? "the scene" : scene.Path().c_str());
    if (ImGui::BeginChild("entities", {0, 150}, true)) {
        ImGuiListClipper clipper;
        clipper.Begin(static_cast<int>(shown.size()));
        while (clipper.Step())
            for (int i = clipper.DisplayStart; i < clipper.DisplayEnd; ++i) {
                ImGui::PushID(i);
                Entity* entity = shown[static_cast<std::size_t>(i)];
                if (ImGui::Selectable(titles[static_cast<std::size_t>(i)].c_str(),
                                      entity == mChosen))
                    mChosen = entity;
                ImGui::PopID();
            }
    }
    ImGui::EndChild();
    const auto& list = scene.EntityList();
    if (std::find(list.begin(), list.end(), mChosen) == list.end())
        mChosen = nullptr; // it has left the scene
    else if (ImGui::BeginChild("values"))
        drawEntity(*mChosen);
    if (mChosen)
        ImGui::EndChild();
}

void Panel::drawEntity(Entity& entity) {
    ImGui::PushItemWidth(ImGui::GetContentRegionAvail().x * 0.62f);
    ImGui::Text("%s%s", TitleOf(entity).c_str(), entity.IsAlive() ? "" : "  (not alive)");
    if (entity.Parent())
        ImGui::Text("parent  %s", TitleOf(*entity.Parent()).c_str());
    drawTransform(entity);
    if (entity.Physics() && ImGui::CollapsingHeader("Physics", Open))
        drawPhysics(entity);
    if (entity.Graphics() && ImGui::CollapsingHeader("Graphics", Open))
        drawGraphics(entity);
    if (entity.Emitter() && ImGui::CollapsingHeader("Emitter", Open))
        drawEmitter(entity);
    drawOwn(entity);
    ImGui::PopItemWidth();
}

void Panel::drawTransform(Entity& entity) {
    Vector3 position = entity.Position(), orientation = entity.Orientation(),
            scale = entity.Scale();
    float angle = entity.Angle();
    if (Edit("position", position))
        entity.Position(position);
    if (Edit("orientation", orientation))
        entity.Orientation(orientation);
    if (ImGui::DragFloat("angle", &angle, 0.01f))
        entity.Angle(angle);
    if (Edit("scale", scale, 0.01f))
        entity.Scale(scale.x, scale.y, scale.z);
}

void Panel::drawPhysics(Entity& entity) {
    PhysicsCmpt& physics = *entity.Physics();
    Vector3 velocity = physics.LinearVelocity(), force = physics.Force(),
            factor = physics.ScaleFactor();
    float mass = physics.Mass();
    bool drag = physics.Drag(), dynamic = physics.UseDynamicCollisionCheck();
    if (Edit("velocity", velocity, 0.005f))
        physics.LinearVelocity(velocity);
    if (Edit("force", force))
        physics.Force(force);
    if (ImGui::DragFloat("mass", &mass, 0.05f, 0.001f, 1e6f) && mass > 0)
        physics.Mass(mass);
    if (Edit("volume's scale", factor, 0.01f))
        physics.ScaleFactor(factor);
    if (ImGui::Checkbox("drag", &drag))
        physics.Drag(drag);
    ImGui::SameLine();
    if (ImGui::Checkbox("swept test", &dynamic))
        physics.UseDynamicCollisionCheck(dynamic);
    Json::Value names;
    physics.SerializeValue(names, true);
    ImGui::TextWrapped("category  %s", names["Category"].asString().c_str());
    ImGui::TextWrapped("mask  %s", names["Mask"].asString().c_str());
}

void Panel::drawGraphics(Entity& entity) {
    GraphicsCmpt& graphics = *entity.Graphics();
    if (const Mesh* mesh = graphics.GetMesh())
        ImGui::Text("mesh  %u triangles, %u vertices, %u bones", mesh->mIndexCount / 3,
                    mesh->mVertexCount, mesh->mBoneCount);
    Material& material = graphics.GetMaterial();
    ImGui::Text("material  %s", material.Path().c_str());
    ImGui::Text("texture  %s", material.TexturePath().c_str());
    unsigned int modulation = material.ModulationColor(), additive = material.AdditiveColor();
    if (EditColor("modulation", modulation))
        material.ModulationColor(static_cast<unsigned long>(modulation));
    if (EditColor("additive", additive))
        material.AdditiveColor(static_cast<unsigned long>(additive));
    Show("ambient ", material.Ambient());
    Show("diffuse ", material.Diffuse());
    Show("emissive", material.Emissive());
    Show("specular", material.Specular());
    bool distortion = graphics.Distortion();
    if (ImGui::Checkbox("distortion", &distortion))
        graphics.Distortion(distortion);
}

void Panel::drawEmitter(Entity& entity) {
    const EmitterCmpt& emitter = *entity.Emitter();
    const auto alive = std::count_if(emitter.mParticles.begin(), emitter.mParticles.end(),
                                     [](const Particle& particle) { return particle.alive; });
    ImGui::Text("%td of %zu particles live", alive, emitter.mParticles.size());
    if (emitter.GetTexture())
        ImGui::Text("texture  %s", emitter.GetTexture()->mPath.c_str());
}

// What a class of the game's writes beyond what every entity has.
void Panel::drawOwn(Entity& entity) {
    Json::Value all;
    entity.SerializeValue(all, true);
    for (const char* key : {"Type", "Variant", "Name", "Position", "Orientation", "Scale",
                            "GraphicsCmpt", "PhysicsCmpt", "EmitterCmpt"})
        all.removeMember(key);
    if (all.empty() || !ImGui::CollapsingHeader("Own parameters", Open))
        return;
    for (const std::string& key : all.getMemberNames()) {
        Json::Value patch;
        patch[key] = all[key];
        if (!Edit(key.c_str(), patch[key]))
            continue;
        try {
            Apply(entity, patch);
        } catch (const std::exception& error) {
            mMessages.Note(error.what());
        }
    }
}

} // namespace Vorn::Dev
