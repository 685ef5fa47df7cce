// SPDX-License-Identifier: MIT
//
// The best score of the sample game outlives what happens to its file.
#include "samples/game/score_file.hpp"
#include "tests/support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;
using Lantern::ScoreFile;

class ScoreFileTest : public testing::Test {
protected:
    Tests::TempFolder folder;
    const fs::path path = folder.Path() / "vorn-lantern" / "best";
    const ScoreFile file{path};
};

TEST_F(ScoreFileTest, KeepsAScoreInAFolderThatItMakes) {
    EXPECT_EQ(file.Best(), 0);
    EXPECT_TRUE(file.Keep(120));
    EXPECT_TRUE(file.Keep(4500));
    EXPECT_EQ(ScoreFile(path).Best(), 4500);
    for (const auto& entry : fs::directory_iterator(path.parent_path()))
        EXPECT_EQ(entry.path(), path) << "is left behind";
}

TEST_F(ScoreFileTest, CountsABrokenFileAsNothingAndWritesOverIt) {
    fs::create_directories(path.parent_path());
    for (const char* text : {"", "\n", "best", "12x", "1 2", "-7", "99999999999999999999"}) {
        std::ofstream(path) << text;
        EXPECT_EQ(file.Best(), 0) << text;
    }
    EXPECT_TRUE(file.Keep(7));
    EXPECT_EQ(file.Best(), 7);
}

TEST_F(ScoreFileTest, SaysThatItCannotWrite) {
    std::ofstream(folder.Path() / "plain") << "a file, not a folder";
    EXPECT_FALSE(ScoreFile(folder.Path() / "plain" / "best").Keep(1));
    fs::create_directories(path / "a folder under its name");
    EXPECT_FALSE(file.Keep(1));
    EXPECT_EQ(file.Best(), 0);
}

TEST_F(ScoreFileTest, KeepsTheOldScoreWhereTheDiskIsFull) {
    ASSERT_TRUE(file.Keep(300));
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit none{1, 1}; // a byte to a file
        setrlimit(RLIMIT_FSIZE, &none);
        _exit(file.Keep(400) ? 1 : 0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << "it says that it kept what it could not write";
    EXPECT_EQ(file.Best(), 300);
}

// At whatever point of its work it dies, one score or the next one is there.
TEST_F(ScoreFileTest, LosesNothingToACrash) {
    int least = 1000000;
    ASSERT_TRUE(file.Keep(least));
    for (int round = 0; round < 20; ++round) {
        const pid_t child = fork();
        if (child == 0)
            for (int score = least;; ++score)
                static_cast<void>(file.Keep(score));
        // Not before it has begun; then wherever it is.
        for (int look = 0; look < 100000 && file.Best() <= least; ++look)
            usleep(100);
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        EXPECT_GT(file.Best(), least);
        least = file.Best();
    }
    EXPECT_TRUE(file.Keep(2000000)) << "over what the crash left behind";
    EXPECT_EQ(file.Best(), 2000000);
}

} // namespace
