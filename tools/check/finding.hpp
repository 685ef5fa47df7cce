// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Check {

/// Bytes of a file, by its name from the game's folder. Without a length it is the file as a whole.
struct Place {
    std::string file;
    std::size_t offset = 0, length = 0;
};

struct Note {
    Place place;
    std::string text;
};

enum class Severity { Warning, Error };

struct Finding {
    Severity severity = Severity::Error;
    std::string rule; // "unknown-key": one of Rules()
    Place place;
    std::string message;
    std::vector<Note> notes = {};
};

struct Rule {
    const char* name;
    const char* meaning;
};
const std::vector<Rule>& Rules();

/// Keeps the first thousand: a folder of something else has no end of them.
class Findings {
public:
    static constexpr std::size_t Most = 1000;

    void Error(const char* rule, Place place, std::string message, std::vector<Note> notes = {});
    void Warning(const char* rule, Place place, std::string message, std::vector<Note> notes = {});
    /// Whoever looks long for what to say looks here first.
    bool IsFull() const { return mList.size() >= Most; }

    /// In the order of files and of places in them, each once.
    std::vector<Finding> Take();

private:
    void add(Finding finding);

    std::vector<Finding> mList;
};

} // namespace Check
