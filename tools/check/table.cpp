// SPDX-License-Identifier: MIT
#include "tools/check/table.hpp"

#include <algorithm>
#include <utility>

namespace Check {
namespace {

constexpr double MaxWhole = 2147483647.0, MaxCount = 4294967295.0;
constexpr double MaxParticles = 16777216.0;

Record vectorOf(const char* name, const char* title, const char* fallback, bool layered) {
    Record record{name, title, {}};
    for (const char* axis : {"X", "Y", "Z"})
        record.keys.push_back({.name = axis,
                               .type = Type::Number,
                               .fallback = fallback,
                               .layered = layered,
                               .meaning = "along that axis"});
    return record;
}

Record direction() {
    Record record = vectorOf("Direction", "A direction, and a turn about it", "", true);
    record.keys.push_back({.name = "Angle",
                           .type = Type::Number,
                           .fallback = "0",
                           .unit = "radians",
                           .meaning = "the turn about the direction"});
    return record;
}

Record color() {
    Record record{"Color", "A colour", {}};
    for (const char* channel : {"A", "R", "G", "B"})
        record.keys.push_back({.name = channel,
                               .type = Type::Whole,
                               .layered = true,
                               .meaning = "a channel",
                               .least = 0.0,
                               .most = 255.0});
    return record;
}

Record graphics() {
    return {"GraphicsCmpt",
            "What an entity looks like",
            {{.name = "Mesh",
              .type = Type::Text,
              .fallback = R"("")",
              .layered = true,
              .meaning = "a model that is loaded, by its name in the store; \"\" shows nothing",
              .refers = Refers::Mesh},
             {.name = "Material",
              .type = Type::Text,
              .fallback = R"("")",
              .layered = true,
              .meaning = "a material that is loaded, by its name in the store",
              .refers = Refers::Material}}};
}

Record physics() {
    const auto flag = [](const char* name, const char* fallback, const char* meaning) {
        return Key{.name = name,
                   .type = Type::Flag,
                   .fallback = fallback,
                   .layered = true,
                   .meaning = meaning};
    };
    const auto name = [](const char* key, const char* meaning, Refers refers) {
        return Key{.name = key,
                   .type = Type::Text,
                   .fallback = R"("NONE")",
                   .meaning = meaning,
                   .refers = refers};
    };
    Record record{"PhysicsCmpt",
                  "The body of an entity",
                  {{.name = "Mass",
                    .type = Type::Number,
                    .fallback = "1",
                    .layered = true,
                    .meaning = "forces are divided by it, so it is not 0",
                    .notZero = true},
                   flag("Drag", "true", "velocity fades"),
                   flag("DynamicCheck", "false", "the swept test in place of the one at rest"),
                   name("Category", "what the body is", Refers::Category),
                   name("Mask", "what it does not collide with", Refers::Mask),
                   name("Type", "its volume", Refers::Volume),
                   {.name = "ScaleFactor",
                    .type = Type::Object,
                    .of = "Factor",
                    .fallback = R"({"X": 1, "Y": 1, "Z": 1})",
                    .layered = true,
                    .meaning = "the volume's size relative to the entity's scale; an axis that is "
                               "missing in it is 1"}}};
    record.keys[5].orNumber = true;
    record.keys[5].least = 0.0;
    return record;
}

/// Keys of emitters keep the layer below.
struct EmitterKeys {
    std::vector<Key> keys = {};

