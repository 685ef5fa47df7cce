// SPDX-License-Identifier: MIT
#include "tests/tools/import_fixture.hpp"

#include <gmock/gmock.h>

namespace {

using namespace Tests;
using testing::HasSubstr;

class ProjectTest : public ImportFixture {};

/// What is here, with folders.
std::size_t Count(const TempFolder& folder) {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::recursive_directory_iterator(folder.Path()), {}));
}

TEST_F(ProjectTest, NewWritesAGameUnderItsName) {
    EXPECT_EQ(Run("new meadow-2").status, 0);
    EXPECT_EQ(Run("new meadow-2/inner").status, 0); // by a path
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(mFolder.Path() / "meadow-2"))
        if (entry.is_regular_file()) {
            EXPECT_THAT(Vorn::TextFromFile(entry.path().string()),
                        testing::Not(HasSubstr("@NAME@")))
                << entry.path();
        }
    EXPECT_THAT(Vorn::TextFromFile(mFolder / "meadow-2/CMakeLists.txt"),
                HasSubstr("vorn_game(meadow-2 main.cpp)"));
    EXPECT_THAT(Vorn::TextFromFile(mFolder / "meadow-2/inner/main.cpp"), HasSubstr("\"inner\""));
    EXPECT_EQ(Vorn::TextFromFile(mFolder / "meadow-2/data/mesh/ball.mesh"),
              Vorn::TextFromFile("tools/new/template/data/mesh/ball.mesh"));
}

TEST_F(ProjectTest, NewWritesDataWithoutFaultsAndEditorsFindTheirSchemas) {
    EXPECT_EQ(Run("new meadow").status, 0);
    const Outcome check = Run("check meadow");
    EXPECT_EQ(check.status, 0) << check.out;
    const Json::Value settings =
        Vorn::ParseJson(Vorn::TextFromFile(mFolder / "meadow/.vscode/settings.json"));
    EXPECT_EQ(settings["json.schemas"].size(), 7u);
    for (const Json::Value& schema : settings["json.schemas"])
        EXPECT_TRUE(std::filesystem::exists(mFolder.Path() / "meadow" / schema["url"].asString()))
            << schema["url"].asString();
}

TEST_F(ProjectTest, NewRefusesWithoutATrace) {
    mFolder.Folder("there");
    mFolder.File("file");
    const std::size_t before = Count(mFolder) + 2; // and what the command says
    for (const char* name : {"2d", "a.b", "'a b'", "ä", "''", "-x", "test", "all", "a/", ".."})
        EXPECT_NE(Run(std::string("new ") + name).status, 0) << name;
    for (const char* folder : {"there", "file", "nowhere"}) {
        const Outcome refused =
            Run(std::string("new ") + folder + (std::string(folder) == "nowhere" ? "/meadow" : ""));
        EXPECT_EQ(refused.status, 1);
        EXPECT_THAT(refused.error, HasSubstr(mFolder / folder));
    }
    EXPECT_EQ(Count(mFolder), before);
}

TEST_F(ProjectTest, RunAndPackageSayWhatIsMissing) {
    EXPECT_THAT(Run("run").error, HasSubstr("no CMakeLists.txt"));
    EXPECT_THAT(Run("package nowhere").error, HasSubstr("nowhere is no game"));
    mFolder.Folder("broken");
    mFolder.File("broken/CMakeLists.txt",
                 "cmake_minimum_required(VERSION 3.25)\nproject(broken NONE)\n"
                 "message(FATAL_ERROR \"no such thing\")\n");
    const Outcome broken = Run("run broken -- -f");
    EXPECT_EQ(broken.status, 1);
    EXPECT_THAT(broken.error, HasSubstr("no such thing"));
    mFolder.File("broken/CMakeLists.txt",
                 "cmake_minimum_required(VERSION 3.25)\nproject(broken NONE)\n");
    EXPECT_THAT(Run("run broken").error, HasSubstr("names no game"));
}

TEST_F(ProjectTest, RunHandsArgumentsAndStatusOn) {
    // A game by its build's word alone: what the function of the package writes.
    mFolder.Folder("game");
    mFolder.File(
        "game/CMakeLists.txt",
        "cmake_minimum_required(VERSION 3.25)\nproject(game NONE)\n"
        "file(WRITE ${CMAKE_BINARY_DIR}/vorn-games/one \"${CMAKE_SOURCE_DIR}/one.sh\\n\")\n");
    mFolder.File("game/one.sh", "#!/bin/sh\npwd; printf '%s|' \"$@\"; exit 7\n");
    std::filesystem::permissions(mFolder / "game/one.sh", std::filesystem::perms::owner_all);
    const Outcome run = Run("run game -- --help 'a b' --");
    EXPECT_EQ(run.status, 7);
    EXPECT_THAT(run.out, HasSubstr((mFolder / "game") + "\n--help|a b|--|"));
    EXPECT_THAT(Run("run game -g two").error, HasSubstr("the games here are one"));
}

} // namespace
