// SPDX-License-Identifier: MIT
//
// How data files are read and written: JSON texts that are taken as far as they go, and values that are read with a
// default. A component of a host reads its keys with these operations too, so that its errors read alike.
//
//   const Json::Value root = Vorn::ParseJson(text);
//   const std::string name = Vorn::JsonString(root, "Name", "nobody");
//   const float speed = Vorn::JsonFloat(root, "Speed", 1.0f);
//
// In every reader `object` is an object or null, whose members are all absent; a key that is absent gives `fallback`.
// A key that is there is converted as JsonCpp does: null to 0, false or an empty text, numbers and bools to each
// other and to text. Where it cannot, DataError is raised; its text begins with "Type is not convertible to " and the
// type, and names the key. A number too large for a float becomes an infinity.
#pragma once

#include "vorn/core/api.hpp"

#include <json/value.h>

#include <string>
#include <string_view>

namespace Vorn {

/// The root object of a text, or what could be read of it; null for a text that does not parse, a root that is no
/// object, or nesting beyond JsonCpp's limit of 1000 levels. Comments in the text stay with their values. Numbers are
/// read with a decimal point, whatever locale the host has set.
VORN_API Json::Value ParseJson(std::string_view text);

/// The styled text of a value, with a line end.
VORN_API std::string WriteJson(const Json::Value& value);

/// The value under `key`; a null value when the key is absent.
VORN_API const Json::Value& JsonMember(const Json::Value& object, const char* key);
/// The value under `key` with a check that it is an object or null.
VORN_API const Json::Value& JsonObject(const Json::Value& object, const char* key);

VORN_API std::string JsonString(const Json::Value& object, const char* key,
                                const std::string& fallback);
VORN_API bool JsonBool(const Json::Value& object, const char* key, bool fallback);
VORN_API int JsonInt(const Json::Value& object, const char* key, int fallback);
VORN_API unsigned int JsonUInt(const Json::Value& object, const char* key, unsigned int fallback);
VORN_API float JsonFloat(const Json::Value& object, const char* key, float fallback);

/// A number as it is written: JSON has no infinities and no NaN. An infinity becomes 1e308 with its sign, which a
/// float reads back as an infinity; a NaN becomes null, which reads back as 0.
VORN_API Json::Value JsonReal(float number);

} // namespace Vorn
