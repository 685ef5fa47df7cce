// SPDX-License-Identifier: MIT
//
// A class of a host, the plain twin of its layers (JSON objects beside maps of flags), and random
// objects to read into both.
#pragma once

#include "tests/support/physics_names.hpp"
#include "vorn/vorn.hpp"

#include <gtest/gtest.h>
#include <json/json.h>

#include <array>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace EntityTests {

using Vorn::Entity;
using Vorn::Vector3;

const bool namesEntered = (Tests::EnterPhysicsNames(), true);

constexpr std::array<const char*, 3> AxisKeys = {"X", "Y", "Z"};
constexpr std::array<const char*, 3> VectorKeys = {"Position", "Orientation", "Scale"};
constexpr std::array<const char*, 3> CmptKeys = {"GraphicsCmpt", "PhysicsCmpt", "EmitterCmpt"};
const std::string Whole =
    R"({"Type": "t", "Variant": "v", "Name": "n", "Position": {"X": 1, "Y": 2, "Z": 3},
    "Orientation": {"X": 4, "Y": 5, "Z": 6, "Angle": 7}, "Scale": {"X": 8, "Y": 9, "Z": 10},
    "GraphicsCmpt": {}, "EmitterCmpt": {},
    "PhysicsCmpt": {"Mass": 11, "Drag": false, "DynamicCheck": true, "Category": "B",
                    "Mask": "ALL - A", "Type": "Box", "ScaleFactor": {"X": 12}}})";

inline Json::Value Parse(const std::string& text) {
    Json::Value root;
    std::istringstream(text) >> root;
    return root;
}

/// What an entity, a component or the twin writes; "raises" where a parameter has no flag.
template <typename T>
Json::Value Write(const T& source, bool master) {
    Json::Value out(Json::objectValue);
    try {
        source.SerializeValue(out, master);
    } catch (const std::out_of_range&) {
        return "raises";
    }
    return out;
}

/// Has a parameter of its own. A pool must come by its operations through the base class.
class Sheep : public Entity {
public:
    static inline std::string refuses; // the operation that raises
    int registered = 0;

private:
    void DeserializeValue(const Json::Value& root, bool master) override {
        Entity::DeserializeValue(root, master);
        dsParam(mWool, Vorn::JsonFloat(root, "Wool", mWool), master);
    }
    void SerializeValue(Json::Value& out, bool master) const override {
        Entity::SerializeValue(out, master);
        seParam(out, "Wool", mWool, master);
    }
    void RegisterCmpts() override {
        Entity::RegisterCmpts();
        ++registered;
        if (refuses == "RegisterCmpts")
            throw std::runtime_error("no room");
    }
    void UnregisterCmpts() override {
        Entity::UnregisterCmpts();
        registered = 0;
    }
    void Conform(const Entity* source) override {
        Entity::Conform(source);
        mWool = dynamic_cast<const Sheep&>(*source).mWool;
        if (refuses == "Conform")
            throw std::runtime_error("no likeness");
    }

    float mWool = 1.0f;
};

/// Values beside their flags.
struct Layered {
    Json::Value held;
    std::map<std::string, bool> flags = {}; // true: the template's; no entry: nobody named it

    /// Each as the kind of value that is held. `rest` has what counts where a key or an axis is
    /// missing.
    void Read(const Json::Value& root, const Json::Value& rest, bool master) {
        for (const std::string& key : held.getMemberNames()) {
            Json::Value next = held[key];
            if (next.isObject() && root[key].isNull())
                continue;
            for (const std::string& axis : next.isObject() ? next.getMemberNames() : Axes())
                next[axis] = converted(root[key].get(axis, rest[key][axis]), next[axis]);
            if (!next.isObject())
                next = converted(root.get(key, rest[key]), next);
            if (master || next != held[key])
                flags[key] = master;
            held[key] = next;
        }
    }
    /// The full mask is written as an empty text.
    void Write(Json::Value& out, const std::string& key, bool master) const {
        if (master || !flags.at(key))
            out[key] = held[key] == "ALL" ? "" : held[key];
    }
    void MarkAll() {
        for (const std::string& key : held.getMemberNames())
            flags[key] = true;
    }

private:
    using Axes = Json::Value::Members;

    static Json::Value converted(const Json::Value& from, const Json::Value& to) {
        const std::map<std::string, unsigned int> volumes = {
            {"NONE", 0}, {"Box", 1}, {"Sphere", 2}};
        if (to.type() == Json::uintValue)
            return from.isString() ? volumes.at(from.asString()) : from.asUInt();
        if (to.isString() || to.isBool())
            return to.isBool() ? Json::Value(from.asBool()) : from.asString();
        return static_cast<double>(from.asFloat());
    }
};

inline Layered NewBody() {
    Layered body{Parse(R"({"Mass": 1.0, "Drag": true, "DynamicCheck": false, "Category": "",
                           "Mask": "", "ScaleFactor": {"X": 1.0, "Y": 1.0, "Z": 1.0}})")};
    body.held["Type"] = 0u;
    return body;
}

struct Twin : Layered {
    float angle = 0.0f;
    std::array<bool, 3> cmpts{};
    Layered body = NewBody(); // means nothing while there is none

