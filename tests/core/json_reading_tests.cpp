// SPDX-License-Identifier: MIT
#include "vorn/core/data_error.hpp"
#include "vorn/core/json.hpp"

#include <json/value.h>

#include <gtest/gtest.h>

#include <exception>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Vorn::DataError;

constexpr float Infinity = std::numeric_limits<float>::infinity();

Json::Value Object(const Json::Value& value) {
    Json::Value object(Json::objectValue);
    object["Key"] = value;
    return object;
}

std::vector<Json::Value> AllKinds() {
    Json::Value list(Json::arrayValue);
    list.append(1);
    std::vector<Json::Value> values{Json::Value(),
                                    false,
                                    true,
                                    0,
                                    1,
                                    -1,
                                    42u,
                                    std::numeric_limits<int>::max(),
                                    std::numeric_limits<int>::min(),
                                    std::numeric_limits<unsigned int>::max(),
                                    "",
                                    "text",
                                    "5",
                                    "true",
                                    std::string("a\0b", 3),
                                    Json::Value(Json::arrayValue),
                                    list,
                                    Json::Value(Json::objectValue),
                                    Object(1)};
    for (const Json::Int64 number : {2147483648ll, -2147483649ll, 4294967296ll, -4294967297ll,
                                     16777217ll, 9223372036854775807ll})
        values.emplace_back(number);
    values.emplace_back(std::numeric_limits<Json::UInt64>::max());
    for (const double number :
         {0.0,           -0.0,         0.1,          0.5,
          -0.5,          2.7,          -2.7,         -0.99,
          2147483647.0,  2147483647.5, 2147483648.0, -2147483648.0,
          -2147483648.5, 4294967295.0, 4294967295.5, 1e10,
          1e39,          -1e39,        1e308,        std::numeric_limits<double>::quiet_NaN()})
        values.emplace_back(number);
    return values;
}

/// What JsonCpp itself makes of the value; nothing where it raises.
template <typename Convert>
auto Converted(const Json::Value& value, Convert convert) {
    std::optional<decltype(convert(value))> result;
    try {
        result = convert(value);
    } catch (const std::exception&) {
    }
    return result;
}

template <typename Read, typename Convert>
void ExpectLikeJsonCpp(const std::string& type, Read read, Convert convert) {
    for (const Json::Value& value : AllKinds()) {
        SCOPED_TRACE(type + " of " + value.toStyledString());
        const Json::Value object = Object(value);
        const auto expected = Converted(value, convert);
        try {
            const auto result = read(object);
            ASSERT_TRUE(expected.has_value()) << "gave " << result;
            EXPECT_TRUE(result == *expected || (result != result && *expected != *expected))
                << result << " for " << *expected;
        } catch (const DataError& error) {
            const std::string text = error.what();
            EXPECT_FALSE(expected.has_value()) << text;
            EXPECT_EQ(text.find("Type is not convertible to " + type), 0u) << text;
            EXPECT_NE(text.find("\"Key\""), std::string::npos) << text;
        }
    }
}

TEST(JsonReaders, ConvertWhateverJsonCppConverts) {
    ExpectLikeJsonCpp(
        "string", [](const auto& object) { return Vorn::JsonString(object, "Key", "fallback"); },
        [](const Json::Value& value) { return value.asString(); });
    ExpectLikeJsonCpp(
        "bool", [](const auto& object) { return Vorn::JsonBool(object, "Key", true); },
        [](const Json::Value& value) { return value.asBool(); });
    ExpectLikeJsonCpp(
        "int", [](const auto& object) { return Vorn::JsonInt(object, "Key", 77); },
        [](const Json::Value& value) { return value.asInt(); });
    ExpectLikeJsonCpp(
        "u", [](const auto& object) { return Vorn::JsonUInt(object, "Key", 77u); },
        [](const Json::Value& value) { return value.asUInt(); });
    ExpectLikeJsonCpp(
        "double", [](const auto& object) { return Vorn::JsonFloat(object, "Key", 77.0f); },
        [](const Json::Value& value) { return static_cast<float>(value.asDouble()); });
}

