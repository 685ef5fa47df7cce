// SPDX-License-Identifier: MIT
//
// Any bytes as a trigger script: it is read or raises a standard exception, and then runs for some
// frames in a scene, with keys. Its commands end in the frames that they have, also those that
// raise, and afterwards every entity is back in its pool.
#include "fuzz/fuzz.hpp"
#include "worlds/meadow/meadow.hpp"

#include <exception>
#include <memory>
#include <string_view>

namespace {

using Vorn::Trigger::EventType::Key_Pressed;
using Vorn::Trigger::EventType::Key_Released;
using Vorn::Trigger::EventType::Key_Triggered;

template <typename Event>
void Raise(Vorn::TriggerManager& manager, unsigned int key) {
    Event event(key);
    manager.Raise(event);
}

void RunFrame(Vorn::TriggerManager& manager) {
    Raise<Key_Triggered>(manager, 'A');
    Raise<Key_Pressed>(manager, '5');
    Raise<Key_Released>(manager, 'Z');
    try {
        manager.Update(0.5);
    } catch (const std::exception&) {
        // A type without a pool; the frames that follow go on behind it.
    }
    Vorn::SceneManager::Instance()->Update(0.5f);
}

// Without a wait a command takes one step, whatever it is.
void RunAlone(Vorn::TriggerManager& manager, Vorn::Action action) {
    for (std::size_t steps = action.mCommands.size(); steps > 0; --steps) {
        action.mWait = 0.0;
        try {
            manager.ExecuteAction(action, 1.0);
        } catch (const std::exception&) {
            // The command is off the list all the same.
        }
        Fuzz::Require(action.mCommands.size() == steps - 1, "a command did not end");
    }
}

} // namespace

FUZZ_TARGET(data, size) {
    static const Worlds::Meadow meadow;
    static Vorn::Scene scene;
    auto* scenes = Vorn::SceneManager::Instance();
    scenes->SetScene(&scene);
    scenes->Update(0.0f);

    Vorn::TriggerManager manager;
    try {
        std::unique_ptr<Vorn::Trigger::Trigger> trigger(
            Vorn::Trigger::Trigger::FromText(std::string_view(data, size)));
        RunAlone(manager, trigger->mAction);
        manager.Push(trigger.release());
    } catch (const std::exception&) {
        // An element that is no text.
    }
    for (int frame = 0; frame < 12; ++frame)
        RunFrame(manager);
    scenes->UnloadCurrentScene();
    Fuzz::Require(meadow.Out() == 0, "an entity stayed out of its pool");
}
