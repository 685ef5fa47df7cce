// SPDX-License-Identifier: MIT
#include "platform/window/pump.hpp"
#include "platform/control/vorn_overlay.hpp"
#include "platform/window/held_keys.hpp"
#include "platform/window/input_state.hpp"
#include "platform/window/message_queue.hpp"
#include "platform/window/pads.hpp"
#include "platform/window/session.hpp"
#include "platform/window/window.hpp"

#include <SDL.h>

#include <algorithm>
#include <cmath>

namespace VornPlatform {

namespace {

// Where the pointer was last seen in a window. (unit: client pixels)
constinit POINT pointer = {};
// What the wheel has turned beyond whole units of its messages.
constinit float wheelRest[2] = {0, 0};

LPARAM Pack(POINT point) {
    return static_cast<LPARAM>(PackWords(point.x, point.y));
}

void MovePointer(const HWND__& window, int x, int y) {
    pointer = ToClient(window, x, y);
    SetPointer(ClientToScreen(window, pointer));
}

// Outside of our windows too, where the desktop tells. It may tell less than the events do, so only
// what it tells anew counts.
void FollowScreenPointer() {
    static POINT told = {};
    const HWND__* active = ActiveWindow();
    if (!VideoRuns() || !HasScreenPointer() || (active && active->fullScreen))
        return;
    POINT position = {};
    SDL_GetGlobalMouseState(&position.x, &position.y);
    if (position.x == told.x && position.y == told.y)
        return;
    told = position;
    SetPointer(position);
}

void OnSize(HWND__& window) {
    if (window.fullScreen)
        return; // the host goes on in the size that it knows
    SDL_GetWindowSize(window.window, &window.width, &window.height);
    if (Source())
        return;
    const bool maximized = (SDL_GetWindowFlags(window.window) & SDL_WINDOW_MAXIMIZED) != 0;
    PostInput(&window, WM_SIZE, maximized ? SIZE_MAXIMIZED : SIZE_RESTORED,
              Pack({window.width, window.height}));
}

void OnFocus(HWND__& window, bool focused) {
    window.focused = focused;
    if (Source())
        return;
    if (focused)
        SetLocks(SDL_GetModState());
    Activate(&window, focused);
}

void OnClose(HWND window) {
    if (Source())
        Source()->End(); // the user takes over
    PostInput(window, WM_CLOSE, 0, 0);
}

void OnWindowEvent(HWND__& window, const SDL_WindowEvent& event) {
    switch (event.event) {
    case SDL_WINDOWEVENT_FOCUS_GAINED:
        return OnFocus(window, true);
    case SDL_WINDOWEVENT_FOCUS_LOST:
        return OnFocus(window, false);
    case SDL_WINDOWEVENT_CLOSE:
        return OnClose(&window);
    case SDL_WINDOWEVENT_SIZE_CHANGED:
    case SDL_WINDOWEVENT_RESTORED:
        return OnSize(window);
    case SDL_WINDOWEVENT_MINIMIZED:
        if (!Source())
            PostInput(&window, WM_SIZE, SIZE_MINIMIZED, 0);
        return;
    case SDL_WINDOWEVENT_MOVED:
        if (!Source() && !window.fullScreen)
            PostInput(&window, WM_MOVE, 0, Pack({event.data1, event.data2}));
        return;
    default:
        return;
    }
}

void OnMotion(HWND__& window, const SDL_MouseMotionEvent& event) {
    MovePointer(window, event.x, event.y);
    PostInput(&window, WM_MOUSEMOVE, HeldForMouse(), Pack(pointer));
}

void OnMouseButton(HWND__* window, const SDL_MouseButtonEvent& event) {
    if (window)
        MovePointer(*window, event.x, event.y);
    const bool doubled =
        window && (window->classStyle & CS_DBLCLKS) && event.clicks % 2 == 0 && event.clicks > 0;
    OnButton(window, event.button, event.state == SDL_PRESSED, doubled, Pack(pointer));
}

void TurnWheel(HWND__& window, UINT message, float& rest, float notches) {
    constexpr float Delta = 120, Limit = 32767;
    rest += std::clamp(std::isfinite(notches) ? notches * Delta : 0.0f, -Limit, Limit);
    const float whole = std::clamp(std::trunc(rest), -Limit, Limit);
    rest -= whole;
    if (whole == 0)
        return;
    const POINT screen = ClientToScreen(window, pointer);
    PostInput(&window, message, PackWords(HeldForMouse(), static_cast<int>(whole)), Pack(screen));
}

void OnWheel(HWND__& window, const SDL_MouseWheelEvent& event) {
    // Drivers without fractions fill in the whole numbers only.
    const auto turned = [](float precise, int whole) {
        return precise != 0 ? precise : static_cast<float>(whole);
    };
    TurnWheel(window, WM_MOUSEWHEEL, wheelRest[0], turned(event.preciseY, event.y));
    TurnWheel(window, WM_MOUSEHWHEEL, wheelRest[1], turned(event.preciseX, event.x));
}

void OnText(HWND window, const char* text) {
    for (; *text; ++text)
        PostInput(window, WM_CHAR, static_cast<unsigned char>(*text), 1);
}

void OnLiveInput(const SDL_Event& event) {
    switch (event.type) {
    case SDL_KEYDOWN:
    case SDL_KEYUP:
        SetLocks(event.key.keysym.mod);
        return OnKey(WindowOfSdl(event.key.windowID), event.key.keysym, event.type == SDL_KEYDOWN);
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
        return OnMouseButton(WindowOfSdl(event.button.windowID), event.button);
    case SDL_MOUSEMOTION:
        if (HWND__* window = WindowOfSdl(event.motion.windowID))
            OnMotion(*window, event.motion);
        return;
    case SDL_MOUSEWHEEL:
        if (HWND__* window = WindowOfSdl(event.wheel.windowID))
            OnWheel(*window, event.wheel);
        return;
    case SDL_TEXTINPUT:
        if (HWND__* window = WindowOfSdl(event.text.windowID))
            OnText(window, event.text.text);
        return;
    default:
        return;
    }
}

void OnEvent(const SDL_Event& event) {
    const bool kept = GetOverlay() && GetOverlay()->OnEvent(event);
    if (event.type == SDL_QUIT) {
        for (HWND window : LiveWindows())
            OnClose(window);
    } else if (event.type == SDL_WINDOWEVENT) {
        if (HWND__* window = WindowOfSdl(event.window.windowID))
            OnWindowEvent(*window, event.window);
    } else if (!Source() && !kept) {
        OnLiveInput(event);
    }
}

// Brings SDL's queue, the pads and the pointer up to date.
void AskMachine() {
    if (VideoRuns())
        SDL_PumpEvents();
    if (Source())
        return;
    UpdatePads();
    FollowScreenPointer();
}

// In this frame.
constinit bool machineAsked = false, liveDropped = false;

bool FetchLive() {
    if (!machineAsked) {
        AskMachine();
        machineAsked = true;
    }
    SDL_Event event;
    if (VideoRuns() && SDL_PeepEvents(&event, 1, SDL_GETEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT) > 0) {
        OnEvent(event);
        return true;
    }
    machineAsked = false;
    return false;
}

} // namespace

bool FetchInput() {
    if (DestroyLostWindows())
        return true; // what the procedures have made of it may wait in the queue
    if (Source() && Source()->IsOver()) {
        Source()->End();
        return true; // what it held down has come up
    }
    if (Source() && !liveDropped) {
        // The machine's own events are read so that a window can still be closed.
        while (FetchLive())
            if (!Source())
                return true; // what has ended it waits in the queue
        liveDropped = true;
    }
    if (Source()) {
        if (Source()->Next())
            return true;
        liveDropped = false;
        return false;
    }
    liveDropped = false;
    const bool any = FetchLive();
    if (Listener() && any)
        Listener()->OnEventEnd();
    else if (Listener())
        Listener()->OnFrameEnd();
    return any;
}

void Activate(HWND window, bool active) {
    HWND__* record = LiveWindow(window);
    if (!record || record->active == active)
        return;
    if (active) {
        if (HWND__* other = ActiveWindow())
            Activate(other, false);
    } else {
        ReleaseKeys(window, Pack(pointer));
    }
    record->active = active;
    PostInput(window, WM_ACTIVATE, active ? WA_ACTIVE : WA_INACTIVE, 0);
}

void ActivateAtOnce(HWND window, bool active) {
    if (active)
        for (HWND other : LiveWindows())
            if (other != window)
                ActivateAtOnce(other, false);
    HWND__* record = LiveWindow(window);
    const HWND__* other = ActiveWindow();
    if (!record || record->dying || (active && other && other != record))
        return; // a procedure has wanted it otherwise
    if (record->active && !active) {
        const Unheard byTheHost;
        ReleaseKeys(window, Pack(pointer));
    }
    record->active = active;
    DropMessages(window, WM_ACTIVATE);
    if (record->told != active)
        CallProcedure(window, WM_ACTIVATE, active ? WA_ACTIVE : WA_INACTIVE, 0);
}

void ActivateFocused() {
    for (HWND window : LiveWindows())
        if (!window->focused)
            Activate(window, false);
    for (HWND window : LiveWindows())
        if (window->focused)
            Activate(window, true);
}

} // namespace VornPlatform
