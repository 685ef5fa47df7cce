// SPDX-License-Identifier: MIT
//
// A window that tells what comes in: see README.md beside this file.
#include "platform/control/vorn_platform.hpp"
#include "worlds/pasture/pasture.hpp"
#include "vorn/vorn.hpp"

#include <XInput.h>
#include <windows.h>

#include <array>
#include <cstdio>
#include <exception>
#include <string>
#include <utility>

namespace {

constexpr const char* Session = "samples/02-input/session.input";

/// Prints what has changed since the frame before.
class Reporter {
public:
    void Report() {
        ++mFrame;
        reportFocus();
        reportKeys();
        reportMouse();
        for (unsigned int pad = 0; pad < mPads.size(); ++pad)
            reportPad(pad);
    }
    int Frame() const { return mFrame; }

private:
    void start() const { std::printf("frame %4d: ", mFrame); }

    void reportFocus() {
        const bool active = Vorn::Engine::Instance()->IsActive();
        if (active != std::exchange(mActive, active)) {
            start();
            std::printf("the window %s the focus\n", active ? "has" : "has lost");
        }
    }
    // Not by KeyIsTriggered, which raises the events of the triggers once more.
    void reportKeys() {
        for (int key = 0; key < 256; ++key) {
            const bool down = GetKeyState(key) < 0;
            if (down != std::exchange(mKeys[static_cast<std::size_t>(key)], down)) {
                start();
                std::printf("key %d %s\n", key, down ? "down" : "up");
            }
        }
    }
    void reportMouse() {
        const auto& input = *Vorn::InputManager::Instance();
        Vorn::Point2 movement;
        input.GetMouseMovement(movement);
        const Vorn::Point2 at = input.GetOriginalMousePos();
        if (movement.x != 0.0f || movement.y != 0.0f) {
            start();
            std::printf("mouse at %g, %g\n", static_cast<double>(at.x), static_cast<double>(at.y));
        }
        if (input.MmouseIsScrolled()) {
            start();
            std::printf("wheel by %d\n", input.MmouseScrollCurr());
        }
    }
    void reportPad(unsigned int index) {
        XINPUT_STATE state = {};
        const bool there = XInputGetState(index, &state) == ERROR_SUCCESS;
        Pad& pad = mPads[index];
        if (there != std::exchange(pad.there, there)) {
            start();
            std::printf("pad %u %s\n", index + 1, there ? "plugged in" : "unplugged");
        }
        const XINPUT_GAMEPAD& now = state.Gamepad;
        if (!there || state.dwPacketNumber == std::exchange(pad.packet, state.dwPacketNumber))
            return;
        start();
        std::printf("pad %u: buttons %04x, triggers %d %d, sticks (%d, %d) (%d, %d)\n", index + 1,
                    now.wButtons, now.bLeftTrigger, now.bRightTrigger, now.sThumbLX, now.sThumbLY,
                    now.sThumbRX, now.sThumbRY);
    }

    struct Pad {
        bool there = false;
        DWORD packet = 0;
    };
    int mFrame = 0;
    bool mActive = false;
    std::array<bool, 256> mKeys{};
    std::array<Pad, 4> mPads{};
};

int RunSample(const std::string& mode, const std::string& path) {
    // Before the first look at the clock, so that a recording holds all of it.
    if (mode == "record")
        VornPlatform::RecordInput(path);
    else if (mode == "play")
        VornPlatform::PlayInput(path);

    Worlds::Pasture pasture("Vorn: input");
    bool playing = mode == "play";
    if (mode.empty() && !VornPlatform::HasDisplay() && !VornPlatform::IsPlayingInput()) {
        std::printf("There is no display, so this plays %s.\n", Session);
        VornPlatform::PlayInput(Session);
        playing = true;
    }

    Reporter reporter;
    while (pasture.Frame()) {
        reporter.Report();
        if (playing && !VornPlatform::IsPlayingInput())
            break;
        if (!playing)
            Sleep(15);
    }
    VornPlatform::StopInput();
    std::printf("%d frames, %zu entities, state %016llx\n", reporter.Frame(),
                pasture.Scene().EntityList().size(),
                static_cast<unsigned long long>(Worlds::StateHash(pasture.Scene())));
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const std::string mode = argc > 1 ? argv[1] : "";
    if (argc == 2 || argc > 3 || (argc == 3 && mode != "record" && mode != "play")) {
        std::fprintf(stderr, "02-input [record FILE | play FILE]\n");
        return 2;
    }
    try {
        return RunSample(mode, argc > 2 ? argv[2] : "");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "02-input: %s\n", error.what());
        return 1;
    }
}
