// SPDX-License-Identifier: MIT
#include "tools/check/report.hpp"

#include "vorn/core/json.hpp"

#include <fmt/format.h>

#include <string_view>

namespace Check {
namespace {

std::string UriOf(const std::string& path) {
    constexpr std::string_view plain = "-._~/";
    std::string uri = path.starts_with('/') ? "file://" : "";
    for (const char c : path) {
        const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (isLetter || (c >= '0' && c <= '9') || plain.find(c) != std::string_view::npos)
            uri += c;
        else
            uri += fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
    return uri;
}

Json::Value Text(const std::string& text) {
    Json::Value value;
    value["text"] = text;
    return value;
}

Json::Value LocationOf(const Place& place, const Folder& folder, Texts& texts) {
    Json::Value location;
    Json::Value& physical = location["physicalLocation"];
    physical["artifactLocation"]["uri"] = UriOf(folder.path(place.file));
    if (place.length > 0) {
        const Position position = texts.Of(place);
        Json::Value& region = physical["region"];
        region["startLine"] = Json::UInt64(position.line);
        region["startColumn"] = Json::UInt64(position.column);
        region["endLine"] = Json::UInt64(position.endLine);
        region["endColumn"] = Json::UInt64(position.endColumn);
    }
    return location;
}

} // namespace

std::string Sarif(const std::vector<Finding>& findings, const Folder& folder) {
    Texts texts(folder);
    Json::Value run;
    Json::Value& driver = run["tool"]["driver"];
    driver["name"] = "vorn check";
    driver["version"] = VORN_VERSION;
    for (const Rule& rule : Rules()) {
        Json::Value entry;
        entry["id"] = rule.name;
        entry["shortDescription"] = Text(rule.meaning);
        driver["rules"].append(entry);
    }
    run["columnKind"] = "unicodeCodePoints";
    run["results"] = Json::Value(Json::arrayValue);
    for (const Finding& finding : findings) {
        Json::Value result;
        result["ruleId"] = finding.rule;
        result["level"] = finding.severity == Severity::Error ? "error" : "warning";
        result["message"] = Text(finding.message);
        result["locations"].append(LocationOf(finding.place, folder, texts));
        for (const Note& note : finding.notes) {
            Json::Value related = LocationOf(note.place, folder, texts);
            related["message"] = Text(note.text);
            result["relatedLocations"].append(related);
        }
        run["results"].append(result);
    }
    Json::Value sarif;
    sarif["$schema"] = "https://json.schemastore.org/sarif-2.1.0.json";
    sarif["version"] = "2.1.0";
    sarif["runs"].append(run);
    return Vorn::WriteJson(sarif);
}

} // namespace Check
