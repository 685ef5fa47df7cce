// SPDX-License-Identifier: MIT
#include "tools/check/schemas.hpp"

#include "vorn/core/json.hpp"

#include <cctype>
#include <limits>

namespace Check {
namespace {

Json::Value Texts(std::initializer_list<const char*> texts) {
    Json::Value list(Json::arrayValue);
    for (const char* text : texts)
        list.append(text);
    return list;
}

// A line of words as a regular expression.
std::string PatternOf(const std::vector<Line>& lines) {
    const std::string number = "[-+]?([0-9]+\\.?[0-9]*|\\.[0-9]+)([eE][-+]?[0-9]+)?";
    std::string pattern;
    for (const Line& line : lines) {
        pattern += (pattern.empty() ? "" : "|") + line.word;
        for (const std::string& argument : line.arguments) {
            const bool isItself = std::isupper(static_cast<unsigned char>(argument[0])) != 0;
            pattern += "\\s+" + (isItself                                   ? argument
                                 : argument == "key"                        ? "[A-Za-z0-9]"
                                 : argument == "word" || argument == "type" ? "\\S+"
                                                                            : number);
        }
    }
    return "^\\s*(" + pattern + ")\\s*$";
}

class SchemaOf {
public:
    SchemaOf(const Table& table, bool isEntityFile) : mTable(table), mIsEntityFile(isEntityFile) {}

    std::string Text(const std::string& record, const std::string& title, const char* required) {
        Json::Value root = objectOf(*mTable.Find(record));
        root["$schema"] = "http://json-schema.org/draft-07/schema#";
        root["title"] = title;
        root["properties"]["$schema"]["type"] = "string";
        if (required)
            root["required"] = Texts({required});
        if (!mDefinitions.isNull())
            root["definitions"] = mDefinitions;
        return Vorn::WriteJson(root);
    }

private:
    Json::Value objectOf(const Record& record) {
        Json::Value object;
        object["type"] = "object";
        object["description"] = record.title;
        object["additionalProperties"] = false;
        object["properties"] = Json::Value(Json::objectValue);
        for (const Key& key : record.keys)
            if (!key.onlyInEntityFile || mIsEntityFile)
                object["properties"][key.name] = valueOf(key);
        return object;
    }
    // Records stand once, under "definitions".
    Json::Value referenceTo(const std::string& record) {
        if (!mDefinitions.isMember(record)) {
            mDefinitions[record] = Json::Value(); // a record may hold itself
            mDefinitions[record] = objectOf(*mTable.Find(record));
        }
        Json::Value reference;
        reference["$ref"] = "#/definitions/" + record;
        return reference;
    }
    Json::Value numberOf(const Key& key, bool isWhole) const {
        Json::Value number;
        number["type"] = isWhole ? "integer" : "number";
        if (isWhole || key.least)
            number["minimum"] = key.least.value_or(std::numeric_limits<int>::min());
        if (isWhole || key.most)
            number["maximum"] = key.most.value_or(std::numeric_limits<int>::max());
        if (key.notZero)
            number["not"]["const"] = 0;
        return number;
    }
    Json::Value textOf(const Key& key) const {
        Json::Value text;
        text["type"] = "string";
        if (key.orNumber)
            text["type"] = Texts({"string", "integer"});
        for (const std::string& choice : key.choices)
            text["enum"].append(choice);
        if (!key.choices.empty())
            text["enum"].append("");
        if (key.refers == Refers::EventLine)
            text["pattern"] = PatternOf(mTable.events);
        if (key.refers == Refers::CommandLine)
            text["pattern"] = PatternOf(mTable.commands);
        return text;
    }
    Json::Value arrayOf(const Json::Value& item) const {
        Json::Value array;
        array["type"] = "array";
        array["items"] = item;
        return array;
    }
    Json::Value formOf(const Key& key) {
        switch (key.type) {
        case Type::Text:
            return textOf(key);
        case Type::Number:
        case Type::Whole:
            return numberOf(key, key.type == Type::Whole);
        case Type::Flag: {
            Json::Value flag;
            flag["type"] = "boolean";
            return flag;
        }
        case Type::Numbers:
        case Type::Wholes: {
            Json::Value four = arrayOf(numberOf(key, key.type == Type::Wholes));
            four["minItems"] = four["maxItems"] = 4;
            return four;
        }
        case Type::Texts:
            return arrayOf(textOf(key));
        case Type::Objects:
            return arrayOf(referenceTo(key.of));
        case Type::Object: {
            // What is written back has null for a component without values.
            Json::Value either, null;
            null["type"] = "null";
            either["anyOf"].append(referenceTo(key.of));
            either["anyOf"].append(null);
            return either;
        }
        case Type::Any:
            break;
        }
        return Json::Value(Json::objectValue);
    }
    Json::Value valueOf(const Key& key) {
        Json::Value value = formOf(key);
        std::string text = key.meaning;
        if (!key.unit.empty())
            text += " (unit: " + key.unit + ")";
        if (key.layered)
            text += ". Where it is missing, as the layer below";
        value["description"] = text;
        if (!key.fallback.empty())
            value["default"] = Vorn::ParseJson("{\"default\":" + key.fallback + "}")["default"];
        return value;
    }

    const Table& mTable;
    const bool mIsEntityFile;
    Json::Value mDefinitions;
};

} // namespace

std::map<std::string, std::string> Schemas(const Table& table) {
    const auto schema = [&](const char* record, const char* title, const char* required = nullptr,
                            bool isEntityFile = false) {
        return SchemaOf(table, isEntityFile).Text(record, title, required);
    };
    return {{"entity.schema.json", schema("Entity", "An entity file", "Type", true)},
            {"variant.schema.json", schema("Entity", "A variant file", "Variant")},
            {"scene.schema.json", schema("Scene", "A scene file")},
            {"physics_info.schema.json", schema("PhysicsInfo", "A physics info file")},
            {"resource_pack.schema.json", schema("Pack", "A resource pack")},
            {"material.schema.json", schema("Material", "A material file", "Texture")},
            {"trigger.schema.json", schema("Trigger", "A trigger script")}};
}

} // namespace Check