TEST(JsonReaders, ConvertNumbersBoolsAndNullToEachOther) {
    EXPECT_EQ(Vorn::JsonInt(Object(-2.7), "Key", 0), -2);
    EXPECT_EQ(Vorn::JsonInt(Object(true), "Key", 0), 1);
    EXPECT_EQ(Vorn::JsonUInt(Object(2.7), "Key", 0), 2u);
    EXPECT_EQ(Vorn::JsonFloat(Object(true), "Key", 0.0f), 1.0f);
    EXPECT_EQ(Vorn::JsonFloat(Object(-3), "Key", 0.0f), -3.0f);
    EXPECT_TRUE(Vorn::JsonBool(Object(0.5), "Key", false));
    EXPECT_FALSE(Vorn::JsonBool(Object(0), "Key", true));
    EXPECT_EQ(Vorn::JsonString(Object(true), "Key", ""), "true");
    EXPECT_EQ(Vorn::JsonString(Object(-3), "Key", ""), "-3");
    EXPECT_EQ(Vorn::JsonString(Object(2.5), "Key", ""), "2.5");

    const Json::Value null = Object(Json::Value());
    EXPECT_EQ(Vorn::JsonInt(null, "Key", 7), 0);
    EXPECT_EQ(Vorn::JsonUInt(null, "Key", 7), 0u);
    EXPECT_EQ(Vorn::JsonFloat(null, "Key", 7.0f), 0.0f);
    EXPECT_FALSE(Vorn::JsonBool(null, "Key", true));
    EXPECT_EQ(Vorn::JsonString(null, "Key", "fallback"), "");
}

TEST(JsonReaders, NumbersBeyondAFloatBecomeInfinities) {
    const double most = static_cast<double>(std::numeric_limits<float>::max());
    EXPECT_EQ(Vorn::JsonFloat(Object(1e39), "Key", 0.0f), Infinity);
    EXPECT_EQ(Vorn::JsonFloat(Object(-1e308), "Key", 0.0f), -Infinity);
    EXPECT_EQ(Vorn::JsonFloat(Object(most), "Key", 0.0f), std::numeric_limits<float>::max());
    EXPECT_EQ(Vorn::JsonFloat(Object(most * 1.001), "Key", 0.0f), Infinity);
    EXPECT_EQ(Vorn::JsonFloat(Object(1e-60), "Key", 1.0f), 0.0f);
}

TEST(JsonReaders, FallBackWhereTheKeyIsAbsent) {
    for (const Json::Value& object : {Json::Value(), Json::Value(Json::objectValue), Object(1)}) {
        EXPECT_EQ(Vorn::JsonString(object, "key", "fallback"), "fallback");
        EXPECT_TRUE(Vorn::JsonBool(object, "key", true));
        EXPECT_FALSE(Vorn::JsonBool(object, "key", false));
        EXPECT_EQ(Vorn::JsonInt(object, "key", -7), -7);
        EXPECT_EQ(Vorn::JsonUInt(object, "Ke", 4294967295u), 4294967295u);
        EXPECT_EQ(Vorn::JsonFloat(object, "Key2", -Infinity), -Infinity);
        EXPECT_TRUE(Vorn::JsonMember(object, "").isNull());
        EXPECT_TRUE(Vorn::JsonObject(object, "key").isNull());
        EXPECT_FALSE(object.isMember("key")) << "asking makes no member";
    }
}

TEST(JsonReaders, WrongTypesNameTheKey) {
    const Json::Value text = Object("5");
    const auto textOf = [](auto read) -> std::string {
        try {
            read();
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "no error";
    };
    EXPECT_EQ(textOf([&] { Vorn::JsonInt(text, "Key", 0); }),
              "Type is not convertible to int: \"Key\"");
    EXPECT_EQ(textOf([&] { Vorn::JsonFloat(text, "Key", 0); }),
              "Type is not convertible to double: \"Key\"");
    EXPECT_EQ(textOf([&] { Vorn::JsonBool(text, "Key", false); }),
              "Type is not convertible to bool: \"Key\"");
    EXPECT_EQ(textOf([&] { Vorn::JsonString(Object(text), "Key", ""); }),
              "Type is not convertible to string: \"Key\"");
}

TEST(JsonMember, IsTheValueItself) {
    const Json::Value object = Object(Object(3));
    EXPECT_EQ(&Vorn::JsonMember(object, "Key"), &object["Key"]);
    EXPECT_EQ(&Vorn::JsonObject(object, "Key"), &object["Key"]);
    EXPECT_EQ(Vorn::JsonInt(Vorn::JsonObject(object, "Key"), "Key", 0), 3);
    for (const Json::Value& value : AllKinds()) {
        SCOPED_TRACE(value.toStyledString());
        const Json::Value holder = Object(value);
        EXPECT_EQ(&Vorn::JsonMember(holder, "Key"), &holder["Key"]);
        if (value.isNull() || value.isObject()) {
            EXPECT_EQ(&Vorn::JsonObject(holder, "Key"), &holder["Key"]);
            continue;
        }
        try {
            Vorn::JsonObject(holder, "Key");
            ADD_FAILURE() << "no exception";
        } catch (const DataError& error) {
            const std::string text = error.what();
            EXPECT_EQ(text.find("Type is not convertible to "), 0u) << text;
            EXPECT_NE(text.find("\"Key\""), std::string::npos) << text;
        }
    }
}

} // namespace
