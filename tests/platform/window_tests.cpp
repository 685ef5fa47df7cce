// SPDX-License-Identifier: MIT
#include "tests/platform/window_fixture.hpp"

#include <stdexcept>
#include <utility>
#include <vector>

namespace Tests {

using testing::ElementsAre;

TEST_F(WindowTest, HandlesThatAreNoWindowsAreRefused) {
    const HWND gone = Open();
    EXPECT_TRUE(DestroyWindow(gone));
    const HWND other = Open();
    EXPECT_NE(gone, other);
    HINSTANCE const program = GetModuleHandleA(nullptr);
    for (const HWND bad : {HWND{}, gone, reinterpret_cast<HWND>(std::uintptr_t(1)),
                           reinterpret_cast<HWND>(program), HWND_NOTOPMOST}) {
        RECT rect = {1, 2, 3, 4};
        EXPECT_FALSE(DestroyWindow(bad));
        EXPECT_FALSE(ShowWindow(bad, SW_SHOW));
        EXPECT_FALSE(UpdateWindow(bad));
        EXPECT_FALSE(GetWindowRect(bad, &rect));
        EXPECT_EQ(rect.right, 3);
        EXPECT_EQ(SetWindowLongA(bad, GWL_STYLE, 0), 0);
        EXPECT_FALSE(SetMenu(bad, nullptr));
        EXPECT_FALSE(SetWindowPos(bad, nullptr, 0, 0, 1, 1, 0));
        EXPECT_EQ(DefWindowProcA(bad, WM_CLOSE, 0, 0), 0);
        EXPECT_EQ(SendMessageA(bad, WM_CLOSE, 0, 0), 0);
        if (bad) { // null is a message for the host itself
            EXPECT_FALSE(PostMessageA(bad, WM_USER, 0, 0));
        }
        MSG message = {bad, WM_MOUSEMOVE, 0, 0, 0, {}};
        EXPECT_EQ(DispatchMessageA(&message), 0);
    }
    EXPECT_TRUE(UpdateWindow(other));
}

TEST_F(WindowTest, ClassesAreFoundByNameInAnyCaseAndByNumber) {
    const auto procedure = [](HWND, UINT message, WPARAM, LPARAM) -> LRESULT { return message; };
    WNDCLASSEXA description = {};
    EXPECT_EQ(RegisterClassExA(nullptr), 0);
    EXPECT_EQ(RegisterClassExA(&description), 0);
    description.lpszClassName = "Other";
    EXPECT_EQ(RegisterClassExA(&description), 0) << "without a procedure";
    description.lpfnWndProc = Procedure;
    const ATOM number = RegisterClassExA(&description);
    ASSERT_NE(number, 0);

    const auto create = [](LPCSTR name) {
        return CreateWindowExA(0, name, nullptr, 0, 0, 0, 64, 64, nullptr, nullptr, nullptr,
                               nullptr);
    };
    EXPECT_EQ(create("nobody"), nullptr);
    EXPECT_EQ(create(nullptr), nullptr);
    EXPECT_EQ(create(MAKEINTRESOURCEA(number + 100)), nullptr);
    const HWND before = create("OTHER");
    description.lpfnWndProc = procedure;
    EXPECT_EQ(RegisterClassExA(&description), number) << "a name again is the same class";
    const HWND after = create(MAKEINTRESOURCEA(number));
    EXPECT_EQ(SendMessageA(before, 77, 0, 0), 0) << "a window keeps its procedure";
    EXPECT_EQ(SendMessageA(after, 77, 0, 0), 77);
    DestroyWindow(before);
    DestroyWindow(after);
}

TEST_F(WindowTest, IsActiveOnceWhenItIsShown) {
    const HWND window = Open();
    EXPECT_EQ(Pump(), 0);
    EXPECT_TRUE(log.empty());
    EXPECT_FALSE(ShowWindow(window, SW_SHOWDEFAULT)) << "it was hidden";
    ASSERT_EQ(Of(WM_ACTIVATE).size(), 1u) << "a run without a desktop has input at once";
    EXPECT_EQ(Of(WM_ACTIVATE)[0].wParam, 1u);
    EXPECT_TRUE(ShowWindow(window, SW_SHOWDEFAULT));
    VornPlatform::SendFocus(true);
    Pump();
    EXPECT_EQ(Of(WM_ACTIVATE).size(), 1u);
    VornPlatform::SendFocus(false);
    EXPECT_EQ(Of(WM_ACTIVATE).size(), 1u) << "messages come when they are fetched";
    Pump();
    VornPlatform::SendFocus(false);
    VornPlatform::SendFocus(true);
    Pump();
    ASSERT_EQ(Of(WM_ACTIVATE).size(), 3u);
    EXPECT_EQ(Of(WM_ACTIVATE)[1].wParam, 0u);
    EXPECT_EQ(Of(WM_ACTIVATE)[2].wParam, 1u);
}

// In the order in which the procedures were told: the window, and what of.
static std::vector<std::pair<HWND, WPARAM>> Told(const std::vector<Got>& activations) {
    std::vector<std::pair<HWND, WPARAM>> told;
    for (const Got& got : activations)
        told.emplace_back(got.window, got.wParam);
    return told;
}

TEST_F(WindowTest, OneOfSeveralWindowsIsActive) {
    const HWND first = Show();
    const HWND second = Open();
    using testing::Pair;
    ShowWindow(second, SW_SHOW);
    EXPECT_THAT(Told(Of(WM_ACTIVATE)), ElementsAre(Pair(first, 0u), Pair(second, 1u)))
        << "at once, as nobody else can";
    VornPlatform::SendKey('A', true); // goes to the newest
    Pump();
    EXPECT_EQ(Of(WM_KEYDOWN).at(0).window, second);
    log.clear();
    ShowWindow(second, SW_HIDE);
    EXPECT_THAT(Told(Of(WM_ACTIVATE)), ElementsAre(Pair(second, 0u), Pair(first, 1u)));
    EXPECT_FALSE(Down('A'));
    ShowWindow(second, SW_SHOW);
    log.clear();
    DestroyWindow(second);
    EXPECT_THAT(Told(Of(WM_ACTIVATE)), ElementsAre(Pair(second, 0u), Pair(first, 1u)));
    Pump();
    EXPECT_EQ(Of(WM_ACTIVATE).size(), 2u) << "nothing is told twice";
}

TEST_F(WindowTest, WhatWaitsInTheQueueIsNotToldAfterWhatCameLater) {
    const HWND window = Show();
    const auto lastTold = [] {
        return Of(WM_ACTIVATE).empty() ? 1u : Of(WM_ACTIVATE).back().wParam;
    };

    ShowWindow(window, SW_HIDE);
    ShowWindow(window, SW_SHOW);
    Pump();
    EXPECT_EQ(lastTold(), 1u) << "hidden and shown";

    for (const bool destroyed : {false, true}) {
        VornPlatform::SendKey('A', true);
        Pump();
        log.clear();
        onMessage = [destroyed](HWND own, UINT message) {
            if (message == WM_KEYUP && destroyed)
                DestroyWindow(own);
            else if (message == WM_KEYUP)
                ShowWindow(own, SW_SHOW);
        };
        VornPlatform::SendFocus(false);
        Pump();
        onMessage = nullptr;
        EXPECT_EQ(lastTold(), destroyed ? 0u : 1u);
    }
    EXPECT_THAT(Messages(), ElementsAre(WM_KEYUP, WM_ACTIVATE, WM_DESTROY));
}

TEST_F(WindowTest, DestroyedWhileItLosesTheFocusItIsTold) {
    const HWND first = Show();
    const HWND second = Open();
    onMessage = [second](HWND own, UINT message) {
        if (message == WM_USER) {
            ShowWindow(second, SW_SHOW);
            DestroyWindow(own);
        }
    };
    SendMessageA(first, WM_USER, 0, 0);
    EXPECT_THAT(Messages(), ElementsAre(WM_USER, WM_ACTIVATE, WM_ACTIVATE, WM_DESTROY));
    EXPECT_THAT(Told(Of(WM_ACTIVATE)),
                ElementsAre(testing::Pair(first, 0u), testing::Pair(second, 1u)));
}

TEST_F(WindowTest, CloseDestroysAndTellsTheProcedureFirst) {
    const HWND window = Show();
    onMessage = [](HWND destroyed, UINT message) {
        if (message == WM_DESTROY) {
            EXPECT_TRUE(UpdateWindow(destroyed)) << "the handle is good in its last message";
            EXPECT_TRUE(DestroyWindow(destroyed)) << "and destroying it again changes nothing";
        }
    };
    VornPlatform::SendClose();
    Pump();
    EXPECT_THAT(Messages(), ElementsAre(WM_CLOSE, WM_ACTIVATE, WM_DESTROY));
    EXPECT_EQ(log[1].wParam, 0u);
    EXPECT_FALSE(UpdateWindow(window));
    EXPECT_FALSE(VornPlatform::HasDisplay());
}

TEST_F(WindowTest, DestroyedInItsProcedureItGetsNothingMore) {
    const HWND window = Show();
    for (const UINT trigger : {WM_USER + 0u, UINT(WM_SETCURSOR)}) {
        const HWND victim = trigger == WM_USER ? window : Show();
        log.clear();
        onMessage = [trigger](HWND own, UINT message) {
            if (message == trigger)
                DestroyWindow(own);
        };
        PostMessageA(victim, WM_USER, 0, 0);
        PostMessageA(victim, WM_MOUSEMOVE, 0, 0);
        PostMessageA(victim, WM_USER + 1, 0, 0);
        Pump();
        EXPECT_EQ(log.back().message, WM_DESTROY);
        EXPECT_TRUE(Of(WM_MOUSEMOVE).empty());
        EXPECT_TRUE(Of(WM_USER + 1).empty());
    }
}

TEST_F(WindowTest, AnExceptionOutOfAProcedureReachesTheHost) {
    const HWND window = Show();
    onMessage = [](HWND, UINT message) {
        if (message == WM_USER || message == WM_DESTROY)
            throw std::runtime_error("mine");
    };
    PostMessageA(window, WM_USER, 0, 0);
    EXPECT_THROW(Pump(), std::runtime_error);
    EXPECT_THROW(DestroyWindow(window), std::runtime_error);
    EXPECT_FALSE(UpdateWindow(window));
    EXPECT_EQ(Pump(), 0);
}

TEST_F(WindowTest, PeekKeepsOrderAndFilters) {
    const HWND first = Show();
    const HWND second = Show();
    const HWND none = reinterpret_cast<HWND>(std::intptr_t(-1));
    PostMessageA(first, WM_USER + 1, 10, 20);
    PostMessageA(nullptr, WM_USER + 2, 0, 0);
    PostMessageA(second, WM_USER + 3, 0, 0);
    PostMessageA(first, WM_USER + 4, 0, 0);
    VornPlatform::SendMouseMove(5, 6);

    const auto peek = [](HWND window, UINT min, UINT max, UINT remove) {
        MSG message = {};
        return PeekMessageA(&message, window, min, max, remove) ? message.message : 0u;
    };
    EXPECT_FALSE(PeekMessageA(nullptr, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(peek(nullptr, 0, 0, PM_NOREMOVE), WM_USER + 1);
    EXPECT_EQ(peek(second, 0, 0, PM_NOREMOVE), WM_USER + 3);
    EXPECT_EQ(peek(none, 0, 0, PM_REMOVE), WM_USER + 2);
    EXPECT_EQ(peek(none, 0, 0, PM_REMOVE), 0u);
    EXPECT_EQ(peek(first, WM_USER + 4, WM_USER + 9, PM_REMOVE), WM_USER + 4);
    EXPECT_EQ(peek(nullptr, WM_MOUSEMOVE, WM_MOUSEHWHEEL, PM_REMOVE), UINT(WM_MOUSEMOVE));
    MSG message = {};
    ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.hwnd, first);
    EXPECT_EQ(message.wParam, 10u);
    EXPECT_EQ(message.lParam, 20);
    EXPECT_EQ(peek(nullptr, 0, 0, PM_REMOVE), WM_USER + 3);
    EXPECT_EQ(peek(nullptr, 0, 0, PM_REMOVE), 0u);
    EXPECT_TRUE(log.empty()) << "procedures run in DispatchMessageA only";
}

TEST_F(WindowTest, QuitComesLastAndOnce) {
    const HWND window = Show();
    PostQuitMessage(7);
    PostMessageA(window, WM_USER, 0, 0);
    MSG message = {};
    ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, WM_USER);
    ASSERT_TRUE(PeekMessageA(&message, window, WM_USER, WM_USER, PM_NOREMOVE));
    EXPECT_EQ(message.message, UINT(WM_QUIT));
    ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7u);
    EXPECT_EQ(DispatchMessageA(&message), 0);
    EXPECT_FALSE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
}

