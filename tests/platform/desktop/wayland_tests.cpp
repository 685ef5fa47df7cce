// SPDX-License-Identifier: MIT
//
// A window on a Wayland desktop. run.sh starts it.
#include "tests/platform/desktop/person.hpp"

namespace Tests {

class WaylandTest : public DesktopTest {
protected:
    // The whole desktop is a window to the X server, and has to have the focus there. Where it came
    // up under the mouse it may not know where that is, so the mouse comes in from outside.
    void SetUp() override {
        Type("search --class weston windowfocus");
        Type("mousemove 1200 900 mousemove 640 512");
    }

    // Here a window comes into being, and takes another size, with its next picture.
    static void Present(HWND window) {
        SDL_Window* sdl = SDL_GetWindowFromID(SdlId(window));
        const SDL_GLContext context = SDL_GL_CreateContext(sdl);
        ASSERT_NE(context, nullptr) << SDL_GetError();
        SDL_GL_SwapWindow(sdl);
        SDL_GL_DeleteContext(context);
    }
    HWND ShowActive() {
        const HWND window = Open();
        ShowWindow(window, SW_SHOWDEFAULT);
        Present(window);
        EXPECT_TRUE(AwaitMessage(WM_ACTIVATE)) << "the window has not got the focus";
        return window;
    }
};

TEST_F(WaylandTest, AWindowOpensIsActiveAndCloses) {
    const HWND window = ShowActive();
    ASSERT_STREQ(SDL_GetCurrentVideoDriver(), "wayland");
    EXPECT_TRUE(VornPlatform::HasDisplay());
    RECT rect = {};
    ASSERT_TRUE(GetWindowRect(window, &rect));
    EXPECT_EQ(rect.right - rect.left, 320);
    EXPECT_EQ(rect.bottom - rect.top, 200);
    Type("keydown a");
    ASSERT_TRUE(AwaitMessage(WM_KEYDOWN));
    EXPECT_TRUE(Down('A'));
    Type("keyup a");
    ASSERT_TRUE(AwaitMessage(WM_KEYUP));
    EXPECT_FALSE(Down('A'));

    VornPlatform::SendClose();
    ASSERT_TRUE(AwaitMessage(WM_DESTROY));
    EXPECT_FALSE(UpdateWindow(window));
}

TEST_F(WaylandTest, FullScreenMapsTheMouseAndComesBack) {
    const HWND window = ShowActive();
    SetWindowLongA(window, GWL_STYLE, static_cast<LONG>(WS_POPUP));
    Settle();
    Present(window);
    Settle();
    Type("mousemove 512 384"); // the middle of the display
    EXPECT_TRUE(AwaitPointer(160, 100));
    POINT cursor = {};
    GetCursorPos(&cursor);
    EXPECT_EQ(cursor.x, 160) << "as if the display were as large as the window was";

    SetWindowLongA(window, GWL_STYLE, 0xCA0000);
    Settle();
    RECT rect = {};
    ASSERT_TRUE(GetWindowRect(window, &rect));
    EXPECT_EQ(rect.right - rect.left, 320);
    EXPECT_EQ(rect.bottom - rect.top, 200);
}

} // namespace Tests
