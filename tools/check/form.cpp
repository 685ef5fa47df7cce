// SPDX-License-Identifier: MIT
#include "tools/check/form.hpp"

#include "tools/check/lines.hpp"
#include "tools/check/nearest.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Check {
namespace {

const char* NameOf(Json::ValueType type) {
    switch (type) {
    case Json::nullValue:
        return "null";
    case Json::stringValue:
        return "a text";
    case Json::booleanValue:
        return "a boolean";
    case Json::arrayValue:
        return "an array";
    case Json::objectValue:
        return "an object";
    default:
        return "a number";
    }
}

} // namespace

void Form::CheckObject(const Json::Value& object, const Record& record) {
    for (const std::string& name : object.getMemberNames()) {
        if (findings.IsFull())
            return;
        const Json::Value& value = object[name];
        const Key* key = record.Find(name);
        if (!key || (key->onlyInEntityFile && !isEntityFile))
            tellUnknown(value, name, record);
        else if (isEntityFile && name == "Type" && record.name == "Entity")
            checkText(value, {.name = name}); // describes the type
        else
            checkValue(value, *key);
    }
}

void Form::tellUnknown(const Json::Value& value, const std::string& name, const Record& record) {
    if (name == "$schema")
        return; // an editor's
    if (record.Find(name)) {
        findings.Warning("unknown-key", text.KeyOf(value),
                         "\"" + name + "\" is read from entity files only");
        return;
    }
    std::vector<std::string> known;
    for (const Key& key : record.keys)
        known.push_back(key.name);
    findings.Warning("unknown-key", text.KeyOf(value),
                     "unknown key \"" + name + "\"" + Suggestion(name, known));
}

void Form::tellType(const Json::Value& value, const Key& key, const char* wanted,
                    const char* counts) {
    const std::string message =
        fmt::format("\"{}\" is {}, and this is {}", key.name, wanted, NameOf(value.type()));
    if (counts)
        findings.Warning("wrong-type", text.Of(value), message + "; it counts as " + counts);
    else
        findings.Error("wrong-type", text.Of(value), message);
}

void Form::checkValue(const Json::Value& value, const Key& key) {
    switch (key.type) {
    case Type::Any:
        return;
    case Type::Text:
        return checkText(value, key);
    case Type::Number:
    case Type::Whole:
        return checkNumber(value, key, key.type == Type::Whole);
    case Type::Flag:
        return checkFlag(value, key);
    case Type::Numbers:
    case Type::Wholes:
        return checkFour(value, key);
    case Type::Texts:
    case Type::Objects:
        return checkList(value, key);
    case Type::Object:
        if (value.isObject())
            CheckObject(value, *table.Find(key.of));
        else if (!value.isNull())
            tellType(value, key, "an object");
    }
}

void Form::checkText(const Json::Value& value, const Key& key) {
    if (value.isArray() || value.isObject())
        return tellType(value, key, "a text");
    if (!value.isString()) {
        if (!key.orNumber || !value.isNumeric())
            tellType(value, key, "a text", value.isNull() ? "\"\"" : "its text");
        else
            checkNumber(value, key, true);
        return;
    }
    const std::string word = value.asString();
    if (!word.empty() && !key.choices.empty() &&
        std::find(key.choices.begin(), key.choices.end(), word) == key.choices.end())
        findings.Warning(
            "value", text.Of(value),
            fmt::format("\"{}\" is no \"{}\"{}", word, key.name, Suggestion(word, key.choices)));
    refer(value, key);
}

void Form::checkNumber(const Json::Value& value, const Key& key, bool isWhole) {
    const char* const wanted = isWhole ? "a whole number" : "a number";
    if (value.isBool() || value.isNull())
        return tellType(value, key, wanted, value.isBool() && value.asBool() ? "1" : "0");
    if (!value.isNumeric())
        return tellType(value, key, wanted);
    const double number = value.asDouble();
    if (isWhole && std::trunc(number) != number)
        findings.Warning(
            "wrong-type", text.Of(value),
            fmt::format("\"{}\" is a whole number; the fraction is cut off", key.name));
    checkRange(value, key);
}

