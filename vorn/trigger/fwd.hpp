// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

struct Action;
class TriggerManager;

namespace Trigger {

class Event;
struct Data;
struct Object;
struct StaticData;
struct Trigger;

namespace EventType {

template <typename T>
class BaseEventType;
class Key_Pressed;
class Key_Released;
class Key_Triggered;
class Time_Elapsed;
class Time_Interval;

} // namespace EventType
} // namespace Trigger
} // namespace Vorn
