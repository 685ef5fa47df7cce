// SPDX-License-Identifier: MIT
#include "dev/entity_patch.hpp"

#include "dev/resource_reload.hpp"
#include "vorn/core/json.hpp"
#include "vorn/physics/physics_cmpt.hpp"
#include "vorn/render/emitter_cmpt.hpp"
#include "vorn/render/graphics_cmpt.hpp"
#include "vorn/scene/entity.hpp"
#include "vorn/scene/entity_factory.hpp"
#include "vorn/scene/scene.hpp"

#include <algorithm>
#include <set>
#include <string>

namespace Vorn::Dev {

namespace {

// What a body's reader takes for "NONE" when it is not there.
constexpr const char* BodyNames[] = {"Category", "Mask", "Type"};

bool IsComponent(const std::string& key) {
    return key.ends_with("Cmpt");
}

bool IsIdentity(const std::string& key) {
    return key == "Type" || key == "Variant" || key == "Name" || key == "Pool";
}

std::vector<std::string> Members(const Json::Value& object) {
    return object.isObject() ? object.getMemberNames() : std::vector<std::string>();
}

void Lay(Json::Value& under, const Json::Value& over) {
    if (!under.isObject() || !over.isObject()) {
        under = over;
        return;
    }
    for (const std::string& key : Members(over))
        Lay(under[key], over[key]);
}

Json::Value Changed(const Json::Value& before, const Json::Value& after,
                    const Json::Value& defaults) {
    Json::Value changed;
    std::set<std::string> keys;
    for (const Json::Value* object : {&before, &after})
        for (std::string& key : Members(*object))
            keys.insert(std::move(key));
    for (const std::string& key : keys) {
        const Json::Value &old = JsonMember(before, key), &now = JsonMember(after, key);
        if (old == now)
            continue;
        if (now.isNull() && JsonMember(defaults, key).isNull())
            continue;
        changed[key] = now.isNull() ? JsonMember(defaults, key) : now;
    }
    return changed;
}

// Those that the patch leaves out are as the entity has them.
void CompleteBody(const Entity& entity, Json::Value& patch) {
    if (!entity.Physics() || !patch.isMember("PhysicsCmpt") || !patch["PhysicsCmpt"].isObject())
        return;
    Json::Value& body = patch["PhysicsCmpt"];
    Json::Value now;
    entity.Physics()->SerializeValue(now, true);
    for (const char* name : BodyNames)
        if (!body.isMember(name))
            body[name] = now[name];
}

} // namespace

Json::Value Layered(const Json::Value& master, const Json::Value& variant) {
    Json::Value over = variant;
    if (over.isMember("PhysicsCmpt") && over["PhysicsCmpt"].isObject())
        for (const char* name : BodyNames)
            if (!over["PhysicsCmpt"].isMember(name))
                over["PhysicsCmpt"][name] = "NONE";
    if (over.isMember("Orientation") && over["Orientation"].isObject() &&
        !over["Orientation"].isMember("Angle"))
        over["Orientation"]["Angle"] = 0;
    Json::Value layered = master;
    Lay(layered, over);
    return layered;
}

Json::Value Difference(const Json::Value& before, const Json::Value& after,
                       const Json::Value& defaults) {
    Json::Value patch = Changed(before, after, defaults);
    for (const std::string& key : Members(patch)) {
        if (IsIdentity(key))
            patch.removeMember(key);
        else if (IsComponent(key) && JsonMember(before, key).isObject() &&
                 JsonMember(after, key).isObject())
            patch[key] = Changed(before[key], after[key], JsonMember(defaults, key));
        else if (IsComponent(key) && JsonMember(after, key).isNull())
            patch.removeMember(key); // an entity keeps its components
    }
    for (const std::string& key : Members(patch))
        if (patch[key].isNull())
            patch.removeMember(key);
    return patch;
}

Json::Value Without(Json::Value patch, const Json::Value& other) {
    for (const std::string& key : Members(other)) {
        if (!patch.isMember(key))
            continue;
        if (IsComponent(key) && patch[key].isObject())
            for (const std::string& member : Members(other[key]))
                patch[key].removeMember(member);
        else
            patch.removeMember(key);
    }
    return patch;
}

Json::Value DefaultsOf(const std::string& type, const std::string& variant) {
    EntityFactory& factory = *EntityFactory::Instance();
    Entity* entity = factory.FetchEntity(type, variant);
    Json::Value value;
    try {
        entity->SerializeValue(value, true);
    } catch (...) {
        factory.ReturnEntity(entity);
        throw;
    }
    factory.ReturnEntity(entity);
    return value;
}

void Apply(Entity& entity, const Json::Value& wanted) {
    if (wanted.empty())
        return;
    Json::Value patch = wanted;
    CompleteBody(entity, patch);
    const Json::Value &graphics = JsonObject(patch, "GraphicsCmpt"),
                      &emitter = JsonObject(patch, "EmitterCmpt");
    NeedResources(patch);

    // A reader takes the position for the local one, whether it has read one or not.
    const Vector3 local = entity.LocalPosition();
    const bool distortion = entity.Graphics() && entity.Graphics()->Distortion();
    entity.DeserializeValue(patch, false);
    if (!patch.isMember("Position"))
        entity.LocalPosition(local);
    if (!graphics.empty()) {
        entity.Graphics()->Init();
        entity.Graphics()->Distortion(distortion);
    }
    if (!emitter.empty()) {
        entity.Emitter()->Conform(*entity.Emitter());
        entity.Emitter()->Init();
    }
}

std::vector<Entity*> EntitiesOf(const Scene& scene, const Json::Value& elements) {
    std::vector<Entity*> found;
    std::set<const Entity*> taken;
    const auto isOne = [](const Entity& entity, const Json::Value& element) {
        return entity.Type() == JsonString(element, "Type", "typeless") &&
               entity.Variant() == JsonString(element, "Variant", "master");
    };
    for (const Json::Value& element : elements) {
        const std::string name = JsonString(element, "Name", "");
        Entity* entity = name.empty() ? nullptr : scene.GetEntity(name);
        found.push_back(entity && isOne(*entity, element) ? entity : nullptr);
        taken.insert(found.back());
    }
    for (Json::ArrayIndex i = 0; i < elements.size(); ++i) {
        if (!JsonString(elements[i], "Name", "").empty())
            continue;
        const auto& list = scene.EntityList();
        const auto next = std::find_if(list.begin(), list.end(), [&](const Entity* entity) {
            return !taken.contains(entity) && isOne(*entity, elements[i]);
        });
        if (next != list.end())
            taken.insert(found[i] = *next);
    }
    return found;
}

} // namespace Vorn::Dev
