// SPDX-License-Identifier: MIT
#include "vorn/core/json.hpp"

#include <json/value.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

using Vorn::JsonFloat;
using Vorn::JsonInt;
using Vorn::JsonString;
using Vorn::ParseJson;
using Vorn::WriteJson;

// From a buffer that ends with the text, so that reading beyond it shows.
Json::Value ParseExactly(std::string_view text) {
    const auto buffer = std::make_unique<char[]>(text.size());
    text.copy(buffer.get(), text.size());
    return ParseJson(std::string_view(buffer.get(), text.size()));
}

std::string Repeat(std::string_view piece, int times) {
    std::string text;
    for (int i = 0; i < times; ++i)
        text += piece;
    return text;
}

struct CommaPunct : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

class CommaLocale {
public:
    CommaLocale() : mComma(std::locale::classic(), new CommaPunct) {
        mBefore = std::locale::global(mComma);
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale() { std::locale::global(mBefore); }
    bool Stands() const { return std::locale() == mComma; }

private:
    std::locale mComma;
    std::locale mBefore;
};

TEST(ParseJson, TakesObjectsOnly) {
    for (const char* text :
         {"", " \n\t ", "null", "true", "3", "1.5", "\"text\"", "[]", "[{\"A\":1}]",
          "// only a comment", "nonsense", "}", "{]", "{\"A\" 1}"}) {
        SCOPED_TRACE(text);
        const Json::Value root = ParseExactly(text);
        EXPECT_TRUE(root.isNull() || (root.isObject() && root.empty())) << root.toStyledString();
        EXPECT_EQ(JsonInt(root, "A", 7), 7);
    }
    for (const char* text : {"null", "true", "3", "\"text\"", "[]", "[{\"A\":1}]"})
        EXPECT_TRUE(ParseExactly(text).isNull()) << text;
    EXPECT_TRUE(ParseExactly("{}").isObject());
    EXPECT_TRUE(ParseJson({}).isNull());
}

TEST(ParseJson, ReadsNestedValues) {
    const Json::Value root = ParseExactly(
        R"({ "Name": "caf\u00e9 \"x\"\n", "List": [1, -2, 3.5, true, null, "t", {"Deep": []}],
             "Twice": 1, "Twice": 2, "": 5 } and what follows)");
    ASSERT_TRUE(root.isObject());
    EXPECT_EQ(JsonString(root, "Name", ""), "caf\xc3\xa9 \"x\"\n");
    ASSERT_EQ(root["List"].size(), 7u);
    EXPECT_EQ(root["List"][1].asInt(), -2);
    EXPECT_EQ(root["List"][2].asDouble(), 3.5);
    EXPECT_TRUE(root["List"][6]["Deep"].isArray());
    EXPECT_EQ(JsonInt(root, "Twice", 0), 2) << "the last of a name counts";
    EXPECT_EQ(JsonInt(root, "", 0), 5);
}

TEST(ParseJson, TextsThatBreakOffGiveNothingOrWhatWasRead) {
    const std::string text = R"({"A": 12345, "B": {"C": [1.5, "x\u0041y"]}, /* c */ "D": true})";
    const std::size_t afterA = text.find(',') + 1;
    for (std::size_t length = 0; length < text.size(); ++length) {
        SCOPED_TRACE(text.substr(0, length));
        Json::Value root;
        ASSERT_NO_THROW(root = ParseExactly(std::string_view(text).substr(0, length)));
        ASSERT_TRUE(root.isNull() || root.isObject());
        if (length > afterA) {
            ASSERT_EQ(JsonInt(root, "A", 12345), 12345);
        }
        EXPECT_FALSE(root.isMember("D") && root["D"].isBool() && length < text.size() - 1);
    }
    EXPECT_EQ(JsonInt(ParseExactly(text), "A", 0), 12345);
}

TEST(ParseJson, TextsWithFaultsRaiseNothing) {
    const std::string text =
        R"({"A": 12345, "B": {"C": [1.5, "x\u0041\n"]}, // c
            "D": true, "E": -1e-5})";
    const std::string letters = "{}[]\",:0123456789.eE+-\\u/*\ntrfalsn \x80\xff";
    std::mt19937 random(254);
    for (int i = 0; i < 5000; ++i) {
        std::string broken = text;
        for (auto faults = 1 + random() % 4; faults > 0; --faults)
            broken[random() % broken.size()] = letters[random() % letters.size()];
        SCOPED_TRACE(broken);
        Json::Value root;
        ASSERT_NO_THROW(root = ParseExactly(broken));
        ASSERT_TRUE(root.isNull() || root.isObject());
    }
}

