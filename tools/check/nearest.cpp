// SPDX-License-Identifier: MIT
//
// The distance is that of Damerau and Levenshtein, in its restricted form: no part of the text is
// edited twice.
#include "tools/check/nearest.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

namespace Check {
namespace {

constexpr std::size_t MaxLength = 64;

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::size_t Distance(std::string_view a, std::string_view b) {
    // Three rows of the table: i - 2, i - 1 and i.
    std::array<std::array<std::size_t, MaxLength + 1>, 3> rows{};
    for (std::size_t j = 0; j <= b.size(); ++j)
        rows[0][j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        auto& row = rows[i % 3];
        const auto& above = rows[(i + 2) % 3];
        const auto& twoAbove = rows[(i + 1) % 3];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool isSame = Lower(a[i - 1]) == Lower(b[j - 1]);
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (isSame ? 0 : 1)});
            if (i > 1 && j > 1 && Lower(a[i - 1]) == Lower(b[j - 2]) &&
                Lower(a[i - 2]) == Lower(b[j - 1]))
                row[j] = std::min(row[j], twoAbove[j - 2] + 1);
        }
    }
    return rows[a.size() % 3][b.size()];
}

} // namespace

std::string Nearest(std::string_view name, const std::vector<std::string>& names) {
    if (name.empty() || name.size() > MaxLength)
        return {};
    // A third of the letters may be wrong, and of a short name one.
    std::size_t least = std::max<std::size_t>(1, name.size() / 3) + 1;
    const std::string* nearest = nullptr;
    for (const std::string& other : names) {
        const std::size_t longer = std::max(name.size(), other.size());
        if (other.size() > MaxLength || longer - std::min(name.size(), other.size()) >= least)
            continue;
        const std::size_t distance = Distance(name, other);
        // Of two letters one that is another is another word.
        if (distance < least && distance < longer - (longer > 1 ? 1 : 0)) {
            least = distance;
            nearest = &other;
        }
    }
    return nearest ? *nearest : std::string();
}

std::string Suggestion(std::string_view name, const std::vector<std::string>& names) {
    const std::string nearest = Nearest(name, names);
    return nearest.empty() ? nearest : "; is \"" + nearest + "\" meant?";
}

} // namespace Check
