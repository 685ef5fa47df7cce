// SPDX-License-Identifier: MIT
#include "temp_folder.hpp"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <iterator>
#include <map>
#include <random>
#include <set>
#include <string>
#include <system_error>
#include <vector>

namespace {

using CoreTests::TempFolder;
using Names = std::multiset<std::string>;

std::vector<WIN32_FIND_DATAA> List(const std::string& pattern) {
    std::vector<WIN32_FIND_DATAA> found;
    WIN32_FIND_DATAA data{};
    const HANDLE search = FindFirstFileA(pattern.c_str(), &data);
    if (search == INVALID_HANDLE_VALUE)
        return found;
    do
        found.push_back(data);
    while (FindNextFileA(search, &data));
    EXPECT_FALSE(FindNextFileA(search, &data)) << "the end stays the end";
    EXPECT_TRUE(FindClose(search));
    return found;
}

Names NamesOf(const std::string& pattern) {
    Names names;
    for (const WIN32_FIND_DATAA& data : List(pattern))
        names.insert(data.cFileName);
    return names;
}

// The plain twin: tries every length for each star.
bool Matches(const char* pattern, const char* name) {
    if (*pattern == '*')
        return Matches(pattern + 1, name) || (*name && Matches(pattern, name + 1));
    if (!*pattern || !*name)
        return !*pattern && !*name;
    return (*pattern == '?' || *pattern == *name) && Matches(pattern + 1, name + 1);
}

bool IsFolder(const WIN32_FIND_DATAA& data) {
    return (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

TEST(FindFile, GivesNoHandleWhenNothingMatches) {
    const TempFolder folder;
    const std::string file = folder.File("file.txt");
    WIN32_FIND_DATAA data{};
    for (const std::string& pattern :
         {folder / "*.ent", folder / "missing/*", folder / "missing", file + "/*", folder / "FILE*",
          folder / "file.txt?", folder / "?file.txt", folder / "ile.txt", folder / "file.tx"}) {
        SCOPED_TRACE(pattern);
        EXPECT_EQ(FindFirstFileA(pattern.c_str(), &data), INVALID_HANDLE_VALUE);
    }
}

TEST(FindFile, ListsDotsAndDotFilesToo) {
    const TempFolder folder;
    folder.File(".hidden");
    folder.File("plain");
    folder.Folder("sub");
    folder.File("sub/inner");
    EXPECT_EQ(NamesOf(folder / "*"), (Names{".", "..", ".hidden", "plain", "sub"}));
    EXPECT_EQ(NamesOf(folder / "plain"), Names{"plain"});
    EXPECT_EQ(NamesOf(folder / "sub"), Names{"sub"});
    EXPECT_EQ(NamesOf(folder / "?hidden"), Names{".hidden"});
}

TEST(FindFile, OnlyStarAndQuestionMarkAreWildcards) {
    const TempFolder folder;
    for (const char* name : {"a[1].txt", "a1.txt", "a].txt", "[ab]", "a", "{a,b}", "a(b)", "a+",
                             "aa", "$x", "~x", "!x", "A1.txt", "a^b", "[!a]*"})
        folder.File(name);
    EXPECT_EQ(NamesOf(folder / "a[1].*"), Names{"a[1].txt"});
    EXPECT_EQ(NamesOf(folder / "[ab]"), Names{"[ab]"});
    EXPECT_EQ(NamesOf(folder / "[ab]*"), Names{"[ab]"});
    EXPECT_EQ(NamesOf(folder / "[!a]*"), Names{"[!a]*"});
    EXPECT_EQ(NamesOf(folder / "[*"), (Names{"[ab]", "[!a]*"}));
    EXPECT_EQ(NamesOf(folder / "{a,b}*"), Names{"{a,b}"});
    EXPECT_EQ(NamesOf(folder / "a+*"), Names{"a+"});
    EXPECT_EQ(NamesOf(folder / "a?"), (Names{"a+", "aa"}));
    EXPECT_EQ(NamesOf(folder / "a1*"), Names{"a1.txt"});
    EXPECT_EQ(NamesOf(folder / "*x"), (Names{"$x", "~x", "!x"}));
}

TEST(FindFile, StarDotStarIsEveryNameAndAnyOtherDotIsADot) {
    const TempFolder folder;
    folder.File("plain");
    folder.File("name.ent");
    folder.File(".hidden");
    EXPECT_EQ(NamesOf(folder / "*.*"), (Names{".", "..", ".hidden", "name.ent", "plain"}));
    EXPECT_EQ(NamesOf(folder / "*n*.*"), Names{"name.ent"});
    EXPECT_EQ(NamesOf(folder / "*."), (Names{".", ".."}));
}

TEST(FindFile, WildcardsInFoldersAreNone) {
    const TempFolder folder;
    folder.Folder("x*y");
    folder.File("x*y/star");
    folder.Folder("xzy");
    folder.File("xzy/z");
    folder.Folder("[ab]");
    folder.File("[ab]/brackets");
    folder.Folder("a");
    folder.File("a/plain");
    EXPECT_EQ(NamesOf(folder / "x*y/*"), (Names{".", "..", "star"}));
    EXPECT_EQ(NamesOf(folder / "x?y/*"), Names{});
    EXPECT_EQ(NamesOf(folder / "[ab]/?*r*"), Names{"brackets"});
    EXPECT_EQ(NamesOf(folder / "a/p*"), Names{"plain"});
}

TEST(FindFile, TellsFoldersSizesAndWhatLinksPointAt) {
    const TempFolder folder;
    folder.File("empty");
    folder.File("five", "12345");
    folder.Folder("sub");
    std::filesystem::create_symlink(folder / "sub", folder / "to sub");
    std::filesystem::create_symlink(folder / "five", folder / "to five");
    const std::string longName(255, 'n');
    folder.File(longName, "1");

    std::map<std::string, WIN32_FIND_DATAA> found;
    for (const WIN32_FIND_DATAA& data : List(folder / "*"))
        found[data.cFileName] = data;
    ASSERT_EQ(found.size(), 8u);
    for (const char* name : {".", "..", "sub", "to sub"})
        EXPECT_TRUE(IsFolder(found[name])) << name;
    for (const auto& [name, size] :
         std::map<std::string, DWORD>{{"empty", 0}, {"five", 5}, {"to five", 5}, {longName, 1}}) {
        SCOPED_TRACE(name);
        ASSERT_EQ(found.count(name), 1u);
        EXPECT_FALSE(IsFolder(found[name]));
        EXPECT_EQ(found[name].nFileSizeLow, size);
        EXPECT_EQ(found[name].nFileSizeHigh, 0u);
    }
}

TEST(FindFile, SizesHaveSixtyFourBits) {
    const TempFolder folder;
    const std::string path = folder.File("long");
    std::error_code error;
    std::filesystem::resize_file(path, (std::uintmax_t{3} << 32) + 0xfedcba98u, error);
    if (error)
        GTEST_SKIP() << "no room for a file with a hole: " << error.message();
    const auto found = List(path);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].nFileSizeHigh, 3u);
    EXPECT_EQ(found[0].nFileSizeLow, 0xfedcba98u);
}

TEST(FindFile, SearchesDoNotDisturbEachOther) {
    const TempFolder folder;
    for (const char* name : {"a1", "a2", "a3", "b1", "b2", "b3"})
        folder.File(name);
    WIN32_FIND_DATAA a{}, b{};
    const HANDLE searchA = FindFirstFileA((folder / "a*").c_str(), &a);
    const HANDLE searchB = FindFirstFileA((folder / "b*").c_str(), &b);
    ASSERT_NE(searchA, INVALID_HANDLE_VALUE);
    ASSERT_NE(searchB, INVALID_HANDLE_VALUE);
    Names found{a.cFileName, b.cFileName};
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(FindNextFileA(searchA, &a));
        ASSERT_TRUE(FindNextFileA(searchB, &b));
        found.insert(a.cFileName);
        found.insert(b.cFileName);
    }
    EXPECT_FALSE(FindNextFileA(searchA, &a));
    EXPECT_TRUE(FindClose(searchA));
    EXPECT_FALSE(FindNextFileA(searchB, &b));
    EXPECT_TRUE(FindClose(searchB));
    EXPECT_EQ(found, (Names{"a1", "a2", "a3", "b1", "b2", "b3"}));
}

