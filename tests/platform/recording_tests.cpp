// SPDX-License-Identifier: MIT
#include "tests/platform/window_fixture.hpp"
#include "tests/support/temp_folder.hpp"

#include <XInput.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

namespace Tests {

using testing::HasSubstr;
using VornPlatform::IsPlayingInput;
using VornPlatform::PlayInput;
using VornPlatform::RecordInput;
using VornPlatform::StopInput;

class RecordingTest : public WindowTest {
protected:
    static std::int64_t Counter() {
        LARGE_INTEGER counter;
        QueryPerformanceCounter(&counter);
        return counter.QuadPart;
    }
    static std::string Text(const std::string& path) {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }
    static void Raises(const std::string& path, const std::string& fault) {
        try {
            PlayInput(path);
            ADD_FAILURE() << "nothing raised, where \"" << fault << "\" should have been";
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), HasSubstr(fault));
        }
    }
    TempFolder folder;
};

// A game as small as can be: whatever it can see goes into its state.
class Game {
public:
    void Frame() {
        constexpr UINT OwnMessage = 0x400;
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
            // Its place among the others counts.
            if (message.message == OwnMessage) {
                Add(OwnMessage);
                continue;
            }
            if (message.message == WM_KEYDOWN)
                PostMessageA(message.hwnd, OwnMessage, 0, 0);
            for (const std::uint64_t number :
                 {std::uint64_t(message.message), std::uint64_t(message.wParam),
                  std::uint64_t(message.lParam), std::uint64_t(message.time),
                  std::uint64_t(message.pt.x), std::uint64_t(message.pt.y)})
                Add(number);
            AddKeys(); // in the midst of the messages
            DispatchMessageA(&message);
        }
        AddKeys();
        POINT cursor = {};
        GetCursorPos(&cursor);
        Add(static_cast<std::uint64_t>(cursor.x) << 32 ^ static_cast<std::uint64_t>(cursor.y));
        for (DWORD index = 0; index < 4; ++index) {
            XINPUT_STATE pad = {};
            Add(XInputGetState(index, &pad));
            Add(pad.dwPacketNumber);
            Add(pad.Gamepad.wButtons);
            Add(static_cast<std::uint64_t>(pad.Gamepad.sThumbLX));
            Add(pad.Gamepad.bRightTrigger);
        }
        LARGE_INTEGER counter;
        for (int i = 0; i < 3; ++i) {
            QueryPerformanceCounter(&counter);
            Add(static_cast<std::uint64_t>(counter.QuadPart));
        }
    }
    std::uint64_t State() const { return mState; }

private:
    void Add(std::uint64_t number) { mState = (mState ^ number) * 0x100000001B3u; }
    void AddKeys() {
        for (int key = 0; key < 256; ++key)
            Add(static_cast<std::uint64_t>(GetKeyState(key)));
    }
    std::uint64_t mState = 0xCBF29CE484222325u;
};

TEST_F(RecordingTest, TheSameInputLeadsToTheSameState) {
    Show();
    const std::string path = folder / "game.input";
    auto pad = std::make_unique<VornPlatform::VirtualPad>();
    VornPlatform::SendKey(VK_LCONTROL, true);
    pad->Buttons(XINPUT_GAMEPAD_Y, true);
    Pump(); // held already when the recording begins
    RecordInput(path);
    EXPECT_FALSE(IsPlayingInput());
    Game recorded;
    for (int frame = 0; frame < 60; ++frame) {
        VornPlatform::SendKey('A' + frame % 26, frame % 3 != 0);
        VornPlatform::SendKey(VK_RETURN, frame % 2 == 0); // two messages at once
        VornPlatform::SendMouseMove(frame * 5, frame - 10);
        VornPlatform::SendMouseButton(VK_RBUTTON, frame % 7 == 0);
        VornPlatform::SendMouseWheel(0.3f);
        if (frame == 20 || frame == 23)
            VornPlatform::SendFocus(frame == 23);
        if (frame == 30)
            pad.reset();
        if (frame == 40)
            pad = std::make_unique<VornPlatform::VirtualPad>();
        if (pad) {
            pad->LeftStick(frame * 100, frame);
            pad->Triggers(0, frame);
        }
        recorded.Frame();
    }
    StopInput();
    pad.reset();
    VornPlatform::SendFocus(false);
    Pump();
    VornPlatform::SendFocus(true);
    Pump();

    for (int run = 0; run < 2; ++run) {
        PlayInput(path);
        Game played;
        int frames = 0;
        for (; IsPlayingInput() && frames < 1000; ++frames) {
            VornPlatform::SendKey(VK_F5, true); // live input is thrown away
            VornPlatform::SendMouseMove(1, 1);
            played.Frame();
        }
        EXPECT_EQ(frames, 60);
        EXPECT_EQ(played.State(), recorded.State());
        EXPECT_FALSE(Down(VK_F5));
        Pump(); // what the end of the recording let go of
    }
}

