// SPDX-License-Identifier: MIT
#include "tools/view/emitter_controls.hpp"

#include "tools/view/subject.hpp"

#include <imgui.h>

#include <algorithm>
#include <array>
#include <string>

namespace View {
namespace {

/// Anything but a number counts as none.
float NumberOf(const Json::Value& value) {
    return value.isNumeric() ? value.asFloat() : 0.0f;
}

bool EditFloat(Json::Value& object, const char* key, float speed, float least) {
    float number = NumberOf(object[key]);
    if (!ImGui::DragFloat(key, &number, speed, least, 1e6f, "%.3g"))
        return false;
    object[key] = static_cast<double>(number);
    return true;
}

bool EditInt(Json::Value& object, const char* key, int most) {
    int number = object[key].isInt() ? object[key].asInt() : 0;
    if (!ImGui::DragInt(key, &number, 1, 0, most))
        return false;
    object[key] = std::clamp(number, 0, most);
    return true;
}

bool EditPair(Json::Value& object, const char* label, const char* first, const char* second,
              float speed, float least) {
    float pair[] = {NumberOf(object[first]), NumberOf(object[second])};
    if (!ImGui::DragFloat2(label, pair, speed, least, 1e6f, "%.3g"))
        return false;
    object[first] = static_cast<double>(pair[0]);
    object[second] = static_cast<double>(pair[1]);
    return true;
}

bool EditScale(Json::Value& object, const char* key) {
    Json::Value& scale = object[key];
    if (!scale.isObject())
        scale = Json::Value(Json::objectValue);
    float axes[] = {NumberOf(scale["X"]), NumberOf(scale["Y"])};
    if (!ImGui::DragFloat2(key, axes, 0.01f, 0.0f, 1e6f, "%.3g"))
        return false;
    scale["X"] = static_cast<double>(axes[0]);
    scale["Y"] = static_cast<double>(axes[1]);
    return true;
}

bool EditType(Json::Value& object) {
    static constexpr std::array<const char*, 3> types = {"Sphere", "Smoke", "Bubble"};
    const std::string now =
        object["EmitterType"].isString() ? object["EmitterType"].asString() : std::string();
    bool changed = false;
    if (ImGui::BeginCombo("EmitterType", now.c_str())) {
        for (const char* type : types)
            if (ImGui::Selectable(type, now == type)) {
                object["EmitterType"] = type;
                changed = true;
            }
        ImGui::EndCombo();
    }
    return changed;
}

} // namespace

bool EditEmitter(Json::Value& emitter) {
    PushFieldWidth(ImGui::CalcTextSize("Particles_Per_Emit").x);
    bool changed = EditType(emitter);
    changed |= EditInt(emitter, "Size", 65536);
    changed |= EditInt(emitter, "Particles_Per_Emit", 65536);
    changed |= EditPair(emitter, "SpawnRate 0, 1", "SpawnRate0", "SpawnRate1", 0.002f, 0.0f);
    changed |=
        EditPair(emitter, "ParticleLife 0, 1", "ParticleLife0", "ParticleLife1", 0.01f, 0.0f);
    changed |= EditPair(emitter, "Speed 0, 1", "Speed0", "Speed1", 0.02f, -1e6f);
    changed |= EditFloat(emitter, "Gravity", 0.02f, -1e6f);
    changed |= EditFloat(emitter, "SphereRadius", 0.01f, 0.0f);
    changed |= EditScale(emitter, "Scale0");
    changed |= EditScale(emitter, "Scale1");
    ImGui::PopItemWidth();
    bool once = emitter["EmitOnce"].isBool() && emitter["EmitOnce"].asBool();
    if (ImGui::Checkbox("EmitOnce", &once)) {
        emitter["EmitOnce"] = once;
        changed = true;
    }
    return changed;
}

} // namespace View