TEST(ParseJson, DeepNestingCountsAsATextThatDoesNotParse) {
    for (const int depth : {10, 900, 1100, 10'000, 300'000}) {
        SCOPED_TRACE(depth);
        const bool fits = depth < 1000;
        const std::string objects = Repeat("{\"A\":", depth) + "1" + Repeat("}", depth);
        const std::string arrays = "{\"A\":" + Repeat("[", depth) + Repeat("]", depth) + "}";
        const std::string unclosed = "{\"A\":" + Repeat("[{\"B\":", depth / 2);
        for (const std::string& text : {objects, arrays}) {
            const Json::Value root = ParseExactly(text);
            EXPECT_EQ(root.isObject() && root.isMember("A"), fits);
            EXPECT_EQ(root.isNull(), !fits);
        }
        Json::Value root;
        EXPECT_NO_THROW(root = ParseExactly(unclosed));
        if (!fits) {
            EXPECT_TRUE(root.isNull());
        }
    }
}

TEST(ParseJson, CommentsStayWithTheirValues) {
    const std::string text = "// first line\n"
                             "/* before\n   the root */\n"
                             "{\n"
                             "   // of the name\n"
                             "   \"Name\" : \"meadow\", // behind the name\n"
                             "   /* of the list */\n"
                             "   \"List\" : [\n"
                             "      // of the one\n"
                             "      1,\n"
                             "      2 // behind the two\n"
                             "   ]\n"
                             "}\n"
                             "// at the end\n";
    const Json::Value root = ParseExactly(text);
    ASSERT_EQ(JsonString(root, "Name", ""), "meadow");
    EXPECT_EQ(root["Name"].getComment(Json::commentBefore), "// of the name");
    const std::string written = WriteJson(root);
    for (const char* comment :
         {"// first line", "/* before\n   the root */", "// of the name", "// behind the name",
          "/* of the list */", "// of the one", "// behind the two", "// at the end"}) {
        const std::size_t at = written.find(comment);
        ASSERT_NE(at, std::string::npos) << comment << "\nis not in\n" << written;
        EXPECT_EQ(written.find(comment, at + 1), std::string::npos) << comment;
    }
    EXPECT_LT(written.find("// of the name"), written.find("\"Name\""));
    EXPECT_LT(written.find("\"Name\""), written.find("// behind the name"));
    EXPECT_EQ(WriteJson(ParseJson(written)), written);
}

TEST(ParseJson, NullCharactersAreCharacters) {
    using namespace std::string_view_literals;
    const Json::Value root =
        ParseExactly("{\"Raw\": \"a\0b\", \"Escaped\": \"c\\u0000d\", \"K\0X\": 1, \"End\": 2}"sv);
    EXPECT_EQ(JsonString(root, "Raw", ""), std::string("a\0b", 3));
    EXPECT_EQ(JsonString(root, "Escaped", ""), std::string("c\0d", 3));
    EXPECT_EQ(JsonInt(root, "K", 7), 7) << "a longer name is another one";
    EXPECT_EQ(JsonInt(root, "End", 0), 2);

    const Json::Value again = ParseExactly(WriteJson(root));
    EXPECT_EQ(JsonString(again, "Raw", ""), std::string("a\0b", 3));
    EXPECT_EQ(JsonString(again, "Escaped", ""), std::string("c\0d", 3));
    EXPECT_EQ(JsonInt(ParseExactly("{\"A\":1}\0"sv), "A", 0), 1);
}

TEST(ParseJson, ReadsAndWritesADecimalPointInAnyLocale) {
    const std::string text =
        R"({"A": 1.5, "B": -2.25e3, "C": 1234567, "D": 0.001, "E": 1234567.5})";
    const std::string written = WriteJson(ParseJson(text));
    const CommaLocale locale;
    const Json::Value root = ParseExactly(text);
    EXPECT_EQ(JsonFloat(root, "A", 0.0f), 1.5f);
    EXPECT_EQ(JsonFloat(root, "B", 0.0f), -2250.0f);
    EXPECT_EQ(JsonInt(root, "C", 0), 1234567);
    EXPECT_EQ(JsonFloat(root, "D", 0.0f), 0.001f);
    EXPECT_EQ(JsonFloat(root, "E", 0.0f), 1234567.5f);
    EXPECT_EQ(JsonString(root, "A", ""), "1.5");
    EXPECT_EQ(JsonString(root, "C", ""), "1234567");
    EXPECT_EQ(WriteJson(root), written);

    Json::Value made(Json::objectValue);
    made["F"] = Vorn::JsonReal(1234.5678f);
    EXPECT_EQ(JsonFloat(ParseJson(WriteJson(made)), "F", 0.0f), 1234.5678f);
    EXPECT_EQ(JsonFloat(ParseJson(R"({"A": 1,5})"), "A", 1.0f), 1.0f) << "a comma is none";
    EXPECT_TRUE(locale.Stands()) << "the host's locale stays what it was";
}

