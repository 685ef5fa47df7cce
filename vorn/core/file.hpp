// SPDX-License-Identifier: MIT
//
// Whole files, in and out. Paths are relative to the working directory.
//
//   std::string text = Vorn::TextFromFile("data/scene/meadow.scene");
//   Vorn::SaveToFile("meadow.copy", text.data(), static_cast<unsigned int>(text.size()));
#pragma once

#include "vorn/core/api.hpp"

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace Vorn {

/// Opens a plain file for reading in binary mode, at its start. False for what cannot be opened and
/// for what is no plain file: a directory would open like one, and a pipe wait for its writer.
/// (unit of size: bytes)
VORN_API bool OpenFile(const std::string& path, std::ifstream& file, std::uint64_t& size);

/// Reads a whole file into a new array that the caller frees with `delete[]`. No terminator is
/// added; an empty file gives an array of length 0. Raises std::runtime_error, "cannot open file: "
/// and the path, for what cannot be opened, is no plain file (a directory) or is longer than `size`
/// can say; `data` and `size` stay as they were.
VORN_API void MemoryFromFile(const std::string& path, char*& data, unsigned int& size);

/// The same into a string.
VORN_API std::string TextFromFile(const std::string& path);

/// Writes `size` bytes, replacing the file. If it cannot be opened, nothing is written and nothing
/// is reported.
VORN_API void SaveToFile(const std::string& path, const char* data, unsigned int size);

/// Appends the plain name of each file that matches `pattern`, a path that ends in a wildcard such
/// as "data/*", in the order of the file system: names that begin with a dot too, directories not.
/// Nothing matches: `out` stays.
VORN_API void FilesInDirectory(const char* pattern, std::vector<std::string>& out);

} // namespace Vorn
