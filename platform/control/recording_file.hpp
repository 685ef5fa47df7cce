// SPDX-License-Identifier: MIT
//
// The text of a recording: docs/input_recording.md describes it. It is read whole before anything
// of it takes effect.
//
//   const Recording recording = ReadRecording(text, "walk.input");
#pragma once

#include "platform/window/input_state.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace VornPlatform {

struct RecordedMessage {
    int window; // 1 is the oldest that lived then; 0 none
    MSG message;
};
struct RecordedKey {
    int virtualKey;
    WORD state;
};
struct RecordedPad {
    DWORD index;
    PadAnswer answer;
};
struct RecordedCursor {
    POINT position;
};
/// Behind all that one event has changed and queued.
struct RecordedEventEnd {};
using RecordedItem =
    std::variant<RecordedMessage, RecordedKey, RecordedPad, RecordedCursor, RecordedEventEnd>;

struct RecordedFrame {
    std::vector<RecordedItem> items;
    std::vector<std::int64_t> counters;
};
/// The last frame is the one that was not finished; often empty.
using Recording = std::vector<RecordedFrame>;

/// Raises std::runtime_error with name, line and fault.
Recording ReadRecording(std::string_view text, const std::string& name);

// One line each, with its end.
inline constexpr std::string_view RecordingHead = "vorn-input 1\n";
inline constexpr std::string_view EventLine = "event\n";
inline constexpr std::string_view FrameLine = "frame\n";
std::string Line(const RecordedItem& item);
/// `difference` to the answer before, the first to 0.
std::string CounterLine(std::int64_t difference);

} // namespace VornPlatform
