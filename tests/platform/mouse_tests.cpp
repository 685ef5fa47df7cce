// SPDX-License-Identifier: MIT
#include "tests/platform/window_fixture.hpp"

#include <cmath>

namespace Tests {

using testing::ElementsAre;

class MouseTest : public WindowTest {
protected:
    static SHORT Wheel(const Got& got) { return static_cast<SHORT>(HIWORD(got.wParam)); }
};

TEST_F(MouseTest, MovesAskForTheCursorFirst) {
    const HWND window = Show();
    VornPlatform::SendMouseMove(-3, 150);
    MSG message = {};
    ASSERT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, UINT(WM_MOUSEMOVE));
    DispatchMessageA(&message);
    ASSERT_THAT(Messages(), ElementsAre(WM_SETCURSOR, WM_MOUSEMOVE));
    EXPECT_EQ(log[0].wParam, reinterpret_cast<WPARAM>(window));
    EXPECT_EQ(LOWORD(log[0].lParam), HTCLIENT);
    EXPECT_EQ(LOWORD(log[1].lParam), 0xFFFD);
    EXPECT_EQ(HIWORD(log[1].lParam), 150);
}

TEST_F(MouseTest, CursorOnTheScreenIsThatOfTheWindowWithoutADisplay) {
    const HWND window = Show();
    SetWindowPos(window, nullptr, 100, 50, 320, 200, 0);
    VornPlatform::SendMouseMove(7, 8);
    POINT before = {}, after = {};
    GetCursorPos(&before);
    Pump();
    EXPECT_TRUE(GetCursorPos(&after));
    EXPECT_EQ(after.x, 107);
    EXPECT_EQ(after.y, 58);
    EXPECT_FALSE(before.x == after.x && before.y == after.y) << "only with the messages";
    EXPECT_FALSE(GetCursorPos(nullptr));
}

TEST_F(MouseTest, ButtonsHaveStatesAndMessages) {
    struct Case {
        int virtualKey;
        UINT down;
        WORD held;
        WORD extra;
    };
    Show();
    VornPlatform::SendMouseMove(10, 20);
    Pump();
    for (const Case& c : {Case{VK_LBUTTON, WM_LBUTTONDOWN, MK_LBUTTON, 0},
                          {VK_RBUTTON, WM_RBUTTONDOWN, MK_RBUTTON, 0},
                          {VK_MBUTTON, WM_MBUTTONDOWN, MK_MBUTTON, 0},
                          {VK_XBUTTON1, WM_XBUTTONDOWN, MK_XBUTTON1, XBUTTON1},
                          {VK_XBUTTON2, WM_XBUTTONDOWN, MK_XBUTTON2, XBUTTON2}}) {
        SCOPED_TRACE(c.virtualKey);
        log.clear();
        VornPlatform::SendMouseButton(c.virtualKey, true);
        VornPlatform::SendMouseMove(11, 20);
        Pump();
        EXPECT_TRUE(Down(c.virtualKey));
        VornPlatform::SendMouseButton(c.virtualKey, false);
        VornPlatform::SendMouseMove(10, 20);
        Pump();
        EXPECT_FALSE(Down(c.virtualKey));
        ASSERT_THAT(Messages(), ElementsAre(c.down, WM_SETCURSOR, WM_MOUSEMOVE, c.down + 1,
                                            WM_SETCURSOR, WM_MOUSEMOVE));
        EXPECT_EQ(log[0].wParam, WPARAM(c.held) | WPARAM(c.extra) << 16);
        EXPECT_EQ(log[0].lParam, 20 << 16 | 10);
        EXPECT_EQ(log[2].wParam, c.held);
        EXPECT_EQ(log[3].wParam, WPARAM(c.extra) << 16);
        EXPECT_EQ(log[5].wParam, 0u);
    }
    VornPlatform::SendMouseButton(VK_RETURN, true);
    EXPECT_EQ(Pump(), 0);
}

TEST_F(MouseTest, DoubleClicksAreForClassesThatAskForThem) {
    for (const UINT style : {0u, UINT(CS_DBLCLKS)}) {
        const HWND window = Show(style);
        for (const Uint8 clicks : {Uint8(1), Uint8(2), Uint8(3)})
            for (const bool down : {true, false}) {
                SDL_Event event = {};
                event.type = down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
                event.button.windowID = SdlId(window);
                event.button.button = SDL_BUTTON_LEFT;
                event.button.state = down ? SDL_PRESSED : SDL_RELEASED;
                event.button.clicks = clicks;
                SDL_PushEvent(&event);
            }
        Pump();
        EXPECT_EQ(Of(WM_LBUTTONDBLCLK).size(), style ? 1u : 0u);
        EXPECT_EQ(Of(WM_LBUTTONDOWN).size(), style ? 2u : 3u);
    }
}

TEST_F(MouseTest, WheelAddsUpFractions) {
    const HWND window = Show();
    SetWindowPos(window, nullptr, 100, 50, 320, 200, 0);
    VornPlatform::SendMouseMove(1, 2);
    Pump();
    log.clear();
    VornPlatform::SendMouseWheel(1);
    VornPlatform::SendMouseWheel(-2);
    Pump();
    ASSERT_THAT(Messages(), ElementsAre(WM_MOUSEWHEEL, WM_MOUSEWHEEL));
    EXPECT_EQ(Wheel(log[0]), 120);
    EXPECT_EQ(Wheel(log[1]), -240);
    EXPECT_EQ(log[0].lParam, (52 << 16) | 101) << "on the screen";

    int sum = 0;
    for (int i = 0; i < 1000; ++i)
        VornPlatform::SendMouseWheel(0.001f);
    log.clear();
    Pump();
    for (const Got& got : Of(WM_MOUSEWHEEL))
        sum += Wheel(got);
    EXPECT_NEAR(sum, 120, 1);

    for (const float odd : {NAN, INFINITY, 1e30f, -1e30f}) {
        log.clear();
        VornPlatform::SendMouseWheel(odd);
        Pump();
        for (const Got& got : Of(WM_MOUSEWHEEL))
            EXPECT_GT(std::abs(Wheel(got)), 32000);
    }
}

TEST_F(MouseTest, WheelOfADriverWithoutFractions) {
    const HWND window = Show();
    SDL_Event event = {};
    event.type = SDL_MOUSEWHEEL;
    event.wheel.windowID = SdlId(window);
    event.wheel.y = -1;
    event.wheel.x = 2;
    SDL_PushEvent(&event);
    Pump();
    ASSERT_THAT(Messages(), ElementsAre(WM_MOUSEWHEEL, WM_MOUSEHWHEEL));
    EXPECT_EQ(Wheel(log[0]), -120);
    EXPECT_EQ(Wheel(log[1]), 240);
}

} // namespace Tests
