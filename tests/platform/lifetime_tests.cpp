// SPDX-License-Identifier: MIT
//
// How the platform comes up and goes down, each time in a process of its own.
#include "tests/platform/window_fixture.hpp"
#include "tests/support/temp_folder.hpp"

#include <XInput.h>

#include <cstdlib>
#include <memory>

#include <unistd.h>

namespace Tests {

class LifetimeTest : public WindowTest {
protected:
    LifetimeTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    [[noreturn]] static void Leave(bool good) {
        std::fflush(nullptr);
        std::exit(good ? 0 : 3);
    }
    static HWND Make() {
        WNDCLASSEXA description = {};
        description.lpfnWndProc = DefWindowProcA;
        description.lpszClassName = "Plain";
        RegisterClassExA(&description);
        return CreateWindowExA(0, "Plain", "", 0xCA0000, CW_USEDEFAULT, 0, 64, 64, nullptr, nullptr,
                               nullptr, nullptr);
    }
};

// Lives longer than anything of the platform's, as the singletons of the library do.
struct Late {
    HWND window = nullptr;
    HCURSOR cursor = nullptr;
    std::unique_ptr<VornPlatform::VirtualPad> pad;

    ~Late() {
        MSG message = {};
        XINPUT_STATE state = {};
        XINPUT_VIBRATION vibration = {1, 1};
        LARGE_INTEGER counter = {};
        bool good = !UpdateWindow(window) && !DestroyWindow(window) && !ShowWindow(window, SW_SHOW);
        good = good && !PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);
        good = good && !PostMessageA(window, WM_USER, 0, 0) && PostMessageA(nullptr, WM_USER, 0, 0);
        good = good && LifetimeMake() == nullptr;
        good = good && XInputSetState(0, &vibration) == ERROR_DEVICE_NOT_CONNECTED;
        good = good && XInputGetState(0, &state) == ERROR_DEVICE_NOT_CONNECTED;
        good = good && QueryPerformanceCounter(&counter);
        SetCursor(cursor);
        SetCursor(nullptr);
        ShowCursor(FALSE);
        GetKeyState('A');
        VornPlatform::SendKey('A', true);
        VornPlatform::SendFocus(false);
        pad->Buttons(XINPUT_GAMEPAD_A, true);
        good = good && pad->Index() == -1 && !VornPlatform::HasDisplay();
        pad.reset();
        VornPlatform::StopInput();
        if (!good)
            _exit(4);
    }
    static HWND LifetimeMake() {
        return CreateWindowExA(0, "Plain", "", 0, 0, 0, 64, 64, nullptr, nullptr, nullptr, nullptr);
    }
};

TEST_F(LifetimeTest, CallsAfterTheEndFindNothingAndBringNothingUp) {
    const TempFolder folder;
    const std::string path = folder / "late.input";
    for (const bool recording : {true, false})
        EXPECT_EXIT(
            {
                static Late late;
                late.window = Make();
                late.cursor = SetCursor(nullptr);
                late.pad = std::make_unique<VornPlatform::VirtualPad>();
                ShowWindow(late.window, SW_SHOW);
                if (recording)
                    VornPlatform::RecordInput(path);
                else
                    VornPlatform::PlayInput(folder.File("play.input",
                                                        "vorn-input 1\nframe\n"
                                                        "key 65 1 0\nframe\nframe\n"));
                VornPlatform::SendKey('A', true);
                Pump();
                Leave(Down('A') && late.pad->Index() == 0);
            },
            testing::ExitedWithCode(0), "");
}

TEST_F(LifetimeTest, WithoutADisplayWindowsAreInMemory) {
    EXPECT_EXIT(
        {
            unsetenv("DISPLAY");
            unsetenv("WAYLAND_DISPLAY");
            unsetenv("SDL_VIDEODRIVER");
            const HWND window = Make();
            ShowWindow(window, SW_SHOW);
            Leave(window && !VornPlatform::HasDisplay());
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(LifetimeTest, ADriverThatIsNotThereGivesNoWindowAndHarmsNothing) {
    EXPECT_EXIT(
        {
            setenv("SDL_VIDEODRIVER", "nonsense", 1);
            bool good = Make() == nullptr && Pump() == 0 && Make() == nullptr;
            const VornPlatform::VirtualPad pad;
            XINPUT_STATE state = {};
            Leave(good && XInputGetState(0, &state) == ERROR_SUCCESS);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(LifetimeTest, HeadlessIsForcedAgainstTheEnvironment) {
    EXPECT_EXIT(
        {
            setenv("SDL_VIDEODRIVER", "nonsense", 1);
            VornPlatform::ForceHeadless();
            const HWND window = Make();
            Leave(window && !VornPlatform::HasDisplay());
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(LifetimeTest, AHostThatEndsSdlItselfIsToldThatItsWindowIsGone) {
    EXPECT_EXIT(
        {
            static HWND window;
            window = Show();
            const HCURSOR cursor = SetCursor(nullptr);
            XINPUT_STATE state = {};
            XINPUT_VIBRATION motors = {};
            motors.wLeftMotorSpeed = 1;
            const VornPlatform::VirtualPad pad;
            bool good = XInputGetState(0, &state) == ERROR_SUCCESS;
            XInputSetState(0, &motors);
            VornPlatform::SendKey('A', true);
            Pump();

            SDL_Quit();
            good = good && !VornPlatform::HasDisplay() && UpdateWindow(window);
            SetCursor(cursor);
            XInputSetState(0, &motors);
            ShowWindow(window, SW_HIDE);
            SetWindowPos(window, nullptr, 0, 0, 10, 10, 0);
            VornPlatform::SendKey('B', true);
            log.clear();
            onMessage = [](HWND, UINT message) {
                if (message == WM_DESTROY)
                    PostQuitMessage(0);
            };
            MSG message = {};
            good = good && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);
            good = good && message.message == WM_QUIT && log.back().message == WM_DESTROY;
            good = good && !UpdateWindow(window) && !Down('A') && pad.Index() == -1;
            good = good && XInputGetState(0, &state) == ERROR_DEVICE_NOT_CONNECTED;

            const HWND next = Make(); // and all can begin anew
            ShowWindow(next, SW_SHOW);
            Leave(good && next && SDL_WasInit(SDL_INIT_VIDEO) && Pump() == 0);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(LifetimeTest, SdlInUseByTheHostStays) {
    EXPECT_EXIT(
        {
            SDL_InitSubSystem(SDL_INIT_VIDEO);
            std::atexit([] {
                if (SDL_WasInit(SDL_INIT_VIDEO) == 0)
                    _exit(5);
            });
            Make();
            Leave(true);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace Tests
