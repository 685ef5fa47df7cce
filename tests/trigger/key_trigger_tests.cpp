// SPDX-License-Identifier: MIT
//
// Keys that come in at the bottom and triggers that create entities at the top. The library's own
// manager keeps its triggers, so each test has keys of its own.
#include "tests/support/host.hpp"
#include "trigger_world.hpp"

#include <algorithm>
#include <random>
#include <set>

namespace {

using namespace TriggerTests;

class KeyTrigger : public TriggerTest {
protected:
    /// A trigger that writes `id` as the X of what it creates.
    void Push(const std::string& event, char key, int id) {
        own.Push(Load(event + ' ' + key,
                      {"CREATE_ENTITY w thing POSITION " + std::to_string(id) + " 0 0"}));
    }
    std::vector<int> Created() {
        std::vector<int> ids;
        for (const std::string& text : Frame(own, 0.01))
            ids.push_back(std::stoi(text.substr(text.find("master") + 6)));
        return ids;
    }

    Tests::Host host;
    Vorn::InputManager input;
    Vorn::TriggerManager& own = *Vorn::TriggerManager::Instance();
};

TEST_F(KeyTrigger, KeyPressCreatesAnEntityInTheRunningSceneInTheSameFrame) {
    own.Push(Load("KEY_TRIGGERED g", {"CREATE_ENTITY w other POSITION 4 5 6", "WAIT 0.05",
                                      "CREATE_ENTITY w thing POSITION -1 0 0.5"}));
    std::vector<std::size_t> entities;
    for (int frame = 0; frame < 12; ++frame) {
        if (frame == 2 || frame == 5)
            host.Key('G', frame == 2);
        input.Update();
        own.Update(1.0 / 32.0);
        scenes.Update(1.0f / 32.0f);
        entities.push_back(scene.EntityList().size());
    }
    // Frame 3 reads the wait, 4 and 5 take 1/32 off it each, after which it is below 0.
    EXPECT_THAT(entities, ElementsAre(0, 0, 1, 1, 1, 2, 2, 2, 2, 2, 2, 2));
    ASSERT_EQ(things.made.size(), 1u);
    ASSERT_EQ(others.made.size(), 1u);
    EXPECT_THAT(scene.EntityList(), ElementsAre(&others.made.back(), &things.made.back()));
    EXPECT_EQ(others.made.back().Position(), Vorn::Vector3(4.0f, 5.0f, 6.0f));
    EXPECT_EQ(things.made.back().Position(), Vorn::Vector3(-1.0f, 0.0f, 0.5f));
}

TEST_F(KeyTrigger, AskingForAKeyRaisesItsEventAgain) {
    Push("KEY_TRIGGERED", 'j', 1);
    Push("KEY_PRESSED", 'j', 2);
    Push("KEY_RELEASED", 'j', 3);
    const auto ask = [&] {
        Vorn::KeyIsPressed('J');
        Vorn::KeyIsReleased('J');
        Vorn::KeyIsTriggered('J');
        input.IsKeyTriggered(Vorn::CONTROL_KEYBOARD, 'J');
        input.IsKeyPressed(Vorn::CONTROL_KEYBOARD, 'J');
        input.IsKeyReleased(Vorn::CONTROL_KEYBOARD, 'J');
        Vorn::KeyListener();
        return Created();
    };
    EXPECT_THAT(ask(), IsEmpty());
    host.Key('J', true);
    Vorn::InputUpdate();
    EXPECT_THAT(ask(), ElementsAre(1, 2, 2, 1, 1, 2, 1));
    Vorn::InputUpdate();
    EXPECT_THAT(ask(), ElementsAre(2, 2, 2));
    host.Key('J', false);
    Vorn::InputUpdate();
    EXPECT_THAT(ask(), ElementsAre(3, 3, 3));
    host.Key('J', true);
    Vorn::Engine::isActive = false;
    Vorn::InputUpdate();
    EXPECT_THAT(ask(), IsEmpty()); // everything is released then, but not by a key
    Vorn::Engine::isActive = true;
    EXPECT_THAT(ask(), ElementsAre(2, 1, 1, 2, 1));
    Vorn::InputReset();
    EXPECT_THAT(ask(), IsEmpty());
}

TEST_F(KeyTrigger, RandomKeysRaiseWhatTheirEdgesSay) {
    const std::string digits = "0123456789";
    for (const char digit : digits) { // pushed in an order that is not that of the events
        Push("KEY_RELEASED", digit, digit * 10 + 2);
        Push("KEY_PRESSED", digit, digit * 10 + 1);
        Push("KEY_TRIGGERED", digit, digit * 10);
    }
    std::mt19937 random(7);
    std::set<char> down, before;
    bool focused = true;
    std::size_t total = 0;
    for (int frame = 0; frame < 3000; ++frame) {
        if (random() % 50 == 0) {
            focused = !focused;
            host.Focus(focused);
            down.clear(); // at the loss, all keys come up
        }
        for (std::size_t changes = focused ? random() % 4 : 0; changes > 0; --changes) {
            const char key = digits[random() % digits.size()];
            const bool press = !down.contains(key);
            host.Key(key, press);
            press ? static_cast<void>(down.insert(key)) : static_cast<void>(down.erase(key));
        }
        std::vector<int> expected;
        for (const char key : focused ? digits : "") {
            const bool now = down.contains(key), then = before.contains(key);
            if (now && !then)
                expected.push_back(key * 10);
            if (now)
                expected.push_back(key * 10 + 1);
            if (!now && then)
                expected.push_back(key * 10 + 2);
        }
        before = down;
        input.Update();
        ASSERT_EQ(Created(), expected) << "frame " << frame;
        total += expected.size();
    }
    EXPECT_GT(total, 5000u);
}

} // namespace
