// SPDX-License-Identifier: MIT
#include "tools/check/finding.hpp"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

namespace Check {

const std::vector<Rule>& Rules() {
    static const std::vector<Rule> rules = {
        {"json", "A text that is no JSON, or no object"},
        {"duplicate-key", "A key that stands twice: the last one counts"},
        {"unknown-key", "A key that no reader asks for"},
        {"wrong-type", "A value that its reader refuses, passes over or converts"},
        {"value", "A value of the right type that means nothing"},
        {"unlisted-name", "A name that no resource pack lists"},
        {"missing-file", "A file that is named and not there"},
        {"unknown-type", "A type or a variant that no file describes"},
        {"unknown-category", "A category that no physics info file lists"},
        {"unknown-volume", "A volume that no physics info file lists"},
        {"no-texture", "A material without a texture: it cannot be loaded"},
        {"small-pool", "A pool that makes fewer entities ahead than a scene has"},
        {"trigger", "A line of a trigger script that does nothing"},
        {"model", "A model file that breaks an invariant"},
        {"effect", "An effect file with errors, or without a name that the engine sets"},
        {"font", "A line of a font file that is not read"},
        {"unreadable", "A file that cannot be read"}};
    return rules;
}

void Findings::Error(const char* rule, Place place, std::string message, std::vector<Note> notes) {
    add({Severity::Error, rule, std::move(place), std::move(message), std::move(notes)});
}

void Findings::Warning(const char* rule, Place place, std::string message,
                       std::vector<Note> notes) {
    add({Severity::Warning, rule, std::move(place), std::move(message), std::move(notes)});
}

void Findings::add(Finding finding) {
    if (!IsFull())
        mList.push_back(std::move(finding));
}

std::vector<Finding> Findings::Take() {
    std::set<std::tuple<std::string, std::size_t, std::string>> told;
    std::erase_if(mList, [&](const Finding& f) {
        return !told.insert({f.place.file, f.place.offset, f.message}).second;
    });
    // Of one place in the order in which they were found.
    const auto order = [](const Finding& f) { return std::tie(f.place.file, f.place.offset); };
    std::stable_sort(mList.begin(), mList.end(),
                     [&](const Finding& a, const Finding& b) { return order(a) < order(b); });
    return std::exchange(mList, {});
}

} // namespace Check