    Key& Add(const char* name, Type type, const char* meaning, const char* unit = "") {
        const char* fallback = type == Type::Text     ? R"("")"
                               : type == Type::Flag   ? "false"
                               : type == Type::Object ? ""
                                                      : "0";
        keys.push_back({.name = name,
                        .type = type,
                        .fallback = fallback,
                        .layered = true,
                        .unit = unit,
                        .meaning = meaning});
        return keys.back();
    }
    void AddPair(const std::string& name, Type type, const char* meaning, const char* unit = "") {
        Add((name + "0").c_str(), type, meaning, unit);
        Add((name + "1").c_str(), type, meaning, unit);
    }
    void AddObject(const std::string& name, const char* of, const char* fallback,
                   const char* meaning) {
        Key& key = Add(name.c_str(), Type::Object, meaning);
        key.of = of;
        key.fallback = fallback;
    }
};

constexpr const char* ZeroVector = R"({"X": 0, "Y": 0, "Z": 0})";
constexpr const char* ZeroColor = R"({"A": 0, "R": 0, "G": 0, "B": 0})";

Record emitter() {
    EmitterKeys e;
    e.Add("TexturePath", Type::Text,
          "a texture that is loaded, by its name in the store; without one the emitter's start "
          "raises")
        .refers = Refers::Texture;
    Key& size = e.Add("Size", Type::Whole, "how many particles it has, dead and alive");
    size.least = 0.0;
    size.most = MaxParticles;
    e.AddPair("SpawnRate", Type::Number,
              "the time from one emission to the next lies between the two, rolled once at the "
              "start",
              "seconds");
    e.Add("Particles_Per_Emit", Type::Whole,
          "particles of an emission; what finds none free is left out")
        .least = 0.0;
    e.Add("EmitOnce", Type::Flag, "ends after one emission");
    e.Add("EmitterType", Type::Text, "how particles start").choices = {"Sphere", "Smoke", "Bubble"};
    e.Add("SphereRadius", Type::Number, "of the ball of \"Sphere\"");
    e.AddPair("ParticleLife", Type::Number, "a particle's life lies between the two", "seconds");
    e.AddPair("Speed", Type::Number, "at birth and at the end of its life, along its direction",
              "1 / second");
    e.Add("Gravity", Type::Number, "pulls towards -Y, and a negative one lifts", "1 / second²");
    for (const char* name : {"Scale0", "Scale1"})
        e.AddObject(name, "Vector", ZeroVector, "size at birth and at the end");
    for (const char* name : {"Color0", "Color1"})
        e.AddObject(name, "Color", ZeroColor,
                    "colour at birth and at the end; the engine's own passes do not show it");
    e.AddObject("Offset", "Vector", ZeroVector, "read and kept, and nothing uses it");
    for (const char* name : {"ScaleI", "SpeedI", "ColorI"})
        e.Add(name, Type::Text, "read and kept, and nothing uses it");
    return {"EmitterCmpt", "What gives off particles", std::move(e.keys)};
}

Record entity() {
    const auto object = [](const char* name, const char* of, const char* fallback,
                           const char* meaning) {
        return Key{.name = name,
                   .type = Type::Object,
                   .of = of,
                   .fallback = fallback,
                   .layered = true,
                   .meaning = meaning};
    };
    const auto component = [](const char* name) {
        return Key{.name = name,
                   .type = Type::Object,
                   .of = name,
                   .absent = "an entity file: no such component. Else as the layer below",
                   .meaning = "the component and its values; {} is one with nothing but defaults"};
    };
    return {"Entity",
            "An entity",
            {{.name = "Type",
              .type = Type::Text,
              .absent = "\"\" in an entity or variant file, \"typeless\" in a scene: no pool has "
                        "such a name, unless the host registered one",
              .meaning = "the pool that the file goes to, and the entity's type",
              .refers = Refers::EntityType},
             {.name = "Variant",
              .type = Type::Text,
              .fallback = R"("master")",
              .meaning = "the name of the variant. A variant file must have it",
              .refers = Refers::Variant},
             {.name = "Name",
              .type = Type::Text,
              .fallback = R"("")",
              .layered = true,
              .meaning = "by which Scene::GetEntity finds the entity. A template's name is handed "
                         "to each of its entities"},
             object("Position", "Vector", ZeroVector, "where it stands, in the world"),
             object("Orientation", "Direction", R"({"X": 0, "Y": 0, "Z": 0, "Angle": 0})",
                    "where its Z axis points, and its turn about that direction (unit: radians)"),
             object("Scale", "Vector", R"({"X": 1, "Y": 1, "Z": 1})", "size along its own axes"),
             component("GraphicsCmpt"),
             component("PhysicsCmpt"),
             component("EmitterCmpt"),
             {.name = "Pool",
              .type = Type::Whole,
              .fallback = "0",
              .meaning = "entities to make ahead. Only an entity file's is read",
              .least = 0.0,
              .most = MaxCount,
              .onlyInEntityFile = true}}};
}

Record scene() {
    return {"Scene",
            "A scene",
            {{.name = "ResourcePack",
              .type = Type::Text,
              .fallback = R"("")",
              .meaning = "the path of the scene's resource pack, which is loaded before the "
                         "scene's first Init; \"\" loads nothing",
              .refers = Refers::Pack},
             {.name = "Entities",
              .type = Type::Objects,
              .of = "Entity",
              .fallback = "[]",
              .meaning = "one entity each, in the order in which they are made and updated"}}};
}

Key names(const char* name, const char* meaning, Refers refers = Refers::Nothing) {
    return {
        .name = name, .type = Type::Texts, .fallback = "[]", .meaning = meaning, .refers = refers};
}

Record physicsInfo() {
    return {"PhysicsInfo",
            "Names of categories and volumes",
            {names("Category", "at most 32 names; the place of a name is its bit. \"ALL\" has "
                               "every bit of the list"),
             names("Volume", "the place of a name is its number: 1 is the box, 2 the sphere, other "
                             "numbers collide with nothing")}};
}

Record pack() {
    return {"Pack",
            "A resource pack",
            {names("Mesh", "a file below data/mesh/", Refers::MeshFile),
             names("Texture", "a file below data/img/", Refers::TextureFile),
             names("Material", "a file below data/mat/", Refers::MaterialFile),
             names("Audio", "a file below data/audio/, behind a blank \"bgm\" for music",
                   Refers::SoundFile)}};
}

Record material() {
    Record record{"Material",
                  "A material",
                  {{.name = "Texture",
                    .type = Type::Text,
                    .absent = "raises",
                    .meaning = "a texture that is loaded already, by its name in the store",
                    .refers = Refers::Texture},
                   {.name = "Transparency",
                    .type = Type::Any,
                    .fallback = "false",
                    .meaning = "0, null, \"\", [] and {} say no, everything else yes"},
                   {.name = "Lighting",
                    .type = Type::Any,
                    .fallback = "true",
                    .meaning = "0, null, \"\", [] and {} say no, everything else yes"}}};
    for (const char* light : {"Ambient", "Diffuse", "Emissive", "Specular"})
        record.keys.push_back({.name = light,
                               .type = Type::Numbers,
                               .fallback = "[0, 0, 0, 0]",
                               .meaning = "what the surface makes of light: red, green, blue, "
                                          "alpha"});
    record.keys.push_back({.name = "Shininess",
                           .type = Type::Number,
                           .fallback = "1",
                           .meaning = "of the highlight"});
    const auto color = [&](const char* name, const char* fallback, const char* meaning) {
        record.keys.push_back({.name = name,
                               .type = Type::Wholes,
                               .fallback = fallback,
                               .meaning = meaning,
                               .least = 0.0,
                               .most = 255.0});
    };
    color("ModulationColor", "[255, 255, 255, 255]",
          "alpha, red, green, blue, which the picture is multiplied with");
    color("AdditiveColor", "[0, 0, 0, 0]",
          "alpha, red, green, blue, which are added to the picture");
    return record;
}

Record trigger() {
    Key condition{.name = "Condition",
                  .type = Type::Any,
                  .absent = "-",
                  .meaning = "read over: no check depends on it",
                  .unread = true};
    return {"Trigger",
            "A trigger",
            {names("Event", "what to wait for", Refers::EventLine), std::move(condition),
             names("Action", "the command lines, in running order", Refers::CommandLine)}};
}

const std::vector<std::pair<std::string, Key>>& Words() {
    const auto text = [](Refers refers) {
        return Key{.name = "", .type = Type::Text, .refers = refers};
    };
    const auto object = [](const char* of) {
        return Key{.name = "", .type = Type::Object, .of = of};
    };
    static const std::vector<std::pair<std::string, Key>> words = {
        {"text", text(Refers::Nothing)},
        {"number", {.name = "", .type = Type::Number}},
        {"whole", {.name = "", .type = Type::Whole, .least = -MaxWhole - 1, .most = MaxWhole}},
        {"flag", {.name = "", .type = Type::Flag}},
        {"any", {.name = "", .type = Type::Any}},
        {"texts", {.name = "", .type = Type::Texts}},
        {"vector", object("Vector")},
        {"color", object("Color")},
        {"mesh", text(Refers::Mesh)},
        {"texture", text(Refers::Texture)},
        {"material", text(Refers::Material)},
        {"type", text(Refers::EntityType)},
        {"category", text(Refers::Category)},
        {"mask", text(Refers::Mask)},
        {"volume", text(Refers::Volume)}};
    return words;
}

} // namespace

const Key* Record::Find(std::string_view key) const {
    const auto found =
        std::find_if(keys.begin(), keys.end(), [key](const Key& k) { return k.name == key; });
    return found == keys.end() ? nullptr : &*found;
}

const Record* Table::Find(std::string_view record) const {
    const auto found = std::find_if(records.begin(), records.end(),
                                    [record](const Record& r) { return r.name == record; });
    return found == records.end() ? nullptr : &*found;
}

Table EngineTable() {
    Table table;
    table.records = {vectorOf("Vector", "A vector", "", true),
                     direction(),
                     vectorOf("Factor", "A factor to each axis", "1", false),
                     color(),
                     graphics(),
                     physics(),
                     emitter(),
                     entity(),
                     scene(),
                     physicsInfo(),
                     pack(),
                     material(),
                     trigger()};
    AddLines(table);
    AddEffects(table);
    return table;
}

std::optional<Key> KeyOfWord(const std::string& name, const std::string& word) {
    for (const auto& [known, key] : Words())
        if (known == word) {
            Key named = key;
            named.name = name;
            named.meaning = "declared by the host";
            return named;
        }
    return std::nullopt;
}

std::vector<std::string> TypeWords() {
    std::vector<std::string> names;
    for (const auto& entry : Words())
        names.push_back(entry.first);
    return names;
}

} // namespace Check
