// SPDX-License-Identifier: MIT
//
// The plain twin of an entity's layers: fields beside optional flags, and random objects to read
// into both.
#pragma once

#include "vorn/vorn.hpp"

#include <gtest/gtest.h>
#include <json/json.h>

#include <array>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>

namespace EntityTests {

using Axes = std::array<float, 3>;
constexpr std::array<const char*, 3> AxisKeys = {"X", "Y", "Z"};
constexpr std::array<const char*, 3> CmptKeys = {"GraphicsCmpt", "PhysicsCmpt", "EmitterCmpt"};

inline Axes AxesOf(const Vorn::Vector3& v) {
    return {v.x, v.y, v.z};
}

inline Json::Value Parse(const std::string& text) {
    Json::Value root;
    std::string errors;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    if (!reader->parse(text.data(), text.data() + text.size(), &root, &errors))
        throw std::logic_error(errors + " in " + text);
    return root;
}

inline Json::Value ToJson(const Axes& axes) {
    Json::Value value(Json::objectValue);
    for (std::size_t i = 0; i < 3; ++i)
        value[AxisKeys[i]] = static_cast<double>(axes[i]);
    return value;
}

template <typename T>
struct Layered {
    T value{};
    std::optional<bool> master;

    void Read(const T& next, bool asMaster) {
        if (asMaster)
            master = true;
        else if (next != value)
            master = false;
        value = next;
    }
};

struct Twin {
    Layered<std::string> type;
    Layered<std::string> variant{"master", {}};
    Layered<std::string> name;
    Layered<Axes> position;
    Layered<Axes> orientation;
    Layered<Axes> scale{{1.0f, 1.0f, 1.0f}, {}};
    float angle = 0.0f;
    std::array<bool, 3> cmpts{};

    void Read(const Json::Value& root, bool master) {
        ReadText(type, root, "Type", master);
        ReadText(variant, root, "Variant", master);
        ReadText(name, root, "Name", master);
        ReadAxes(position, root, "Position", master);
        ReadAxes(orientation, root, "Orientation", master);
        if (!root["Orientation"].isNull())
            angle = root["Orientation"].get("Angle", 0.0).asFloat();
        ReadAxes(scale, root, "Scale", master);
        for (std::size_t i = 0; i < 3; ++i)
            cmpts[i] = !root[CmptKeys[i]].isNull() || (cmpts[i] && !master);
    }

    /// What an entity out of a pool starts from.
    void MarkAll() {
        type.master = variant.master = name.master = true;
        position.master = orientation.master = scale.master = true;
    }

    /// What is written beside the components; nothing where writing raises.
    std::optional<Json::Value> Write(bool master) const {
        Json::Value out(Json::objectValue);
        out["Type"] = type.value;
        if (!master && !(name.master && position.master && orientation.master && scale.master))
            return std::nullopt;
        if (master || !*name.master)
            out["Name"] = name.value;
        if (master || !*position.master)
            out["Position"] = ToJson(position.value);
        if (master || !*orientation.master)
            out["Orientation"] = ToJson(orientation.value);
        if (master || !*scale.master)
            out["Scale"] = ToJson(scale.value);
        return out;
    }

private:
    static void ReadText(Layered<std::string>& field, const Json::Value& root, const char* key,
                         bool master) {
        field.Read(root.isMember(key) ? root[key].asString() : field.value, master);
    }
    static void ReadAxes(Layered<Axes>& field, const Json::Value& root, const char* key,
                         bool master) {
        if (root[key].isNull())
            return;
        Axes next = field.value;
        for (std::size_t i = 0; i < 3; ++i)
            if (root[key].isMember(AxisKeys[i]))
                next[i] = static_cast<float>(root[key][AxisKeys[i]].asDouble());
        field.Read(next, master);
    }
};

/// The entity's object without the components, whose three keys must stand in it.
inline Json::Value Write(const Vorn::Entity& entity, bool master) {
    Json::Value out;
    entity.SerializeValue(out, master);
    for (const char* key : CmptKeys) {
        EXPECT_TRUE(out.isMember(key)) << key;
        out.removeMember(key);
    }
    return out;
}

/// Writes differences where a parameter must be missing its flag.
inline void ExpectNoFlag(const Vorn::Entity& entity) {
    Json::Value out;
    try {
        entity.SerializeValue(out, false);
        ADD_FAILURE() << "written: " << out.toStyledString();
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "invalid map<K, T> key");
    }
}

