// SPDX-License-Identifier: MIT
#include "vorn/core/json.hpp"

#include "vorn/core/data_error.hpp"

// JsonCpp marks these two as superseded. They are the ones that give back what they read of a broken text, and the
// styled form that our files are written in.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <json/reader.h>
#include <json/writer.h>

#include <clocale>
#include <cmath>
#include <cstring>
#include <locale>

namespace Vorn {

namespace {

// JsonCpp reads numbers through a stream, and a stream takes the global locale: in one with a decimal comma "1.5"
// would read as 1.
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

// Null when the key is absent. A member that is there and null is a value like any other.
const Json::Value* Find(const Json::Value& object, const char* key) {
    if (object.isObject())
        return object.find(key, key + std::strlen(key));
    if (object.isNull())
        return nullptr;
    throw DataError(std::string("Type is not convertible to object: it should hold \"") + key +
                    '"');
}

template <typename T, typename Convert>
T Read(const Json::Value& object, const char* key, const T& fallback, const char* type,
       Convert convert) {
    const Json::Value* value = Find(object, key);
    if (!value)
        return fallback;
    try {
        return convert(*value);
    } catch (const Json::Exception&) {
        throw DataError(std::string("Type is not convertible to ") + type + ": \"" + key + '"');
    }
}

} // namespace

Json::Value ParseJson(std::string_view text) {
    const ClassicLocale classic;
    Json::Value root;
    Json::Reader reader;
    try {
        reader.parse(text.data(), text.data() + text.size(), root);
    } catch (const Json::Exception&) {
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

const Json::Value& JsonMember(const Json::Value& object, const char* key) {
    const Json::Value* value = Find(object, key);
    return value ? *value : Json::Value::nullSingleton();
}

const Json::Value& JsonObject(const Json::Value& object, const char* key) {
    const Json::Value& value = JsonMember(object, key);
    if (!value.isNull() && !value.isObject())
        throw DataError(std::string("Type is not convertible to object: \"") + key + '"');
    return value;
}

std::string JsonString(const Json::Value& object, const char* key, const std::string& fallback) {
    return Read<std::string>(object, key, fallback, "string",
                             [](const Json::Value& value) { return value.asString(); });
}

bool JsonBool(const Json::Value& object, const char* key, bool fallback) {
    return Read<bool>(object, key, fallback, "bool",
                      [](const Json::Value& value) { return value.asBool(); });
}

int JsonInt(const Json::Value& object, const char* key, int fallback) {
    return Read<int>(object, key, fallback, "int",
                     [](const Json::Value& value) { return value.asInt(); });
}

unsigned int JsonUInt(const Json::Value& object, const char* key, unsigned int fallback) {
    return Read<unsigned int>(object, key, fallback, "unsigned int",
                              [](const Json::Value& value) { return value.asUInt(); });
}

float JsonFloat(const Json::Value& object, const char* key, float fallback) {
    return Read<float>(object, key, fallback, "double", [](const Json::Value& value) {
        return static_cast<float>(value.asDouble());
    });
}

Json::Value JsonReal(float number) {
    if (std::isnan(number))
        return {};
    if (std::isinf(number))
        return std::copysign(1e308, static_cast<double>(number));
    return static_cast<double>(number);
}

} // namespace Vorn
