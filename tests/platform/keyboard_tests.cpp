// SPDX-License-Identifier: MIT
#include "tests/platform/window_fixture.hpp"

#include <string>

namespace Tests {

using testing::ElementsAre;

class KeyboardTest : public WindowTest {
protected:
    static void Push(HWND window, SDL_Scancode scancode, SDL_Keycode sym, bool down,
                     int mod = KMOD_NONE, bool repeat = false) {
        SDL_Event event = {};
        event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
        event.key.windowID = SdlId(window);
        event.key.repeat = repeat;
        event.key.state = down ? SDL_PRESSED : SDL_RELEASED;
        event.key.keysym = {scancode, sym, static_cast<Uint16>(mod), 0};
        ASSERT_EQ(SDL_PushEvent(&event), 1);
    }
};

TEST_F(KeyboardTest, KeysHaveTheirWin32Codes) {
    struct Case {
        SDL_Scancode scancode;
        SDL_Keycode sym;
        int mod;
        int virtualKey;
        const char* why;
    };
    const Case cases[] = {
        {SDL_SCANCODE_A, SDLK_a, 0, 'A', "letter"},
        {SDL_SCANCODE_Q, SDLK_a, 0, 'A', "A on a French keyboard"},
        {SDL_SCANCODE_SEMICOLON, SDLK_m, 0, 'M', "M on a French keyboard"},
        {SDL_SCANCODE_M, SDLK_COMMA, 0, VK_OEM_COMMA, "comma in the place of a letter"},
        {SDL_SCANCODE_1, SDLK_AMPERSAND, 0, '1', "digits that need Shift"},
        {SDL_SCANCODE_6, SDLK_MINUS, 0, '6', "a digit whose label is punctuation"},
        {SDL_SCANCODE_A, 0x444, 0, 'A', "a Cyrillic letter"},
        {SDL_SCANCODE_0, SDLK_0, 0, '0', "digit"},
        {SDL_SCANCODE_UNKNOWN, SDLK_w, 0, 'W', "no place at all"},
        {SDL_SCANCODE_KP_5, SDLK_KP_5, KMOD_NUM, VK_NUMPAD5, "number pad"},
        {SDL_SCANCODE_KP_5, SDLK_KP_5, 0, VK_CLEAR, "number pad, unlocked"},
        {SDL_SCANCODE_KP_8, SDLK_KP_8, 0, VK_UP, "number pad, unlocked"},
        {SDL_SCANCODE_KP_PERIOD, SDLK_KP_PERIOD, 0, VK_DELETE, "number pad, unlocked"},
        {SDL_SCANCODE_KP_ENTER, SDLK_KP_ENTER, 0, VK_RETURN, "both Enters"},
        {SDL_SCANCODE_F1, SDLK_F1, 0, VK_F1, "function keys"},
        {SDL_SCANCODE_F24, SDLK_F24, 0, VK_F24, "function keys"},
        {SDL_SCANCODE_RALT, SDLK_RALT, 0, VK_RMENU, "sides"},
        {SDL_SCANCODE_GRAVE, SDLK_BACKQUOTE, 0, VK_OEM_3, "punctuation"},
        {SDL_SCANCODE_NONUSBACKSLASH, SDLK_LESS, 0, VK_OEM_102, "punctuation by place"},
        {SDL_SCANCODE_AUDIOPLAY, SDLK_AUDIOPLAY, 0, VK_MEDIA_PLAY_PAUSE, "media"},
        {SDL_SCANCODE_AC_BACK, SDLK_AC_BACK, 0, VK_BROWSER_BACK, "browser"},
    };
    const HWND window = Show();
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.why) + ", key " + std::to_string(c.virtualKey));
        Push(window, c.scancode, c.sym, true, c.mod);
        Pump();
        EXPECT_TRUE(Down(c.virtualKey));
        Push(window, c.scancode, c.sym, false, c.mod);
        Pump();
        for (int key = 0; key < 256; ++key)
            EXPECT_FALSE(Down(key)) << key;
    }
}

TEST_F(KeyboardTest, EveryKeyThatIsSentComesBackAsItself) {
    Show();
    int sent = 0;
    for (int key = 0; key < 256; ++key) {
        log.clear();
        VornPlatform::SendKey(key, true);
        if (Pump() == 0)
            continue; // no keyboard has it
        ++sent;
        EXPECT_TRUE(Down(key)) << key;
        VornPlatform::SendKey(key, false);
        Pump();
        EXPECT_FALSE(Down(key)) << key;
        for (int other = 0; other < 256; ++other)
            ASSERT_FALSE(Down(other)) << other << " after " << key;
    }
    EXPECT_GT(sent, 130);
    for (const int odd : {-1, 256, INT32_MAX, INT32_MIN}) {
        VornPlatform::SendKey(odd, true);
        EXPECT_EQ(GetKeyState(odd), 0);
    }
    VornPlatform::SendKey(VK_LBUTTON, true);
    EXPECT_EQ(Pump(), 0);
}

TEST_F(KeyboardTest, StateFollowsTheMessages) {
    Show();
    VornPlatform::SendKey('A', true);
    VornPlatform::SendKey('A', false);
    VornPlatform::SendKey('A', true);
    EXPECT_FALSE(Down('A')) << "nothing is seen before it is fetched";
    Pump();
    ASSERT_THAT(Messages(), ElementsAre(WM_KEYDOWN, WM_KEYUP, WM_KEYDOWN));
    EXPECT_LT(log[0].keyA, 0);
    EXPECT_EQ(log[1].keyA, 0);
    EXPECT_LT(log[2].keyA, 0);
}

