// SPDX-License-Identifier: MIT
//
// What the files of a folder are, and which names they give: read once, before anything is checked.
#pragma once

#include "tools/check/folder.hpp"
#include "tools/check/json_text.hpp"
#include "tools/check/table.hpp"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Check {

enum class Format {
    Entity,
    Variant,
    Scene,
    PhysicsInfo,
    Pack,
    Material,
    Trigger,
    Declarations, // check.json
    Model,
    Font,
    Effect
};

/// The record of the table that a file of the format holds; nullptr for what is no JSON.
const char* RecordOf(Format format);

struct DataFile {
    std::string name;
    Format format;
    std::unique_ptr<JsonText> json; // nullptr for what is no JSON
};

/// Names of one kind, with the places that list or describe them.
using Names = std::map<std::string, std::vector<Place>>;

class Game {
public:
    /// Declarations that a host made in check.json go into `table`; faults in them, and files that
    /// cannot be read, into `findings`.
    Game(const Folder& folder, Table table, Findings& findings);

    const Folder& Files() const { return mFolder; }
    const Table& Keys() const { return mTable; }
    const std::vector<DataFile>& Data() const { return mData; }

    /// Listed by packs: of Refers::Mesh, Texture, Material.
    const Names& Listed(Refers kind) const;
    /// Types of entity files; variants are keys of the factory too.
    const Names& Types() const { return mTypes; }
    /// What the factory finds under a key: the type itself, or that of a variant.
    const std::string& PoolOf(const std::string& key) const;
    /// The variants of a pool.
    const Names& VariantsOf(const std::string& key) const;
    const Names& Categories() const { return mCategories; }
    const Names& Volumes() const { return mVolumes; }

    /// Whether a folder says anything about the kind: where there are no packs, no pack lists a
    /// name.
    bool HasPacks() const { return mHasPacks; }
    bool HasTypes() const { return !mTypes.empty(); }

private:
    void readJson(const std::string& name, std::optional<Format> format, Findings& findings);
    void readListed(Findings& findings);
    void declare(const JsonText& text, Findings& findings);
    void declareKeys(const JsonText& text, const Json::Value& object, const std::string& record,
                     Findings& findings);
    void declareNames(const JsonText& text, const Json::Value& object, Findings& findings);
    void collect(const DataFile& file);
    Names* namesOf(const std::string& word);

    Folder mFolder;
    Table mTable;
    std::vector<DataFile> mData;
    std::set<std::string> mPackPaths; // that scenes name
    Names mMeshes, mTextures, mMaterials;
    Names mTypes, mCategories, mVolumes;
    std::map<std::string, Names> mVariants; // by type
    std::map<std::string, std::string> mTypeOfVariant;
    bool mHasPacks = false;
};

/// Only the names.
std::vector<std::string> KeysOf(const Names& names);

} // namespace Check