inline void ExpectSame(const Vorn::Entity& entity, const Twin& twin) {
    EXPECT_EQ(entity.Type(), twin.type.value);
    EXPECT_EQ(entity.Variant(), twin.variant.value);
    EXPECT_EQ(entity.Name(), twin.name.value);
    EXPECT_EQ(AxesOf(entity.Position()), twin.position.value);
    EXPECT_EQ(AxesOf(entity.LocalPosition()), twin.position.value);
    EXPECT_EQ(AxesOf(entity.Orientation()), twin.orientation.value);
    EXPECT_EQ(AxesOf(entity.Scale()), twin.scale.value);
    EXPECT_EQ(entity.Angle(), twin.angle);
    EXPECT_EQ(entity.Graphics() != nullptr, twin.cmpts[0]);
    EXPECT_EQ(entity.Physics() != nullptr, twin.cmpts[1]);
    EXPECT_EQ(entity.Emitter() != nullptr, twin.cmpts[2]);
    if (entity.Graphics()) {
        EXPECT_EQ(entity.Graphics()->Parent(), &entity);
    }
    if (entity.Physics()) {
        EXPECT_EQ(entity.Physics()->Parent(), &entity);
    }
    if (entity.Emitter()) {
        EXPECT_EQ(entity.Emitter()->Parent(), &entity);
    }
}

inline void ExpectWrites(const Vorn::Entity& entity, const Twin& twin) {
    EXPECT_EQ(Write(entity, true), *twin.Write(true));
    if (const std::optional<Json::Value> differences = twin.Write(false)) {
        EXPECT_EQ(Write(entity, false), *differences);
    } else {
        ExpectNoFlag(entity);
    }
}

class RandomObjects {
public:
    explicit RandomObjects(unsigned int seed) : mRandom(seed) {}

    unsigned int Below(unsigned int count) {
        return std::uniform_int_distribution<unsigned int>(0, count - 1)(mRandom);
    }
    bool OneIn(unsigned int count) { return Below(count) == 0; }

    /// An object to lie over `twin`: each key with a chance of two in three, many values equal to
    /// what is there.
    Json::Value Over(const Twin& twin) {
        Json::Value root(Json::objectValue);
        if (!OneIn(3))
            root["Name"] = OneIn(2) ? twin.name.value : "n" + std::to_string(Below(3));
        if (!OneIn(3))
            root["Position"] = Vector(twin.position.value);
        if (!OneIn(3)) {
            root["Orientation"] = Vector(twin.orientation.value);
            if (OneIn(2))
                root["Orientation"]["Angle"] = Number(twin.angle);
        }
        if (!OneIn(3))
            root["Scale"] = Vector(twin.scale.value);
        for (const char* key : CmptKeys) {
            if (OneIn(3))
                root[key] = Json::Value(OneIn(3) ? Json::nullValue : Json::objectValue);
        }
        return root;
    }

    /// The same with the name of a type and with each vector named.
    Json::Value Master() {
        Json::Value root = Over(Twin());
        root["Type"] = "t" + std::to_string(Below(3));
        for (const char* key : {"Position", "Orientation", "Scale"}) {
            if (!root.isMember(key))
                root[key] = Vector({});
        }
        return root;
    }

    Json::Value Number(float current) {
        constexpr std::array<double, 5> grid = {-1.0, 0.0, 0.1, 1.0, 2.5};
        switch (Below(4)) {
        case 0:
            return static_cast<double>(current);
        case 1:
            return std::uniform_real_distribution<double>(-1e4, 1e4)(mRandom);
        case 2:
            return static_cast<int>(Below(5)) - 2;
        default:
            return grid[Below(5)];
        }
    }

private:
    Json::Value Vector(const Axes& current) {
        Json::Value value(Json::objectValue);
        const bool same = OneIn(4);
        for (std::size_t i = 0; i < 3; ++i)
            if (!OneIn(3))
                value[AxisKeys[i]] =
                    same ? Json::Value(static_cast<double>(current[i])) : Number(current[i]);
        return value;
    }

    std::mt19937 mRandom;
};

} // namespace EntityTests
