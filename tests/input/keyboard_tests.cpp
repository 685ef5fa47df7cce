// SPDX-License-Identifier: MIT
#include "tests/support/host.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

using Vorn::InputUpdate;
using Vorn::KeyIsPressed;
using Vorn::KeyIsReleased;
using Vorn::KeyIsTriggered;
using Vorn::KeyListener;
using Vorn::MouseIsPressed;
using Vorn::MouseIsReleased;
using Vorn::MouseIsTriggered;

/// "p", "t" and "r" for what a key is.
std::string Key(unsigned int code) {
    return std::string(KeyIsPressed(code) ? "p" : "") + (KeyIsTriggered(code) ? "t" : "") +
           (KeyIsReleased(code) ? "r" : "");
}
std::string Button(unsigned int code) {
    return std::string(MouseIsPressed(code) ? "p" : "") + (MouseIsTriggered(code) ? "t" : "") +
           (MouseIsReleased(code) ? "r" : "");
}

class Keyboard : public testing::Test {
protected:
    Tests::Host host;
};

TEST_F(Keyboard, WhatHappensBetweenTwoSamplesIsNeverSeen) {
    host.Key('A', true);
    host.Key('A', false);
    host.Key('B', true);
    InputUpdate();
    host.Key('B', false);
    host.Key('B', true);
    EXPECT_EQ(Key('A'), "");
    InputUpdate();
    EXPECT_EQ(Key('A'), "");
    EXPECT_EQ(Key('B'), "p");
}

TEST_F(Keyboard, ResetLetsGoAndAHeldKeyIsTriggeredAgain) {
    host.Key('A', true);
    host.Key('B', true);
    InputUpdate();
    host.Key('B', false);
    InputUpdate();
    Vorn::InputReset();
    EXPECT_EQ(Key('A') + Key('B'), "");
    InputUpdate();
    EXPECT_EQ(Key('A'), "pt");
    EXPECT_EQ(Key('B'), "");
}

TEST_F(Keyboard, ListenerHearsTheLowestKeyThatWentDown) {
    const int leftShift = 160, bracket = 221, quote = 222, f12 = VK_F1 + 11;
    const std::vector<std::pair<std::vector<int>, unsigned int>> rows = {
        {{66, 65}, 65},
        {{VK_TAB, VK_BACK, 'Z'}, VK_BACK},
        {{VK_LBUTTON, VK_MBUTTON}, 0},
        {{VK_RBUTTON, f12}, static_cast<unsigned int>(f12)},
        {{leftShift}, VK_SHIFT},
        {{quote, bracket}, 221},
        {{quote}, 0},
        {{}, 0},
    };
    for (const auto& [keys, heard] : rows) {
        for (const int key : keys)
            host.Key(key, true);
        InputUpdate();
        for (const int key : keys)
            EXPECT_LT(GetKeyState(key), 0) << key;
        EXPECT_EQ(KeyListener(), heard) << testing::PrintToString(keys);
        EXPECT_EQ(KeyListener(), heard);
        InputUpdate();
        EXPECT_EQ(KeyListener(), 0u);
        for (const int key : keys)
            host.Key(key, false);
        InputUpdate();
        EXPECT_EQ(KeyListener(), 0u);
    }
    host.Key('A', true);
    InputUpdate();
    host.Key('B', true);
    InputUpdate();
    EXPECT_EQ(KeyListener(), 66u); // the one that is held does not hide it
}

TEST_F(Keyboard, LosingTheFocusReadsAsLettingGoOfEverything) {
    host.Key('A', true);
    host.Key(VK_LBUTTON, true);
    InputUpdate();
    host.Focus(false);
    for (int i = 0; i < 2; ++i) {
        for (unsigned int code = 0; code < 256; ++code) {
            EXPECT_EQ(Key(code), "r") << code;
            EXPECT_EQ(Button(code), "r") << code;
        }
        EXPECT_EQ(KeyListener(), 0u);
        InputUpdate();
    }
    host.Focus(true);
    InputUpdate();
    EXPECT_EQ(Key('A') + Button(VK_LBUTTON), "");
}

TEST_F(Keyboard, IsSampledWithoutTheFocusToo) {
    auto& engine = *Vorn::Engine::Instance();
    host.Key('A', true);
    engine.IsActive(false);
    InputUpdate();
    engine.IsActive(true);
    EXPECT_EQ(Key('A'), "pt");
    engine.IsActive(false);
    InputUpdate();
    engine.IsActive(true);
    EXPECT_EQ(Key('A'), "p");
}

TEST_F(Keyboard, RandomKeysReadAsTheirSamplesSay) {
    std::vector<int> codes = {VK_LBUTTON, VK_RBUTTON, VK_MBUTTON, VK_BACK, VK_RETURN,
                              VK_ESCAPE,  VK_SPACE,   VK_LEFT,    VK_DOWN};
    for (int code = 'A'; code <= 'Z'; ++code)
        codes.push_back(code);
    std::mt19937 random(11);
    std::set<int> held, now, before;
    for (int frame = 0; frame < 1000; ++frame) {
        for (std::size_t changes = random() % 6; changes > 0; --changes) {
            const int code = codes[random() % codes.size()];
            const bool down = held.insert(code).second;
            if (!down)
                held.erase(code);
            host.Key(code, down);
        }
        InputUpdate();
        before = now;
        now = held;
        unsigned int heard = 0;
        for (int code = 255; code >= 0; --code) {
            const bool is = now.contains(code), was = before.contains(code);
            const std::string reads =
                std::string(is ? "p" : "") + (is && !was ? "t" : "") + (!is && was ? "r" : "");
            const auto key = static_cast<unsigned int>(code);
            ASSERT_EQ(Key(key), code >= 8 ? reads : "") << frame << ' ' << code;
            ASSERT_EQ(Button(key), code < 5 ? reads : "") << frame << ' ' << code;
            if (code >= 8 && is && !was)
                heard = key;
        }
        ASSERT_EQ(KeyListener(), heard) << frame;
    }
}

} // namespace
