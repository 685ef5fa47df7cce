// SPDX-License-Identifier: MIT
//
// A game whose input is recorded goes the same way when it is played. Each run is a process of its
// own, as the engine's singletons keep what a run leaves behind.
#include "platform/control/vorn_platform.hpp"
#include "tests/support/temp_folder.hpp"
#include "worlds/pasture/pasture.hpp"

#include <gtest/gtest.h>

#include <XInput.h>
#include <windows.h>

#include <cstdint>
#include <memory>
#include <random>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Outcome {
    int frames = 0;
    std::uint64_t entities = 0;
    std::uint64_t state = 0;
    bool operator==(const Outcome&) const = default;
};

/// Hands that hit keys, move the mouse and hold a pad, in no order.
class Player {
public:
    explicit Player(unsigned int seed) : mRandom(seed) {}

    void Act() {
        switch (mRandom() % 12) {
        case 0:
        case 1:
            VornPlatform::SendKey(VK_LEFT + static_cast<int>(mRandom() % 4), mRandom() % 2);
            break;
        case 2:
            VornPlatform::SendKey('S', mRandom() % 2);
            break;
        case 3:
            VornPlatform::SendMouseMove(static_cast<int>(mRandom() % 800), 300);
            break;
        case 4:
            VornPlatform::SendMouseWheel(1.0f);
            break;
        case 5:
            VornPlatform::SendFocus(mRandom() % 8 > 0);
            break;
        case 6:
            if (!mPad || mRandom() % 8 == 0)
                mPad = mPad ? nullptr : std::make_unique<VornPlatform::VirtualPad>();
            break;
        case 7:
            if (mPad)
                mPad->LeftStick(static_cast<int>(mRandom() % 65536) - 32768, 20000);
            break;
        case 8:
            if (mPad)
                mPad->Buttons(XINPUT_GAMEPAD_A, mRandom() % 2);
            break;
        default:
            break;
        }
    }

private:
    std::mt19937 mRandom;
    std::unique_ptr<VornPlatform::VirtualPad> mPad;
};

Outcome Run(const std::string& recording, bool plays, unsigned int seed) {
    constexpr int Frames = 150;
    VornPlatform::ForceHeadless();
    if (plays)
        VornPlatform::PlayInput(recording);
    else
        VornPlatform::RecordInput(recording);
    Outcome outcome;
    {
        Worlds::Pasture pasture("Replay");
        Player player(seed);
        while (outcome.frames < Frames && pasture.Frame()) {
            ++outcome.frames;
            // What a live hand does meanwhile is no matter to a game that is played.
            player.Act();
            // Frames of no even length.
            if (!plays)
                Sleep(seed % 7);
        }
        outcome.entities = pasture.Scene().EntityList().size();
        outcome.state = Worlds::StateHash(pasture.Scene());
    }
    VornPlatform::StopInput();
    return outcome;
}

Outcome InAnotherProcess(const std::string& recording, bool plays, unsigned int seed) {
    int ends[2] = {};
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        const Outcome outcome = Run(recording, plays, seed);
        const bool told = write(ends[1], &outcome, sizeof outcome) == sizeof outcome;
        _exit(told ? 0 : 1);
    }
    close(ends[1]);
    Outcome outcome;
    EXPECT_EQ(read(ends[0], &outcome, sizeof outcome), static_cast<ssize_t>(sizeof outcome));
    close(ends[0]);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
    return outcome;
}

TEST(Replay, OfRecordedInputEndsInTheSameState) {
    const Tests::TempFolder folder;
    const std::string recording = folder.File("game.input");
    const Outcome recorded = InAnotherProcess(recording, false, 5);
    const Outcome other = InAnotherProcess(folder.File("other.input"), false, 6);
    EXPECT_EQ(recorded.frames, 150);
    EXPECT_NE(recorded.state, other.state) << "the player changes nothing";
    for (const unsigned int seed : {5u, 77u})
        EXPECT_EQ(InAnotherProcess(recording, true, seed), recorded);
}

} // namespace
