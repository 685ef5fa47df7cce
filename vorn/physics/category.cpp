// SPDX-License-Identifier: MIT
#include "vorn/physics/category.hpp"

#include <cstdint>
#include <limits>
#include <stdexcept>

namespace Vorn {

namespace {

template <typename T>
const T& Find(const std::unordered_map<std::string, T>& table, const std::string& name) {
    const auto found = table.find(name);
    if (found == table.end())
        throw std::out_of_range("invalid unordered_map<K, T> key");
    return found->second;
}

std::uint32_t Low32(const CategorySet& set) {
    const unsigned long long bits = set.to_ullong();
    if (bits > std::numeric_limits<std::uint32_t>::max())
        throw std::overflow_error("bitset<N> overflow");
    return static_cast<std::uint32_t>(bits);
}

} // namespace

const CategorySet& FindName(const CategoryTable& table, const std::string& name) {
    return Find(table, name);
}

unsigned int FindName(const VolumeTable& table, const std::string& name) {
    return Find(table, name);
}

CategorySet ParseCategories(const CategoryTable& table, const std::string& text) {
    CategorySet set;
    char operation = '+';
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t next = text.find_first_of("+-", at);
        const bool last = next == std::string::npos;
        // The blank in front of the operator is not part of the name.
        const std::string name =
            last ? text.substr(at) : text.substr(at, next == at ? 0 : next - at - 1);
        const CategorySet& bits = Find(table, name);
        set = operation == '+' ? set | bits : set & ~bits;
        if (last)
            break;
        operation = text[next];
        at = next + 2;
    }
    return set;
}

std::string WriteCategories(const CategoryTable& table, const CategorySet& set) {
    const CategorySet& all = Find(table, "ALL");
    const bool byWhatIsMissing = Low32(set) > Low32(all) / 2;
    std::string text;
    for (const auto& [name, bits] : table) {
        if (bits == all)
            continue;
        if (byWhatIsMissing && (bits & ~set).any())
            text += (text.empty() ? "ALL - " : " - ") + name;
        else if (!byWhatIsMissing && (bits & set).any())
            text += (text.empty() ? "" : " + ") + name;
    }
    return text;
}

} // namespace Vorn
