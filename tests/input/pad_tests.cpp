// SPDX-License-Identifier: MIT
#include "tests/support/host.hpp"

#include <XInput.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace {

using namespace Vorn;
using testing::Each;
using testing::ElementsAre;
using VornPlatform::ClockFrequency;

constexpr unsigned int A = XINPUT_GAMEPAD_A, B = XINPUT_GAMEPAD_B;
constexpr unsigned int Shoulder = XINPUT_GAMEPAD_LEFT_SHOULDER;
constexpr unsigned int All = 0xF3FF, Tracked = 0xF01F; // no shoulders, sticks and BACK

/// A virtual pad beside the engine's view of it.
class Pad : public testing::Test {
protected:
    Pad() {
        type = static_cast<ControlType>(pad->Index() + 1);
        Tests::Pump();
        input.Update();
    }
    ~Pad() override { VornPlatform::ReleaseClock(); }

    void Update() {
        Tests::Pump();
        input.Update();
    }
    /// Left and right, each where it is and where it was just moved to.
    std::array<AnalogMovement, 4> Sticks() {
        return {input.AnalogLeftMove(type), input.AnalogLeftTriggered(type),
                input.AnalogRightMove(type), input.AnalogRightTriggered(type)};
    }
    /// Pressed, triggered, released.
    std::array<bool, 3> Key(unsigned int key) {
        return {input.IsKeyPressed(type, key), input.IsKeyTriggered(type, key),
                input.IsKeyReleased(type, key)};
    }

    Tests::Host host;
    std::unique_ptr<VornPlatform::VirtualPad> pad = std::make_unique<VornPlatform::VirtualPad>();
    InputManager input;
    ControlType type = CONTROL_KEYBOARD;
};

using Is = std::array<bool, 3>;
constexpr Is Up = {}, Down = {true, true, false}, Held = {true, false, false};
constexpr Is Released = {false, false, true};

TEST_F(Pad, PressedIsReadAtOnceAndTakesAnyMask) {
    pad->Buttons(B | Shoulder, true);
    Tests::Pump();
    EXPECT_EQ(Key(B), Held); // the edge waits for the update
    input.Update();
    EXPECT_EQ(Key(B), Down);
    EXPECT_EQ(Key(A | B), Held);
    EXPECT_EQ(Key(A | Shoulder), Held);
    EXPECT_EQ(Key(A), Up);
    EXPECT_EQ(Key(A | XINPUT_GAMEPAD_BACK), Up);
    pad->Buttons(B | Shoulder, false);
    Tests::Pump();
    EXPECT_EQ(Key(B), (Is{false, true, false}));
    input.Update();
    EXPECT_EQ(Key(A | B), Up);
}

TEST_F(Pad, StickIsAwayFrom7850AndTriggeredWhenAnAxisGetsThere) {
    struct Step {
        int x, y;
        AnalogMovement move, triggered;
    };
    const std::vector<Step> way = {
        {20000, 0, ANALOG_RIGHT, ANALOG_RIGHT},
        {20000, 0, ANALOG_RIGHT, ANALOG_NONE},
        {20000, 20000, ANALOG_UP_RIGHT, ANALOG_UP},
        {20000, -20000, ANALOG_DOWN_RIGHT, ANALOG_DOWN},
        {0, 0, ANALOG_NONE, ANALOG_NONE},
        {7850, 7850, ANALOG_UP_RIGHT, ANALOG_UP_RIGHT},
        {-7850, 0, ANALOG_LEFT, ANALOG_LEFT},
        // Exactly on the edge it is at rest, but its next step outwards is no crossing.
        {7849, 7849, ANALOG_NONE, ANALOG_NONE},
        {7850, 7850, ANALOG_UP_RIGHT, ANALOG_NONE},
        {-7849, -7849, ANALOG_NONE, ANALOG_NONE},
        {-7850, -7850, ANALOG_DOWN_LEFT, ANALOG_NONE},
        {-7848, -7848, ANALOG_NONE, ANALOG_NONE},
        {-32768, -32768, ANALOG_DOWN_LEFT, ANALOG_DOWN_LEFT},
        {32767, 32767, ANALOG_UP_RIGHT, ANALOG_UP_RIGHT},
    };
    for (const Step& step : way) {
        pad->LeftStick(step.x, step.y);
        Update();
        EXPECT_THAT(Sticks(), ElementsAre(step.move, step.triggered, ANALOG_NONE, ANALOG_NONE))
            << step.x << ' ' << step.y;
    }
}

