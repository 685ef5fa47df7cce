// SPDX-License-Identifier: MIT
//
// What entity, variant and scene files say together, and materials of their textures.
#include "tools/check/names.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace Check {
namespace {

std::string TextOf(const Json::Value& object, const char* key, const char* fallback) {
    const Json::Value& value = object[key];
    return value.isString() ? value.asString() : object.isMember(key) ? "" : fallback;
}

std::string FolderOf(const std::string& file) {
    return file.substr(0, file.rfind('/') + 1);
}

class EntityCheck {
public:
    EntityCheck(const Game& game, std::vector<Reference>& references, Findings& findings)
        : mGame(game), mReferences(references), mFindings(findings) {}

    void Run(const DataFile& file) {
        const JsonText& text = *file.json;
        switch (file.format) {
        case Format::Entity:
            return checkEntity(text);
        case Format::Variant:
            return checkVariant(text);
        case Format::Scene:
            return checkScene(text);
        case Format::PhysicsInfo:
            checkInfo(text, "Category");
            return checkInfo(text, "Volume");
        case Format::Material:
            if (!text.Root().isMember("Texture"))
                mFindings.Error("no-texture", text.Of(text.Root()),
                                "the material has no \"Texture\": it cannot be loaded");
            else if (TextOf(text.Root(), "Texture", "").empty())
                mFindings.Error("no-texture", text.Of(text.Root()["Texture"]),
                                "the material has no texture: it cannot be loaded");
            return;
        default:
            return;
        }
    }

private:
    // The first that describes it, of a folder: LoadEntities reads one, and its order is the file
    // system's.
    void checkOnce(const JsonText& text, const char* key, const Names& names) {
        const Json::Value& value = text.Root()[key];
        const auto found = value.isString() ? names.find(value.asString()) : names.end();
        if (found == names.end())
            return;
        const Place here = text.Of(value);
        for (const Place& other : found->second)
            if (other.file < here.file && FolderOf(other.file) == FolderOf(here.file))
                return mFindings.Warning(
                    "value", here,
                    fmt::format("\"{}\" is described twice; which one counts, the file system "
                                "decides",
                                value.asString()),
                    {{other, "and here"}});
    }
    bool hasType(const JsonText& text) {
        if (!TextOf(text.Root(), "Type", "").empty())
            return true;
        mFindings.Error("unknown-type", text.Of(text.Root()),
                        "the file has no \"Type\", so that no pool takes it");
        return false;
    }
    void checkEntity(const JsonText& text) {
        if (hasType(text))
            checkOnce(text, "Type", mGame.Types());
    }
    void checkVariant(const JsonText& text) {
        const std::string variant = TextOf(text.Root(), "Variant", "");
        if (!hasType(text))
            return;
        if (variant.empty() || variant == "master")
            mFindings.Error("value", text.Of(text.Root()),
                            "a variant has a name of its own under \"Variant\"");
        else
            checkOnce(text, "Variant", mGame.VariantsOf(TextOf(text.Root(), "Type", "")));
    }
    void checkInfo(const JsonText& text, const char* key) {
        const Json::Value& names = text.Root()[key];
        const auto isNone = [](const Json::Value& name) { return name == "NONE"; };
        if (!names.isArray())
            return;
        if (std::none_of(names.begin(), names.end(), isNone))
            mFindings.Warning("value", text.KeyOf(names),
                              "\"NONE\" is not listed, and bodies that leave the key out have it");
        if (std::string(key) == "Category" && names.size() > 32)
            mFindings.Error("value", text.Of(names),
                            fmt::format("{} categories, and a mask has 32 bits", names.size()));
    }
    void checkScene(const JsonText& text) {
        const Json::Value& entities = text.Root()["Entities"];
        std::map<std::string, std::size_t> counts;
        if (!entities.isArray())
            return;
        for (const Json::Value& entity : entities) {
            if (!entity.isObject())
                continue;
            const std::string type = TextOf(entity, "Type", "typeless");
            ++counts[mGame.PoolOf(type)];
            if (!entity.isMember("Type"))
                mReferences.push_back({Refers::EntityType, type, text.Of(entity)});
            const std::string variant = TextOf(entity, "Variant", "master");
            if (variant != "master")
                mReferences.push_back({Refers::Variant, variant, text.Of(entity["Variant"]), type});
        }
        for (const DataFile& file : mGame.Data())
            if (file.format == Format::Entity)
                checkPool(*file.json, text, counts);
    }
    void checkPool(const JsonText& entity, const JsonText& scene,
                   const std::map<std::string, std::size_t>& counts) {
        const Json::Value& pool = entity.Root()["Pool"];
        const std::string type = TextOf(entity.Root(), "Type", "");
        const auto count = counts.find(type);
        if (!pool.isUInt() || count == counts.end() || count->second <= pool.asUInt())
            return;
        mFindings.Warning("small-pool", entity.Of(pool),
                          fmt::format("the pool makes {} ahead, and a scene has {} of \"{}\"",
                                      pool.asUInt(), count->second, type),
                          {{scene.KeyOf(scene.Root()["Entities"]), "the scene"}});
    }

    const Game& mGame;
    std::vector<Reference>& mReferences;
    Findings& mFindings;
};

} // namespace

void CheckEntities(const Game& game, std::vector<Reference>& references, Findings& findings) {
    EntityCheck check(game, references, findings);
    for (const DataFile& file : game.Data())
        if (file.json && file.json->IsWhole() && !findings.IsFull())
            check.Run(file);
}

} // namespace Check
