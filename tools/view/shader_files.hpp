// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string_view>
#include <utility>

namespace View {

/// The seven shader files of the repository, name and text. Made by CMake of data/shaders/.
extern const std::array<std::pair<std::string_view, std::string_view>, 7> ShaderFiles;

} // namespace View
