// SPDX-License-Identifier: MIT
//
// What triggers can wait for. An object of one of these classes stands for something that happens,
// and for what a script waits for: the class compares the two.
//
//   Vorn::Trigger::EventType::Key_Pressed key(VK_SPACE);
//   Vorn::TriggerManager::Instance()->Raise(key);
//
//   word in a script   class           parameter
//   TIME_ELAPSED       Time_Elapsed    seconds, a number
//   TIME_INTERVAL      Time_Interval   seconds, a number
//   KEY_TRIGGERED      Key_Triggered   a letter or a digit
//   KEY_RELEASED       Key_Released    a letter or a digit
//   KEY_PRESSED        Key_Pressed     a letter or a digit
//
// A game adds a kind of event of its own: a class derived from BaseEventType of itself, whose
// `mName` is specialised. Scripts do not know the word, so its triggers are put together in code:
//
//   class Door_Opened final : public Vorn::Trigger::EventType::BaseEventType<Door_Opened> { ... };
//   template <>
//   std::string Vorn::Trigger::EventType::BaseEventType<Door_Opened>::mName = "DOOR_OPENED";
//
// Where the class stands in a header, the name is declared there and defined in one source.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/trigger/fwd.hpp"

#include <iosfwd>
#include <string>

namespace Vorn::Trigger::EventType {

/// Base of T, an event class. An object that a trigger holds is freed as plain memory, see Event,
/// so T holds nothing that has to be destroyed.
template <typename T>
class BaseEventType {
public:
    /// The word in scripts and in `Event::mType`.
    static std::string mName;

    /// Reads the parameter, numbers in the stream's locale. What cannot be read leaves the
    /// parameter as it was. Returns the stream.
    virtual std::istream& LoadData(std::istream& stream) = 0;
    /// Whether `script`, the parameter of a trigger, holds for `event`, which just happened. `data`
    /// is what the trigger remembers from one check to the next.
    virtual bool CheckCondition(T& event, T& script, StaticData& data) = 0;

protected:
    ~BaseEventType() = default;
};

template <typename T>
std::string BaseEventType<T>::mName;

/// Once, when more time has passed than the script says: exactly as much is not enough.
class VORN_API Time_Elapsed final : public BaseEventType<Time_Elapsed> {
public:
    /// (unit: seconds) Of an event: the time that has passed in all.
    double mValue = 0.0;

    Time_Elapsed() = default;
    explicit Time_Elapsed(double value) : mValue(value) {}

    std::istream& LoadData(std::istream& stream) override;
    bool CheckCondition(Time_Elapsed& event, Time_Elapsed& script, StaticData& data) override;
};

/// Again and again, each time the interval is over. The first check only starts the count-down; a
/// count-down of exactly 0 is not over, and what goes beyond it is dropped. An interval of 0 or
/// below never fires.
class VORN_API Time_Interval final : public BaseEventType<Time_Interval> {
public:
    /// (unit: seconds) Of an event: the time of this frame.
    double mValue = 0.0;

    Time_Interval() = default;
    explicit Time_Interval(double value) : mValue(value) {}

    std::istream& LoadData(std::istream& stream) override;
    bool CheckCondition(Time_Interval& event, Time_Interval& script, StaticData& data) override;
};

// The three kinds of key events: each time the key is the script's. `mValue` is a virtual key code.
// A script names a letter, whose small form means the same, or a digit; any other character leaves
// 0, which is no key's code.

/// The key went down.
class VORN_API Key_Triggered final : public BaseEventType<Key_Triggered> {
public:
    unsigned int mValue = 0;

    Key_Triggered() = default;
    explicit Key_Triggered(unsigned int value) : mValue(value) {}

    std::istream& LoadData(std::istream& stream) override;
    bool CheckCondition(Key_Triggered& event, Key_Triggered& script, StaticData& data) override;
};

/// The key went up.
class VORN_API Key_Released final : public BaseEventType<Key_Released> {
public:
    unsigned int mValue = 0;

    Key_Released() = default;
    explicit Key_Released(unsigned int value) : mValue(value) {}

    std::istream& LoadData(std::istream& stream) override;
    bool CheckCondition(Key_Released& event, Key_Released& script, StaticData& data) override;
};

/// The key is down: in every frame in which it is held.
class VORN_API Key_Pressed final : public BaseEventType<Key_Pressed> {
public:
    unsigned int mValue = 0;

    Key_Pressed() = default;
    explicit Key_Pressed(unsigned int value) : mValue(value) {}

    std::istream& LoadData(std::istream& stream) override;
    bool CheckCondition(Key_Pressed& event, Key_Pressed& script, StaticData& data) override;
};

template <>
VORN_API std::string BaseEventType<Time_Elapsed>::mName;
template <>
VORN_API std::string BaseEventType<Time_Interval>::mName;
template <>
VORN_API std::string BaseEventType<Key_Triggered>::mName;
template <>
VORN_API std::string BaseEventType<Key_Released>::mName;
template <>
VORN_API std::string BaseEventType<Key_Pressed>::mName;

} // namespace Vorn::Trigger::EventType
