// SPDX-License-Identifier: MIT
#include "tools/check/font.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <system_error>

namespace Check {
namespace {

constexpr std::string_view Blanks = " \t\r\v\f";

std::optional<int> NumberOf(std::string_view text) {
    if (text.starts_with('+'))
        text.remove_prefix(1);
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() ? std::optional(number) : std::nullopt;
}

class FontCheck {
public:
    FontCheck(const Table& table, const std::string& file, std::string_view text,
              Findings& findings)
        : mTable(table), mFile(file), mText(text), mFindings(findings) {}

    void Run() {
        for (std::size_t at = 0; at < mText.size();) {
            const std::size_t end = std::min(mText.find('\n', at), mText.size());
            readLine(at, end);
            at = end + 1;
        }
        if (!mHasCommon)
            mFindings.Error("font", {mFile},
                            "no \"common\" line has \"scaleW\" and \"scaleH\": no text shows");
    }

private:
    void readLine(std::size_t at, std::size_t end) {
        const Record* record = nullptr;
        std::size_t keys = 0;
        bool hasWidth = false, hasHeight = false;
        for (bool isFirst = true;; isFirst = false) {
            at = mText.find_first_not_of(Blanks, at);
            if (at >= end)
                break;
            const std::size_t wordEnd = std::min(mText.find_first_of(Blanks, at), end);
            const std::string_view word = mText.substr(at, wordEnd - at);
            if (isFirst) {
                for (const Record& line : mTable.fontLines)
                    if (line.name == word)
                        record = &line;
                if (!record)
                    return;
            } else {
                const std::string_view key = word.substr(0, word.find('='));
                readKey(*record, key, word, at, keys++);
                hasWidth |= key == "scaleW";
                hasHeight |= key == "scaleH";
            }
            at = wordEnd;
        }
        mHasCommon |= hasWidth && hasHeight;
    }
    void readKey(const Record& record, std::string_view key, std::string_view word, std::size_t at,
                 std::size_t place) {
        if (!record.Find(key))
            return; // tools write many more
        const Place here{mFile, at, word.size()};
        const std::optional<int> number =
            NumberOf(word.substr(std::min(key.size() + 1, word.size())));
        if (!number || *number < -32768 || *number > 65535)
            mFindings.Error("font", here,
                            fmt::format("\"{}\" is no number of 16 bits: it is not read", word));
        if (key == "id" && place != 0)
            mFindings.Error("font", here,
                            "\"id\" comes first: keys before it go to the character 0");
    }

    const Table& mTable;
    const std::string& mFile;
    std::string_view mText;
    Findings& mFindings;
    bool mHasCommon = false;
};

} // namespace

void CheckFont(const Table& table, const std::string& file, std::string_view text,
               Findings& findings) {
    FontCheck(table, file, text, findings).Run();
}

} // namespace Check
