// SPDX-License-Identifier: MIT
//
// A trigger: an event to wait for and the command lines to run when it happens.
//
//   auto* manager = Vorn::TriggerManager::Instance();
//   manager->Push(Vorn::Trigger::Trigger::LoadScript("ambush.trigger"));
//
// docs/trigger_script.md describes the file. Who makes a trigger owns it, until the manager's Push
// takes it over.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/trigger/fwd.hpp"

#include <deque>
#include <string>
#include <string_view>

namespace Vorn {

/// Command lines that are being run.
struct VORN_API Action {
    /// Those that are still to run, the next one in front.
    std::deque<std::string> mCommands;
    /// Time before the next command (unit: seconds); it runs once this is below 0.
    double mWait = 0.0;
    /// What the last WAIT set (unit: seconds).
    double mWaitLength = 0.0;
};

namespace Trigger {

/// What a trigger remembers from one check to the next.
struct VORN_API StaticData {
    /// The trigger has fired and is not looked at again.
    bool mDone = false;
    /// Count-down of an interval (unit: seconds).
    double mTimer = 0.0;
    /// The interval (unit: seconds); 0 before the first check.
    double mInterval = 0.0;
};

/// The event that a trigger waits for. It owns the object, so it moves and is not copied.
class VORN_API Event {
public:
    /// The event's name. It decides which events are held against the object, so the object is of
    /// the class with this `mName`. A name that is no event's is never looked at, nor one that a
    /// script has put beside an object of another class.
    std::string mType;
    /// An object of an event class, made with `new`, or null, which never fires. It is freed as
    /// plain memory, without its destructor: nobody knows its class any more, the name least of
    /// all, as a script may put any other word beside the object.
    void* mData = nullptr;

    Event() = default;
    /// Takes the object over.
    Event(const std::string& name, void* data) : mType(name), mData(data) {}
    Event(Event&& event) noexcept;
    Event& operator=(Event&& event) noexcept;
    ~Event();

    /// Takes the object over and frees the one that was there. A reader that goes on to other names
    /// tells the `mName` of the object's class.
    void Replace(void* data, const std::string* name = nullptr);
    /// Whether events of the class with this `mName` may be held against the object.
    bool IsFor(const std::string& name) const {
        return mData && mType == name && (!mDataName || mDataName == &name);
    }

private:
    const std::string* mDataName = nullptr; // of the class of mData, where it is known
};

struct VORN_API Trigger : StaticData {
    Event mEvent;
    /// Stays as read: each firing runs a copy.
    Action mAction;
    /// The name that LoadScript was given; empty for a trigger that was made otherwise.
    std::string mScript{};

    /// Reads a script: "data/trigger/" and `name`, which carries its own extension. Raises
    /// std::runtime_error for a file that cannot be opened, and DataError where "Event" or "Action"
    /// is no array or an element of them no text. A text with a fault gives a trigger without
    /// an event object and without commands, and an unknown event one that never fires.
    static Trigger* LoadScript(const std::string& name);
    /// The same from the text of a script.
    static Trigger* FromText(std::string_view text);
};

/// Two names without content; nothing reads or writes them.
struct VORN_API Object {};
struct VORN_API Data {};

} // namespace Trigger
} // namespace Vorn