TEST_F(RecordingTest, APlayersEnvironmentRecordsAndPlaysFromTheFirstWindowOn) {
    const std::string path = folder.File("session.input", "of the day before"),
                      other = folder / "other.input";
    setenv("VORN_RECORD", path.c_str(), 1);
    const HWND first = Show();
    EXPECT_EQ(Text(path + "~"), "of the day before");
    EXPECT_EQ(std::getenv("VORN_RECORD"), nullptr) << "for programs that it starts";
    Game recorded;
    for (int frame = 0; frame < 10; ++frame) {
        VornPlatform::SendKey('A' + frame, frame % 3 != 0);
        VornPlatform::SendMouseMove(frame * 5, frame);
        recorded.Frame();
    }
    StopInput();
    DestroyWindow(first);
    Pump();

    setenv("VORN_PLAY", path.c_str(), 1);
    setenv("VORN_RECORD", other.c_str(), 1);
    Show();
    Game played;
    for (int frame = 0; frame < 1000 && IsPlayingInput(); ++frame)
        played.Frame();
    EXPECT_EQ(played.State(), recorded.State());
    EXPECT_EQ(Text(other), "") << "playing comes first";
}

TEST_F(RecordingTest, FilesOfTheEnvironmentThatDoNotOpenAreNamed) {
    const std::string path = folder / "no/session.input";
    setenv("VORN_RECORD", path.c_str(), 1);
    testing::internal::CaptureStderr();
    Show(); // the player plays on
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("cannot open file: " + path));
    setenv("VORN_PLAY", path.c_str(), 1);
    try {
        Show();
        ADD_FAILURE() << "nothing raised";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), "VORN_PLAY: cannot open file: " + path);
    }
}

TEST_F(RecordingTest, AWindowHasTheFocusWhenTheRecordedDesktopGivesIt) {
    PlayInput(folder.File("desktop.input", "vorn-input 1\nframe\nframe\nframe\n"
                                           "message 1 6 1 0 0 0 0\nevent\nframe\nframe\n"));
    ShowWindow(Open(), SW_SHOWDEFAULT);
    Pump();
    EXPECT_TRUE(Of(WM_ACTIVATE).empty());
    Pump();
    Pump();
    EXPECT_EQ(Of(WM_ACTIVATE).size(), 1u);
    StopInput();
    Pump();
    EXPECT_EQ(Of(WM_ACTIVATE).size(), 1u) << "live input finds it as it is";
}

TEST_F(RecordingTest, WindowsAreKnownByTheirOrder) {
    const HWND first = Show(), second = Show();
    RecordInput(folder / "two.input");
    VornPlatform::SendKey('A', true); // to the second
    Pump();
    StopInput();
    EXPECT_EQ(Of(WM_KEYDOWN).at(0).window, second);
    const HWND third = Show();
    DestroyWindow(first);
    log.clear();
    PlayInput(folder / "two.input");
    Pump();
    EXPECT_EQ(Of(WM_KEYDOWN).at(0).window, third);
    DestroyWindow(third);
    Pump();
    StopInput();
    log.clear();
    PlayInput(folder / "two.input");
    Pump();
    EXPECT_TRUE(Of(WM_KEYDOWN).empty()) << "its window is gone";
}