TEST_F(WindowTest, IsWhereItIsPutAndTellsItsSize) {
    const HWND window = Show();
    EXPECT_TRUE(SetWindowPos(window, HWND_NOTOPMOST, 30, 40, 500, 300, SWP_SHOWWINDOW));
    Pump();
    RECT rect = {};
    EXPECT_TRUE(GetWindowRect(window, &rect));
    EXPECT_EQ(rect.left, 30);
    EXPECT_EQ(rect.top, 40);
    EXPECT_EQ(rect.right, 530);
    EXPECT_EQ(rect.bottom, 340);
    ASSERT_FALSE(Of(WM_SIZE).empty());
    EXPECT_EQ(LOWORD(Of(WM_SIZE).back().lParam), 500);
    EXPECT_EQ(HIWORD(Of(WM_SIZE).back().lParam), 300);
    SetWindowPos(window, nullptr, 1, 2, 3, 4, SWP_NOMOVE | SWP_NOSIZE);
    GetWindowRect(window, &rect);
    EXPECT_EQ(rect.left, 30);
    EXPECT_EQ(rect.right, 530);
    for (const int huge : {INT32_MAX, INT32_MIN})
        EXPECT_TRUE(SetWindowPos(window, nullptr, huge, huge, huge, huge, 0));
    EXPECT_FALSE(GetWindowRect(window, nullptr));
    EXPECT_FALSE(AdjustWindowRect(nullptr, 0, FALSE));
}

