// SPDX-License-Identifier: MIT
#include "tools/check/pages.hpp"

#include "vorn/core/json.hpp"

#include <fmt/format.h>

#include <stdexcept>
#include <utility>
#include <vector>

namespace Check {
namespace {

using Row = std::vector<std::string>;

/// Rows that say the same in all but one column become one, with their names joined there. Where
/// it is not the first column, that one stands once for the rows below it.
std::string TableOf(const Row& head, const std::vector<Row>& rows, std::size_t joined) {
    std::vector<Row> merged;
    for (const Row& row : rows) {
        if (!merged.empty()) {
            Row same = merged.back();
            same[joined] = row[joined];
            if (same == row) {
                merged.back()[joined] += ", " + row[joined];
                continue;
            }
        }
        merged.push_back(row);
    }
    std::string text;
    const auto add = [&](const Row& row) {
        for (const std::string& cell : row)
            text += cell.empty() ? "| " : "| " + cell + " ";
        text += "|\n";
    };
    add(head);
    for (std::size_t i = 0; i < head.size(); ++i)
        text += "|---";
    text += "|\n";
    std::string group;
    for (Row& row : merged) {
        if (joined > 0 && row[0] == std::exchange(group, row[0]))
            row[0].clear();
        add(row);
    }
    return text;
}

std::string Quoted(const std::string& name) {
    return '"' + name + '"';
}

std::string NamesOf(const Record& record) {
    std::string names;
    for (const Key& key : record.keys)
        names += (names.empty() ? "" : ", ") + Quoted(key.name);
    return names;
}

std::string TypeOf(const Table& table, const Key& key) {
    switch (key.type) {
    case Type::Text:
        if (key.refers == Refers::Mask)
            return "names joined by \" + \" and \" - \"";
        if (key.orNumber)
            return "a name of \"Volume\", or its number";
        if (!key.choices.empty()) {
            std::string words;
            for (const std::string& choice : key.choices)
                words += (words.empty() ? "" : ", ") + Quoted(choice);
            return words;
        }
        return "text";
    case Type::Number:
        return key.notZero ? "number, not 0" : "number";
    case Type::Whole:
        return !key.least  ? "whole number"
               : !key.most ? fmt::format("whole number from {}", *key.least)
               : *key.most > 1e9
                   ? fmt::format("whole number from {}", *key.least)
                   : fmt::format("whole number from {:.0f} to {:.0f}", *key.least, *key.most);
    case Type::Flag:
        return "boolean";
    case Type::Numbers:
        return "array of 4 numbers";
    case Type::Wholes:
        return "array of 4 whole numbers";
    case Type::Texts:
        return "array of texts";
    case Type::Objects:
        return "array of objects";
    case Type::Object: {
        const Record& record = *table.Find(key.of);
        return record.keys.size() > 4 || record.name.ends_with("Cmpt")
                   ? "object"
                   : "object " + NamesOf(record);
    }
    case Type::Any:
        break;
    }
    return "any";
}

// `[0, 0, 0, 1]` and `{"X": 0, "Y": 0}` as 0 0 0 1 and 0 0.
std::string PlainOf(const std::string& json) {
    const Json::Value value = Vorn::ParseJson("{\"v\":" + json + "}")["v"];
    if (!value.isArray() && !value.isObject())
        return json;
    std::string plain;
    if (value.isArray())
        for (const Json::Value& element : value)
            plain += (plain.empty() ? "" : " ") + element.asString();
    // In the order of the text, which JsonCpp does not keep.
    for (std::size_t at = json.find(':'); value.isObject() && at != std::string::npos;
         at = json.find(':', at + 1))
        plain +=
            (plain.empty() ? "" : " ") + json.substr(at + 2, json.find_first_of(",}", at) - at - 2);
    return plain.empty() ? "none" : plain;
}

std::string AbsentOf(const Key& key) {
    if (!key.absent.empty())
        return key.absent;
    const std::string fallback = key.fallback.empty() ? "" : PlainOf(key.fallback);
    if (!key.layered)
        return fallback;
    return fallback.empty() ? "as the layer below" : "as the layer below, " + fallback;
}

std::string MeaningOf(const Key& key) {
    return key.unit.empty() ? key.meaning : key.meaning + " (unit: " + key.unit + ")";
}

std::string KeysOf(const Table& table, const Record& record) {
    std::vector<Row> rows;
    for (const Key& key : record.keys)
        rows.push_back({Quoted(key.name), TypeOf(table, key), AbsentOf(key), MeaningOf(key)});
    return TableOf({"Key", "Type", "Where it is missing", "Meaning"}, rows, 0);
}

std::string LinesOf(const std::vector<Line>& lines, const char* does) {
    std::vector<Row> rows;
    for (const Line& line : lines) {
        std::string words = line.word;
        for (const std::string& argument : line.arguments)
            words += " " + argument;
        rows.push_back({"`" + words + "`", line.meaning});
    }
    return TableOf({"Line", does}, rows, 0);
}

std::string FontOf(const Table& table) {
    std::vector<Row> rows;
    for (const Record& line : table.fontLines)
        for (const Key& key : line.keys)
            rows.push_back({Quoted(line.name), Quoted(key.name), key.meaning});
    return TableOf({"Line", "Key", "Meaning (unit: pixels)"}, rows, 1);
}

std::string EffectsOf(const Table& table) {
    std::vector<Row> rows;
    for (const EffectFile& effect : table.effects) {
        const bool isShader = !effect.profile.empty();
        rows.push_back({"`" + effect.name + "`", effect.usedBy,
                        isShader ? "`" + effect.technique + "`, " + effect.profile
                                 : "technique `" + effect.technique + "`"});
        if (!effect.secondTechnique.empty())
            rows.push_back({"", effect.secondUse, "technique `" + effect.secondTechnique + "`"});
    }
    return TableOf({"File", "Used by", "Entry points or technique"}, rows, 0);
}

std::string EffectNamesOf(const Table& table) {
    std::vector<Row> rows;
    for (const EffectName& name : table.effectNames) {
        std::string files;
        for (const std::string& file : name.files)
            files += (files.empty() ? "`" : ", `") + file + "`";
        if (name.files.size() > 4)
            files = "all effects";
        rows.push_back({files, "`" + name.name + "`", name.type, name.value});
    }
    return TableOf({"File", "Name", "Type", "Value"}, rows, 1);
}

std::string TextOf(const std::string& name, const Table& table) {
    if (name == "Events")
        return LinesOf(table.events, "Fires");
    if (name == "Commands")
        return LinesOf(table.commands, "Does");
    if (name == "Font")
        return FontOf(table);
    if (name == "Effects")
        return EffectsOf(table);
    if (name == "EffectNames")
        return EffectNamesOf(table);
    if (const Record* record = table.Find(name))
        return KeysOf(table, *record);
    throw std::runtime_error("no table of keys is called " + name);
}

} // namespace

std::string UpdatePage(const std::string& page, const Table& table) {
    const std::string start = "<!-- keys: ", startEnd = " -->\n", end = "<!-- end -->";
    std::string updated;
    std::size_t at = 0;
    for (std::size_t mark = page.find(start); mark != std::string::npos;
         mark = page.find(start, at)) {
        const std::size_t name = mark + start.size();
        const std::size_t nameEnd = page.find(startEnd, name);
        const std::size_t last = page.find(end, name);
        if (nameEnd == std::string::npos || last == std::string::npos)
            throw std::runtime_error("a table of keys without an end");
        updated += page.substr(at, nameEnd + startEnd.size() - at) +
                   TextOf(page.substr(name, nameEnd - name), table);
        at = last;
    }
    return updated + page.substr(at);
}

} // namespace Check
