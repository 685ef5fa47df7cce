// SPDX-License-Identifier: MIT
#include "tests/platform/window_fixture.hpp"
#include "tests/support/temp_folder.hpp"

#include <XInput.h>

#include <filesystem>
#include <memory>
#include <string>

namespace Tests {

using VornPlatform::VirtualPad;

class PadTest : public WindowTest {
protected:
    static XINPUT_GAMEPAD Read(DWORD index) {
        XINPUT_STATE state = {};
        EXPECT_EQ(XInputGetState(index, &state), DWORD(ERROR_SUCCESS));
        return state.Gamepad;
    }
    static bool Connected(DWORD index) {
        XINPUT_STATE state = {};
        return XInputGetState(index, &state) == ERROR_SUCCESS;
    }
    static DWORD Packet(DWORD index) {
        XINPUT_STATE state = {};
        XInputGetState(index, &state);
        return state.dwPacketNumber;
    }
    static DWORD Vibrate(DWORD index, int left, int right) {
        XINPUT_VIBRATION vibration = {static_cast<WORD>(left), static_cast<WORD>(right)};
        return XInputSetState(index, &vibration);
    }
};

TEST_F(PadTest, NobodyAndNullAreHarmless) {
    XINPUT_STATE state = {};
    state.dwPacketNumber = 77;
    for (const DWORD index : {0u, 3u, 4u, 0xFFFFFFFFu}) {
        EXPECT_EQ(XInputGetState(index, &state), DWORD(ERROR_DEVICE_NOT_CONNECTED));
        EXPECT_EQ(Vibrate(index, 0, 0), DWORD(ERROR_DEVICE_NOT_CONNECTED));
        EXPECT_EQ(Vibrate(index, 1, 1), DWORD(ERROR_DEVICE_NOT_CONNECTED));
        EXPECT_NE(XInputGetState(index, nullptr), DWORD(ERROR_SUCCESS));
        EXPECT_NE(XInputSetState(index, nullptr), DWORD(ERROR_SUCCESS));
    }
    EXPECT_EQ(state.dwPacketNumber, 77u) << "the record stays as it was";
    const VirtualPad pad;
    EXPECT_NE(XInputGetState(0, nullptr), DWORD(ERROR_SUCCESS));
    EXPECT_NE(XInputSetState(0, nullptr), DWORD(ERROR_SUCCESS));
}

TEST_F(PadTest, PadsTakeTheLowestFreeSlot) {
    auto first = std::make_unique<VirtualPad>();
    VirtualPad second, third, fourth, fifth;
    EXPECT_EQ(first->Index(), 0);
    EXPECT_EQ(fourth.Index(), 3);
    EXPECT_EQ(fifth.Index(), -1);
    EXPECT_TRUE(Connected(3));
    first.reset();
    EXPECT_TRUE(Connected(0)) << "the one that waited has the slot";
    EXPECT_EQ(fifth.Index(), 0);
    EXPECT_EQ(second.Index(), 1) << "and nobody moves";
}

TEST_F(PadTest, EveryButtonIsItself) {
    VirtualPad pad;
    const unsigned int all = 0xF3FF;
    for (unsigned int bit = 1; bit <= 0x8000; bit <<= 1) {
        pad.Buttons(bit, true);
        EXPECT_EQ(Read(0).wButtons, bit & all);
        pad.Buttons(bit, false);
    }
    pad.Buttons(all, true);
    EXPECT_EQ(Read(0).wButtons, all);
}

TEST_F(PadTest, SticksAndTriggersHaveTheirWholeRange) {
    VirtualPad pad;
    const XINPUT_GAMEPAD rest = Read(0);
    EXPECT_EQ(rest.bLeftTrigger, 0);
    EXPECT_EQ(rest.sThumbLY, 0);
    struct Case {
        int sent, x, y;
    };
    for (const Case& c : {Case{0, 0, 0},
                          {1, 1, 1},
                          {-1, -1, -1},
                          {7850, 7850, 7850},
                          {32767, 32767, 32767},
                          {-32767, -32767, -32767},
                          {-32768, -32768, -32767},
                          {99999, 32767, 32767}}) {
        SCOPED_TRACE(c.sent);
        pad.LeftStick(c.sent, -c.sent / 2);
        pad.RightStick(0, c.sent);
        const XINPUT_GAMEPAD state = Read(0);
        EXPECT_EQ(state.sThumbLX, c.x);
        EXPECT_EQ(state.sThumbRY, c.y);
        EXPECT_EQ(state.sThumbRX, 0);
    }
    for (int value = 0; value < 256; ++value) {
        pad.Triggers(value, 255 - value);
        ASSERT_EQ(Read(0).bLeftTrigger, value);
        ASSERT_EQ(Read(0).bRightTrigger, 255 - value);
    }
}

TEST_F(PadTest, TheLowestValueOfSdlDoesNotOverflow) {
    const VirtualPad pad;
    SDL_Joystick* joystick = SDL_JoystickFromInstanceID(SDL_JoystickGetDeviceInstanceID(0));
    ASSERT_NE(joystick, nullptr);
    SDL_JoystickSetVirtualAxis(joystick, SDL_CONTROLLER_AXIS_LEFTY, -32768);
    EXPECT_EQ(Read(0).sThumbLY, 32767);
}

TEST_F(PadTest, PacketsAreCountedByChange) {
    VirtualPad pad;
    const DWORD before = Packet(0);
    EXPECT_EQ(Packet(0), before);
    pad.Buttons(XINPUT_GAMEPAD_A, true);
    const DWORD pressed = Packet(0);
    EXPECT_NE(pressed, before);
    EXPECT_EQ(Packet(0), pressed);
}

TEST_F(PadTest, WithAWindowPadsChangeWithTheMessages) {
    Show();
    auto pad = std::make_unique<VirtualPad>();
    Pump();
    EXPECT_EQ(Read(0).wButtons, 0);
    pad->Buttons(XINPUT_GAMEPAD_B, true);
    EXPECT_EQ(Read(0).wButtons, 0);
    VornPlatform::SendFocus(false); // XInput does not ask for the focus
    Pump();
    EXPECT_EQ(Read(0).wButtons, XINPUT_GAMEPAD_B);
    pad.reset();
    EXPECT_TRUE(Connected(0));
    Pump();
    EXPECT_FALSE(Connected(0));
}

TEST_F(PadTest, MotorsRunUntilTheyAreToldOtherwise) {
    auto pad = std::make_unique<VirtualPad>();
    EXPECT_EQ(Vibrate(0, 65535, 1000), DWORD(ERROR_SUCCESS));
    EXPECT_EQ(pad->LeftMotor(), 65535);
    EXPECT_EQ(pad->RightMotor(), 1000);
    Connected(0);
    EXPECT_EQ(pad->LeftMotor(), 65535);
    EXPECT_EQ(Vibrate(0, 0, 0), DWORD(ERROR_SUCCESS));
    EXPECT_EQ(pad->LeftMotor(), 0);
    EXPECT_EQ(pad->RightMotor(), 0);

    Vibrate(0, 1, 2);
    pad.reset(); // pulled out while it shakes
    Vibrate(0, 3, 4);
    EXPECT_FALSE(Connected(0));
    Vibrate(0, 0, 0);
    pad = std::make_unique<VirtualPad>();
    EXPECT_TRUE(Connected(0));
    EXPECT_EQ(pad->LeftMotor(), 0) << "the next pad in the slot stands still";
}

TEST_F(PadTest, MappingsBesideTheGameAreReadAtStart) {
    const TempFolder folder;
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path());
    std::string guid(33, '\0');
    // A joystick that SDL takes for no pad by itself, with its first button down.
    const auto buttons = [&guid] {
        SDL_QuitSubSystem(SDL_INIT_GAMECONTROLLER);
        Connected(0); // starts them anew
        const int device = SDL_JoystickAttachVirtual(SDL_JOYSTICK_TYPE_UNKNOWN, 2, 4, 0);
        SDL_Joystick* const joystick = SDL_JoystickOpen(device);
        SDL_JoystickGetGUIDString(SDL_JoystickGetGUID(joystick), guid.data(), 33);
        SDL_JoystickSetVirtualButton(joystick, 0, 1);
        const int pressed = Connected(0) ? Read(0).wButtons : -1;
        SDL_JoystickClose(joystick);
        SDL_JoystickDetachVirtual(device);
        return pressed;
    };
    EXPECT_EQ(buttons(), -1);
    guid.replace(4, 4, "0000"); // files know a kind of pad, without the checksum of its name
    folder.File("gamecontrollerdb.txt", "no mapping\n" + std::string(guid.c_str()) +
                                            ",Ours,x:b0,y:b1,a:b2,platform:Linux,\n,,,");
    EXPECT_EQ(buttons(), XINPUT_GAMEPAD_X);
    folder.File("gamecontrollerdb.txt", std::string("\0\xff,,\n", 5));
    EXPECT_EQ(buttons(), -1);
    std::filesystem::remove(folder.Path() / "gamecontrollerdb.txt");
    folder.Folder("gamecontrollerdb.txt");
    EXPECT_EQ(buttons(), -1);
    std::filesystem::current_path(before);
}

} // namespace Tests
