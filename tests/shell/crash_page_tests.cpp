// SPDX-License-Identifier: MIT
#include "tests/support/temp_folder.hpp"

#include "vorn/core/file.hpp"
#include "vorn/shell/crash_page.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <new>
#include <stdexcept>

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class CrashPageTest : public testing::Test {
protected:
    /// What the file holds when a program in the folder has ended so.
    template <typename Raise>
    std::string PageOf(const Vorn::CrashPage& page, Raise raise) {
        const auto end = [&] {
            std::filesystem::current_path(mFolder.Path());
            Vorn::ShowCrashPage(page);
            // Nobody catches it beyond this, the test's own frame included.
            [&]() noexcept { raise(); }();
        };
        EXPECT_EXIT(end(), testing::KilledBySignal(SIGABRT), "This page is in .*Sea-1-crash.txt");
        return Vorn::TextFromFile(mFolder / "Sea-1-crash.txt");
    }

    Tests::TempFolder mFolder;
};

TEST_F(CrashPageTest, SaysWhatHappenedWhatToDoAndWhatToSend) {
    const auto open = [] { Vorn::TextFromFile("data/sea.scene"); };
    const std::string page = PageOf({"Sea 1", "bugs@sea.example", "sea.input"}, open);
    EXPECT_THAT(page, AllOf(HasSubstr("Sea 1 has stopped."), HasSubstr("data/sea.scene"),
                            HasSubstr("holds no data/"), HasSubstr("bugs@sea.example"),
                            HasSubstr("sea.input"), HasSubstr("std::runtime_error"),
                            HasSubstr("Vorn 0."), HasSubstr(mFolder.Path().string())));
    mFolder.Folder("data");
    EXPECT_THAT(PageOf({"Sea 1", "", ""}, open),
                AllOf(HasSubstr("Install the game again"), Not(HasSubstr("What to send"))));
}

TEST_F(CrashPageTest, AdviceFollowsTheException) {
    const Vorn::CrashPage page{"Sea 1", "", ""};
    mFolder.Folder("data");
    EXPECT_THAT(PageOf(page, [] { throw std::exception(); }), HasSubstr("no data/shaders/"));
    mFolder.Folder("data/shaders");
    EXPECT_THAT(PageOf(page, [] { throw std::exception(); }), HasSubstr("OpenGL 4.5"));
    EXPECT_THAT(PageOf(page, [] { throw std::bad_alloc(); }), HasSubstr("no memory left"));
    EXPECT_THAT(PageOf(page, [] { throw 7; }),
                AllOf(HasSubstr("exception  int"), HasSubstr("Start the game again")));
    EXPECT_THAT(PageOf(page, [] { std::terminate(); }), HasSubstr("std::terminate was called"));
}

} // namespace
