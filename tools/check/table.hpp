// SPDX-License-Identifier: MIT
//
// The one table of data files: formats, keys, types, defaults. The check, the schemas and the
// tables in docs/ are made of it, and a test holds it against the engine's readers.
//
//   const Check::Table table = Check::EngineTable();
//   for (const Check::Key& key : table.Find("PhysicsCmpt")->keys)
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Check {

/// What the engine's reader takes under a key.
enum class Type {
    Text,
    Number,
    Whole, // a whole number
    Flag,
    Any,
    Numbers, // an array of four
    Wholes,  // an array of four
    Texts,   // an array
    Object,  // of the record `of`
    Objects  // an array of them
};

/// What a text, or each text of an array, is the name of.
enum class Refers {
    Nothing,
    Mesh,
    Texture,
    Material,
    MeshFile, // of a pack: a file of that store's folder
    TextureFile,
    MaterialFile,
    SoundFile,
    Pack,
    EntityType,
    Variant,
    Category,
    Mask,
    Volume,
    EventLine,
    CommandLine
};

struct Key {
    std::string name;
    Type type = Type::Any;
    std::string of = {};       // of Object and Objects: the record's name
    std::string fallback = {}; // as JSON; empty for none
    bool layered = false;      // the layer below goes before the fallback
    std::string absent = {};   // in words, where the two above do not say it
    std::string unit = {};
    std::string meaning = {};
    Refers refers = Refers::Nothing;
    std::optional<double> least = {}, most = {};
    bool notZero = false;
    std::vector<std::string> choices = {}; // all texts that mean something
    bool orNumber = false;                 // a text that may stand as its number
    bool onlyInEntityFile = false;
    bool unread = false; // known, and nothing is made of it
};

/// An object of a data file, or the whole of one.
struct Record {
    std::string name;
    std::string title;
    std::vector<Key> keys;

    const Key* Find(std::string_view key) const;
};

/// A line of words: an event or a command. Of its arguments "seconds", "x", "y" and "z" are
/// numbers, "key" is a letter or digit, "type" an entity's, capitals stand for themselves.
struct Line {
    std::string word;
    std::vector<std::string> arguments;
    std::string meaning;
};

/// A file of data/shaders with its technique, or with the entry point and profile of its shader.
struct EffectFile {
    std::string name;
    std::string usedBy;
    std::string technique, profile;
    std::string secondTechnique = {}, secondUse = {};
};

/// A parameter that the engine sets.
struct EffectName {
    std::vector<std::string> files;
    std::string name; // "lights.pos" is a member
    std::string type; // of HLSL; "float4x4[]" is an array
    std::string value;
};

struct Table {
    std::vector<Record> records;
    std::vector<Line> events, commands;
    std::vector<Record> fontLines; // the name is the line's first word
    std::vector<EffectFile> effects;
    std::vector<EffectName> effectNames;

    const Record* Find(std::string_view record) const;
};

Table EngineTable();

// The second half of it: what is no JSON. tables of lines, fonts and shaders.
void AddLines(Table& table);
void AddEffects(Table& table);

/// A word that names a type in a declaration of a host's key ("number", "vector", "mesh"), or
/// nothing.
std::optional<Key> KeyOfWord(const std::string& name, const std::string& word);
/// All of these words.
std::vector<std::string> TypeWords();

} // namespace Check
