// SPDX-License-Identifier: MIT
//
// Lantern, a small game: see README.md beside this file.
#include "samples/game/game.hpp"
#include "samples/game/session.hpp"
#include "samples/game/soak.hpp"
#include "samples/game/timing.hpp"

#include "platform/control/vorn_platform.hpp"

#ifdef VORN_DEV
#include "dev/dev_mode.hpp"
#else
namespace Vorn::Dev {
static void Start() {}
static void Follow(const char* /*path*/, const std::function<void()>& /*read*/) {}
static void Update() {}
} // namespace Vorn::Dev
#endif

#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// The game reads what lies in its own folder, which may be below the current one.
void EnterFolder() {
    const fs::path below = "samples/game";
    if (!fs::exists("data/shallows.scene") && fs::exists(below / "data/shallows.scene"))
        fs::current_path(below);
}

/// False where nobody could see it.
bool Live(bool dev) {
    Lantern::Game game(800, 600, Lantern::ScoreFile::UsualPath());
    if (!VornPlatform::HasDisplay())
        return false;
    if (dev) {
        Vorn::Dev::Start();
        Vorn::Dev::Follow("data/font/lantern.fnt", [&game] { game.ReloadFont(); });
    }
    while (game.Running()) {
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
        game.Update();
        game.Draw();
        Vorn::Graphic::Instance()->Present();
        Vorn::Dev::Update();
        game.log.clear();
        Sleep(2);
    }
    return true;
}

int Usage() {
    std::fprintf(
        stderr,
        "game                                   plays; without a display, the recorded session\n"
        "game --dev                             plays, and follows its files; F1 opens the panel\n"
        "game --record FILE FRAMES [SEED]       lets the pilot play and records it\n"
        "game --play FILE [FOLDER]              plays a recording; pictures, sound and log\n"
        "game --film FILE FOLDER FIRST LAST     the same, and a picture every third frame\n"
        "game --time FILE                       plays a recording and tells where time goes\n"
        "game --soak FRAMES [SEED]              random input, small pictures\n");
    return 2;
}

int Run(const std::vector<std::string>& words) {
    const std::string& verb = words.at(0);
    // Paths that are told are the caller's.
    const auto path = [&words](std::size_t i) { return fs::absolute(words.at(i)).string(); };
    const auto number = [&words](std::size_t i) { return std::stoi(words.at(i)); };
    const bool longer = words.size() == 3;
    if (verb == "--record" && (longer || words.size() == 4)) {
        const std::string file = path(1);
        EnterFolder();
        Lantern::RecordSession(file, number(2), longer ? 1u : static_cast<unsigned int>(number(3)));
    } else if (verb == "--film" && words.size() == 5) {
        const std::string file = path(1), folder = path(2);
        EnterFolder();
        Lantern::PlaySession(file, folder, {number(3), number(4)});
    } else if (verb == "--play" && (longer || words.size() == 2)) {
        const std::string file = path(1), folder = longer ? path(2) : "";
        EnterFolder();
        Lantern::PlaySession(file, folder);
    } else if (verb == "--time" && words.size() == 2) {
        const std::string file = path(1);
        EnterFolder();
        Lantern::TimeSession(file);
    } else if (verb == "--soak" && (longer || words.size() == 2)) {
        EnterFolder();
        Lantern::Soak(number(1), longer ? static_cast<unsigned int>(number(2)) : 1u);
    } else
        return Usage();
    return 0;
}

void Play(bool dev) {
    // Somebody plays: what nobody catches from here on ends in a page, not in a line.
    Vorn::ShowCrashPage({.game = "Lantern", .contact = "", .recording = ""});
    EnterFolder();
    if (!Live(dev))
        Lantern::PlaySession("session.input", (fs::temp_directory_path() / "lantern").string());
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    const bool dev = words == std::vector<std::string>{"--dev"};
    if (words.empty() || dev) {
        Play(dev);
        return 0;
    }
    try {
        return Run(words);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "game: %s\n", error.what());
        return 1;
    }
}