void Form::checkRange(const Json::Value& value, const Key& key) {
    const double number = value.asDouble();
    // Beyond these the reader raises, or has an infinity.
    const bool isWhole = key.type == Type::Whole || key.type == Type::Wholes;
    const double end = isWhole ? std::numeric_limits<int>::max()
                               : static_cast<double>(std::numeric_limits<float>::max());
    const double least = key.least.value_or(isWhole ? -end - 1 : -end);
    const double most = key.most.value_or(end);
    if (number < least || number > most)
        findings.Error("value", text.Of(value),
                       fmt::format("\"{}\" lies between {} and {}", key.name, least, most));
    if (key.notZero && number == 0.0)
        findings.Error("value", text.Of(value), fmt::format("\"{}\" is not 0", key.name));
}

void Form::checkFlag(const Json::Value& value, const Key& key) {
    if (value.isBool())
        return;
    if (value.isNumeric() || value.isNull())
        tellType(value, key, "true or false", value.asBool() ? "true" : "false");
    else
        tellType(value, key, "true or false");
}

void Form::checkFour(const Json::Value& value, const Key& key) {
    if (!value.isArray())
        return tellType(value, key, "an array of four numbers");
    if (value.size() != 4)
        findings.Warning(
            "value", text.Of(value),
            fmt::format("\"{}\" has four numbers, and here are {}; {}", key.name, value.size(),
                        value.size() < 4 ? "the others are 0" : "the others are not read"));
    for (Json::ArrayIndex i = 0; i < value.size() && i < 4; ++i)
        checkNumber(value[i], key, key.type == Type::Wholes);
}

void Form::checkList(const Json::Value& value, const Key& key) {
    const bool isTexts = key.type == Type::Texts;
    if (value.isNull())
        return;
    if (!value.isArray())
        return tellType(value, key, isTexts ? "an array of texts" : "an array of objects");
    for (const Json::Value& element : value) {
        if (findings.IsFull())
            return;
        if (isTexts ? !element.isString() : !element.isObject())
            findings.Error("wrong-type", text.Of(element),
                           fmt::format("each element of \"{}\" is {}, and this is {}", key.name,
                                       isTexts ? "a text" : "an object", NameOf(element.type())));
        else if (isTexts)
            refer(element, key);
        else
            CheckObject(element, *table.Find(key.of));
    }
}

void Form::refer(const Json::Value& value, const Key& key) {
    switch (key.refers) {
    case Refers::Nothing:
    case Refers::Variant: // needs the type beside it
        return;
    case Refers::Mask:
        return checkMask(value);
    case Refers::EventLine:
        return CheckEvent(table, text, value, findings);
    case Refers::CommandLine:
        return CheckCommand(table, text, value, findings, references);
    default:
        break;
    }
    references.push_back({key.refers, value.asString(), text.Of(value)});
}

void Form::checkMask(const Json::Value& value) {
    // As the engine takes it apart: one blank on either side of an operator.
    const std::string mask = value.asString();
    for (std::size_t at = 0; at < mask.size();) {
        const std::size_t next = mask.find_first_of("+-", at);
        const bool isLast = next == std::string::npos;
        const std::size_t end = isLast ? mask.size() : next > at ? next - 1 : at;
        const std::string name = mask.substr(at, end - at);
        if (!isLast && (next == 0 || mask[next - 1] != ' ' || mask.compare(next + 1, 1, " ") != 0))
            return findings.Error("value", text.Inside(value, next, 1),
                                  fmt::format("'{}' has one blank on either side", mask[next]));
        references.push_back({Refers::Category, name,
                              text.Inside(value, at, std::max<std::size_t>(name.size(), 1))});
        if (isLast)
            break;
        at = next + 2;
    }
}

} // namespace Check
