// SPDX-License-Identifier: MIT
#include "platform/control/recording_file.hpp"
#include "platform/control/vorn_platform.hpp"
#include "platform/win32/clock.hpp"
#include "platform/window/held_keys.hpp"
#include "platform/window/input_state.hpp"
#include "platform/window/pump.hpp"
#include "platform/window/session.hpp"
#include "platform/window/window.hpp"

#include <SDL.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace VornPlatform {

namespace {

int OrdinalOf(HWND window) {
    const std::vector<HWND> windows = LiveWindows();
    const auto found = std::find(windows.begin(), windows.end(), window);
    return found == windows.end() ? 0 : static_cast<int>(found - windows.begin()) + 1;
}

HWND WindowAt(int ordinal) {
    const std::vector<HWND> windows = LiveWindows();
    const auto index = static_cast<std::size_t>(ordinal - 1); // wraps for none
    return index < windows.size() ? windows[index] : nullptr;
}

class Recorder : public InputListener {
public:
    void Begin(const std::string& path) {
        mPath = path;
        mLines = RecordingHead;
        mMessages.clear();
        mCounter = 0;
        mStream = std::ofstream(path, std::ios::binary);
        if (!mStream)
            throw std::runtime_error("cannot open file: " + path);
        WriteState();
        OnFrameEnd();
        ListenToInput(this);
    }
    // False if not all could be written.
    bool End() {
        ListenToInput(nullptr);
        OnEventEnd();
        Flush();
        mStream.close();
        return !mStream.fail();
    }
    // A game that crashes leaves its recording up to the frame before.
    void Flush() {
        mStream.write(mLines.data(), static_cast<std::streamsize>(mLines.size()));
        mStream.flush();
        mLines.clear();
    }
    const std::string& Path() const { return mPath; }

    void OnKey(int virtualKey, WORD state) override {
        mLines += Line(RecordedKey{virtualKey, state});
    }
    void OnCursor(POINT position) override { mLines += Line(RecordedCursor{position}); }
    void OnPad(DWORD index, const PadAnswer& answer) override {
        mLines += Line(RecordedPad{index, answer});
    }
    void OnMessage(const MSG& message) override {
        mMessages += Line(RecordedMessage{OrdinalOf(message.hwnd), message});
    }
    // The host meets the first message of an event when all its changes are made.
    void OnEventEnd() override {
        if (mMessages.empty())
            return;
        mLines += mMessages;
        mLines += EventLine;
        mMessages.clear();
    }
    void OnCounter(std::int64_t counts) override {
        mLines += CounterLine(counts - std::exchange(mCounter, counts));
    }
    void OnFrameEnd() override {
        OnEventEnd();
        mLines += FrameLine;
        Flush();
    }

private:
    void WriteState() {
        const InputState& input = Input();
        for (std::size_t i = 0; i < input.keys.size(); ++i)
            if (input.keys[i])
                OnKey(static_cast<int>(i), input.keys[i]);
        for (std::size_t i = 0; i < input.pads.size(); ++i)
            if (input.pads[i].connected)
                OnPad(static_cast<DWORD>(i), input.pads[i]);
        OnCursor(input.cursor);
    }

    std::string mPath, mLines, mMessages;
    std::ofstream mStream;
    std::int64_t mCounter = 0;
};

// A desktop's first word is that a window has the focus; without a desktop it has it from the
// start.
bool ComesFromDesktop(const Recording& recording) {
    for (const RecordedFrame& frame : recording)
        for (const RecordedItem& item : frame.items)
            if (const auto* recorded = std::get_if<RecordedMessage>(&item);
                recorded && recorded->message.message == WM_ACTIVATE)
                return LOWORD(recorded->message.wParam) != WA_INACTIVE;
    return false;
}

class Player : public InputSource {
public:
    void Begin(Recording recording) {
        mRecording = std::move(recording);
        mTellsFocus = ComesFromDesktop(mRecording);
        mFrame = mItem = mAsked = 0;
        mAhead = false;
        Answered(RunningCounter());

        ReleaseKeys(nullptr, 0);
        TakeInputFrom(this);
        for (int key = 0; key < 256; ++key)
            SetKey(key, 0);
        for (DWORD index = 0; index < 4; ++index)
            SetPad(index, {});
        // The first frame is the state at the start.
        while (Next()) {
        }
    }

