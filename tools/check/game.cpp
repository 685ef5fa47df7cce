// SPDX-License-Identifier: MIT
#include "tools/check/game.hpp"

#include "tools/check/nearest.hpp"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>

namespace Check {
namespace {

std::string FileOf(const std::string& name) {
    return name.substr(name.rfind('/') + 1); // npos + 1 is 0
}

// As the factory sees it: what follows the first dot.
std::string FirstExtension(const std::string& name) {
    const std::string file = FileOf(name);
    const std::size_t dot = file.find('.');
    return dot == std::string::npos ? file : file.substr(dot + 1);
}

std::string Extension(const std::string& name) {
    const std::string file = FileOf(name);
    const std::size_t dot = file.rfind('.');
    return dot == std::string::npos ? std::string() : file.substr(dot + 1);
}

std::string ParentOf(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    return slash == std::string::npos ? std::string() : FileOf(name.substr(0, slash));
}

bool IsOneOf(const std::string& word, std::initializer_list<const char*> words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

/// What name and place say, without a look inside.
std::optional<Format> ByName(const std::string& name) {
    const std::string first = FirstExtension(name), last = Extension(name);
    if (first == "ent")
        return Format::Entity;
    if (first == "var")
        return Format::Variant;
    if (last == "scene")
        return Format::Scene;
    if (last == "fnt")
        return Format::Font;
    if (FileOf(name) == "check.json")
        return Format::Declarations;
    if (name.starts_with("data/mesh/") && IsOneOf(last, {"mesh", "model"}))
        return Format::Model;
    if (name.starts_with("data/shaders/") && IsOneOf(last, {"fx", "vsh", "psh"}))
        return Format::Effect;
    if (name.starts_with("data/mat/") && last == "json")
        return Format::Material;
    if (name.starts_with("data/trigger/") && IsOneOf(last, {"json", "trigger"}))
        return Format::Trigger;
    return std::nullopt;
}

bool MayBeJson(const std::string& name) {
    return IsOneOf(Extension(name), {"json", "pack"});
}

/// What the keys say: of the formats whose place is the host's choice, the one with the most keys
/// that are there.
std::optional<Format> ByKeys(const Json::Value& root, const Table& table) {
    std::optional<Format> best;
    std::size_t most = 0;
    for (const Format format :
         {Format::Scene, Format::PhysicsInfo, Format::Pack, Format::Trigger}) {
        std::size_t known = 0;
        for (const std::string& key : root.getMemberNames()) {
            const Key* found = table.Find(RecordOf(format))->Find(key);
            if (found && root[key].isArray() == (found->type != Type::Text))
                ++known;
        }
        if (known > most) {
            most = known;
            best = format;
        }
    }
    return best;
}

std::string TextOf(const Json::Value& object, const char* key) {
    const Json::Value& value = object.isObject() ? object[key] : object;
    return value.isString() ? value.asString() : std::string();
}

void AddTexts(const JsonText& text, const char* key, Names& names) {
    const Json::Value& list = text.Root()[key];
    if (!list.isArray())
        return;
    for (const Json::Value& name : list)
        if (name.isString())
            names[name.asString()].push_back(text.Of(name));
}

} // namespace

const char* RecordOf(Format format) {
    switch (format) {
    case Format::Entity:
    case Format::Variant:
        return "Entity";
    case Format::Scene:
        return "Scene";
    case Format::PhysicsInfo:
        return "PhysicsInfo";
    case Format::Pack:
        return "Pack";
    case Format::Material:
        return "Material";
    case Format::Trigger:
        return "Trigger";
    default:
        return nullptr;
    }
}

std::vector<std::string> KeysOf(const Names& names) {
    std::vector<std::string> keys;
    for (const auto& entry : names)
        keys.push_back(entry.first);
    return keys;
}

Game::Game(const Folder& folder, Table table, Findings& findings)
    : mFolder(folder), mTable(std::move(table)) {
    // Declarations first, since they add keys.
    std::vector<std::string> others;
    for (const std::string& name : mFolder.names)
        if (ByName(name) == Format::Declarations)
            readJson(name, Format::Declarations, findings);
        else
            others.push_back(name);
    // A scene tells its pack, and a pack its materials: those are it, whatever they are called.
    for (const std::string& name : others) {
        const std::optional<Format> format = ByName(name);
        if (format ? RecordOf(*format) != nullptr : MayBeJson(name))
            readJson(name, format, findings);
        else if (format)
            mData.push_back({name, *format, nullptr});
    }
    for (DataFile& file : mData)
        if (mPackPaths.erase(file.name) != 0 && file.json)
            file.format = Format::Pack;
    for (const std::string& path : mPackPaths)
        if (mFolder.Holds(path))
            readJson(path, Format::Pack, findings);
    for (const DataFile& file : mData)
        if (file.json)
            collect(file);
    readListed(findings);
}

// What a pack lists is what the store takes it for, whatever its name.
void Game::readListed(Findings& findings) {
    std::set<std::string> known;
    for (const DataFile& file : mData)
        known.insert(file.name);
    const auto each = [&](const Names& listed, const std::string& folder, const auto& read) {
        for (const auto& entry : listed)
            if (mFolder.Holds(folder + entry.first) && known.count(folder + entry.first) == 0)
                read(folder + entry.first);
    };
    each(mMaterials, "data/mat/",
         [&](const std::string& name) { readJson(name, Format::Material, findings); });
    each(mMeshes, "data/mesh/", [&](const std::string& name) {
        mData.push_back({name, Format::Model, nullptr});
    });
}

void Game::readJson(const std::string& name, std::optional<Format> format, Findings& findings) {
    std::string bytes;
    try {
        bytes = mFolder.read(name);
    } catch (const std::runtime_error& error) {
        findings.Error("unreadable", {name}, error.what());
        return;
    }
    auto json = std::make_unique<JsonText>(name, bytes);
    if (!format && (Extension(name) == "pack" || ParentOf(name) == "pack"))
        format = Format::Pack;
    if (!format && json->Root().isObject())
        format = ByKeys(json->Root(), mTable);
    if (!format) {
        // Nothing of the engine's, as far as one can see; but a fault is one in any case.
        if (name.starts_with("data/") && mFolder.checked.count(name) != 0 && !json->IsWhole())
            json->TellFaults(findings);
        return;
    }
    if (*format == Format::Declarations)
        declare(*json, findings);
    if (*format == Format::Scene)
        if (const std::string pack = TextOf(json->Root(), "ResourcePack"); !pack.empty())
            mPackPaths.insert(pack);
    mData.push_back({name, *format, std::move(json)});
}

void Game::collect(const DataFile& file) {
    const JsonText& text = *file.json;
    const Json::Value& root = text.Root();
    if (!root.isObject())
        return;
    const std::string type = TextOf(root, "Type"), variant = TextOf(root, "Variant");
    switch (file.format) {
    case Format::Entity:
        if (!type.empty())
            mTypes[type].push_back(text.Of(root["Type"]));
        break;
    case Format::Variant:
        if (!type.empty() && !variant.empty()) {
            mVariants[type][variant].push_back(text.Of(root["Variant"]));
            mTypeOfVariant.emplace(variant, type);
        }
        break;
    case Format::PhysicsInfo:
        AddTexts(text, "Category", mCategories);
        AddTexts(text, "Volume", mVolumes);
        break;
    case Format::Pack:
        mHasPacks = true;
        AddTexts(text, "Mesh", mMeshes);
        AddTexts(text, "Texture", mTextures);
        AddTexts(text, "Material", mMaterials);
        break;
    default:
        break;
    }
}

const Names& Game::Listed(Refers kind) const {
    return kind == Refers::Mesh ? mMeshes : kind == Refers::Texture ? mTextures : mMaterials;
}

const std::string& Game::PoolOf(const std::string& key) const {
    const auto alias = mTypeOfVariant.find(key);
    return mTypes.count(key) == 0 && alias != mTypeOfVariant.end() ? alias->second : key;
}

const Names& Game::VariantsOf(const std::string& key) const {
    static const Names none;
    const auto found = mVariants.find(PoolOf(key));
    return found == mVariants.end() ? none : found->second;
}

Names* Game::namesOf(const std::string& word) {
    const std::pair<const char*, Names*> all[] = {
        {"Mesh", &mMeshes}, {"Texture", &mTextures},    {"Material", &mMaterials},
        {"Type", &mTypes},  {"Category", &mCategories}, {"Volume", &mVolumes}};
    for (const auto& [name, names] : all)
        if (word == name)
            return names;
    return nullptr;
}

void Game::declare(const JsonText& text, Findings& findings) {
    const Json::Value& root = text.Root();
    if (!text.IsWhole())
        return;
    for (const std::string& member : root.getMemberNames()) {
        const Json::Value& value = root[member];
        if (member == "$schema")
            continue;
        if (member != "Keys" && member != "Names")
            findings.Warning("unknown-key", text.KeyOf(value),
                             "unknown key \"" + member + "\"" +
                                 Suggestion(member, {"Keys", "Names"}));
        else if (!value.isObject())
            findings.Error("wrong-type", text.Of(value), "\"" + member + "\" is an object");
        else if (member == "Names")
            declareNames(text, value, findings);
        else
            for (const std::string& record : value.getMemberNames())
                if (mTable.Find(record))
                    declareKeys(text, value[record], record, findings);
                else {
                    std::vector<std::string> known;
                    for (const Record& other : mTable.records)
                        known.push_back(other.name);
                    findings.Warning("unknown-key", text.KeyOf(value[record]),
                                     "there is no object \"" + record + "\"" +
                                         Suggestion(record, known));
                }
    }
}

void Game::declareKeys(const JsonText& text, const Json::Value& object, const std::string& record,
                       Findings& findings) {
    if (!object.isObject()) {
        findings.Error("wrong-type", text.Of(object), "keys with their types are an object");
        return;
    }
    for (const std::string& name : object.getMemberNames()) {
        const Json::Value& value = object[name];
        Key key{.name = name, .type = Type::Object, .meaning = "declared by the host"};
        if (value.isObject()) {
            key.of = record + "." + name;
            mTable.records.push_back({key.of, "Declared by the host", {}});
            declareKeys(text, value, key.of, findings);
        } else if (auto known = KeyOfWord(name, value.isString() ? value.asString() : "")) {
            key = std::move(*known);
        } else {
            findings.Error("wrong-type", text.Of(value),
                           "no type of a key" +
                               Suggestion(value.isString() ? value.asString() : "", TypeWords()));
            key.type = Type::Any;
        }
        auto& keys =
            std::find_if(mTable.records.begin(), mTable.records.end(), [&](const Record& r) {
                return r.name == record;
            })->keys;
        std::erase_if(keys, [&](const Key& other) { return other.name == name; });
        keys.push_back(std::move(key));
    }
}

void Game::declareNames(const JsonText& text, const Json::Value& object, Findings& findings) {
    for (const std::string& kind : object.getMemberNames()) {
        Names* names = namesOf(kind);
        const Json::Value& list = object[kind];
        if (!names)
            findings.Warning("unknown-key", text.KeyOf(list),
                             "no names of \"" + kind + "\" are looked up" +
                                 Suggestion(kind, {"Mesh", "Texture", "Material", "Type",
                                                   "Category", "Volume"}));
        else if (!list.isArray())
            findings.Error("wrong-type", text.Of(list), "names are an array of texts");
        else
            for (const Json::Value& name : list)
                if (name.isString())
                    (*names)[name.asString()].push_back(text.Of(name));
                else
                    findings.Error("wrong-type", text.Of(name), "a name is a text");
    }
}

} // namespace Check
