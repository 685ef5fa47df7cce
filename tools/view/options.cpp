// SPDX-License-Identifier: MIT
#include "tools/view/options.hpp"

#include <algorithm>
#include <charconv>
#include <sstream>
#include <utility>

namespace View {

bool ReadSize(const std::string& text, Options& options) {
    constexpr unsigned int least = 64, most = 4096;
    unsigned int width = 0, height = 0;
    const char* const end = text.data() + text.size();
    const auto [middle, fault] = std::from_chars(text.data(), end, width);
    if (fault != std::errc() || middle == end || *middle != 'x')
        return false;
    const auto [last, fault2] = std::from_chars(middle + 1, end, height);
    if (fault2 != std::errc() || last != end || std::min(width, height) < least ||
        std::max(width, height) > most)
        return false;
    options.width = width;
    options.height = height;
    return true;
}

bool ReadShown(const std::string& list, Shown& shown) {
    Shown read;
    read.grid = false;
    const std::pair<const char*, bool*> words[] = {
        {"grid", &read.grid}, {"bones", &read.bones},     {"volumes", &read.volumes},
        {"wire", &read.wire}, {"normals", &read.normals}, {"texture", &read.texture}};
    std::istringstream stream(list);
    for (std::string word; std::getline(stream, word, ',');) {
        const auto* const found =
            std::find_if(std::begin(words), std::end(words),
                         [&](const auto& known) { return known.first == word; });
        if (found != std::end(words))
            *found->second = true;
        else if (word != "none")
            return false;
    }
    shown = read;
    return true;
}

} // namespace View
