// SPDX-License-Identifier: MIT
#include "trigger_world.hpp"

#include <memory>

namespace {

using namespace TriggerTests;

// Of a host; a script can name it, and has nothing to read it with.
class Own final : public BaseEventType<Own> {
public:
    int magic = 0x4f574e;

    std::istream& LoadData(std::istream& stream) override { return stream; }
    bool CheckCondition(Own&, Own& script, Vorn::Trigger::StaticData&) override {
        return script.magic == magic;
    }
};

} // namespace

template <>
std::string Vorn::Trigger::EventType::BaseEventType<Own>::mName = "OWN";

namespace {

class TriggerScript : public TriggerTest {
protected:
    /// What a script with this event answers to: the frames of half a second in which it fires,
    /// then the key events.
    std::string Answers(const Texts& event) {
        const std::string text = "{\"Event\": " + Array(event) +
                                 R"(, "Action": ["CREATE_ENTITY w thing POSITION 0 0 0"]})";
        std::ostringstream answers;
        Vorn::TriggerManager timed;
        timed.Push(Load(text));
        for (int frame = 1; frame <= 12; ++frame)
            if (!Frame(timed, 0.5).empty())
                answers << ' ' << frame;

        Vorn::TriggerManager keyed;
        keyed.Push(Load(text));
        const double moment = 1e-6;
        keyed.Update(moment);
        for (unsigned int code = 0; code < 256; ++code) {
            Raise<Key_Triggered>(keyed, code);
            const bool triggered = !Frame(keyed, moment).empty();
            Raise<Key_Pressed>(keyed, code);
            const bool pressed = !Frame(keyed, moment).empty();
            Raise<Key_Released>(keyed, code);
            const bool released = !Frame(keyed, moment).empty();
            if (triggered || pressed || released)
                answers << (triggered ? " triggered" : "") << (pressed ? " pressed" : "")
                        << (released ? " released" : "") << ' ' << code;
        }
        return answers.str().empty() ? "" : answers.str().substr(1);
    }
};

TEST_F(TriggerScript, NamesOneEventAndItsParameter) {
    const std::vector<std::pair<Texts, std::string>> rows = {
        // Elapsed: strictly above, once.
        {{"TIME_ELAPSED 2.5"}, "6"},
        {{"TIME_ELAPSED 0.25"}, "1"},
        {{"TIME_ELAPSED -3"}, "1"},
        {{"TIME_ELAPSED"}, "1"},
        {{"TIME_ELAPSED later"}, "1"},
        {{"  TIME_ELAPSED    2e0   9"}, "5"},
        // Interval: the first check starts it, an exact 0 is not over, the overshoot is dropped.
        {{"TIME_INTERVAL 1"}, "4 7 10"},
        {{"TIME_INTERVAL 0.5"}, "3 5 7 9 11"},
        {{"TIME_INTERVAL 0.75"}, "3 5 7 9 11"},
        {{"TIME_INTERVAL 0.25"}, "2 3 4 5 6 7 8 9 10 11 12"},
        {{"TIME_INTERVAL 0"}, ""},
        {{"TIME_INTERVAL -1"}, ""},
        {{"TIME_INTERVAL often"}, ""},
        // Keys: letters of either case and digits, and the characters beside them.
        {{"KEY_TRIGGERED b"}, "triggered 66"},
        {{"KEY_TRIGGERED B"}, "triggered 66"},
        {{"KEY_PRESSED 5"}, "pressed 53"},
        {{"KEY_RELEASED a"}, "released 65"},
        {{"KEY_RELEASED z"}, "released 90"},
        {{"KEY_RELEASED A"}, "released 65"},
        {{"KEY_RELEASED Z"}, "released 90"},
        {{"KEY_PRESSED 0"}, "pressed 48"},
        {{"KEY_PRESSED 9"}, "pressed 57"},
        {{"  KEY_PRESSED   qx  "}, "pressed 81"},
        {{"KEY_PRESSED 65"}, "pressed 54"},
        // Words that are no event.
        {{"time_elapsed 1"}, ""},
        {{"TIME_ELAPSED1"}, ""},
        {{"KEY_TRIGGERED_ b"}, ""},
        {{"CREATE_ENTITY"}, ""},
        {{}, ""},
        // The last element decides; an empty one says nothing.
        {{"TIME_ELAPSED 1", "KEY_PRESSED k"}, "pressed 75"},
        {{"KEY_PRESSED k", "TIME_ELAPSED 1"}, "3"},
        {{"KEY_PRESSED k", "KEY_PRESSED l"}, "pressed 76"},
        {{"TIME_ELAPSED one", "TIME_ELAPSED 1"}, "3"},
        {{"TIME_ELAPSED", "TIME_INTERVAL 1"}, "4 7 10"},
        {{"KEY_PRESSED k", "NOTHING"}, ""},
        {{"KEY_PRESSED k", ""}, "pressed 75"},
        {{"KEY_PRESSED k", "   "}, "pressed 75"},
        {{"", "KEY_PRESSED k"}, "pressed 75"},
    };
    for (const auto& [event, answers] : rows)
        EXPECT_EQ(Answers(event), answers) << Array(event);
}

TEST_F(TriggerScript, CharacterThatIsNoLetterOrDigitIsKeyZero) {
    for (const std::string key : {"+", "/", ":", "@", "[", "`", "{", "~", "\xC3\xA9", "\x7F", ""})
        for (const auto& [event, answer] : {std::pair("KEY_TRIGGERED ", "triggered 0"),
                                            {"KEY_PRESSED ", "pressed 0"},
                                            {"KEY_RELEASED ", "released 0"}})
            EXPECT_EQ(Answers({event + key}), answer) << key;
}

TEST_F(TriggerScript, UnknownLastWordStaysAsTheType) {
    const std::unique_ptr<Vorn::Trigger::Trigger> trigger(
        Load(R"({"Event": ["KEY_PRESSED k", "NOTHING else"], "Action": ["A b", "", " c "]})"));
    EXPECT_EQ(trigger->mEvent.mType, "NOTHING");
    EXPECT_THAT(trigger->mAction.mCommands, ElementsAre("A b", "", " c "));
}

TEST_F(TriggerScript, OfAnEngineEventIsNotTakenForAnEventOfTheHost) {
    const std::string made = R"(, "Action": ["CREATE_ENTITY w thing POSITION 0 0 0"]})";
    Own own;
    for (const bool isOwn : {false, true}) {
        Vorn::TriggerManager heard;
        auto* const trigger = Load(R"({"Event": ["TIME_ELAPSED 30", "OWN 5"])" + made);
        if (isOwn)
            trigger->mEvent.Replace(new Own);
        heard.Push(trigger);
        heard.Raise(own);
        EXPECT_EQ(Frame(heard, 1.0).empty(), !isOwn);
    }
}

TEST_F(TriggerScript, ThatDoesNotParseHasNoEventAndNoCommands) {
    const std::string good =
        R"({"Event": ["KEY_PRESSED k"], "Action": ["CREATE_ENTITY w thing POSITION 0 0 0"]})";
    Texts rows = {"",
                  "null",
                  "5",
                  "\"KEY_PRESSED k\"",
                  "[]",
                  "[\"KEY_PRESSED k\"]",
                  "{}",
                  "@",
                  "{]",
                  "\xFF",
                  "{\"Event\"",
                  std::string(5, '\0'),
                  std::string(10'000, '[')};
    for (std::size_t length = 0; length < good.size(); ++length)
        rows.push_back(good.substr(0, length));
    Texts taken;
    for (const std::string& text : rows) {
        SCOPED_TRACE(text.substr(0, 200));
        Vorn::Trigger::Trigger* trigger = nullptr;
        EXPECT_NO_THROW(trigger = Load(text));
        if (!trigger)
            continue;
        Vorn::TriggerManager own;
        own.Push(trigger);
        Raise<Key_Pressed>(own, 75u);
        if (trigger->mEvent.mData || !trigger->mAction.mCommands.empty() || !Frame(own, 1).empty())
            taken.push_back(text);
    }
    EXPECT_THAT(taken, IsEmpty());
}

TEST_F(TriggerScript, ElementThatIsNoTextRaises) {
    for (const std::string key : {"Event", "Action"})
        for (const std::string value :
             {"5", "1.5", "-1", "true", "{}", "[]", "[\"KEY_PRESSED k\"]"}) {
            SCOPED_TRACE(key + value);
            EXPECT_THROW(Load("{\"" + key + "\": [\"KEY_PRESSED k\", " + value + "]}"),
                         std::runtime_error);
        }
}

TEST_F(TriggerScript, NullElementRaisesToo) {
    for (const std::string key : {"Event", "Action"})
        EXPECT_THROW(Load("{\"" + key + "\": [\"KEY_PRESSED k\", null]}"), std::runtime_error);
}

TEST_F(TriggerScript, WithAnythingInThePlaceOfItsArraysLoadsOrRaises) {
    for (const std::string key : {"Event", "Action", "Condition"})
        for (const std::string value :
             {"5", "true", "null", "\"KEY_PRESSED k\"", "{}", "{\"0\": \"KEY_PRESSED k\"}", "[]",
              "[[]]", "1e300", "18446744073709551616"}) {
            SCOPED_TRACE(key + value);
            try {
                Vorn::TriggerManager own;
                own.Push(Load("{\"" + key + "\": " + value + "}"));
                Raise<Key_Pressed>(own, 75u);
                EXPECT_THAT(Frame(own, 1.0), IsEmpty());
            } catch (const std::runtime_error&) {
                EXPECT_NE(key, "Condition"); // which nobody reads
            }
        }
}

TEST_F(TriggerScript, ThatIsMissingRaises) {
    EXPECT_THROW(Vorn::Trigger::Trigger::LoadScript("none.json"), std::runtime_error);
}

} // namespace
