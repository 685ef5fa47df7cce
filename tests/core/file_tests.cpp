// SPDX-License-Identifier: MIT
#include "vorn/core/file.hpp"

#include "temp_folder.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace {

using CoreTests::TempFolder;
using Names = std::vector<std::string>;

std::string AllBytes() {
    std::string bytes = "\r\n\n\x1a";
    for (int round = 0; round < 300; ++round)
        for (int byte = 0; byte < 256; ++byte)
            bytes += static_cast<char>(byte);
    return bytes + "\r\n";
}

std::string Read(const std::string& path) {
    char* data = nullptr;
    unsigned int size = 0;
    Vorn::MemoryFromFile(path, data, size);
    const std::unique_ptr<char[]> owned(data);
    return std::string(owned.get(), size);
}

void Save(const std::string& path, const std::string& bytes) {
    Vorn::SaveToFile(path, bytes.data(), static_cast<unsigned int>(bytes.size()));
}

void ExpectCannotOpen(const std::string& path) {
    SCOPED_TRACE(path);
    char before = 'x';
    char* data = &before;
    unsigned int size = 77;
    try {
        Vorn::MemoryFromFile(path, data, size);
        ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(std::string(error.what()), "cannot open file: " + path);
    }
    EXPECT_EQ(data, &before);
    EXPECT_EQ(size, 77u);
    EXPECT_THROW(Vorn::TextFromFile(path), std::runtime_error);
}

TEST(File, EveryByteComesBack) {
    const TempFolder folder;
    const std::string bytes = AllBytes();
    const std::string path = folder / "name with spaces [1].bin";
    Save(path, bytes);
    EXPECT_EQ(std::filesystem::file_size(path), bytes.size());
    EXPECT_EQ(Read(path), bytes);
    EXPECT_EQ(Vorn::TextFromFile(path), bytes);

    std::filesystem::create_symlink(path, folder / "link");
    EXPECT_EQ(Read(folder / "link"), bytes);
}

TEST(File, AnEmptyOneGivesAnArrayOfItsOwn) {
    const TempFolder folder;
    const std::string path = folder.File("empty");
    char before = 'x';
    char* data = &before;
    unsigned int size = 77;
    Vorn::MemoryFromFile(path, data, size);
    ASSERT_NE(data, &before);
    delete[] data;
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(Vorn::TextFromFile(path), "");
}

TEST(File, WhatIsNoPlainFileCannotBeOpened) {
    const TempFolder folder;
    std::filesystem::create_symlink(folder / "nowhere", folder / "dangling");
    const std::string plain = folder.File("plain", "text");
    ExpectCannotOpen(folder / "missing");
    ExpectCannotOpen(folder / "missing/file");
    ExpectCannotOpen(folder / "dangling");
    ExpectCannotOpen(plain + "/beyond");
    ExpectCannotOpen(folder.Folder("sub"));
    ExpectCannotOpen(folder.Folder("sub") + "/");
    ExpectCannotOpen("/dev/null");
    ExpectCannotOpen("");
}

TEST(File, OneLongerThanItsSizeCanSayCannotBeOpened) {
    const TempFolder folder;
    const std::string path = folder.File("long", "start");
    std::error_code error;
    std::filesystem::resize_file(path, (std::uintmax_t{1} << 32) + 5, error);
    if (error)
        GTEST_SKIP() << "no room for a file with a hole: " << error.message();
    ExpectCannotOpen(path);
}

TEST(File, SavingReplacesWhatWasThere) {
    const TempFolder folder;
    const std::string path = folder / "file";
    Save(path, "a long text that was there");
    Save(path, "short");
    EXPECT_EQ(Read(path), "short");
    Vorn::SaveToFile(path, "only the first bytes", 4);
    EXPECT_EQ(Read(path), "only");
    Save(path, "");
    EXPECT_EQ(Read(path), "");
}

TEST(File, SavingWhereNothingOpensIsSilent) {
    const TempFolder folder;
    const std::string plain = folder.File("plain", "text");
    EXPECT_NO_THROW(Save(folder / "missing/file", "bytes"));
    EXPECT_NO_THROW(Save(folder.Folder("sub"), "bytes"));
    EXPECT_NO_THROW(Save(plain + "/beyond", "bytes"));
    EXPECT_NO_THROW(Save("", "bytes"));
    EXPECT_FALSE(std::filesystem::exists(folder / "missing"));
    EXPECT_TRUE(std::filesystem::is_directory(folder / "sub"));
    EXPECT_EQ(Read(plain), "text");
}

TEST(FilesInDirectory, AppendsFilesAndNoDirectories) {
    const TempFolder folder;
    for (const char* name : {"b.ent", "a.ent", ".hidden", "c.var", "no extension"})
        folder.File(name);
    folder.Folder("sub.ent");
    folder.File("sub.ent/inner.ent");
    std::filesystem::create_symlink(folder / "sub.ent", folder / "to a folder");
    std::filesystem::create_symlink(folder / "c.var", folder / "to a file");

    Names out{"first"};
    Vorn::FilesInDirectory((folder / "*").c_str(), out);
    ASSERT_EQ(out.size(), 7u);
    EXPECT_EQ(out[0], "first");
    EXPECT_EQ(
        std::set<std::string>(out.begin() + 1, out.end()),
        (std::set<std::string>{"a.ent", "b.ent", ".hidden", "c.var", "no extension", "to a file"}));

    Names again;
    Vorn::FilesInDirectory((folder / "*.ent").c_str(), again);
    Vorn::FilesInDirectory((folder / "*.ent").c_str(), again);
    ASSERT_EQ(again.size(), 4u);
    EXPECT_EQ(std::multiset<std::string>(again.begin(), again.end()),
              (std::multiset<std::string>{"a.ent", "a.ent", "b.ent", "b.ent"}));
}

TEST(FilesInDirectory, StaysAsItIsWithoutAMatch) {
    const TempFolder folder;
    folder.Folder("only a folder");
    Names out{"first"};
    Vorn::FilesInDirectory((folder / "*").c_str(), out);
    Vorn::FilesInDirectory((folder / "missing/*").c_str(), out);
    Vorn::FilesInDirectory((folder.File("file") + "/*").c_str(), out);
    Vorn::FilesInDirectory((folder / "*.ent").c_str(), out);
    EXPECT_EQ(out, Names{"first"});
}

TEST(FilesInDirectory, ComesInTheOrderOfTheFileSystem) {
    const TempFolder folder;
    for (int i = 0; i < 300; ++i)
        folder.File(std::to_string(i * 7919 % 1000) + ".ent");
    Names expected;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        expected.push_back(entry.path().filename().string());
    Names out;
    Vorn::FilesInDirectory((folder / "*").c_str(), out);
    EXPECT_EQ(out, expected);
}

} // namespace