TEST(ParseJson, BigWholeNumbersKeepTheirDigits) {
    const Json::Value root = ParseExactly(
        R"({"A": 2147483647, "B": -2147483648, "C": 4294967295, "D": 9223372036854775807,
            "E": -9223372036854775808, "F": 18446744073709551615, "G": 18446744073709551616,
            "H": 2147483648, "I": 4294967296, "J": -2147483649})");
    EXPECT_EQ(JsonInt(root, "A", 0), std::numeric_limits<int>::max());
    EXPECT_EQ(JsonInt(root, "B", 0), std::numeric_limits<int>::min());
    EXPECT_EQ(Vorn::JsonUInt(root, "C", 0), 4294967295u);
    EXPECT_EQ(JsonString(root, "D", ""), "9223372036854775807");
    EXPECT_EQ(JsonString(root, "E", ""), "-9223372036854775808");
    EXPECT_EQ(JsonString(root, "F", ""), "18446744073709551615");
    EXPECT_EQ(JsonFloat(root, "F", 0.0f), 18446744073709551616.0f);
    EXPECT_EQ(JsonFloat(root, "G", 0.0f), 18446744073709551616.0f);
    for (const char* key : {"C", "D", "E", "F", "G", "H", "I", "J"})
        EXPECT_THROW(JsonInt(root, key, 0), std::runtime_error) << key;
    for (const char* key : {"B", "D", "E", "F", "G", "I", "J"})
        EXPECT_THROW(Vorn::JsonUInt(root, key, 0), std::runtime_error) << key;
}

TEST(WriteJson, GivesStyledText) {
    EXPECT_EQ(WriteJson(Json::Value()), "null\n");
    EXPECT_EQ(WriteJson(Json::Value(Json::objectValue)), "{}\n");
    Json::Value root(Json::objectValue);
    root["Name"] = "me\"adow\n";
    root["Alive"] = true;
    root["Empty"] = Json::Value();
    root["List"].append(1);
    root["List"].append(-2);
    root["Position"]["X"] = Vorn::JsonReal(0.5f);
    EXPECT_EQ(WriteJson(root), "{\n"
                               "   \"Alive\" : true,\n"
                               "   \"Empty\" : null,\n"
                               "   \"List\" : [ 1, -2 ],\n"
                               "   \"Name\" : \"me\\\"adow\\n\",\n"
                               "   \"Position\" : {\n"
                               "      \"X\" : 0.5\n"
                               "   }\n"
                               "}\n");
    EXPECT_TRUE(ParseExactly(WriteJson(root)) == root);
}

float ThroughText(float number) {
    Json::Value root(Json::objectValue);
    root["N"] = Vorn::JsonReal(number);
    return JsonFloat(ParseExactly(WriteJson(root)), "N", 77.0f);
}

TEST(JsonReal, EveryFloatReadsBackAsItWas) {
    constexpr float Infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(ThroughText(Infinity), Infinity);
    EXPECT_EQ(ThroughText(-Infinity), -Infinity);
    EXPECT_EQ(ThroughText(std::numeric_limits<float>::quiet_NaN()), 0.0f);
    EXPECT_EQ(ThroughText(-std::numeric_limits<float>::quiet_NaN()), 0.0f);
    EXPECT_TRUE(std::signbit(ThroughText(-0.0f)));
    for (const float edge :
         {0.0f, 1.0f, -3.0f, 0.1f, 1e10f, 16777217.0f, 3e9f, std::numeric_limits<float>::max(),
          std::numeric_limits<float>::lowest(), std::numeric_limits<float>::min(),
          std::numeric_limits<float>::denorm_min()})
        EXPECT_EQ(ThroughText(edge), edge);

    std::mt19937 random(3200);
    for (int i = 0; i < 20'000; ++i) {
        const auto bits = static_cast<std::uint32_t>(random());
        float number;
        std::memcpy(&number, &bits, sizeof number);
        if (!std::isfinite(number))
            continue;
        ASSERT_EQ(ThroughText(number), number);
    }
}

TEST(JsonReal, WritesWhatJsonCannotSay) {
    constexpr float Infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(Vorn::JsonReal(Infinity).asDouble(), 1e308);
    EXPECT_EQ(Vorn::JsonReal(-Infinity).asDouble(), -1e308);
    EXPECT_TRUE(Vorn::JsonReal(std::numeric_limits<float>::quiet_NaN()).isNull());
    EXPECT_TRUE(Vorn::JsonReal(2.0f).isDouble());
}

} // namespace
