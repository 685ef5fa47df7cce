// SPDX-License-Identifier: MIT
#include "vorn/core/data_error.hpp"
#include "vorn/core/json.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <locale>
#include <memory>
#include <random>
#include <sstream>

namespace {

using namespace Vorn;

// From a buffer that ends with the text, so that reading beyond it shows.
Json::Value Parse(std::string_view text) {
    const auto buffer = std::make_unique<char[]>(text.size());
    text.copy(buffer.get(), text.size());
    return ParseJson(std::string_view(buffer.get(), text.size()));
}

TEST(ParseJson, TakesObjectsOnlyAndPassesOverComments) {
    for (const char* text : {"", "null", "true", "3", "\"A\"", "[]", "[{\"A\":1}]", "// comment"})
        EXPECT_TRUE(Parse(text).isNull()) << text;
    EXPECT_EQ(WriteJson(Parse("// of all\n{\"A\": 1, /**/ \"A\": 2 // of A\n} and what follows")),
              "{\n   \"A\" : 2\n}\n");
}

TEST(ParseJson, FaultsInATextRaiseNothingAndKeepWhatWasRead) {
    const std::string text = R"({"A": 12345, "B": {"C": [1.5, "x\u0041y"]}, /* c */ "D": -1e-5})";
    const std::string letters = "{}[]\",:01.eE+-\\u/*\ntrfalsn \x80\xff";
    std::mt19937 random(254);
    for (int i = 0; i < 5000; ++i) {
        std::string broken = text.substr(0, 13 + random() % (text.size() - 12));
        EXPECT_EQ(JsonInt(Parse(broken), "A", 0), 12345) << broken;
        for (auto faults = random() % 4; faults > 0; --faults)
            broken[random() % broken.size()] = letters[random() % letters.size()];
        EXPECT_NO_THROW(Parse(broken)) << broken;
    }
}

TEST(ParseJson, DeepNestingCountsAsATextThatDoesNotParse) {
    for (const std::size_t depth : {900u, 1100u, 300'000u}) {
        const std::string open(depth, '['), close(depth, ']');
        EXPECT_EQ(Parse("{\"A\":" + open + close + "}").isNull(), depth > 1000);
    }
}

struct CommaPunct : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
};

TEST(ParseJson, ReadsAndWritesADecimalPointInAnyLocale) {
    const std::locale comma(std::locale::classic(), new CommaPunct);
    const std::locale before = std::locale::global(comma);
    const Json::Value root = Parse(R"({"A": 1.5, "B": 1234567})");
    EXPECT_EQ(JsonFloat(root, "A", 0), 1.5f);
    EXPECT_EQ(JsonString(root, "A", ""), "1.5");
    EXPECT_EQ(WriteJson(root), "{\n   \"A\" : 1.5,\n   \"B\" : 1234567\n}\n");
    EXPECT_TRUE(std::locale() == comma) << "the host's locale stays what it was";
    std::locale::global(before);
}

TEST(JsonReal, EveryFloatReadsBackAsItWas) {
    const auto throughText = [](float number) {
        Json::Value root;
        root["N"] = JsonReal(number);
        return JsonFloat(Parse(WriteJson(root)), "N", 77);
    };
    for (const float number : {HUGE_VALF, -HUGE_VALF, 3e9f, 16777217.0f})
        EXPECT_EQ(throughText(number), number);
    EXPECT_EQ(throughText(NAN), 0.0f);
    std::mt19937 random(3200);
    for (int i = 0; i < 10'000; ++i) {
        const auto bits = static_cast<std::uint32_t>(random());
        float number;
        std::memcpy(&number, &bits, sizeof number);
        ASSERT_EQ(throughText(number), std::isnan(number) ? 0 : number);
    }
}

// What each reader makes of a value, "!" where it raises: text, bool, int, unsigned int, float.
std::string Readings(const Json::Value& object) {
    std::ostringstream out;
    out << std::boolalpha;
    const auto read = [&](const std::string& type, auto reader) {
        try {
            out << reader() << ' ';
        } catch (const DataError& error) {
            out << "! ";
            EXPECT_EQ(error.what(), "Type is not convertible to " + type + ": \"Key\"");
        }
    };
    read("string", [&] { return "'" + JsonString(object, "Key", "none") + "'"; });
    read("bool", [&] { return JsonBool(object, "Key", true); });
    read("int", [&] { return JsonInt(object, "Key", -7); });
    read("unsigned int", [&] { return JsonUInt(object, "Key", 7); });
    read("double", [&] { return JsonFloat(object, "Key", 0.7f); });
    return out.str();
}

TEST(JsonReaders, ConvertNumbersBoolsAndNullToEachOtherAndNothingElse) {
    EXPECT_EQ(Readings(Json::Value()), "'none' true -7 7 0.7 ");
    EXPECT_EQ(Readings(Parse("{\"key\": 1}")), "'none' true -7 7 0.7 ");
    const std::pair<std::string, std::string> cases[] = {
        {"null", "'' false 0 0 0 "},
        {"true", "'true' true 1 1 1 "},
        {"-3", "'-3' true -3 ! -3 "},
        {"0.5", "'0.5' true 0 0 0.5 "},
        {"2147483648", "'2147483648' true ! 2147483648 2.14748e+09 "},
        {"1e39", "'9.9999999999999994e+38' true ! ! inf "},
        {"\"5\"", "'5' ! ! ! ! "},
        {"{}", "! ! ! ! ! "},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(Readings(Parse("{\"Key\": " + text + "}")), expected) << text;
}

TEST(JsonReaders, ObjectsAreObjectsOrNull) {
    const Json::Value root = Parse(R"({"A": {"B": 3}, "C": null, "D": [1]})");
    EXPECT_EQ(&JsonObject(root, "A"), &root["A"]);
    EXPECT_TRUE(JsonObject(root, "C").isNull() && JsonObject(root, "E").isNull());
    EXPECT_THROW(JsonObject(root, "D"), DataError);
    EXPECT_THROW(JsonMember(root["D"], "A"), DataError);
    const auto [d, e, a] = JsonMembers(root, JsonKeys<3>{"D", "E", "A"});
    EXPECT_TRUE(d == &root["D"] && e == nullptr && a == &root["A"]);
}

TEST(ReadingIn, NamesThePlacesFromTheInsideOutAndLeavesOtherExceptionsAlone) {
    const auto in = [](const char* place, auto read) {
        return ReadingIn([&] { return place; }, read);
    };
    try {
        in("a.scene", [&] { in("E[17]", [] { throw DataError("Fault"); }); });
        ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Fault in E[17] in a.scene");
    }
    EXPECT_EQ(in("", [] { return 3; }), 3);
    EXPECT_THROW(in("", [] { throw 5; }), int);
}

} // namespace