    void End() override {
        TakeInputFrom(nullptr);
        mRecording.clear();
        ContinueCounter(mAnswer + (RunningCounter() - mAnsweredAt));
        ReleaseKeys(ActiveWindow(), 0);
        if (VideoRuns())
            SetLocks(SDL_GetModState());
        ActivateFocused();
    }

    bool Next() override {
        const RecordedFrame& frame = mRecording[mFrame];
        const bool any = mItem < frame.items.size();
        if (any)
            takeEvent(frame);
        else if (mFrame + 1 < mRecording.size())
            ++mFrame, mItem = mAsked = 0;
        else
            mAsked = frame.counters.size(); // the host was quicker then
        return any;
    }

    // A host that asks more often than it did goes on by the machine's clock, and waits where that
    // has run ahead of the recording.
    std::int64_t Counter() override {
        const RecordedFrame& frame = mRecording[mFrame];
        if (mAsked == frame.counters.size()) {
            mAhead = true;
            return Answered(mAnswer + (RunningCounter() - mAnsweredAt));
        }
        const std::int64_t recorded = frame.counters[mAsked++];
        return Answered(mAhead ? std::max(recorded, mAnswer) : recorded);
    }

    bool IsOver() const override {
        const RecordedFrame& frame = mRecording[mFrame];
        return mFrame + 1 == mRecording.size() && mItem == frame.items.size() &&
               mAsked == frame.counters.size();
    }

    bool TellsFocus() const override { return mTellsFocus; }

    void operator()(const RecordedMessage& recorded) const {
        MSG message = recorded.message;
        message.hwnd = WindowAt(recorded.window);
        if (!message.hwnd)
            return; // it is gone already, or not there yet
        if (message.message == WM_ACTIVATE)
            message.hwnd->active = LOWORD(message.wParam) != WA_INACTIVE;
        PostInput(message);
    }
    void operator()(const RecordedKey& key) const { SetKey(key.virtualKey, key.state); }
    void operator()(const RecordedPad& pad) const { SetPad(pad.index, pad.answer); }
    void operator()(const RecordedCursor& cursor) const { SetPointer(cursor.position); }
    void operator()(const RecordedEventEnd&) const {}

private:
    // Whole, so that the host meets its first message when the others are queued: what the host
    // posts then comes behind them.
    void takeEvent(const RecordedFrame& frame) {
        while (mItem < frame.items.size()) {
            const RecordedItem& item = frame.items[mItem++];
            std::visit(*this, item);
            if (std::holds_alternative<RecordedEventEnd>(item))
                return;
        }
    }

    std::int64_t Answered(std::int64_t counts) {
        mAnswer = counts;
        mAnsweredAt = RunningCounter();
        return counts;
    }

    Recording mRecording;
    std::size_t mFrame = 0, mItem = 0, mAsked = 0;
    bool mAhead = false, mTellsFocus = false;
    std::int64_t mAnswer = 0, mAnsweredAt = 0;
};

// Never destroyed: objects that die after this file's may still ask the counter.
Recorder& TheRecorder() {
    static Recorder& recorder = *new Recorder;
    return recorder;
}
Player& ThePlayer() {
    static Player& player = *new Player;
    return player;
}

void EndAtExit() {
    static const bool done = [] {
        return std::atexit([] {
                   if (Listener() && !TheRecorder().End())
                       std::fprintf(stderr, "cannot write file: %s\n",
                                    TheRecorder().Path().c_str());
                   if (Source())
                       ThePlayer().End();
               }) == 0;
    }();
    static_cast<void>(done);
}

std::string TextOf(const std::string& path) {
    std::error_code error;
    std::ifstream stream;
    if (std::filesystem::is_regular_file(path, error))
        stream.open(path, std::ios::binary);
    if (!stream.is_open())
        throw std::runtime_error("cannot open file: " + path);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

} // namespace

void RecordInput(const std::string& path) {
    StopInput();
    EndAtExit();
    StartPads(); // so that their coming up is not part of the recording
    TheRecorder().Begin(path);
}

void PlayInput(const std::string& path) {
    if (Listener())
        TheRecorder().Flush(); // it may be the same file
    Recording recording = ReadRecording(TextOf(path), path);
    StopInput();
    EndAtExit();
    ThePlayer().Begin(std::move(recording));
}

bool IsPlayingInput() {
    return Source() && !Source()->IsOver();
}

void StopInput() {
    if (Source())
        ThePlayer().End();
    if (Listener() && !TheRecorder().End())
        throw std::runtime_error("cannot write file: " + TheRecorder().Path());
}

} // namespace VornPlatform
