// SPDX-License-Identifier: MIT
#include "tools/check/json_text.hpp"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

namespace Check {
namespace {

/// Walks over the tokens of a JSON text, without its comments.
class Tokens {
public:
    explicit Tokens(const std::string& text) : mText(text) {}

    /// To the start of the next token; false at the end.
    bool Next() {
        mStart = mEnd;
        while (mStart < mText.size() && skipped())
            ;
        if (mStart >= mText.size())
            return false;
        const char first = mText[mStart];
        mEnd = first == '"' ? endOfText() : isPunctuation(first) ? mStart + 1 : endOfWord();
        return true;
    }
    char First() const { return mText[mStart]; }
    std::size_t Start() const { return mStart; }
    std::size_t Length() const { return mEnd - mStart; }

private:
    static bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
    static bool isPunctuation(char c) {
        return std::string_view("{}[]:,").find(c) != std::string_view::npos;
    }

    bool skipped() {
        if (isBlank(mText[mStart])) {
            ++mStart;
            return true;
        }
        const bool isLine = mText.compare(mStart, 2, "//") == 0;
        if (!isLine && mText.compare(mStart, 2, "/*") != 0)
            return false;
        const std::size_t end = isLine ? mText.find('\n', mStart) : mText.find("*/", mStart + 2);
        mStart = end == std::string::npos ? mText.size() : end + (isLine ? 1 : 2);
        return true;
    }
    std::size_t endOfText() const {
        for (std::size_t i = mStart + 1; i < mText.size(); ++i) {
            if (mText[i] == '\\')
                ++i;
            else if (mText[i] == '"')
                return i + 1;
        }
        return mText.size();
    }
    std::size_t endOfWord() const {
        std::size_t end = mStart + 1;
        while (end < mText.size() && !isBlank(mText[end]) && !isPunctuation(mText[end]) &&
               mText[end] != '"' && mText[end] != '/')
            ++end;
        return end;
    }

    const std::string& mText;
    std::size_t mStart = 0, mEnd = 0;
};

} // namespace

JsonText::JsonText(std::string file, const std::string& text)
    : mFile(std::move(file)), mRoot(Vorn::ParseJson(text, mFaults)), mSize(text.size()) {
    findKeys(text);
}

void JsonText::findKeys(const std::string& text) {
    // JsonCpp tells where values stand, not where keys do, and keeps the last of two of one name.
    // A key is a text before a colon, and its value the token behind that.
    std::vector<std::set<std::string>> objects;
    Span last{0, 0};
    bool isText = false;
    Tokens tokens(text);
    while (tokens.Next()) {
        const char first = tokens.First();
        if (first == '{') {
            objects.emplace_back();
        } else if (first == '}' && !objects.empty()) {
            objects.pop_back();
        } else if (first == ':' && isText) {
            const std::string key = text.substr(last.offset + 1, last.length - 2);
            if (!objects.empty() && !objects.back().insert(key).second)
                mDuplicates.push_back({{mFile, last.offset, last.length}, key});
            const Span span = last;
            isText = false;
            if (!tokens.Next())
                break;
            mKeys[tokens.Start()] = span;
            if (tokens.First() == '{')
                objects.emplace_back();
        }
        isText = tokens.First() == '"' && tokens.Length() >= 2;
        last = {tokens.Start(), tokens.Length()};
        if (isText && std::string_view(text).substr(last.offset, last.length).find('\\') !=
                          std::string_view::npos)
            mEscaped.push_back(last.offset);
    }
}

Place JsonText::Of(const Json::Value& value) const {
    const auto start = static_cast<std::size_t>(value.getOffsetStart());
    const auto limit = static_cast<std::size_t>(value.getOffsetLimit());
    return {mFile, start, limit > start ? limit - start : 1};
}

Place JsonText::KeyOf(const Json::Value& value) const {
    const auto key = mKeys.find(static_cast<std::size_t>(value.getOffsetStart()));
    return key == mKeys.end() ? Of(value) : Place{mFile, key->second.offset, key->second.length};
}

Place JsonText::Inside(const Json::Value& value, std::size_t at, std::size_t length) const {
    const Place whole = Of(value);
    if (std::binary_search(mEscaped.begin(), mEscaped.end(), whole.offset))
        return whole;
    return {mFile, whole.offset + 1 + at, length};
}

void JsonText::TellFaults(Findings& findings) const {
    if (!mFaults.empty()) {
        const Vorn::JsonFault& fault = mFaults.front();
        // Where the end is missed, the end of what is there.
        const std::size_t offset = std::min(fault.offset, mSize == 0 ? 0 : mSize - 1);
        std::string message = fault.message;
        std::replace(message.begin(), message.end(), '\n', ' ');
        findings.Error("json", {mFile, offset, 1}, message);
        return;
    }
    if (!mRoot.isObject())
        findings.Error("json", {mFile, 0, 1}, "the file holds no object");
    for (const Note& duplicate : mDuplicates)
        findings.Warning("duplicate-key", duplicate.place,
                         "\"" + duplicate.text +
                             "\" stands twice in this object; the last one "
                             "counts");
}

} // namespace Check
