// SPDX-License-Identifier: MIT
#include "platform/control/recording_file.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>
#include <stdexcept>

namespace VornPlatform {

namespace {

constexpr std::int64_t LargestCounter = std::int64_t(1)
                                        << 62; // years; what follows cannot overflow
constexpr std::int64_t Longs = INT32_MAX, Dwords = UINT32_MAX;

struct Field {
    const char* name;
    std::int64_t min, max;
};

constexpr Field MessageFields[] = {
    {"window", 0, 1'000'000}, {"message", 0, 0xFFFF}, {"wParam", 0, Dwords},
    {"lParam", 0, Dwords},    {"time", 0, Dwords},    {"x", INT32_MIN, Longs},
    {"y", INT32_MIN, Longs},
};
constexpr Field KeyFields[] = {{"code", 0, 255}, {"down", 0, 1}, {"lit", 0, 1}};
constexpr Field CursorFields[] = {{"x", INT32_MIN, Longs}, {"y", INT32_MIN, Longs}};
constexpr Field PadFields[] = {
    {"index", 0, 3},           {"packet", 0, Dwords},      {"buttons", 0, 0xFFFF},
    {"left trigger", 0, 255},  {"right trigger", 0, 255},  {"left x", -32768, 32767},
    {"left y", -32768, 32767}, {"right x", -32768, 32767}, {"right y", -32768, 32767},
};
constexpr Field NoPadFields[] = {{"index", 0, 3}};
constexpr Field CounterFields[] = {{"difference", INT64_MIN, INT64_MAX}};

constexpr std::size_t MostFields = std::size(PadFields);
using Numbers = std::array<std::int64_t, MostFields>;

// What comes from below. Others may carry addresses, which a file must not name.
constexpr UINT InputMessages[] = {
    WM_MOVE,          WM_SIZE,        WM_ACTIVATE,      WM_CLOSE,         WM_KEYDOWN,
    WM_KEYUP,         WM_CHAR,        WM_SYSKEYDOWN,    WM_SYSKEYUP,      WM_MOUSEMOVE,
    WM_LBUTTONDOWN,   WM_LBUTTONUP,   WM_LBUTTONDBLCLK, WM_RBUTTONDOWN,   WM_RBUTTONUP,
    WM_RBUTTONDBLCLK, WM_MBUTTONDOWN, WM_MBUTTONUP,     WM_MBUTTONDBLCLK, WM_MOUSEWHEEL,
    WM_XBUTTONDOWN,   WM_XBUTTONUP,   WM_XBUTTONDBLCLK, WM_MOUSEHWHEEL,
};

class Reader {
public:
    Reader(std::string_view text, const std::string& name) : mRest(text), mName(name) {}

    Recording Read() {
        if (!NextLine() || mLine != RecordingHead.substr(0, RecordingHead.size() - 1))
            Fail("not a recording of input, which begins with \"vorn-input 1\"");
        mRecording.emplace_back();
        while (NextLine())
            ReadLine();
        return std::move(mRecording);
    }

private:
    [[noreturn]] void Fail(const std::string& fault) const {
        throw std::runtime_error(mName + ", line " + std::to_string(mNumber) + ": " + fault);
    }

    bool NextLine() {
        ++mNumber;
        if (mRest.empty() && mNumber > 1)
            return false;
        const std::size_t end = mRest.find('\n');
        if (end == std::string_view::npos)
            Fail(mNumber == 1 ? "not a recording of input, which begins with \"vorn-input 1\""
                              : "the line is cut off");
        mLine = mRest.substr(0, end);
        mRest.remove_prefix(end + 1);
        return true;
    }

    // The next word of the line; empty at its end.
    std::string_view Word() {
        const std::size_t end = std::min(mLine.find(' '), mLine.size());
        const std::string_view word = mLine.substr(0, end);
        mLine.remove_prefix(std::min(end + 1, mLine.size()));
        return word;
    }

    void ReadLine() {
        const std::string_view kind = Word();
        RecordedFrame& frame = mRecording.back();
        if (kind == "frame") {
            Fields({});
            mRecording.emplace_back();
        } else if (kind == "event") {
            Fields({});
            frame.items.emplace_back(RecordedEventEnd{});
        } else if (kind == "message") {
            frame.items.emplace_back(Message(Fields(MessageFields)));
        } else if (kind == "key") {
            const Numbers n = Fields(KeyFields);
            const int state = (n[1] ? KeyDown : 0) | (n[2] ? KeyToggled : 0);
            frame.items.emplace_back(RecordedKey{static_cast<int>(n[0]), static_cast<WORD>(state)});
        } else if (kind == "cursor") {
            const Numbers n = Fields(CursorFields);
            frame.items.emplace_back(
                RecordedCursor{{static_cast<LONG>(n[0]), static_cast<LONG>(n[1])}});
        } else if (kind == "pad") {
            frame.items.emplace_back(Pad(Fields(PadFields)));
        } else if (kind == "nopad") {
            frame.items.emplace_back(
                RecordedPad{static_cast<DWORD>(Fields(NoPadFields)[0]), PadAnswer{}});
        } else if (kind == "counter") {
            frame.counters.push_back(Count(Fields(CounterFields)[0]));
        } else {
            Fail("\"" + std::string(kind.substr(0, 40)) + "\" is no kind of line");
        }
    }

