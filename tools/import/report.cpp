// SPDX-License-Identifier: MIT
#include "tools/import/report.hpp"

#include <set>

namespace Import {

std::string Report::Text() const {
    std::string text;
    const auto list = [&](const char* heading, const std::vector<std::string>& lines) {
        std::set<std::string> told;
        for (const std::string& line : lines) {
            if (told.empty())
                text += std::string(heading) + ":\n";
            if (told.insert(line).second)
                text += "  - " + line + "\n";
        }
    };
    list("changed", changed);
    list("left out", dropped);
    list("warning", warnings);
    return text;
}

} // namespace Import