TEST_F(RecordingTest, TheCounterNeverHangsAndNeverGoesBack) {
    Show();
    const std::string path =
        folder.File("few.input", "vorn-input 1\nframe\ncounter 1000\ncounter 5\nframe\n"
                                 "counter 1\nframe\n");
    PlayInput(path);
    EXPECT_EQ(Counter(), 1000);
    EXPECT_EQ(Counter(), 1005);
    std::int64_t last = 1005;
    for (int i = 0; i < 1000; ++i) {
        const std::int64_t now = Counter();
        ASSERT_GE(now, last);
        last = now;
    }
    Pump(); // 1006 is recorded there
    EXPECT_GE(Counter(), last);
    Pump();
    EXPECT_FALSE(IsPlayingInput());
    const std::int64_t after = Counter();
    EXPECT_GE(after, last) << "real time goes on from there";
    EXPECT_LT(after - last, VornPlatform::ClockFrequency * 3600);
}

TEST_F(RecordingTest, AHostThatAsksLessOftenStaysInStep) {
    Show();
    PlayInput(folder.File("many.input", "vorn-input 1\nframe\ncounter 10\ncounter 10\ncounter 10\n"
                                        "frame\ncounter 10\nframe\n"));
    EXPECT_EQ(Counter(), 10);
    Pump();
    EXPECT_EQ(Counter(), 40);
}

TEST_F(RecordingTest, AHeldCounterIsRecordedAsItIsAnswered) {
    Show();
    RecordInput(folder / "held.input");
    for (const std::int64_t counts : {500, 700, 600}) {
        VornPlatform::HoldClock(counts);
        Counter();
    }
    StopInput();
    VornPlatform::HoldClock(1);
    PlayInput(folder / "held.input");
    EXPECT_EQ(Counter(), 500);
    EXPECT_EQ(Counter(), 700);
    EXPECT_EQ(Counter(), 600);
    EXPECT_FALSE(IsPlayingInput()) << "nothing is left";
    Pump();
    EXPECT_EQ(Counter(), 1);
    VornPlatform::ReleaseClock();
}

TEST_F(RecordingTest, TheLastFrameIsAFrameLikeTheOthers) {
    Show();
    PlayInput(folder.File("last.input", "vorn-input 1\nframe\nkey 65 1 0\n"
                                        "pad 0 1 4096 0 0 0 0 0 0\nframe\n"));
    EXPECT_TRUE(IsPlayingInput());
    Pump();
    EXPECT_FALSE(IsPlayingInput());
    XINPUT_STATE pad = {};
    EXPECT_TRUE(Down('A')) << "the host works on what it has fetched";
    EXPECT_EQ(XInputGetState(0, &pad), DWORD(ERROR_SUCCESS));
    log.clear();
    VornPlatform::SendKey('B', true);
    Pump();
    EXPECT_FALSE(Down('A'));
    EXPECT_TRUE(Down('B')) << "live input counts from here";
    EXPECT_NE(XInputGetState(0, &pad), DWORD(ERROR_SUCCESS));
    EXPECT_THAT(Messages(), testing::ElementsAre(WM_KEYUP, WM_KEYDOWN));
}

TEST_F(RecordingTest, ClosingTheWindowStopsIt) {
    const HWND window = Show();
    std::string text = "vorn-input 1\nframe\nkey 65 1 0\n";
    for (int i = 0; i < 100; ++i)
        text += "frame\n";
    PlayInput(folder.File("long.input", text));
    Pump();
    EXPECT_TRUE(Down('A'));
    VornPlatform::SendClose();
    Pump();
    EXPECT_FALSE(IsPlayingInput());
    EXPECT_FALSE(UpdateWindow(window));
    EXPECT_FALSE(Down('A'));
}

