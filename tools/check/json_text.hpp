// SPDX-License-Identifier: MIT
//
// A JSON file as the engine reads it, whose keys and values know where they stand.
//
//   const JsonText text("data/mat/wool.json", bytes);
//   findings.Warning("unknown-key", text.KeyOf(text.Root()["Textur"]), ...);
#pragma once

#include "tools/check/finding.hpp"

#include "vorn/core/json_faults.hpp"

#include <json/value.h>

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace Check {

class JsonText {
public:
    JsonText(std::string file, const std::string& text);

    /// An object, or null for a text without one. Of a text with a fault, what the engine takes.
    const Json::Value& Root() const { return mRoot; }
    const std::string& File() const { return mFile; }
    bool IsWhole() const { return mFaults.empty() && mRoot.isObject(); }

    /// Of a value of this text.
    Place Of(const Json::Value& value) const;
    /// Of its key; of the value itself, if it is an element of an array.
    Place KeyOf(const Json::Value& value) const;
    /// Of a word in a text, `at` bytes behind its start.
    Place Inside(const Json::Value& value, std::size_t at, std::size_t length) const;

    /// The first fault of the text, since others follow from it, or keys that stand twice.
    void TellFaults(Findings& findings) const;

private:
    struct Span {
        std::size_t offset, length;
    };

    void findKeys(const std::string& text);

    std::string mFile;
    std::vector<Vorn::JsonFault> mFaults;
    Json::Value mRoot;
    std::size_t mSize = 0;
    std::unordered_map<std::size_t, Span> mKeys; // by the start of the value
    std::vector<Note> mDuplicates;               // the text is the key
    std::vector<std::size_t> mEscaped;           // starts of texts with a backslash, ascending
};

} // namespace Check
