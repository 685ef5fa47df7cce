// SPDX-License-Identifier: MIT
#include "platform/window/window.hpp"
#include "platform/window/held_keys.hpp"
#include "platform/window/input_state.hpp"
#include "platform/window/message_queue.hpp"
#include "platform/window/session.hpp"

#include <algorithm>
#include <cstdint>
#include <memory>

#include <strings.h>

namespace VornPlatform {

namespace {

// Neither is ever destroyed: objects that die after this file's may still ask.
std::vector<std::unique_ptr<HWND__>>& Records() {
    static auto& records = *new std::vector<std::unique_ptr<HWND__>>;
    return records;
}

std::vector<WindowClass>& Classes() {
    static auto& classes = *new std::vector<WindowClass>;
    return classes;
}

bool Lives(const HWND__& record) {
    return record.window || record.lost;
}

template <typename Predicate>
HWND__* Find(Predicate predicate) {
    VideoRuns(); // else nobody may follow the pointers to SDL's windows
    const auto& records = Records();
    const auto found = std::find_if(records.rbegin(), records.rend(), [&](const auto& record) {
        return Lives(*record) && predicate(*record);
    });
    return found == records.rend() ? nullptr : found->get();
}

constexpr int LargestSide = 16384;         // SDL makes no larger window
constexpr std::size_t FirstClass = 0xC000; // where the numbers of names begin

} // namespace

ATOM KeepClass(WindowClass windowClass) {
    auto& classes = Classes();
    auto place = std::find_if(classes.begin(), classes.end(), [&](const WindowClass& other) {
        return strcasecmp(other.name.c_str(), windowClass.name.c_str()) == 0;
    });
    if (place == classes.end())
        place = classes.emplace(classes.end());
    *place = std::move(windowClass);
    return static_cast<ATOM>(FirstClass + static_cast<std::size_t>(place - classes.begin()));
}

const WindowClass* FindClass(LPCSTR nameOrNumber) {
    const auto& classes = Classes();
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): a number in a pointer
    const auto number = reinterpret_cast<std::uintptr_t>(nameOrNumber);
    if (number <= 0xFFFF) {
        const std::size_t index = number - FirstClass; // wraps below it
        return index < classes.size() ? &classes[index] : nullptr;
    }
    const auto found = std::find_if(classes.begin(), classes.end(), [&](const WindowClass& other) {
        return strcasecmp(other.name.c_str(), nameOrNumber) == 0;
    });
    return found == classes.end() ? nullptr : &*found;
}

HWND__* LiveWindow(HWND window) {
    return Find([window](const HWND__& record) { return &record == window; });
}

HWND__* WindowOfSdl(Uint32 id) {
    return Find([id](const HWND__& record) {
        return record.window && SDL_GetWindowID(record.window) == id;
    });
}

HWND__* NewestWindow() {
    return Find([](const HWND__&) { return true; });
}

HWND__* ActiveWindow() {
    return Find([](const HWND__& record) { return record.active; });
}

HWND__* NewestShownWindow() {
    return Find([](const HWND__& record) {
        return !record.dying && (SDL_GetWindowFlags(record.window) & SDL_WINDOW_SHOWN) != 0;
    });
}

std::vector<HWND> LiveWindows() {
    VideoRuns();
    std::vector<HWND> windows;
    for (const auto& record : Records())
        if (Lives(*record))
            windows.push_back(record.get());
    return windows;
}

HWND AddWindow(const HWND__& window) {
    Records().push_back(std::make_unique<HWND__>(window));
    return Records().back().get();
}

void DestroyLiveWindow(HWND__& window) {
    if (window.dying)
        return;
    window.dying = true;
    // The procedure may raise; the window is gone all the same.
    struct End {
        HWND__& window;
        ~End() {
            DropMessages(&window);
            if (VideoRuns() && window.window)
                SDL_DestroyWindow(window.window);
            window.window = nullptr;
            window.lost = false;
        }
    } const end{window};
    if (window.active) {
        const Unheard byTheHost;
        ReleaseKeys(nullptr, 0);
    }
    window.active = false;
    DropMessages(&window, WM_ACTIVATE);
    if (window.told)
        CallProcedure(&window, WM_ACTIVATE, WA_INACTIVE, 0);
    CallProcedure(&window, WM_DESTROY, 0, 0);
}

void DestroyWindows() {
    ReleaseKeys(nullptr, 0);
    for (const auto& record : Records())
        if (Lives(*record)) {
            DropMessages(record.get());
            if (record->window)
                SDL_DestroyWindow(record->window);
            record->window = nullptr;
            record->lost = false;
        }
}

void LoseWindows() {
    for (const auto& record : Records())
        if (record->window) {
            record->window = nullptr;
            record->lost = true;
        }
}

bool DestroyLostWindows() {
    bool any = false;
    for (HWND window : LiveWindows())
        if (window->lost && !window->dying) {
            any = true;
            DestroyLiveWindow(*window);
        }
    return any;
}

void EnterFullScreen(HWND__& window) {
    if (window.fullScreen)
        return;
    window.placement = WindowRect(window);
    window.fullScreen = true;
    SDL_SetWindowFullscreen(window.window, SDL_WINDOW_FULLSCREEN_DESKTOP);
}

void LeaveFullScreen(HWND__& window) {
    if (!window.fullScreen)
        return;
    window.fullScreen = false;
    SDL_SetWindowFullscreen(window.window, 0);
    // A driver that stretched the window does not always put it back.
    PlaceWindow(window, window.placement);
}

void PlaceWindow(HWND__& window, const RECT& rect) {
    window.width = std::clamp<int>(rect.right - rect.left, 1, LargestSide);
    window.height = std::clamp<int>(rect.bottom - rect.top, 1, LargestSide);
    window.placement = {rect.left, rect.top, rect.left + window.width, rect.top + window.height};
    if (window.fullScreen)
        return;
    SDL_SetWindowPosition(window.window, rect.left, rect.top);
    SDL_SetWindowSize(window.window, window.width, window.height);
}

RECT WindowRect(const HWND__& window) {
    SDL_Rect rect = {0, 0, window.width, window.height};
    if (window.fullScreen) {
        SDL_Rect display = {};
        SDL_GetDisplayBounds(std::max(SDL_GetWindowDisplayIndex(window.window), 0), &display);
        rect.x = display.x;
        rect.y = display.y;
    } else {
        SDL_GetWindowPosition(window.window, &rect.x, &rect.y);
        SDL_GetWindowSize(window.window, &rect.w, &rect.h);
    }
    return {rect.x, rect.y, rect.x + rect.w, rect.y + rect.h};
}

POINT ToClient(const HWND__& window, int x, int y) {
    if (!window.fullScreen)
        return {x, y};
    int width = 0, height = 0;
    SDL_GetWindowSize(window.window, &width, &height);
    const auto map = [](int position, int to, int from) {
        return static_cast<int>(std::int64_t(position) * to / std::max(from, 1));
    };
    return {map(x, window.width, width), map(y, window.height, height)};
}

POINT ClientToScreen(const HWND__& window, POINT client) {
    const RECT rect = WindowRect(window);
    return {rect.left + client.x, rect.top + client.y};
}

} // namespace VornPlatform