TEST_F(WindowTest, FullScreenAndBackIsWhereItWas) {
    const HWND window = Show();
    SetWindowPos(window, nullptr, 30, 40, 320, 200, 0);
    RECT before = {}, during = {}, after = {};
    GetWindowRect(window, &before);
    Pump();
    log.clear();

    EXPECT_EQ(SetWindowLongA(window, 0, 0), 0) << "only the style";
    EXPECT_EQ(SetWindowLongA(window, GWL_STYLE, static_cast<LONG>(WS_POPUP)), 0xCA0000);
    SDL_Window* sdl = SDL_GetWindowFromID(SdlId(window));
    EXPECT_TRUE(SDL_GetWindowFlags(sdl) & SDL_WINDOW_FULLSCREEN);
    GetWindowRect(window, &during);
    EXPECT_EQ(during.right - during.left, 320) << "the host's pixels";
    int width = 0, height = 0;
    SDL_GetWindowSize(sdl, &width, &height);
    ASSERT_GT(width, 320);
    VornPlatform::SendMouseMove(width / 2, height - 1);
    VornPlatform::SendMouseMove(0, 0);
    Pump();
    EXPECT_TRUE(Of(WM_SIZE).empty());
    const auto moves = Of(WM_MOUSEMOVE);
    ASSERT_EQ(moves.size(), 2u);
    EXPECT_EQ(LOWORD(moves[0].lParam), 160);
    EXPECT_EQ(HIWORD(moves[0].lParam), 199);
    EXPECT_EQ(moves[1].lParam, 0);

    EXPECT_EQ(SetWindowLongA(window, GWL_STYLE, 0xCA0000), static_cast<LONG>(WS_POPUP));
    SetWindowPos(window, HWND_NOTOPMOST, before.left, before.top, before.right - before.left,
                 before.bottom - before.top, SWP_SHOWWINDOW);
    GetWindowRect(window, &after);
    EXPECT_EQ(after.left, before.left);
    EXPECT_EQ(after.top, before.top);
    EXPECT_EQ(after.right, before.right);
    EXPECT_EQ(after.bottom, before.bottom);
    log.clear();
    VornPlatform::SendMouseMove(17, 18);
    Pump();
    EXPECT_EQ(LOWORD(Of(WM_MOUSEMOVE).at(0).lParam), 17);
}

