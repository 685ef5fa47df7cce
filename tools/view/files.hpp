// SPDX-License-Identifier: MIT
//
// What kind of file it is, and whether it is whole. The engine passes over most faults in silence;
// who looks at a file wants to hear of them. All of it raises std::runtime_error with the fault,
// without the file's name.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace View {

enum class Kind { Model, Material, Entity, Effect, Scene, Picture };

/// By its extension, or where that leaves it open, by what is in it.
Kind KindOf(const std::filesystem::path& file);
bool IsPicture(const std::filesystem::path& file);

/// An object. A text with a fault raises, with line and column.
Json::Value ReadJson(const std::filesystem::path& file);

/// Raises where a model file ends early, has indices beyond its vertices, or is none.
void CheckModel(const std::filesystem::path& file);

/// What a file was like when it was last looked at, to tell whether it has changed.
struct Stamp {
    std::filesystem::file_time_type time;
    std::uintmax_t size = 0;
    bool operator==(const Stamp&) const = default;
};
/// Nothing of a file that is not there.
Stamp StampOf(const std::filesystem::path& file);

} // namespace View