TEST(FindFile, WorksFromTheWorkingDirectoryAndFromTheRoot) {
    const TempFolder folder;
    folder.File("here.ent");
    folder.Folder("sub");
    folder.File("sub/there.ent");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    const Names here = NamesOf("*.ent");
    const Names there = NamesOf("sub/*.ent");
    std::filesystem::current_path(before);
    EXPECT_EQ(here, Names{"here.ent"});
    EXPECT_EQ(there, Names{"there.ent"});

    const std::string top = (*std::next(folder.Path().begin())).string();
    bool seen = false;
    for (const WIN32_FIND_DATAA& data : List("/*"))
        seen = seen || (data.cFileName == top && IsFolder(data));
    EXPECT_TRUE(seen) << top;
}

TEST(FindFile, MatchesLikeThePlainTwin) {
    const TempFolder folder;
    std::vector<std::string> names{".", ".."};
    std::vector<std::string> shorter{""};
    for (int length = 1; length <= 4; ++length) {
        std::vector<std::string> longer;
        for (const std::string& name : shorter)
            for (const char letter : {'a', 'b', '.'})
                longer.push_back(name + letter);
        for (const std::string& name : longer)
            if (name != "." && name != "..") {
                folder.File(name);
                names.push_back(name);
            }
        shorter = longer;
    }

    std::mt19937 random(260);
    for (int i = 0; i < 400; ++i) {
        std::string pattern;
        for (auto length = 1 + random() % 6; length > 0; --length)
            pattern += "ab.**?"[random() % 6];
        if (pattern == "*.*")
            continue;
        SCOPED_TRACE(pattern);
        Names expected;
        for (const std::string& name : names)
            if (Matches(pattern.c_str(), name.c_str()))
                expected.insert(name);
        ASSERT_EQ(NamesOf(folder / pattern), expected);
    }
}

} // namespace
