// SPDX-License-Identifier: MIT
#include "vorn/core/json.hpp"

#include "vorn/core/data_error.hpp"
#include "vorn/core/json_faults.hpp"

// JsonCpp marks these two as superseded. They are the ones that give back what they read of a
// broken text, and the styled form that our files are written in.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <json/reader.h>
#include <json/writer.h>

#include <clocale>
#include <cmath>
#include <locale>

namespace Vorn {

namespace {

// JsonCpp reads numbers through a stream, and a stream takes the global locale: in one with a
// decimal comma "1.5" would read as 1.
class ClassicLocale {
public:
    ClassicLocale() {
        if (mHosts == std::locale::classic())
            return;
        mHostsC = std::setlocale(LC_ALL, nullptr);
        std::locale::global(std::locale::classic());
    }
    ClassicLocale(const ClassicLocale&) = delete;
    ClassicLocale& operator=(const ClassicLocale&) = delete;
    ~ClassicLocale() {
        if (mHosts == std::locale::classic())
            return;
        std::locale::global(mHosts);
        std::setlocale(LC_ALL, mHostsC.c_str());
    }

private:
    std::locale mHosts;
    std::string mHostsC;
};

[[noreturn]] void RaiseWrongType(const char* type, std::string_view key) {
    throw DataError(std::string("Type is not convertible to ").append(type) + ": \"" +
                    std::string(key) + '"');
}

void CheckIsObject(const Json::Value& object, std::string_view key) {
    if (!object.isObject() && !object.isNull())
        throw DataError("Type is not convertible to object: it should hold \"" + std::string(key) +
                        '"');
}

// Null when the key is absent. A member that is there and null is a value like any other.
const Json::Value* Find(const Json::Value& object, std::string_view key) {
    CheckIsObject(object, key);
    return object.isNull() ? nullptr : object.find(key.data(), key.data() + key.size());
}

template <typename T, typename Convert>
T Read(const Json::Value* value, std::string_view key, const T& fallback, const char* type,
       Convert convert) {
    if (!value)
        return fallback;
    try {
        return convert(*value);
    } catch (const Json::Exception&) {
        RaiseWrongType(type, key);
    }
}

} // namespace

Json::Value ParseJson(std::string_view text) {
    std::vector<JsonFault> faults;
    return ParseJson(text, faults);
}

Json::Value ParseJson(std::string_view text, bool& whole) {
    std::vector<JsonFault> faults;
    Json::Value root = ParseJson(text, faults);
    whole = faults.empty();
    return root;
}

Json::Value ParseJson(std::string_view text, std::vector<JsonFault>& faults) {
    const ClassicLocale classic;
    Json::Value root;
    Json::Reader reader;
    try {
        // Without its comments, for which JsonCpp takes time by the square of their number.
        if (!reader.parse(text.data(), text.data() + text.size(), root, false))
            for (const Json::Reader::StructuredError& error : reader.getStructuredErrors())
                faults.push_back({static_cast<std::size_t>(error.offset_start), error.message});
    } catch (const Json::Exception& exception) {
        faults.push_back({0, exception.what()});
        return {};
    }
    if (!root.isObject())
        return {};
    return root;
}

std::string WriteJson(const Json::Value& value) {
    return Json::StyledWriter().write(value);
}

#pragma GCC diagnostic pop

void FindJsonMembers(const Json::Value& object, const std::string_view* keys, std::size_t count,
                     const Json::Value** found) {
    CheckIsObject(object, keys[0]);
    const auto last = object.end();
    for (auto member = object.begin(); member != last; ++member) {
        const char* end = nullptr;
        const char* begin = member.memberName(&end);
        const std::string_view name(begin, static_cast<std::size_t>(end - begin));
        for (std::size_t i = 0; i < count; ++i) {
            if (name == keys[i]) {
                found[i] = &*member;
                break;
            }
        }
    }
}

const Json::Value& JsonMember(const Json::Value& object, std::string_view key) {
    const Json::Value* value = Find(object, key);
    return value ? *value : Json::Value::nullSingleton();
}

const Json::Value& JsonObject(const Json::Value* value, std::string_view key) {
    if (!value)
        return Json::Value::nullSingleton();
    if (!value->isNull() && !value->isObject())
        RaiseWrongType("object", key);
    return *value;
}

const Json::Value& JsonObject(const Json::Value& object, std::string_view key) {
    return JsonObject(Find(object, key), key);
}

std::string JsonString(const Json::Value* value, std::string_view key,
                       const std::string& fallback) {
    return Read<std::string>(value, key, fallback, "string",
                             [](const Json::Value& v) { return v.asString(); });
}

std::string JsonString(const Json::Value& object, std::string_view key,
                       const std::string& fallback) {
    return JsonString(Find(object, key), key, fallback);
}

bool JsonBool(const Json::Value& object, std::string_view key, bool fallback) {
    return Read<bool>(Find(object, key), key, fallback, "bool",
                      [](const Json::Value& v) { return v.asBool(); });
}

int JsonInt(const Json::Value* value, std::string_view key, int fallback) {
    return Read<int>(value, key, fallback, "int", [](const Json::Value& v) { return v.asInt(); });
}

int JsonInt(const Json::Value& object, std::string_view key, int fallback) {
    return JsonInt(Find(object, key), key, fallback);
}

unsigned int JsonUInt(const Json::Value& object, std::string_view key, unsigned int fallback) {
    return Read<unsigned int>(Find(object, key), key, fallback, "unsigned int",
                              [](const Json::Value& v) { return v.asUInt(); });
}

float JsonFloat(const Json::Value* value, std::string_view key, float fallback) {
    return Read<float>(value, key, fallback, "double",
                       [](const Json::Value& v) { return static_cast<float>(v.asDouble()); });
}

float JsonFloat(const Json::Value& object, std::string_view key, float fallback) {
    return JsonFloat(Find(object, key), key, fallback);
}

Json::Value JsonReal(float number) {
    return JsonReal(static_cast<double>(number));
}

Json::Value JsonReal(double number) {
    if (std::isnan(number))
        return {};
    if (std::isinf(number))
        return std::copysign(1e308, number);
    return number;
}

} // namespace Vorn