TEST_F(Pad, AnalogTriggersAreOfTheLastReading) {
    char left = 1, right = 1;
    EXPECT_FALSE(input.TriggerLeftStatus(type, &left));
    EXPECT_EQ(left, 0);
    pad->Triggers(200, 0);
    Update();
    EXPECT_TRUE(input.TriggerLeftStatus(type, &left));
    EXPECT_FALSE(input.TriggerRightStatus(type, &right));
    EXPECT_EQ(static_cast<unsigned char>(left), 200);
    EXPECT_EQ(right, 0);
    pad->Triggers(0, 255);
    Update();
    EXPECT_TRUE(input.TriggerRightStatus(type, &right));
    EXPECT_EQ(static_cast<unsigned char>(right), 255);
    EXPECT_TRUE(input.TriggerRightStatus(type, nullptr));
    EXPECT_FALSE(input.TriggerLeftStatus(type, nullptr));
}

TEST_F(Pad, WithoutTheFocusItReadsAsLetGo) {
    pad->Buttons(A, true);
    pad->Triggers(255, 255);
    pad->LeftStick(20000, 0);
    pad->RightStick(20000, 0);
    Update();
    host.Focus(false);
    for (const unsigned int key : {A, B, Shoulder, A | B, 0u})
        EXPECT_EQ(Key(key), Released) << key;
    EXPECT_THAT(Sticks(), Each(ANALOG_NONE));
    EXPECT_FALSE(input.TriggerLeftStatus(type, nullptr) || input.TriggerRightStatus(type, nullptr));
    EXPECT_TRUE(input.IsConnected(type));
    input.Update(); // it is sampled all the same
    host.Focus(true);
    EXPECT_EQ(Key(A), Held);
    EXPECT_THAT(Sticks(), ElementsAre(ANALOG_RIGHT, ANALOG_NONE, ANALOG_RIGHT, ANALOG_NONE));
}

TEST_F(Pad, UnpluggedItRestsAndItsButtonsKeepTheirEdges) {
    EXPECT_TRUE(input.IsConnected(type));
    pad->Buttons(A, true);
    pad->Triggers(255, 255);
    pad->LeftStick(20000, 0);
    pad->RightStick(20000, 0);
    Update();
    pad.reset();
    for (int i = 0; i < 3; ++i) {
        Update();
        EXPECT_FALSE(input.IsConnected(type));
        EXPECT_EQ(Key(A), (Is{false, true, false}));
        EXPECT_THAT(Sticks(), Each(ANALOG_NONE));
        EXPECT_FALSE(input.TriggerLeftStatus(type, nullptr));
        input.vibrateTrigger(type, 1.0);
    }
}

TEST_F(Pad, KeyboardHasKeysAndNothingElse) {
    pad->Buttons(All, true);
    pad->Triggers(255, 255);
    pad->LeftStick(20000, 20000);
    pad->RightStick(20000, 20000);
    host.Key('A', true);
    Update();
    type = CONTROL_KEYBOARD;
    EXPECT_EQ(Key('A'), Down);
    EXPECT_EQ(Key('B'), Up);
    EXPECT_FALSE(input.IsConnected(type));
    EXPECT_THAT(Sticks(), Each(ANALOG_NONE));
    EXPECT_FALSE(input.TriggerLeftStatus(type, nullptr) || input.TriggerRightStatus(type, nullptr));
    input.vibrateTrigger(type, 9.0);
    EXPECT_EQ(pad->LeftMotor(), 0);
}

TEST_F(Pad, FourPadsAreToldApart) {
    std::vector<std::unique_ptr<VornPlatform::VirtualPad>> more;
    for (int i = 0; i < 3; ++i)
        more.push_back(std::make_unique<VornPlatform::VirtualPad>());
    Update();
    for (const auto& one : more) {
        one->Buttons(A, true);
        Update();
        for (const ControlType each : {CONTROL_PAD1, CONTROL_PAD2, CONTROL_PAD3, CONTROL_PAD4}) {
            const bool own = one->Index() + 1 == each;
            EXPECT_TRUE(input.IsConnected(each));
            EXPECT_EQ(input.IsKeyPressed(each, A), own);
            EXPECT_EQ(input.IsKeyTriggered(each, A), own);
            EXPECT_EQ(CXBOXController(each).IsKeyPressed(A), own);
        }
        one->Buttons(A, false);
    }
}

