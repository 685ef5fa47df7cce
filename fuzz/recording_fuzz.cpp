// SPDX-License-Identifier: MIT
//
// Any bytes as a recording of input: they raise with a line, or are read, and what is written of
// them reads the same.
#include "fuzz/fuzz.hpp"
#include "platform/control/recording_file.hpp"

#include <stdexcept>

using namespace VornPlatform;

namespace {

std::string Write(const Recording& recording) {
    std::string text(RecordingHead);
    std::int64_t counter = 0;
    for (std::size_t i = 0; i < recording.size(); ++i) {
        if (i > 0)
            text += FrameLine;
        for (const RecordedItem& item : recording[i].items)
            text += Line(item);
        for (const std::int64_t counts : recording[i].counters) {
            text += CounterLine(counts - counter);
            counter = counts;
        }
    }
    return text;
}

} // namespace

FUZZ_TARGET(data, size) {
    Recording recording;
    try {
        recording = ReadRecording({data, size}, "any.input");
    } catch (const std::runtime_error& error) {
        Fuzz::Require(std::string_view(error.what()).starts_with("any.input, line "),
                      "an error without a line");
        return;
    }
    Fuzz::Require(!recording.empty(), "a recording without a frame");
    const std::string text = Write(recording);
    Fuzz::Require(Write(ReadRecording(text, "own.input")) == text, "written and read it differs");
}
