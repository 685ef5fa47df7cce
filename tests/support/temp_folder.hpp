// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

namespace Tests {

/// A fresh folder that is gone with the object.
class TempFolder {
public:
    TempFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "vorn-test-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("cannot make a folder: " + name);
        mPath = name;
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }

    const std::filesystem::path& Path() const { return mPath; }
    std::string operator/(const std::string& name) const { return (mPath / name).string(); }

    std::string File(const std::string& name, const std::string& bytes = {}) const {
        std::ofstream(mPath / name, std::ios::binary) << bytes;
        return *this / name;
    }
    std::string Folder(const std::string& name) const {
        std::filesystem::create_directories(mPath / name);
        return *this / name;
    }

private:
    std::filesystem::path mPath;
};

} // namespace Tests
