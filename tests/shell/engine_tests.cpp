// SPDX-License-Identifier: MIT
#include "tests/support/host.hpp"
#include "tests/support/working_folder.hpp"

#include <SDL.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace {

using testing::FieldsAre;
using Tests::Packed;
using Vorn::Engine;

constexpr LONG WindowStyle = 0xCA0000;
constexpr LONG PopupStyle = INT32_MIN; // WS_POPUP, the top bit alone

/// Each test opens a window of its own.
class EngineWindow : public testing::Test {
protected:
    EngineWindow() { VornPlatform::ForceHeadless(); }
    ~EngineWindow() override {
        DestroyWindow(Engine::mWnd);
        Tests::Pump();
        Engine::isShutdown = false;
        Engine::isActive = false;
        sound.MuteBgm(false);
        sound.MuteSfx(false);
    }

    void Open(bool fullscreen = false, unsigned int width = 640, unsigned int height = 480) {
        engine.Init("Window of a test", width, height, fullscreen);
        Tests::Pump();
    }
    static LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
        return SendMessageA(Engine::mWnd, message, wParam, lParam);
    }
    static LONG Style() {
        const LONG style = SetWindowLongA(Engine::mWnd, GWL_STYLE, WindowStyle);
        SetWindowLongA(Engine::mWnd, GWL_STYLE, style);
        return style;
    }
    static bool IsAlive() {
        RECT rect = {};
        return GetWindowRect(Engine::mWnd, &rect) != FALSE;
    }
    /// Active, music and effects muted.
    std::tuple<bool, bool, bool> State() const {
        EXPECT_EQ(engine.IsActive(), Engine::isActive);
        return {engine.IsActive(), sound.MuteBgm(), sound.MuteSfx()};
    }

    Engine& engine = *Engine::Instance();
    Vorn::SoundManager& sound = *Vorn::SoundManager::Instance();
};

const std::tuple Live(true, false, false), Silent(false, true, true);

TEST_F(EngineWindow, OpensWithTheSizeOfItsFrameAndTheFocus) {
    Open();
    ASSERT_TRUE(Engine::mWnd);
    RECT outer = {0, 0, 640, 480};
    AdjustWindowRect(&outer, WS_OVERLAPPEDWINDOW, FALSE);
    const LONG width = outer.right - outer.left, height = outer.bottom - outer.top;
    EXPECT_THAT(Engine::mRectWindow, FieldsAre(0, 0, width, height));
    const RECT rect = engine.GetRect();
    EXPECT_EQ(rect.right - rect.left, width);
    EXPECT_EQ(rect.bottom - rect.top, height);
    EXPECT_EQ(Style(), WindowStyle);
    EXPECT_EQ(State(), Live);
    EXPECT_FALSE(engine.IsFullscreen() || engine.IsShutdown());
    EXPECT_EQ(engine.WindowWidth(), 640u);
    EXPECT_EQ(engine.WindowHeight(), 480u);
}

TEST_F(EngineWindow, ClassHasTheSizeOfThe32BitRecordAndTheTitleAsItsName) {
    Open();
    EXPECT_EQ(Engine::mWc.cbSize, 48u);
    EXPECT_EQ(Engine::mWc.style, 0x40u);
    EXPECT_STREQ(Engine::mWc.lpszClassName, "Window of a test");
}

TEST_F(EngineWindow, AnswersItsMessages) {
    Open();
    EXPECT_EQ(Send(WM_SIZE, 0, Packed(100, 100)), 0);
    EXPECT_EQ(Send(WM_ERASEBKGND), 0);
    EXPECT_EQ(Send(WM_MOUSEMOVE, 0, Packed(5, 6)), 0);
    EXPECT_EQ(Send(WM_MOUSEWHEEL, 0xFF880000u, 0), 0);
    EXPECT_EQ(Vorn::MouseIsScrolled(), -120);
    EXPECT_EQ(Send(WM_ACTIVATE, 1), 0);
    for (const UINT other : {1024u, 0u, 0xFFFFu})
        EXPECT_EQ(Send(other, 3, 4), DefWindowProcA(Engine::mWnd, other, 3, 4));
    EXPECT_EQ(State(), Live);
    EXPECT_FALSE(engine.IsShutdown());
    EXPECT_EQ(Send(WM_DESTROY), 0);
    EXPECT_TRUE(engine.IsShutdown());
}

TEST_F(EngineWindow, TakesTheFocusFromTheLowWordAndIsSilentWithoutIt) {
    Open();
    const std::vector<std::pair<WPARAM, std::tuple<bool, bool, bool>>> rows = {
        {0, Silent}, {1, Live},   {0x10000, Silent}, {2, Live},
        {0, Silent}, {0, Silent}, {0x10001, Live}};
    for (const auto& [wParam, state] : rows) {
        Send(WM_ACTIVATE, wParam);
        EXPECT_EQ(State(), state) << wParam;
    }
    VornPlatform::SendFocus(false);
    EXPECT_EQ(State(), Live); // until the host fetches the message
    Tests::Pump();
    EXPECT_EQ(State(), Silent);
    VornPlatform::SendFocus(true);
    Tests::Pump();
    EXPECT_EQ(State(), Live);
}

