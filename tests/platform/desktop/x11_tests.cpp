// SPDX-License-Identifier: MIT
//
// Types, moves and clicks through the X server, as a person would. run.sh starts it.
#include "tests/platform/desktop/person.hpp"

namespace Tests {

class X11Test : public DesktopTest {
protected:
    static void Layout(const char* name) {
        ASSERT_EQ(std::system((std::string("setxkbmap ") + name).c_str()), 0) << name;
    }
    HWND ShowActive() {
        const HWND window = Open();
        ShowWindow(window, SW_SHOWDEFAULT);
        SetWindowPos(window, nullptr, 100, 150, 320, 200, SWP_SHOWWINDOW);
        EXPECT_TRUE(AwaitMessage(WM_ACTIVATE)) << "the window has not got the focus";
        Settle();
        EXPECT_EQ(Of(WM_ACTIVATE).size(), 1u);
        EXPECT_EQ(Of(WM_ACTIVATE).at(0).wParam, WPARAM(WA_ACTIVE));
        log.clear();
        return window;
    }
    static void ExpectPlacement(HWND window) {
        RECT rect = {};
        GetWindowRect(window, &rect);
        EXPECT_EQ(rect.left, 100);
        EXPECT_EQ(rect.top, 150);
        EXPECT_EQ(rect.right, 420);
        EXPECT_EQ(rect.bottom, 350);
    }
};

TEST_F(X11Test, AWindowIsShownAndActiveOnce) {
    EXPECT_FALSE(VornPlatform::HasDisplay()) << "there is no window yet";
    const HWND window = ShowActive();
    EXPECT_TRUE(VornPlatform::HasDisplay());
    ExpectPlacement(window);
}

TEST_F(X11Test, AKeyGoesDownAndUp) {
    ShowActive();
    Type("keydown a");
    ASSERT_TRUE(AwaitMessage(WM_CHAR));
    EXPECT_EQ(Of(WM_KEYDOWN).at(0).wParam, WPARAM('A'));
    EXPECT_EQ(Of(WM_CHAR).at(0).wParam, WPARAM('a'));
    EXPECT_TRUE(Down('A'));
    Type("keyup a");
    ASSERT_TRUE(AwaitMessage(WM_KEYUP));
    EXPECT_FALSE(Down('A'));
    Type("key Shift_R");
    ASSERT_TRUE(AwaitMessage(WM_KEYUP, 2));
    EXPECT_EQ(Of(WM_KEYUP).back().wParam, WPARAM(VK_SHIFT));
}

TEST_F(X11Test, LettersGoByTheirLabelAndOthersByTheirPlace) {
    // The number of a key in the server: its place, whatever the layout.
    constexpr const char* PlaceOfQ = "key 24";
    constexpr const char* PlaceOf1 = "key 10";
    struct Case {
        const char* layout;
        int q, one;
    };
    for (const Case& c : {Case{"fr", 'A', '1'}, {"ru", 'Q', '1'}, {"us", 'Q', '1'}}) {
        SCOPED_TRACE(c.layout);
        Layout(c.layout);
        ShowActive();
        Type(PlaceOfQ);
        Type(PlaceOf1);
        ASSERT_TRUE(AwaitMessage(WM_KEYUP, 2));
        EXPECT_EQ(Of(WM_KEYDOWN).at(0).wParam, static_cast<WPARAM>(c.q));
        EXPECT_EQ(Of(WM_KEYDOWN).at(1).wParam, static_cast<WPARAM>(c.one));
        DestroyWindow(windows.back());
        log.clear();
    }
}

TEST_F(X11Test, TheMouseMovesClicksAndTurnsItsWheel) {
    ShowActive();
    Type("mousemove 110 170");
    ASSERT_TRUE(AwaitPointer(10, 20));
    EXPECT_FALSE(Of(WM_SETCURSOR).empty());
    POINT cursor = {};
    GetCursorPos(&cursor);
    EXPECT_EQ(cursor.x, 110);
    EXPECT_EQ(cursor.y, 170);

    Type("mousedown 3");
    ASSERT_TRUE(AwaitMessage(WM_RBUTTONDOWN));
    EXPECT_TRUE(Down(VK_RBUTTON));
    EXPECT_EQ(Of(WM_RBUTTONDOWN)[0].lParam, 20 << 16 | 10);
    Type("mouseup 3");
    ASSERT_TRUE(AwaitMessage(WM_RBUTTONUP));
    EXPECT_FALSE(Down(VK_RBUTTON));
    Type("click 5"); // a notch towards the user
    ASSERT_TRUE(AwaitMessage(WM_MOUSEWHEEL));
    EXPECT_EQ(static_cast<SHORT>(HIWORD(Of(WM_MOUSEWHEEL)[0].wParam)), -120);
}

TEST_F(X11Test, LosingTheFocusLetsGoOfTheKeys) {
    const HWND first = ShowActive();
    Type("keydown b");
    ASSERT_TRUE(AwaitMessage(WM_KEYDOWN));
    const HWND second = Open();
    ShowWindow(second, SW_SHOWDEFAULT);
    ASSERT_TRUE(AwaitMessage(WM_ACTIVATE, 2));
    EXPECT_FALSE(Down('B'));
    Type("keyup b");
    Settle();
    const auto activations = Of(WM_ACTIVATE);
    ASSERT_EQ(activations.size(), 2u);
    EXPECT_EQ(activations[0].window, first);
    EXPECT_EQ(activations[0].wParam, WPARAM(WA_INACTIVE));
    EXPECT_EQ(activations[1].window, second);
    EXPECT_EQ(Of(WM_KEYUP).size(), 1u);
}

TEST_F(X11Test, HeadlessIsForcedAlsoAfterAWindowOnTheDisplay) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            DestroyWindow(Open());
            const bool seen = std::string(SDL_GetCurrentVideoDriver()) == "x11";
            VornPlatform::ForceHeadless();
            ShowWindow(Open(), SW_SHOWDEFAULT);
            std::exit(seen && !VornPlatform::HasDisplay() && Of(WM_ACTIVATE).size() == 1 ? 0 : 3);
        },
        testing::ExitedWithCode(0), "");
}

// That the display is filled takes a window manager: see the other desktop.
TEST_F(X11Test, FullScreenAndBackIsWhereItWas) {
    const HWND window = ShowActive();
    SetWindowLongA(window, GWL_STYLE, static_cast<LONG>(WS_POPUP));
    ShowWindow(window, SW_SHOWDEFAULT);
    Settle();
    SetWindowLongA(window, GWL_STYLE, 0xCA0000);
    SetWindowPos(window, HWND_NOTOPMOST, 100, 150, 320, 200, SWP_SHOWWINDOW);
    ShowWindow(window, SW_SHOWDEFAULT);
    Settle();
    ExpectPlacement(window);
    log.clear();
    Type("mousemove 111 171");
    EXPECT_TRUE(AwaitPointer(11, 21));
}

} // namespace Tests