    Numbers Fields(std::span<const Field> fields) {
        Numbers numbers{};
        for (std::size_t i = 0; i < fields.size(); ++i)
            numbers[i] = Number(fields[i]);
        if (!mLine.empty())
            Fail("more than the " + std::to_string(fields.size()) + " numbers of such a line");
        return numbers;
    }

    std::int64_t Number(const Field& field) {
        const std::string_view word = Word();
        std::int64_t number = 0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        const bool inRange = error == std::errc() && number >= field.min && number <= field.max;
        if (word.empty() || end != word.data() + word.size() || !inRange)
            Fail(std::string(field.name) + ": \"" + std::string(word.substr(0, 40)) +
                 "\" is no whole number from " + std::to_string(field.min) + " to " +
                 std::to_string(field.max));
        return number;
    }

    RecordedMessage Message(const Numbers& n) const {
        const auto number = static_cast<UINT>(n[1]);
        if (std::find(std::begin(InputMessages), std::end(InputMessages), number) ==
            std::end(InputMessages))
            Fail("message " + std::to_string(number) + " is not one of input");
        return {static_cast<int>(n[0]),
                {nullptr,
                 number,
                 static_cast<WPARAM>(n[2]),
                 static_cast<LPARAM>(n[3]),
                 static_cast<DWORD>(n[4]),
                 {static_cast<LONG>(n[5]), static_cast<LONG>(n[6])}}};
    }

    static RecordedPad Pad(const Numbers& n) {
        const auto stick = [&n](std::size_t i) { return static_cast<SHORT>(n[i]); };
        RecordedPad pad = {static_cast<DWORD>(n[0]), {}};
        pad.answer.connected = true;
        pad.answer.state.dwPacketNumber = static_cast<DWORD>(n[1]);
        pad.answer.state.Gamepad = {static_cast<WORD>(n[2]),
                                    static_cast<BYTE>(n[3]),
                                    static_cast<BYTE>(n[4]),
                                    stick(5),
                                    stick(6),
                                    stick(7),
                                    stick(8)};
        return pad;
    }

    std::int64_t Count(std::int64_t difference) {
        if (__builtin_add_overflow(mCounter, difference, &mCounter) || mCounter < -LargestCounter ||
            mCounter > LargestCounter)
            Fail("the counter leaves its range");
        return mCounter;
    }

    std::string_view mRest, mLine;
    const std::string& mName;
    std::size_t mNumber = 0;
    std::int64_t mCounter = 0;
    Recording mRecording;
};

std::string Join(std::string line, std::initializer_list<std::int64_t> numbers) {
    for (const std::int64_t number : numbers)
        line += ' ' + std::to_string(number);
    return line + '\n';
}

struct Writer {
    std::string operator()(const RecordedMessage& m) const {
        return Join("message",
                    {m.window, m.message.message, static_cast<std::int64_t>(m.message.wParam),
                     m.message.lParam, m.message.time, m.message.pt.x, m.message.pt.y});
    }
    std::string operator()(const RecordedEventEnd&) const { return std::string(EventLine); }
    std::string operator()(const RecordedKey& key) const {
        return Join("key", {key.virtualKey, (key.state & KeyDown) != 0, key.state & KeyToggled});
    }
    std::string operator()(const RecordedPad& pad) const {
        if (!pad.answer.connected)
            return Join("nopad", {pad.index});
        const XINPUT_GAMEPAD& p = pad.answer.state.Gamepad;
        return Join("pad", {pad.index, pad.answer.state.dwPacketNumber, p.wButtons, p.bLeftTrigger,
                            p.bRightTrigger, p.sThumbLX, p.sThumbLY, p.sThumbRX, p.sThumbRY});
    }
    std::string operator()(const RecordedCursor& cursor) const {
        return Join("cursor", {cursor.position.x, cursor.position.y});
    }
};

} // namespace

Recording ReadRecording(std::string_view text, const std::string& name) {
    return Reader(text, name).Read();
}

std::string Line(const RecordedItem& item) {
    return std::visit(Writer{}, item);
}

std::string CounterLine(std::int64_t difference) {
    return Join("counter", {difference});
}

} // namespace VornPlatform