TEST_F(EngineWindow, FocusOverridesWhatThePlayerHadMuted) {
    Open();
    sound.MuteBgm(true);
    EXPECT_FALSE(sound.MuteSfx());
    Send(WM_ACTIVATE, 0);
    Send(WM_ACTIVATE, 1);
    EXPECT_EQ(State(), Live);
}

TEST_F(EngineWindow, ShutsDownOnRequestAndWhenItIsClosed) {
    Open();
    engine.Shutdown();
    EXPECT_TRUE(engine.IsShutdown());
    EXPECT_TRUE(IsAlive());
    Engine::isShutdown = false;
    VornPlatform::SendClose();
    EXPECT_FALSE(engine.IsShutdown());
    Tests::Pump();
    EXPECT_TRUE(engine.IsShutdown());
    EXPECT_FALSE(IsAlive());
    // What a host may still do in its last frame does no harm.
    engine.DisplayWindow();
    engine.ToggleFullScreen();
    engine.ToggleFullScreen();
    EXPECT_THAT(engine.GetRect(), FieldsAre(0, 0, 0, 0));
}

TEST_F(EngineWindow, TwoSwitchesBringBackStyleAndPlacement) {
    Open();
    SetWindowPos(Engine::mWnd, HWND_NOTOPMOST, 120, 90, 500, 400, SWP_SHOWWINDOW);
    for (int i = 0; i < 3; ++i) {
        engine.ToggleFullScreen();
        Tests::Pump();
        EXPECT_TRUE(engine.IsFullscreen());
        EXPECT_EQ(Style(), PopupStyle);
        EXPECT_THAT(Engine::mRectWindow, FieldsAre(120, 90, 620, 490));
        engine.ToggleFullScreen();
        Tests::Pump();
        EXPECT_FALSE(engine.IsFullscreen());
        EXPECT_EQ(Style(), WindowStyle);
        EXPECT_THAT(engine.GetRect(), FieldsAre(120, 90, 620, 490));
        EXPECT_EQ(State(), Live);
    }
}

TEST_F(EngineWindow, StartedInFullScreenItComesUpInTheCorner) {
    Open(true);
    EXPECT_TRUE(engine.IsFullscreen());
    EXPECT_EQ(Style(), PopupStyle);
    EXPECT_EQ(State(), Live);
    const RECT outer = Engine::mRectWindow;
    EXPECT_GE(outer.right, 640);
    EXPECT_GE(outer.bottom, 480);
    engine.ToggleFullScreen();
    EXPECT_EQ(Style(), WindowStyle);
    EXPECT_THAT(engine.GetRect(), FieldsAre(0, 0, outer.right, outer.bottom));
}

TEST_F(EngineWindow, TakesItsCursorFromAFileAndHidesItOverTheClientAreaAlone) {
    const Tests::WorkingFolder folder;
    folder.Folder("data");
    // One picture of a single pixel in 32 bits, and its mask.
    std::string file("\0\0\2\0\1\0\1\1\0\0\0\0\0\0\x30\0\0\0\x16\0\0\0", 22);
    file += std::string("\x28\0\0\0\1\0\0\0\2\0\0\0\1\0\x20\0", 16) + std::string(24, '\0');
    file += std::string("\1\2\3\xFF\0\0\0\0", 8);
    folder.File("data/cursor_pointer.ani", file.substr(0, 30));
    Open();
    EXPECT_FALSE(Engine::mCursor);
    DestroyWindow(Engine::mWnd);

    folder.File("data/cursor_pointer.ani", file);
    Open();
    EXPECT_TRUE(Engine::mCursor);
    EXPECT_EQ(Engine::mWc.hCursor, Engine::mCursor);
    const auto shown = [] { return SDL_ShowCursor(SDL_QUERY) == SDL_ENABLE; };
    ShowCursor(TRUE);
    for (const int border : {0, 2, 18}) {
        EXPECT_EQ(Send(WM_SETCURSOR, 0, Packed(border, HTCLIENT)), 1);
        EXPECT_TRUE(shown());
    }
    EXPECT_EQ(Send(WM_SETCURSOR, 0, Packed(HTCLIENT, WM_MOUSEMOVE)), 1);
    EXPECT_FALSE(shown());
    ShowCursor(TRUE);
    EXPECT_TRUE(shown());
    VornPlatform::SendMouseMove(5, 5);
    Tests::Pump();
    EXPECT_FALSE(shown());
    EXPECT_EQ(SetCursor(nullptr), Engine::mCursor);
}

} // namespace
