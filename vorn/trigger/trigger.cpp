// SPDX-License-Identifier: MIT
#include "vorn/trigger/trigger.hpp"

#include "vorn/core/data_error.hpp"
#include "vorn/core/file.hpp"
#include "vorn/core/json.hpp"
#include "vorn/trigger/event_type.hpp"

#include <locale>
#include <memory>
#include <new>
#include <sstream>
#include <utility>
#include <vector>

namespace Vorn::Trigger {

namespace {

std::vector<std::string> ReadLines(const Json::Value& root, const std::string& key) {
    const Json::Value& list = JsonMember(root, key);
    if (!list.isNull() && !list.isArray())
        throw DataError("Type is not convertible to array: \"" + key + '"');
    std::vector<std::string> lines;
    lines.reserve(list.size());
    for (Json::ArrayIndex i = 0; i < list.size(); ++i) {
        if (!list[i].isString())
            throw DataError("Type is not convertible to string: \"" + key + "\"[" +
                            std::to_string(i) + ']');
        lines.push_back(list[i].asString());
    }
    return lines;
}

// The object of T with its parameter, if T is the event that is named.
template <typename T>
bool ReadEventOf(Event& event, std::istream& stream) {
    if (event.mType != T::mName)
        return false;
    auto object = std::make_unique<T>();
    object->LoadData(stream);
    event.Replace(object.release(), &T::mName);
    return true;
}

template <typename... T>
void ReadEventOfOne(Event& event, std::istream& stream) {
    static_cast<void>((ReadEventOf<T>(event, stream) || ...));
}

// The word is taken even if no event has it; the object of an element before it stays.
void ReadEvent(Event& event, const std::string& element) {
    using namespace EventType;
    std::istringstream stream(element);
    stream.imbue(std::locale::classic());
    if (stream >> event.mType)
        ReadEventOfOne<Time_Elapsed, Time_Interval, Key_Triggered, Key_Released, Key_Pressed>(
            event, stream);
}

} // namespace

Event::Event(Event&& event) noexcept
    : mType(std::move(event.mType)), mData(std::exchange(event.mData, nullptr)),
      mDataName(event.mDataName) {}

Event& Event::operator=(Event&& event) noexcept {
    if (this != &event) {
        mType = std::move(event.mType);
        Replace(std::exchange(event.mData, nullptr), event.mDataName);
    }
    return *this;
}

Event::~Event() {
    Replace(nullptr);
}

void Event::Replace(void* data, const std::string* name) {
    ::operator delete(std::exchange(mData, data));
    mDataName = name;
}

Trigger* Trigger::LoadScript(const std::string& name) {
    const std::string path = "data/trigger/" + name;
    const std::string text = TextFromFile(path);
    Trigger* const trigger = ReadingIn([&path] { return path; }, [&] { return FromText(text); });
    trigger->mScript = name;
    return trigger;
}

Trigger* Trigger::FromText(std::string_view text) {
    bool whole = false;
    const Json::Value root = ParseJson(text, whole);
    auto trigger = std::make_unique<Trigger>();
    // Half of a list of commands would do half of what was meant.
    if (!whole)
        return trigger.release();
    for (const std::string& element : ReadLines(root, "Event"))
        ReadEvent(trigger->mEvent, element);
    for (std::string& line : ReadLines(root, "Action"))
        trigger->mAction.mCommands.push_back(std::move(line));
    return trigger.release();
}

} // namespace Vorn::Trigger