TEST_F(Pad, VibratesAtFullStrengthUntilTheFirstUpdateAfterItsTime) {
    const auto motors = [this] { return std::pair(pad->LeftMotor(), pad->RightMotor()); };
    const std::pair full(65535, 65535), off(0, 0);
    std::int64_t now = 100 * ClockFrequency;
    const auto at = [&](std::int64_t later) {
        VornPlatform::HoldClock(now + later);
        Update();
        return motors();
    };
    VornPlatform::HoldClock(now);
    input.vibrateTrigger(type, 0.5);
    EXPECT_EQ(motors(), full);
    EXPECT_EQ(at(0), full);
    EXPECT_EQ(at(ClockFrequency / 2 - 1), full);
    VornPlatform::HoldClock(now + ClockFrequency);
    EXPECT_EQ(motors(), full); // nobody has looked yet
    EXPECT_EQ(at(ClockFrequency / 2), off);

    input.vibrateTrigger(type, 0.0);
    EXPECT_EQ(motors(), full);
    EXPECT_EQ(at(ClockFrequency / 2), off);

    // A second one starts its time anew.
    now += 10 * ClockFrequency;
    VornPlatform::HoldClock(now);
    input.vibrateTrigger(type, 1.0);
    EXPECT_EQ(at(ClockFrequency / 2), full);
    input.vibrateTrigger(type, 1.0);
    EXPECT_EQ(at(ClockFrequency * 3 / 2 - 1), full);
    EXPECT_EQ(at(ClockFrequency * 3 / 2), off);

    // A weaker one lasts as long as the time that runs, which here is none.
    CXBOXController own(type);
    own.Vibrate(1000, 40000);
    EXPECT_EQ(motors(), std::pair(1000, 40000));
    own.Update();
    EXPECT_EQ(motors(), off);
    own.vibrateTrigger(1.0);
    own.Vibrate(1000, 40000);
    own.Update();
    EXPECT_EQ(motors(), std::pair(1000, 40000));
}

/// What a pad was set to in a frame, and what the rules make of two of them.
struct PlainPad {
    unsigned int buttons = 0;
    std::array<int, 4> axes{}; // left X and Y, right X and Y

    static AnalogMovement Direction(int x, int y) {
        static constexpr AnalogMovement names[3][3] = {
            {ANALOG_DOWN_LEFT, ANALOG_DOWN, ANALOG_DOWN_RIGHT},
            {ANALOG_LEFT, ANALOG_NONE, ANALOG_RIGHT},
            {ANALOG_UP_LEFT, ANALOG_UP, ANALOG_UP_RIGHT}};
        return names[y + 1][x + 1];
    }
    static int Side(int value) { return value > 7849 ? 1 : value < -7849 ? -1 : 0; }
    static int Crossed(int value, int before) {
        const int side = Side(value);
        return side * before < 7849 ? side : 0; // how far out on that side it was
    }
    AnalogMovement Move(std::size_t stick) const {
        return Direction(Side(axes[stick]), Side(axes[stick + 1]));
    }
    AnalogMovement Triggered(std::size_t stick, const PlainPad& before) const {
        return Direction(Crossed(axes[stick], before.axes[stick]),
                         Crossed(axes[stick + 1], before.axes[stick + 1]));
    }
};

TEST_F(Pad, RandomSticksAndButtonsReadAsTheTwoLastFramesSay) {
    std::mt19937 random(5);
    const std::vector<int> values = {0,     100,   7848,  7849,   7850,  -7848,
                                     -7849, -7850, 20000, -20000, 32767, -32768};
    PlainPad now, before;
    bool focused = true;
    for (int frame = 0; frame < 2000; ++frame) {
        before = now;
        if (random() % 20 == 0) {
            focused = !focused;
            host.Focus(focused);
        }
        const unsigned int button = All & (1u << random() % 16);
        now.buttons ^= button;
        pad->Buttons(button & now.buttons, true);
        pad->Buttons(button & ~now.buttons, false);
        for (int& axis : now.axes)
            axis = random() % 2 == 0 ? axis : values[random() % values.size()];
        pad->LeftStick(now.axes[0], now.axes[1]);
        pad->RightStick(now.axes[2], now.axes[3]);
        Update();

        SCOPED_TRACE(frame);
        for (unsigned int key = 1; key <= All; key <<= 1) {
            const bool is = now.buttons & key, was = before.buttons & key, edge = key & Tracked;
            ASSERT_EQ(Key(key),
                      focused ? (Is{is, edge && is && !was, edge && !is && was}) : Released)
                << key;
        }
        std::array<AnalogMovement, 4> sticks{};
        if (focused)
            sticks = {now.Move(0), now.Triggered(0, before), now.Move(2), now.Triggered(2, before)};
        ASSERT_EQ(Sticks(), sticks);
    }
}

} // namespace
