// SPDX-License-Identifier: MIT
#include "tools/check/lines.hpp"

#include "tools/check/nearest.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <system_error>

namespace Check {
namespace {

struct Word {
    std::string text;
    std::size_t at = 0;
};

/// Set off by what the engine's streams take for blanks.
std::vector<Word> WordsOf(const std::string& line) {
    constexpr std::string_view blanks = " \t\n\v\f\r";
    std::vector<Word> words;
    for (std::size_t at = line.find_first_not_of(blanks); at != std::string::npos;) {
        const std::size_t end = std::min(line.find_first_of(blanks, at), line.size());
        words.push_back({line.substr(at, end - at), at});
        at = line.find_first_not_of(blanks, end);
    }
    return words;
}

std::optional<double> NumberOf(std::string_view word) {
    if (word.starts_with('+'))
        word.remove_prefix(1);
    double number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size() || !std::isfinite(number))
        return std::nullopt;
    return number;
}

bool IsKey(const std::string& word) {
    return std::isalnum(static_cast<unsigned char>(word[0])) != 0;
}

class LineCheck {
public:
    LineCheck(const JsonText& text, const Json::Value& line, Findings& findings)
        : mText(text), mLine(line), mFindings(findings), mWords(WordsOf(line.asString())) {}

    /// Against the grammar of the line that begins with its first word, if there is one.
    const Line* Run(const std::vector<Line>& lines, const char* kind) {
        if (mWords.empty()) {
            mFindings.Warning("trigger", mText.Of(mLine), fmt::format("an empty {}", kind));
            return nullptr;
        }
        const std::string& first = mWords[0].text;
        const auto line = std::find_if(lines.begin(), lines.end(),
                                       [&](const Line& l) { return l.word == first; });
        if (line == lines.end()) {
            std::vector<std::string> known;
            for (const Line& other : lines)
                known.push_back(other.word);
            tell(mWords[0],
                 fmt::format("unknown {} \"{}\"{}", kind, first, Suggestion(first, known)));
            return nullptr;
        }
        for (std::size_t i = 0; i < line->arguments.size(); ++i)
            if (!checkArgument(*line, i))
                return &*line;
        if (mWords.size() > line->arguments.size() + 1)
            mFindings.Warning("trigger", place(mWords[line->arguments.size() + 1]),
                              "from here on the line is not read");
        return &*line;
    }
    const std::vector<Word>& Words() const { return mWords; }
    Place place(const Word& word) const { return mText.Inside(mLine, word.at, word.text.size()); }

private:
    // False where the rest of the line means nothing.
    bool checkArgument(const Line& line, std::size_t i) {
        const std::string& argument = line.arguments[i];
        if (i + 1 >= mWords.size()) {
            mFindings.Error(
                "trigger", mText.Of(mLine),
                fmt::format("{} wants \"{}\" here: {}", line.word, argument, FormOf(line)));
            return false;
        }
        const Word& word = mWords[i + 1];
        if (argument == "word" || argument == "type")
            return true;
        if (argument == "key")
            return checkKey(word);
        if (std::isupper(static_cast<unsigned char>(argument[0]))) {
            if (word.text == argument)
                return true;
            tell(word,
                 fmt::format("\"{}\" where {} stands: {}", word.text, argument, FormOf(line)));
            return false;
        }
        const std::optional<double> number = NumberOf(word.text);
        if (!number)
            tell(word,
                 fmt::format("\"{}\" is no number: it is 0, and so is what follows", word.text));
        else if (line.word == "TIME_INTERVAL" && *number <= 0)
            tell(word, "an interval of 0 or less never fires");
        return number.has_value();
    }
    bool checkKey(const Word& word) {
        if (!IsKey(word.text))
            tell(word, fmt::format("\"{}\" is no key: letters and digits are", word.text));
        else if (word.text.size() > 1)
            mFindings.Warning(
                "trigger", place(word),
                fmt::format("only the first character counts: this waits for {}", word.text[0]));
        return true;
    }
    void tell(const Word& word, const std::string& message) {
        mFindings.Error("trigger", place(word), message);
    }
    static std::string FormOf(const Line& line) {
        std::string form = line.word;
        for (const std::string& argument : line.arguments)
            form += " " + argument;
        return form;
    }

    const JsonText& mText;
    const Json::Value& mLine;
    Findings& mFindings;
    std::vector<Word> mWords;
};

} // namespace

void CheckEvent(const Table& table, const JsonText& text, const Json::Value& line,
                Findings& findings) {
    LineCheck(text, line, findings).Run(table.events, "event");
}

void CheckCommand(const Table& table, const JsonText& text, const Json::Value& line,
                  Findings& findings, std::vector<Reference>& references) {
    LineCheck check(text, line, findings);
    const Line* command = check.Run(table.commands, "command");
    if (!command)
        return;
    for (std::size_t i = 0; i < command->arguments.size(); ++i)
        if (command->arguments[i] == "type" && i + 1 < check.Words().size()) {
            const Word& word = check.Words()[i + 1];
            references.push_back({Refers::EntityType, word.text, check.place(word)});
        }
}

} // namespace Check
