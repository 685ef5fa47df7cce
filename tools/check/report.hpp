// SPDX-License-Identifier: MIT
#pragma once

#include "tools/check/finding.hpp"
#include "tools/check/folder.hpp"

#include <string>
#include <vector>

namespace Check {

/// As a compiler tells: `file:line:column: error: what [rule]`, the line itself with a mark below,
/// and notes.
std::string Report(const std::vector<Finding>& findings, const Folder& folder);

/// The same as SARIF 2.1.0, which code hosts and editors show.
std::string Sarif(const std::vector<Finding>& findings, const Folder& folder);

/// Where a place stands, counted from 1, in characters.
struct Position {
    std::size_t line = 1, column = 1, endLine = 1, endColumn = 1;
};

/// The texts of files, each read once.
class Texts {
public:
    explicit Texts(const Folder& folder) : mFolder(folder) {}

    Position Of(const Place& place);
    /// The line in which it begins, and in it the mark: blanks and ^~~~. Empty where a person would
    /// see nothing in it.
    std::string Excerpt(const Place& place);

private:
    const std::string& text(const std::string& file);

    const Folder& mFolder;
    std::map<std::string, std::string> mTexts;
};

} // namespace Check
