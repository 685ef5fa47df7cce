// SPDX-License-Identifier: MIT
//
// Holds the triggers of a game, checks them against what happens, and runs the commands of those
// that fired.
//
//   auto* triggers = Vorn::TriggerManager::Instance();
//   triggers->Push(Vorn::Trigger::Trigger::LoadScript("ambush.trigger"));
//   Vorn::InputManager::Instance()->Update(); // raises the key events
//   triggers->Update(dt);                     // once a frame, before SceneManager's
//
// It owns the triggers from Push to its own end: nothing removes one, and a change of scene leaves
// them alone. docs/trigger_script.md tells the commands.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"
#include "vorn/trigger/event_type.hpp"
#include "vorn/trigger/fwd.hpp"
#include "vorn/trigger/trigger.hpp"

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

namespace Vorn {

class VORN_API TriggerManager : public Singleton<TriggerManager> {
public:
    TriggerManager();
    /// Frees the triggers, the last one first, and then what is being run.
    ~TriggerManager();

    /// Takes a trigger over, made with `new` and pushed once, and gives it back; null is passed
    /// over.
    Trigger::Trigger* Push(Trigger::Trigger* trigger);

    /// Adds to the time, raises Time_Elapsed with all of it and Time_Interval with `dt`, and then
    /// runs one step of each action, the oldest first (unit: seconds).
    ///
    /// What a command calls may come back here. Actions that it starts take their first step in the
    /// next Update, so triggers that set each other off go on from frame to frame and never hang
    /// one. An Update inside an Update adds to the time and raises, and runs no action.
    ///
    /// If a command raises, it is dropped, and the actions behind it take their step in the next
    /// Update.
    void Update(double dt);

    /// One step of an action: takes `dt` off its wait and, once that is below 0, runs the first
    /// command. The command is off the list before it runs, so one that raises is not tried again.
    /// Nothing happens to an action without commands. A command is dropped without effect if it is
    /// not known or creates an entity without a current scene. Raises std::out_of_range for a type
    /// without a pool, and what the entity's Init raises; the entity is in the scene then.
    void ExecuteAction(Action& action, double dt);

    /// Checks each trigger that waits for this kind of event, in the order of Push, and starts the
    /// actions of those that fire. Triggers that are pushed meanwhile are not checked.
    template <typename T>
    void Raise(T& event);

    /// Calls `visit(trigger)` for each, in the order of Push. Nothing may be pushed meanwhile.
    template <typename Visit>
    void ForEach(Visit visit) {
        for (Trigger::Trigger* trigger : mTriggers)
            visit(*trigger);
    }

    /// Time starts again at 0. Triggers of TIME_ELAPSED that fired stay done.
    void ResetTimeElapsed() { mTimeElapsed = 0.0; }

private:
    void createEntity();
    void wait(Action& action);

    double mTimeElapsed = 0.0;
    std::string mWord;         // just read from the line
    std::stringstream mStream; // the command line that is being read
    std::vector<Trigger::Trigger*> mTriggers;
    std::vector<Action> mActive; // the oldest first
    bool mRunning = false;       // Update walks along mActive
};

template <typename T>
void TriggerManager::Raise(T& event) {
    const std::size_t count = mTriggers.size();
    for (std::size_t i = 0; i < count; ++i) {
        Trigger::Trigger& trigger = *mTriggers[i];
        if (trigger.mDone || !trigger.mEvent.IsFor(Trigger::EventType::BaseEventType<T>::mName))
            continue;
        T& script = *static_cast<T*>(trigger.mEvent.mData);
        if (script.CheckCondition(event, script, trigger) && !trigger.mAction.mCommands.empty())
            mActive.push_back(trigger.mAction);
    }
}

template <>
VORN_API TriggerManager Singleton<TriggerManager>::mSingleton;

} // namespace Vorn
