// SPDX-License-Identifier: MIT
#include "dev/file_watch.hpp"
#include "tests/support/temp_folder.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using Vorn::Dev::FileWatch;

void Write(const fs::path& path, const char* text = "text") {
    std::ofstream(path) << text;
}

/// What is told within two seconds, until it is as many files.
std::vector<std::string> Wait(FileWatch& watch, std::size_t count) {
    std::vector<std::string> all;
    for (int i = 0; i < 200 && all.size() < count; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        const auto changed = watch.Changed();
        all.insert(all.end(), changed.begin(), changed.end());
    }
    return all;
}

TEST(FileWatchTest, TellsWhatWasWrittenRenamedAndTakenAwayEachOnce) {
    const Tests::TempFolder folder;
    const fs::path data = folder.Path();
    fs::create_directories(data / "img");
    Write(data / "img/old.png");
    FileWatch watch;
    watch.Add(data.string());
    watch.Add(data.string());
    EXPECT_THAT(watch.Changed(), IsEmpty());

    Write(data / "a.scene");
    Write(data / "a.scene", "again");
    EXPECT_THAT(watch.Changed(), IsEmpty()) << "it has not rested yet";
    EXPECT_THAT(Wait(watch, 1), ElementsAre((data / "a.scene").string()));

    fs::remove(data / "img/old.png");
    EXPECT_THAT(Wait(watch, 1), ElementsAre((data / "img/old.png").string()));

    Write(data / "part");
    fs::rename(data / "part", data / "a.scene");
    EXPECT_THAT(Wait(watch, 2), ElementsAre((data / "a.scene").string(), (data / "part").string()));
}

TEST(FileWatchTest, ALinkToAFileTellsOfTheFile) {
    const Tests::TempFolder folder, elsewhere;
    Write(elsewhere.Path() / "real");
    Write(elsewhere.Path() / "other");
    fs::create_symlink(elsewhere.Path() / "real", folder.Path() / "link");
    FileWatch watch;
    watch.Add(folder.Path().string());
    Write(folder.Path() / "link", "through it");
    Write(elsewhere.Path() / "other", "nobody's");
    EXPECT_THAT(Wait(watch, 1), ElementsAre(folder / "link"));
    Write(elsewhere.Path() / "part");
    fs::rename(elsewhere.Path() / "part", elsewhere.Path() / "real");
    EXPECT_THAT(Wait(watch, 1), ElementsAre(folder / "link"));
    EXPECT_THAT(watch.Changed(), IsEmpty());
}

TEST(FileWatchTest, FollowsFoldersThatComeAndGo) {
    const Tests::TempFolder folder;
    const fs::path data = folder.Path();
    FileWatch watch;
    watch.Add(data.string());
    fs::create_directories(data / "new/deep");
    Write(data / "new/deep/a");
    EXPECT_THAT(Wait(watch, 1), ElementsAre((data / "new/deep/a").string()));
    Write(data / "new/deep/b");
    EXPECT_THAT(Wait(watch, 1), ElementsAre((data / "new/deep/b").string()));
    fs::rename(data / "new", data / "other");
    EXPECT_THAT(Wait(watch, 2),
                ElementsAre((data / "other/deep/a").string(), (data / "other/deep/b").string()));
    Write(data / "other/deep/b", "more");
    EXPECT_THAT(Wait(watch, 1), ElementsAre((data / "other/deep/b").string()));
    EXPECT_THROW(watch.Add((data / "none").string()), std::system_error);
}

} // namespace