TEST_F(WindowTest, StartedInFullScreenItComesBackAsItWasCreated) {
    const HWND window = Open(0, WS_POPUP, 400, 300);
    ShowWindow(window, SW_SHOWDEFAULT);
    RECT rect = {};
    GetWindowRect(window, &rect);
    EXPECT_EQ(rect.right, 400);
    SetWindowLongA(window, GWL_STYLE, 0xCA0000);
    GetWindowRect(window, &rect);
    EXPECT_EQ(rect.right - rect.left, 400);
    EXPECT_EQ(rect.bottom - rect.top, 300);
}

TEST_F(WindowTest, NothingWaitsForSomebodyWhoIsNotThere) {
    for (const HWND owner : {HWND(nullptr), Show()}) {
        EXPECT_EQ(MessageBoxA(owner, "text", nullptr, MB_OK | MB_ICONERROR), 0);
        EXPECT_EQ(MessageBoxA(owner, nullptr, "title", 0xFFFFFFFF), 0);
        for (const char* file : {"/nowhere", static_cast<const char*>(nullptr)}) {
            const HINSTANCE opened = ShellExecuteA(owner, "open", file, nullptr, nullptr, 0);
            EXPECT_LE(reinterpret_cast<std::intptr_t>(opened), 32);
        }
    }
}

} // namespace Tests
