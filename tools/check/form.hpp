// SPDX-License-Identifier: MIT
//
// A file against the table: its keys and the types of its values. What it names is collected, to
// be looked up when all files are known.
#pragma once

#include "tools/check/finding.hpp"
#include "tools/check/json_text.hpp"
#include "tools/check/table.hpp"

#include <string>
#include <vector>

namespace Check {

struct Reference {
    Refers kind = Refers::Nothing;
    std::string name;
    Place place;
    std::string type = {}; // of Refers::Variant: whose
};

struct Form {
    const Table& table;
    const JsonText& text;
    Findings& findings;
    std::vector<Reference>& references;
    bool isEntityFile = false; // its "Type" is no reference, and its "Pool" is read

    /// The members of `object`, which stands for `record`.
    void CheckObject(const Json::Value& object, const Record& record);

private:
    void checkValue(const Json::Value& value, const Key& key);
    void checkText(const Json::Value& value, const Key& key);
    void checkNumber(const Json::Value& value, const Key& key, bool isWhole);
    void checkFlag(const Json::Value& value, const Key& key);
    void checkFour(const Json::Value& value, const Key& key);
    void checkList(const Json::Value& value, const Key& key);
    void checkRange(const Json::Value& value, const Key& key);
    void checkMask(const Json::Value& value);
    void refer(const Json::Value& value, const Key& key);
    void tellUnknown(const Json::Value& value, const std::string& name, const Record& record);
    void tellType(const Json::Value& value, const Key& key, const char* wanted,
                  const char* counts = nullptr);
};

} // namespace Check
