// SPDX-License-Identifier: MIT
#include "tools/check/report.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <string_view>

namespace Check {
namespace {

constexpr std::size_t Width = 96; // of an excerpt

bool IsStart(char c) {
    return (static_cast<unsigned char>(c) & 0xc0) != 0x80; // of a character of UTF-8
}

std::size_t Characters(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), IsStart));
}

/// Nothing in it steers a terminal.
std::string Plain(std::string_view text) {
    std::string plain(text);
    for (char& c : plain)
        if (static_cast<unsigned char>(c) < 32 || c == 127)
            c = c == '\t' ? ' ' : '?';
    return plain;
}

} // namespace

const std::string& Texts::text(const std::string& file) {
    const auto [entry, isNew] = mTexts.try_emplace(file);
    if (isNew) {
        try {
            entry->second = mFolder.read(file);
        } catch (const std::runtime_error&) {
            entry->second.clear(); // it was there when it was checked
        }
    }
    return entry->second;
}

Position Texts::Of(const Place& place) {
    const std::string_view whole = text(place.file);
    const auto at = [whole](std::size_t offset, std::size_t& line, std::size_t& column) {
        const std::string_view before = whole.substr(0, std::min(offset, whole.size()));
        line = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1;
        column = Characters(before.substr(before.rfind('\n') + 1)) + 1; // npos + 1 is 0
    };
    Position position;
    at(place.offset, position.line, position.column);
    at(place.offset + place.length, position.endLine, position.endColumn);
    return position;
}

std::string Texts::Excerpt(const Place& place) {
    const std::string_view whole = text(place.file);
    if (place.length == 0 || place.offset >= whole.size())
        return {};
    const std::size_t start = whole.substr(0, place.offset).rfind('\n') + 1;
    const std::size_t end = std::min(whole.find('\n', place.offset), whole.size());
    // Of a long line what stands about the place.
    std::size_t from = place.offset - start > Width / 2 ? place.offset - Width / 2 : start;
    while (from > start && from < place.offset && !IsStart(whole[from]))
        ++from;
    std::size_t to = std::min(end, from + Width);
    while (to < end && !IsStart(whole[to]))
        ++to;
    if (to <= place.offset)
        return {};
    const std::string_view line = whole.substr(from, to - from);
    const std::string_view before = line.substr(0, place.offset - from);
    const std::string_view marked = line.substr(before.size(), place.length);
    const std::size_t length = std::max<std::size_t>(Characters(marked), 1);
    return fmt::format("    {}\n    {}^{}\n", Plain(line), std::string(Characters(before), ' '),
                       std::string(length - 1, '~'));
}

std::string Report(const std::vector<Finding>& findings, const Folder& folder) {
    Texts texts(folder);
    const auto head = [&](const Place& place) {
        if (place.length == 0)
            return folder.path(place.file);
        const Position position = texts.Of(place);
        return fmt::format("{}:{}:{}", folder.path(place.file), position.line, position.column);
    };
    std::string report;
    for (const Finding& finding : findings) {
        report += fmt::format("{}: {}: {} [{}]\n{}", head(finding.place),
                              finding.severity == Severity::Error ? "error" : "warning",
                              Plain(finding.message), finding.rule, texts.Excerpt(finding.place));
        for (const Note& note : finding.notes)
            report += fmt::format("{}: note: {}\n", head(note.place), note.text);
    }
    return report;
}

} // namespace Check
