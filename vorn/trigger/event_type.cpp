// SPDX-License-Identifier: MIT
#include "vorn/trigger/event_type.hpp"

#include "vorn/trigger/trigger.hpp"

#include <istream>
#include <type_traits>

namespace Vorn::Trigger::EventType {

namespace {

// What Event relies on when it frees an object as plain memory.
template <typename... T>
constexpr bool HoldNothing = (std::is_trivially_destructible_v<T> && ...);
static_assert(HoldNothing<Time_Elapsed, Time_Interval, Key_Triggered, Key_Released, Key_Pressed>);

std::istream& LoadSeconds(std::istream& stream, double& seconds) {
    double read = 0.0;
    if (stream >> read)
        seconds = read;
    return stream;
}

// By the values of ASCII and not by the locale: key codes are the codes of capitals and digits.
std::istream& LoadKey(std::istream& stream, unsigned int& key) {
    char character = 0;
    if (!(stream >> character))
        return stream;
    if (character >= 'a' && character <= 'z')
        character = static_cast<char>(character - 'a' + 'A');
    if ((character >= 'A' && character <= 'Z') || (character >= '0' && character <= '9'))
        key = static_cast<unsigned int>(character);
    return stream;
}

} // namespace

template <>
std::string BaseEventType<Time_Elapsed>::mName = "TIME_ELAPSED";
template <>
std::string BaseEventType<Time_Interval>::mName = "TIME_INTERVAL";
template <>
std::string BaseEventType<Key_Triggered>::mName = "KEY_TRIGGERED";
template <>
std::string BaseEventType<Key_Released>::mName = "KEY_RELEASED";
template <>
std::string BaseEventType<Key_Pressed>::mName = "KEY_PRESSED";

std::istream& Time_Elapsed::LoadData(std::istream& stream) {
    return LoadSeconds(stream, mValue);
}

bool Time_Elapsed::CheckCondition(Time_Elapsed& event, Time_Elapsed& script, StaticData& data) {
    if (!(script.mValue < event.mValue))
        return false;
    data.mDone = true;
    return true;
}

std::istream& Time_Interval::LoadData(std::istream& stream) {
    return LoadSeconds(stream, mValue);
}

bool Time_Interval::CheckCondition(Time_Interval& event, Time_Interval& script, StaticData& data) {
    if (!(data.mInterval > 0.0)) {
        data.mInterval = script.mValue;
        data.mTimer = script.mValue;
        return false;
    }
    data.mTimer -= event.mValue;
    if (!(data.mTimer < 0.0))
        return false;
    data.mTimer = data.mInterval;
    return true;
}

std::istream& Key_Triggered::LoadData(std::istream& stream) {
    return LoadKey(stream, mValue);
}

bool Key_Triggered::CheckCondition(Key_Triggered& event, Key_Triggered& script, StaticData&) {
    return event.mValue == script.mValue;
}

std::istream& Key_Released::LoadData(std::istream& stream) {
    return LoadKey(stream, mValue);
}

bool Key_Released::CheckCondition(Key_Released& event, Key_Released& script, StaticData&) {
    return event.mValue == script.mValue;
}

std::istream& Key_Pressed::LoadData(std::istream& stream) {
    return LoadKey(stream, mValue);
}

bool Key_Pressed::CheckCondition(Key_Pressed& event, Key_Pressed& script, StaticData&) {
    return event.mValue == script.mValue;
}

} // namespace Vorn::Trigger::EventType