    Twin()
        : Layered{Parse(R"({"Type": "", "Variant": "master", "Name": "", "Wool": 1.0,
                            "Position": {"X": 0.0, "Y": 0.0, "Z": 0.0},
                            "Orientation": {"X": 0.0, "Y": 0.0, "Z": 0.0},
                            "Scale": {"X": 1.0, "Y": 1.0, "Z": 1.0}})")} {}
    void DeserializeValue(const Json::Value& root, bool master) {
        Read(root, held, master);
        if (!root["Orientation"].isNull())
            angle = root["Orientation"].get("Angle", 0.0).asFloat();
        if (!cmpts[1])
            body = NewBody();
        for (std::size_t i = 0; i < 3; ++i)
            cmpts[i] = !root[CmptKeys[i]].isNull() || (cmpts[i] && !master);
        Json::Value rest = NewBody().held;
        for (const char* key : {"Mass", "Drag", "DynamicCheck"})
            rest[key] = body.held[key];
        rest["Category"] = rest["Mask"] = "NONE";
        if (!root["PhysicsCmpt"].isNull())
            body.Read(root["PhysicsCmpt"], rest, master);
    }
    void SerializeValue(Json::Value& out, bool master) const {
        for (const std::string& key : held.getMemberNames())
            if (key != "Variant")
                Write(out, key, master || key == "Type");
        for (const char* key : CmptKeys)
            out[key] = Json::Value();
        for (const std::string& key :
             cmpts[1] ? body.held.getMemberNames() : Json::Value::Members())
            body.Write(out["PhysicsCmpt"], key, master);
    }
    /// As the template of what is fetched.
    Twin Fetched() const {
        Twin fetched = *this;
        fetched.MarkAll();
        fetched.body.MarkAll();
        return fetched;
    }
};

/// Whom each component has as its parent; null where there is none.
inline std::array<const Entity*, 3> Owners(const Entity& entity) {
    const auto owner = [](const Vorn::BaseCmpt* cmpt) { return cmpt ? cmpt->Parent() : nullptr; };
    return {owner(entity.Graphics()), owner(entity.Physics()), owner(entity.Emitter())};
}

/// `entity` right after it was read or fetched.
inline void ExpectSame(const Entity& entity, const Twin& twin) {
    EXPECT_EQ(Write(entity, true), Write(twin, true));
    EXPECT_EQ(Write(entity, false), Write(twin, false));
    EXPECT_EQ(entity.Variant(), twin.held["Variant"].asString());
    EXPECT_EQ(entity.LocalPosition(), entity.Position());
    EXPECT_EQ(entity.Angle(), twin.angle);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(Owners(entity)[i], twin.cmpts[i] ? &entity : nullptr) << CmptKeys[i];
}

class Random {
public:
    explicit Random(unsigned int seed) : mRandom(seed) {}

    std::size_t Below(std::size_t count) { return mRandom() % count; }
    bool OneIn(unsigned int count) { return Below(count) == 0; }
    float Within(float edge) { return std::uniform_real_distribution<float>(-edge, edge)(mRandom); }

    /// An object to lie over `twin`: many values equal to what is there, some null, and keys that
    /// mean nothing.
    Json::Value Over(const Twin& twin) {
        Json::Value root = twin.held;
        root["Orientation"]["Angle"] = static_cast<double>(twin.angle);
        root["position"]["X"] = root["Odd"] = 1;
        for (const char* key : CmptKeys)
            if (OneIn(2))
                root[key] = Json::Value(Json::objectValue);
        for (const char* key : {"Type", "Variant"})
            root.removeMember(key);
        Json::Value next = vary(root);
        if (std::as_const(next)["PhysicsCmpt"].isObject())
            next["PhysicsCmpt"] = body(twin.body.held);
        return next;
    }
    /// The same for a fresh entity, with a type and with each vector named.
    Json::Value Master() {
        Json::Value root = Over(Twin());
        root["Type"] = OneIn(2) ? "sheep" : "goat";
        for (const char* key : VectorKeys)
            root[key]["Y"] = vary(0.5);
        return root;
    }

private:
    // Each mask in the form in which it is written.
    Json::Value body(const Json::Value& now) {
        const std::map<std::string, std::vector<Json::Value>> byKey = {
            {"Category", {"NONE", "A", "B"}},
            {"Mask", {"NONE", "A", "ALL - NONE", "ALL - A", "ALL", "", Json::Value()}},
            {"Type", {"NONE", "Box", "Sphere", 0, 2, 7}}};
        Json::Value next = vary(now);
        for (const auto& [key, names] : byKey) {
            next.removeMember(key);
            if (!OneIn(3))
                next[key] = names[Below(names.size())];
        }
        return next;
    }
    Json::Value vary(const Json::Value& now) {
        Json::Value next(Json::objectValue);
        for (const std::string& key :
             now.isObject() ? now.getMemberNames() : Json::Value::Members())
            if (!OneIn(3))
                next[key] = OneIn(12) ? Json::Value() : vary(now[key]);
        if (now.isObject())
            return next;
        if (now.isString())
            return OneIn(2) ? now : Json::Value(std::string("\"\\\n\xf0\x9f\x90\x91\0/", 9));
        const Json::Value numbers[] = {static_cast<double>(Within(1e4f)) * 1.00000001, 0.1,
                                       static_cast<int>(Below(5)) - 2};
        return OneIn(2) ? now : numbers[Below(3)];
    }

    std::mt19937 mRandom;
};

} // namespace EntityTests
