// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/effect_source.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace VornPlatform {

namespace {

std::optional<std::string> ReadFile(const std::filesystem::path& path) {
    std::error_code error;
    std::ifstream file;
    if (!std::filesystem::is_directory(path, error))
        file.open(path, std::ios::binary);
    if (!file.is_open())
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

} // namespace

IncludeReader FileIncludes() {
    return [](std::string name, const std::string& includer, std::string& found) {
        std::replace(name.begin(), name.end(), '\\', '/'); // as authors on Windows write it
        const std::filesystem::path beside = std::filesystem::path(includer).parent_path() / name;
        for (const std::filesystem::path& path : {beside, std::filesystem::path(name)})
            if (auto content = ReadFile(path)) {
                found = path.lexically_normal().string();
                return content;
            }
        return std::optional<std::string>();
    };
}

} // namespace VornPlatform
