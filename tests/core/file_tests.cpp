// SPDX-License-Identifier: MIT
#include "vorn/core/file.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

/// A fresh folder, `mRoot` with its slash, that is gone with the test.
class Files : public testing::Test {
protected:
    Files() {
        EXPECT_TRUE(mkdtemp(mRoot.data()));
        mRoot += '/';
    }
    ~Files() override { fs::remove_all(mRoot); }

    static void Save(const std::string& path, const std::string& bytes = "text") {
        Vorn::SaveToFile(path, bytes.data(), static_cast<unsigned int>(bytes.size()));
    }
    static std::string Read(const std::string& path) {
        char* data = nullptr;
        unsigned int size = 0;
        Vorn::MemoryFromFile(path, data, size);
        EXPECT_NE(data, nullptr);
        return std::string(std::unique_ptr<char[]>(data).get(), size);
    }
    Names List(const std::string& pattern, Names out = {}) const {
        Vorn::FilesInDirectory((mRoot + pattern).c_str(), out);
        return out;
    }

    std::string mRoot = testing::TempDir() + "vorn-XXXXXX";
};

TEST_F(Files, GiveEveryByteBackAndAreReplaced) {
    std::string bytes = "\r\n\x1a";
    for (int byte = 0; byte < 256 * 300; ++byte)
        bytes += static_cast<char>(byte);
    for (const std::string& content : {bytes, std::string("short"), std::string()}) {
        Save(mRoot + "with spaces [1]", content);
        EXPECT_EQ(Read(mRoot + "with spaces [1]"), content);
        EXPECT_EQ(Vorn::TextFromFile(mRoot + "with spaces [1]"), content);
    }
}

TEST_F(Files, ThatAreNoneRaiseWhenReadAndStaySilentWhenWritten) {
    Save(mRoot + "plain");
    Save(mRoot + "long");
    fs::resize_file(mRoot + "long", (std::uintmax_t{1} << 32) + 5);
    fs::create_directory(mRoot + "sub");
    fs::create_symlink("/dev/null", mRoot + "device");
    for (const char* name :
         {"missing", "missing/file", "plain/beyond", "sub", "sub/", "long", "device"}) {
        const std::string path = mRoot + name;
        char before = 'x';
        char* data = &before;
        unsigned int size = 77;
        try {
            Vorn::MemoryFromFile(path, data, size);
            ADD_FAILURE() << "no exception for " << path;
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), "cannot open file: " + path);
        }
        EXPECT_TRUE(data == &before && size == 77);
        EXPECT_THROW(Vorn::TextFromFile(path), std::runtime_error);
    }
    for (const char* name : {"missing/file", "plain/beyond", "sub"})
        EXPECT_NO_THROW(Save(mRoot + name, "bytes"));
    EXPECT_FALSE(fs::exists(mRoot + "missing"));
    EXPECT_EQ(Read(mRoot + "plain"), "text");
}

TEST_F(Files, AreAppendedInTheOrderOfTheFileSystemWithoutFolders) {
    fs::create_directory(mRoot + "sub.ent");
    Save(mRoot + "sub.ent/inner.ent");
    Names expected{"first"};
    for (const char* nothing : {"*", "missing/*", "*.txt"})
        EXPECT_EQ(List(nothing, expected), expected);
    Save(mRoot + ".hidden");
    fs::create_symlink(mRoot + "sub.ent", mRoot + "to a folder");
    fs::create_symlink(mRoot + ".hidden", mRoot + "to a file");
    for (int i = 0; i < 100; ++i)
        Save(mRoot + std::to_string(i * 7919 % 1000) + ".ent");
    for (const auto& entry : fs::directory_iterator(mRoot))
        if (!entry.is_directory())
            expected.push_back(entry.path().filename().string());
    ASSERT_EQ(expected.size(), 103u);
    EXPECT_EQ(List("*", {"first"}), expected);
}

TEST_F(Files, AreMatchedByStarAndQuestionMarkInTheLastElementOnly) {
    for (const char* sub : {"x*y", "xzy", "[ab]"})
        fs::create_directory(mRoot + sub);
    for (const char* name :
         {"a[1].txt", "a1.txt", "A1.txt", ".hid", "a", "b\\", "x*y/1", "xzy/2", "[ab]/3"})
        Save(mRoot + name);
    const std::pair<const char*, Names> cases[] = {
        {"a[1].*", {"a[1].txt"}},
        {"a*", {"a", "a1.txt", "a[1].txt"}},
        {"?1.txt", {"A1.txt", "a1.txt"}},
        {"b\\", {"b\\"}},
        {"?hid", {".hid"}},
        {"*.", {}},
        {"*.*", {".hid", "A1.txt", "a", "a1.txt", "a[1].txt", "b\\"}},
        {"x*y/?", {"1"}},
        {"[ab]/3", {"3"}},
        {"x?y/*", {}},
    };
    for (const auto& [pattern, expected] : cases) {
        Names names = List(pattern);
        std::sort(names.begin(), names.end());
        EXPECT_EQ(names, expected) << pattern;
    }
}

} // namespace