TEST_F(KeyboardTest, BitsOfAKeyMessage) {
    Show();
    VornPlatform::SendKey(VK_RCONTROL, true);
    VornPlatform::SendKey(VK_RCONTROL, true);
    VornPlatform::SendKey(VK_RCONTROL, false);
    VornPlatform::SendKey(VK_RCONTROL, false);
    Pump();
    ASSERT_EQ(log.size(), 3u) << "a key that is up does not come up";
    for (const Got& got : log)
        EXPECT_EQ(got.wParam, WPARAM(VK_CONTROL));
    EXPECT_EQ(log[0].lParam, 0x011D0001);
    EXPECT_EQ(log[1].lParam, 0x411D0001) << "a repeat was down before";
    EXPECT_EQ(log[2].lParam, 0xC11D0001);
}

TEST_F(KeyboardTest, BothSidesAndTheKeyWithoutASide) {
    Show();
    VornPlatform::SendKey(VK_LSHIFT, true);
    VornPlatform::SendKey(VK_RSHIFT, true);
    VornPlatform::SendKey(VK_LSHIFT, false);
    Pump();
    EXPECT_FALSE(Down(VK_LSHIFT));
    EXPECT_TRUE(Down(VK_RSHIFT));
    EXPECT_TRUE(Down(VK_SHIFT));
    VornPlatform::SendKey(VK_RSHIFT, false);
    Pump();
    EXPECT_FALSE(Down(VK_SHIFT));
}

TEST_F(KeyboardTest, AKeyIsReleasedAsWhatItWasPressed) {
    const HWND window = Show();
    Push(window, SDL_SCANCODE_Q, SDLK_q, true);
    Push(window, SDL_SCANCODE_Q, SDLK_a, true, 0, true); // the layout changes under the finger
    Push(window, SDL_SCANCODE_Q, SDLK_a, false);
    Pump();
    ASSERT_EQ(log.size(), 3u);
    for (const Got& got : log)
        EXPECT_EQ(got.wParam, WPARAM('Q'));
    EXPECT_FALSE(Down('Q'));
    EXPECT_FALSE(Down('A'));
}

TEST_F(KeyboardTest, AltMakesAKeyOneOfTheSystem) {
    const HWND window = Show();
    VornPlatform::SendKey(VK_MENU, true);
    VornPlatform::SendKey(VK_RETURN, true);
    VornPlatform::SendKey(VK_RETURN, false);
    VornPlatform::SendKey(VK_MENU, false);
    VornPlatform::SendKey(VK_F10, true);
    Pump();
    EXPECT_THAT(Messages(),
                ElementsAre(WM_SYSKEYDOWN, WM_SYSKEYDOWN, WM_SYSKEYUP, WM_SYSKEYUP, WM_SYSKEYDOWN));
    EXPECT_EQ(log[1].lParam, 0x201C0001);
    VornPlatform::SendKey(VK_MENU, true);
    VornPlatform::SendKey(VK_F4, true);
    Pump();
    EXPECT_FALSE(UpdateWindow(window)) << "Alt and F4 close it";
}

TEST_F(KeyboardTest, TextAndTheKeysWithoutText) {
    const HWND window = Show();
    SDL_Event text = {};
    text.type = SDL_TEXTINPUT;
    text.text.windowID = SdlId(window);
    std::string("x\xC3\xA4").copy(text.text.text, 8);
    VornPlatform::SendKey('X', true);
    SDL_PushEvent(&text);
    VornPlatform::SendKey(VK_RETURN, true);
    Pump();
    ASSERT_THAT(Messages(),
                ElementsAre(WM_KEYDOWN, WM_CHAR, WM_CHAR, WM_CHAR, WM_KEYDOWN, WM_CHAR));
    EXPECT_EQ(log[1].wParam, WPARAM('x'));
    EXPECT_EQ(log[2].wParam, 0xC3u);
    EXPECT_EQ(log[5].wParam, 13u);
}

TEST_F(KeyboardTest, LocksAreBitZero) {
    Show();
    const SHORT before = GetKeyState(VK_CAPITAL);
    VornPlatform::SendKey(VK_CAPITAL, true);
    Pump();
    EXPECT_TRUE(Down(VK_CAPITAL));
    EXPECT_NE(GetKeyState(VK_CAPITAL) & 1, before & 1);
    VornPlatform::SendKey(VK_CAPITAL, false);
    Pump();
    EXPECT_EQ(GetKeyState(VK_CAPITAL), (before & 1) ^ 1);
    VornPlatform::SendKey(VK_CAPITAL, true);
    VornPlatform::SendKey(VK_CAPITAL, false);
    Pump();
    EXPECT_EQ(GetKeyState(VK_CAPITAL), before & 1);
}

TEST_F(KeyboardTest, AllComesUpBeforeTheFocusIsGone) {
    Show();
    VornPlatform::SendKey('A', true);
    VornPlatform::SendMouseButton(VK_LBUTTON, true);
    Pump();
    log.clear();
    VornPlatform::SendFocus(false);
    Pump();
    ASSERT_THAT(Messages(), ElementsAre(WM_KEYUP, WM_LBUTTONUP, WM_ACTIVATE));
    EXPECT_EQ(log[2].keyA, 0);
    EXPECT_FALSE(Down(VK_LBUTTON));
    log.clear();
    VornPlatform::SendKey('A', false); // the finger leaves the key later
    VornPlatform::SendMouseButton(VK_LBUTTON, false);
    EXPECT_EQ(Pump(), 0);
}

TEST_F(KeyboardTest, ADestroyedWindowHoldsNoKeys) {
    const HWND window = Show();
    VornPlatform::SendKey('A', true);
    Pump();
    DestroyWindow(window);
    EXPECT_FALSE(Down('A'));
    VornPlatform::SendKey('B', true); // goes nowhere
    Pump();
    EXPECT_FALSE(Down('B'));
}

} // namespace Tests
