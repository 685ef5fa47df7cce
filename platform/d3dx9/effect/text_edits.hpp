// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace VornPlatform {

/// Changes of a text that leave its lines where they are. Positions are those of the old text.
class TextEdits {
public:
    explicit TextEdits(std::string_view text) : text_(text) {}

    /// All but line ends become blanks, and what was inserted there last goes.
    void blank(std::uint32_t from, std::uint32_t to) {
        while (!inserts_.empty() && inserts_.back().first >= from && inserts_.back().first < to)
            inserts_.pop_back();
        for (std::size_t at = from; at < to; ++at)
            if (text_[at] != '\n')
                text_[at] = ' ';
    }
    void insert(std::uint32_t at, std::string what) { inserts_.emplace_back(at, std::move(what)); }

    std::string apply() {
        std::stable_sort(inserts_.begin(), inserts_.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        std::string result;
        std::size_t done = 0;
        for (const auto& [at, what] : inserts_) {
            result.append(text_, done, at - done);
            result += what;
            done = at;
        }
        return result.append(text_, done);
    }

private:
    std::string text_;
    std::vector<std::pair<std::uint32_t, std::string>> inserts_;
};

} // namespace VornPlatform
