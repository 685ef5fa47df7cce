// SPDX-License-Identifier: MIT
//
// A window whose procedure writes down what it gets, and a host's loop around it.
#pragma once

#include "platform/control/vorn_platform.hpp"

#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <SDL.h>

#include <functional>
#include <ostream>
#include <vector>

namespace Tests {

struct Got {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    HWND window = nullptr;
    SHORT keyA = 0; // the state of that key when the message was dispatched
};

class WindowTest : public testing::Test {
protected:
    WindowTest() { log.clear(), onMessage = nullptr; }
    ~WindowTest() override {
        VornPlatform::StopInput();
        onMessage = nullptr;
        for (const HWND window : windows)
            DestroyWindow(window);
        Pump();
    }

    HWND Open(UINT classStyle = 0, DWORD style = 0xCA0000, int width = 320, int height = 200) {
        const WNDCLASSEXA description = {48,      classStyle, Procedure, 0,
                                         0,       nullptr,    nullptr,   nullptr,
                                         nullptr, nullptr,    "Tested",  nullptr};
        RegisterClassExA(&description);
        const HWND window =
            CreateWindowExA(0, "tested", "Title", style, CW_USEDEFAULT, CW_USEDEFAULT, width,
                            height, nullptr, nullptr, nullptr, nullptr);
        EXPECT_NE(window, nullptr) << SDL_GetError();
        windows.push_back(window);
        return window;
    }
    HWND Show(UINT classStyle = 0) {
        const HWND window = Open(classStyle);
        ShowWindow(window, SW_SHOWDEFAULT);
        Pump();
        log.clear();
        return window;
    }
    // Fetches and dispatches all that waits; says how many.
    static int Pump() {
        int count = 0;
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE); ++count)
            DispatchMessageA(&message);
        return count;
    }
    static std::vector<UINT> Messages() {
        std::vector<UINT> numbers;
        for (const Got& got : log)
            numbers.push_back(got.message);
        return numbers;
    }
    static std::vector<Got> Of(UINT message) {
        std::vector<Got> found;
        for (const Got& got : log)
            if (got.message == message)
                found.push_back(got);
        return found;
    }
    static bool Down(int virtualKey) { return GetKeyState(virtualKey) < 0; }

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        log.push_back({message, wParam, lParam, window, GetKeyState('A')});
        if (onMessage)
            onMessage(window, message);
        return DefWindowProcA(window, message, wParam, lParam);
    }

    inline static std::vector<Got> log;
    inline static std::function<void(HWND, UINT)> onMessage;
    std::vector<HWND> windows;
};

inline Uint32 SdlId(HWND) {
    // The newest window of SDL's numbers.
    Uint32 newest = 0;
    for (Uint32 id = 1; id < 10000; ++id)
        if (SDL_GetWindowFromID(id))
            newest = id;
    return newest;
}

} // namespace Tests
