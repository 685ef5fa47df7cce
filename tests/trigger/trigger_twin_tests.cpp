// SPDX-License-Identifier: MIT
//
// A manager through hours of random frames and key events, beside the rules in their simplest form.
#include "trigger_world.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <random>

namespace {

using namespace TriggerTests;

/// Creates the entity `id`, or waits, or does nothing.
struct Command {
    int id = 0;
    std::optional<double> wait;
};

struct PlainTrigger {
    std::string event;
    double seconds = 0.0;
    unsigned int key = 0;
    std::vector<Command> commands;
    bool done = false;
    std::optional<double> left; // of an interval that has been started
};

struct PlainAction {
    std::deque<Command> commands;
    double wait = 0.0;
};

class PlainManager {
public:
    std::vector<PlainTrigger> triggers;
    std::vector<PlainAction> actions;
    double elapsed = 0.0;
    std::vector<int> created;
    std::array<int, 5> fired{}; // in the order of Events

    inline static const std::array<std::string, 5> Events = {
        "TIME_ELAPSED", "TIME_INTERVAL", "KEY_TRIGGERED", "KEY_PRESSED", "KEY_RELEASED"};

    void Key(const std::string& event, unsigned int key) {
        for (const PlainTrigger& trigger : triggers)
            if (trigger.event == event && trigger.key == key)
                fire(trigger);
    }
    void Update(double dt) {
        elapsed += dt;
        for (PlainTrigger& trigger : triggers) {
            if (trigger.event == "TIME_ELAPSED" && !trigger.done && elapsed > trigger.seconds) {
                trigger.done = true;
                fire(trigger);
            }
        }
        for (PlainTrigger& trigger : triggers)
            if (trigger.event == "TIME_INTERVAL" && trigger.seconds > 0.0)
                countDown(trigger, dt);
        for (PlainAction& action : actions)
            step(action, dt);
        std::erase_if(actions, [](const PlainAction& action) { return action.commands.empty(); });
    }

private:
    void fire(const PlainTrigger& trigger) {
        actions.push_back({{trigger.commands.begin(), trigger.commands.end()}, 0.0});
        ++fired[static_cast<std::size_t>(std::ranges::find(Events, trigger.event) -
                                         Events.begin())];
    }
    void countDown(PlainTrigger& trigger, double dt) {
        if (!trigger.left) {
            trigger.left = trigger.seconds;
            return;
        }
        *trigger.left -= dt;
        if (*trigger.left < 0.0) {
            trigger.left = trigger.seconds;
            fire(trigger);
        }
    }
    void step(PlainAction& action, double dt) {
        if (action.commands.empty())
            return;
        action.wait -= dt;
        if (action.wait >= 0.0)
            return;
        const Command command = action.commands.front();
        action.commands.pop_front();
        action.wait = command.wait.value_or(-1.0);
        if (command.id > 0)
            created.push_back(command.id);
    }
};

/// Hands out one entity again and again: only what is done to it counts.
class OneSpawnPool : public Vorn::EntityPoolBase {
public:
    OneSpawnPool() {
        mSpawn.born = [this](Spawn& spawn) {
            created.push_back(static_cast<int>(spawn.Position().y));
        };
    }
    void LoadMaster(const std::string&, unsigned int) override {}
    Vorn::Entity* LoadVariant(const std::string&) override { return nullptr; }
    void Return(Vorn::Entity*) override {}
    Vorn::Entity* Fetch(const std::string&) override { return &mSpawn; }

    std::vector<int> created;

private:
    Spawn mSpawn;
};

class TriggerTwin : public TriggerTest {
protected:
    TriggerTwin() { factory.Register("one", &ones); }

    std::size_t Below(std::size_t count) { return random() % count; }