TEST_F(RecordingTest, StoppingLetsGoOfWhatItHeld) {
    Show();
    const std::string path = folder.File(
        "hold.input", "vorn-input 1\nframe\nkey 65 1 0\nkey 1 1 0\nkey 161 1 0\nkey 16 1 0\n"
                      "pad 0 1 4096 0 0 0 0 0 0\nmessage 1 6 0 0 0 0 0\nframe\nframe\n");
    PlayInput(path);
    Pump();
    EXPECT_TRUE(Down('A'));
    XINPUT_STATE pad = {};
    EXPECT_EQ(XInputGetState(0, &pad), DWORD(ERROR_SUCCESS));
    EXPECT_EQ(pad.Gamepad.wButtons, XINPUT_GAMEPAD_A);
    ASSERT_EQ(Of(WM_ACTIVATE).size(), 1u);
    log.clear();
    StopInput();
    EXPECT_FALSE(Down('A'));
    EXPECT_FALSE(Down(VK_LBUTTON));
    EXPECT_FALSE(Down(VK_RSHIFT));
    Pump();
    EXPECT_NE(XInputGetState(0, &pad), DWORD(ERROR_SUCCESS));
    ASSERT_EQ(Of(WM_ACTIVATE).size(), 1u) << "the window has had the focus all the time";
    EXPECT_EQ(Of(WM_ACTIVATE)[0].wParam, 1u);
    StopInput();
}

TEST_F(RecordingTest, NothingOfItsKeysStays) {
    Show();
    // Codes without a place on the keyboard, ordinary ones that are toggled, and a button.
    PlayInput(folder.File("codes.input", "vorn-input 1\nkey 223 1 0\nkey 7 1 1\nkey 66 0 1\n"
                                         "key 67 1 1\nkey 1 1 1\nkey 255 0 1\nframe\nframe\n"));
    EXPECT_TRUE(Down(223));
    log.clear();
    StopInput();
    for (int key = 0; key < 256; ++key)
        if (key != VK_CAPITAL && key != VK_NUMLOCK && key != VK_SCROLL) {
            EXPECT_EQ(GetKeyState(key), 0) << key;
        }
    Pump();
    ASSERT_THAT(Messages(), testing::ElementsAre(WM_KEYUP, WM_LBUTTONUP));
    EXPECT_EQ(log[0].wParam, WPARAM('C'));
}

TEST_F(RecordingTest, TheStateAtTheStartTakesEffectAtOnce) {
    Show();
    VornPlatform::SendKey('B', true);
    Pump();
    PlayInput(folder.File("start.input",
                          "vorn-input 1\nkey 65 1 0\nkey 20 0 1\ncursor 3 -4\nframe\n"
                          "frame\nframe\n"));
    EXPECT_TRUE(Down('A'));
    EXPECT_FALSE(Down('B'));
    EXPECT_EQ(GetKeyState(VK_CAPITAL), 1);
    POINT cursor = {};
    GetCursorPos(&cursor);
    EXPECT_EQ(cursor.x, 3);
    EXPECT_EQ(cursor.y, -4);
}

