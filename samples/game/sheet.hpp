// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Lantern {

/// Small pictures of the game, side by side.
class Sheet {
public:
    /// So many in a row, each of that size (unit: pixels).
    Sheet(int columns, int width, int height) : mColumns(columns), mWidth(width), mHeight(height) {}

    /// What stands in the back buffer.
    void Add();
    /// Raises std::runtime_error where it cannot be written.
    void Save(const std::string& path) const;

private:
    int mColumns, mWidth, mHeight;
    std::vector<std::vector<std::uint32_t>> mPictures;
};

/// The back buffer as a PNG. Raises std::runtime_error where it cannot be written.
void SavePicture(const std::string& path);

} // namespace Lantern
