// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/temp_folder.hpp"

namespace Tests {

/// A fresh folder that is the working directory for as long as the object lives, for what is read
/// from "data/" beside the program. The shader files are there already: no device without them.
class WorkingFolder : public TempFolder {
public:
    WorkingFolder() {
        std::error_code ignored; // where the program does not run in the repository
        std::filesystem::create_directories(Path() / "data");
        std::filesystem::copy(mBefore / "data/shaders", Path() / "data/shaders", ignored);
        std::filesystem::current_path(Path());
    }
    ~WorkingFolder() {
        std::error_code ignored;
        std::filesystem::current_path(mBefore, ignored);
    }

private:
    std::filesystem::path mBefore = std::filesystem::current_path();
};

} // namespace Tests