TEST_F(RecordingTest, MalformedFilesRaiseAndChangeNothing) {
    struct Case {
        const char* text;
        const char* fault;
    };
    const Case cases[] = {
        {"", "line 1: not a recording"},
        {"vorn-input 1", "line 1: not a recording"},
        {"vorn-input 2\n", "line 1: not a recording"},
        {"\x7F"
         "ELF\n",
         "line 1: not a recording"},
        {"vorn-input 1\nframe\nfram", "line 3: the line is cut off"},
        {"vorn-input 1\n\n", "line 2: \"\" is no kind of line"},
        {"vorn-input 1\nframe\nframe 3\n", "line 3: more than the 0 numbers"},
        {"vorn-input 1\nFrame\n", "line 2: \"Frame\" is no kind"},
        {"vorn-input 1\nkey\n", "line 2: code: \"\" is no whole number from 0 to 255"},
        {"vorn-input 1\nkey 256 1 0\n", "line 2: code: \"256\""},
        {"vorn-input 1\nkey -1 1 0\n", "line 2: code: \"-1\""},
        {"vorn-input 1\nkey 65 2 0\n", "line 2: down: \"2\""},
        {"vorn-input 1\nkey 65 1\n", "line 2: lit: \"\""},
        {"vorn-input 1\nkey 65 1 0 0\n", "line 2: more than the 3 numbers"},
        {"vorn-input 1\nkey 65  1 0\n", "line 2: down: \"\""},
        {"vorn-input 1\nkey 65 1 0x\n", "line 2: lit: \"0x\""},
        {"vorn-input 1\nkey +65 1 0\n", "line 2: code: \"+65\""},
        {"vorn-input 1\nkey 65.0 1 0\n", "line 2: code: \"65.0\""},
        {"vorn-input 1\nmessage 1 16 0 0 0 0\n", "line 2: y: \"\""},
        {"vorn-input 1\nmessage 1 2 0 0 0 0 0\n", "line 2: message 2 is not one of input"},
        {"vorn-input 1\nmessage 1 1024 0 0 0 0 0\n", "line 2: message 1024 is not one of input"},
        {"vorn-input 1\nmessage 1 32 0 0 0 0 0\n", "line 2: message 32 is not one of input"},
        {"vorn-input 1\nmessage 1 512 0 4294967296 0 0 0\n", "line 2: lParam: \"4294967296\""},
        {"vorn-input 1\nmessage -1 512 0 0 0 0 0\n", "line 2: window: \"-1\""},
        {"vorn-input 1\npad 4 0 0 0 0 0 0 0 0\n", "line 2: index: \"4\""},
        {"vorn-input 1\npad 0 0 0 256 0 0 0 0 0\n", "line 2: left trigger: \"256\""},
        {"vorn-input 1\npad 0 0 0 0 0 32768 0 0 0\n", "line 2: left x: \"32768\""},
        {"vorn-input 1\nnopad\n", "line 2: index: \"\""},
        {"vorn-input 1\ncursor 2147483648 0\n", "line 2: x: \"2147483648\""},
        {"vorn-input 1\ncounter 99999999999999999999\n", "line 2: difference: \"99999"},
        {"vorn-input 1\ncounter 9223372036854775807\n", "line 2: the counter leaves its range"},
        {"vorn-input 1\ncounter 4000000000000000000\ncounter 9000000000000000000\n",
         "line 3: the counter leaves its range"},
    };
    Show();
    VornPlatform::SendKey('Q', true);
    Pump();
    for (const Case& c : cases) {
        Raises(folder.File("bad.input", c.text), "bad.input, " + std::string(c.fault));
        EXPECT_FALSE(IsPlayingInput());
        EXPECT_TRUE(Down('Q'));
    }
    for (const std::string& path :
         {folder / "absent.input", folder.Path().string(), std::string("/dev/zero"), std::string()})
        Raises(path, "cannot open file: " + path);
    PlayInput(folder.File("good.input", "vorn-input 1\nframe\nkey 65 1 0\nframe\nframe\n"));
    Raises(folder / "bad.input", "bad.input");
    EXPECT_TRUE(IsPlayingInput()) << "what was playing goes on";
}

TEST_F(RecordingTest, FilesThatCannotBeWrittenAreReported) {
    Show();
    EXPECT_THROW(RecordInput(folder / "no/such/folder.input"), std::runtime_error);
    EXPECT_NO_THROW(StopInput());
    RecordInput("/dev/full");
    Pump();
    EXPECT_THROW(StopInput(), std::runtime_error);
    EXPECT_NO_THROW(StopInput());
}

TEST_F(RecordingTest, ARecordingThatIsCutShortPlaysUpToThere) {
    Show();
    const std::string path = folder / "crash.input";
    RecordInput(path);
    VornPlatform::SendKey('A', true);
    Pump();
    const std::string sofar = Text(path); // as a crash would leave it
    StopInput();
    PlayInput(folder.File("sofar.input", sofar));
    Pump();
    EXPECT_FALSE(IsPlayingInput());
    EXPECT_EQ(Of(WM_KEYDOWN).size(), 2u);
}

TEST_F(RecordingTest, OneThingAtATime) {
    Show();
    const std::string path = folder / "own.input";
    RecordInput(path);
    VornPlatform::SendKey('A', true);
    Pump();
    PlayInput(path); // what is being recorded
    Pump();
    EXPECT_EQ(Of(WM_KEYDOWN).size(), 2u);
    RecordInput(path);
    EXPECT_FALSE(IsPlayingInput());
    RecordInput(path);
    StopInput();
    EXPECT_NO_THROW(PlayInput(path));
}

} // namespace Tests