    /// The same trigger for both.
    void PushRandom() {
        static const std::vector<std::pair<std::string, double>> times = {
            {"0.25", 0.25}, {"0.5", 0.5}, {"1", 1.0},   {"2.5", 2.5},  {"0.1", 0.1},
            {"7.3", 7.3},   {"0", 0.0},   {"-1", -1.0}, {"1e-3", 1e-3}};
        PlainTrigger trigger;
        trigger.event = PlainManager::Events[Below(5)];
        std::string parameter;
        if (trigger.event == "TIME_ELAPSED") {
            trigger.seconds = static_cast<double>(Below(4 * 3600)) * 0.25;
            parameter = std::to_string(trigger.seconds); // has six digits, enough for quarters
        } else if (trigger.event == "TIME_INTERVAL") {
            std::tie(parameter, trigger.seconds) = times[Below(times.size())];
        } else {
            trigger.key = static_cast<unsigned int>('A' + Below(3));
            parameter = static_cast<char>(trigger.key + (Below(2) == 0 ? 32 : 0));
        }
        Texts lines;
        for (std::size_t count = Below(6); count > 0; --count) {
            const std::size_t kind = Below(8);
            if (kind < 4) {
                trigger.commands.push_back({++ids, {}});
                lines.push_back("CREATE_ENTITY w one POSITION 0 " + std::to_string(ids) + " 0");
            } else if (kind < 7) {
                const auto& [text, seconds] = times[Below(times.size())];
                trigger.commands.push_back({0, seconds});
                lines.push_back("WAIT " + text);
            } else {
                trigger.commands.emplace_back();
                lines.emplace_back(Below(2) == 0 ? "SING a song" : "");
            }
        }
        plain.triggers.push_back(trigger);
        manager.Push(Load(trigger.event + ' ' + parameter, lines));
    }
    void RaiseRandom() {
        const auto key = static_cast<unsigned int>('A' + Below(4));
        const std::size_t event = 2 + Below(3);
        plain.Key(PlainManager::Events[event], key);
        event == 2   ? Raise<Key_Triggered>(manager, key)
        : event == 3 ? Raise<Key_Pressed>(manager, key)
                     : Raise<Key_Released>(manager, key);
    }
    /// From 0 to 2, in stretches of one kind: fractions that add up exactly, even steps, anything.
    double RandomStep(std::size_t kind) {
        const double share = static_cast<double>(random()) / 4294967296.0;
        switch (kind) {
        case 0:
            return static_cast<double>(Below(9)) * 0.25;
        case 1:
            return 0.125;
        case 2:
            return 1.0 / 60.0;
        default:
            return Below(10) == 0 ? 0.0 : 2.0 * share * share;
        }
    }

    std::mt19937 random{4242};
    OneSpawnPool ones;
    PlainManager plain;
    int ids = 0;
};

TEST_F(TriggerTwin, FiresAndRunsAsThePlainRulesSayForHours) {
    for (int i = 0; i < 30; ++i)
        PushRandom();
    std::size_t kind = 0, total = 0, busiest = 0;
    double time = 0.0;
    for (int frame = 0; time < 2.0 * 3600.0; ++frame) {
        if (frame % 250 == 0)
            kind = Below(4);
        if (frame % 500 == 0)
            PushRandom();
        if (Below(5000) == 0) {
            manager.ResetTimeElapsed();
            plain.elapsed = 0.0;
        }
        for (std::size_t events = Below(8) == 0 ? Below(4) : 0; events > 0; --events)
            RaiseRandom();
        const double dt = RandomStep(kind);
        manager.Update(dt);
        plain.Update(dt);
        ASSERT_EQ(ones.created, plain.created) << "frame " << frame << ", step " << dt;
        total += plain.created.size();
        busiest = std::max(busiest, plain.created.size());
        ones.created.clear();
        plain.created.clear();
        time += dt;
    }
    EXPECT_GT(total, 20'000u);
    EXPECT_GT(busiest, 5u);
    EXPECT_THAT(plain.fired, testing::Each(testing::Gt(2)));
}

} // namespace
