// SPDX-License-Identifier: MIT
#include "platform/window/session.hpp"
#include "platform/control/vorn_platform.hpp"
#include "platform/window/cursors.hpp"
#include "platform/window/pads.hpp"
#include "platform/window/window.hpp"

#include <SDL.h>

#include <cstdlib>
#include <cstring>

namespace VornPlatform {

namespace {

constinit bool isOver = false;
constinit bool videoRuns = false;
constinit bool padsRun = false, padsFailed = false;
constinit bool headlessForced = false;
constexpr const char* HeadlessDriver = "offscreen";

bool DriverIs(const char* name) {
    const char* driver = SDL_GetCurrentVideoDriver();
    return driver && std::strcmp(driver, name) == 0;
}

void StopVideo() {
    const bool runs = VideoRuns();
    DestroyWindows(); // those that were lost, too
    if (!runs)
        return;
    DropCursors();
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
    videoRuns = false;
}

void ShutDown() {
    isOver = true;
    StopVideo();
    ClosePads();
    if (PadsRun())
        SDL_QuitSubSystem(SDL_INIT_GAMECONTROLLER);
    padsRun = false;
    if (SDL_WasInit(0) == 0) // else SDL is in use by the host too
        SDL_Quit();
}

// What SDL would otherwise do to the machine or keep from us. A host that has set one of these
// itself, or the user by the environment, is not overruled.
void SetHints() {
    static bool done = false;
    if (done)
        return;
    done = true;
    const auto set = [](const char* name, const char* value) {
        SDL_SetHintWithPriority(name, value, SDL_HINT_DEFAULT);
    };
    set(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    set(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    set(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
    set(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");        // WM_CLOSE says it
    set(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");         // the click that activates is a click
    set(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1"); // XInput does not ask for the focus
}

bool InitVideo() {
    if (headlessForced)
        SDL_SetHintWithPriority(SDL_HINT_VIDEODRIVER, HeadlessDriver, SDL_HINT_OVERRIDE);
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) == 0)
        return true;
    if (SDL_GetHint(SDL_HINT_VIDEODRIVER))
        return false;
    SDL_SetHintWithPriority(SDL_HINT_VIDEODRIVER, HeadlessDriver, SDL_HINT_OVERRIDE);
    return SDL_InitSubSystem(SDL_INIT_VIDEO) == 0;
}

} // namespace

bool StartVideo() {
    if (isOver)
        return false;
    if (VideoRuns() && headlessForced && !IsHeadless() && !NewestWindow())
        StopVideo();
    if (VideoRuns())
        return true;
    SetHints();
    if (!InitVideo())
        return false;
    videoRuns = true;
    RefreshPointer();
    // Nobody would free the texts of these.
    SDL_EventState(SDL_DROPFILE, SDL_DISABLE);
    SDL_EventState(SDL_DROPTEXT, SDL_DISABLE);
    // Handlers run in reverse: this one before those of the drivers that have just been loaded.
    return std::atexit(ShutDown) == 0;
}

bool StartPads() {
    if (isOver || padsFailed)
        return false; // a game asks many times a frame
    if (PadsRun())
        return true;
    SetHints();
    padsFailed = SDL_InitSubSystem(SDL_INIT_GAMECONTROLLER) != 0;
    if (padsFailed)
        return false;
    padsRun = true;
    ReadPadMappings();
    return std::atexit(ShutDown) == 0;
}

bool VideoRuns() {
    if (videoRuns && SDL_WasInit(SDL_INIT_VIDEO) == 0) {
        videoRuns = false;
        ForgetCursors();
        LoseWindows();
    }
    return videoRuns;
}

bool PadsRun() {
    if (padsRun && SDL_WasInit(SDL_INIT_GAMECONTROLLER) == 0) {
        padsRun = false;
        ForgetPads();
    }
    return padsRun;
}

bool IsHeadless() {
    return DriverIs(HeadlessDriver) || DriverIs("dummy");
}

bool HasScreenPointer() {
    return DriverIs("x11");
}

void ForceHeadless() {
    headlessForced = true;
}

bool HasDisplay() {
    return VideoRuns() && NewestWindow() && !IsHeadless();
}

} // namespace VornPlatform
