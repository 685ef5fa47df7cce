// SPDX-License-Identifier: MIT
//
// How data files are read and written: JSON texts that are taken as far as they go, and values that
// are read with a default. A component of a host reads its keys with these operations too, so that
// its errors read alike.
//
//   const Json::Value root = Vorn::ParseJson(text);
//   const std::string name = Vorn::JsonString(root, "Name", "nobody");
//   const float speed = Vorn::JsonFloat(root, "Speed", 1.0f);
//
// In every reader `object` is an object or null, whose members are all absent; a key that is absent
// gives `fallback`. A key that is there is converted as JsonCpp does: null to 0, false or an empty
// text, numbers and bools to each other and to text. Where it cannot, DataError is raised; its text
// begins with "Type is not convertible to " and the type, and names the key. A number too large for
// a float becomes an infinity; one too large for a double (1e309) is a fault of the text.
#pragma once

#include "vorn/core/api.hpp"

#include <json/value.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace Vorn {

/// The root object of a text. Of one that breaks off or has a fault, what was read up to there,
/// which may be null; null too for a root that is no object and for nesting beyond JsonCpp's limit
/// of 1000 levels. Comments are passed over and not kept. Numbers are read with a decimal point,
/// whatever locale the host has set.
VORN_API Json::Value ParseJson(std::string_view text);
/// The same. `whole` becomes whether the text had no fault; what follows a root is none.
VORN_API Json::Value ParseJson(std::string_view text, bool& whole);

/// The styled text of a value, with a line end.
VORN_API std::string WriteJson(const Json::Value& value);

/// What JsonMembers does, for any number of keys.
VORN_API void FindJsonMembers(const Json::Value& object, const std::string_view* keys,
                              std::size_t count, const Json::Value** found);

/// The value under `key`; a null value when the key is absent.
VORN_API const Json::Value& JsonMember(const Json::Value& object, std::string_view key);
/// The value under `key` with a check that it is an object or null.
VORN_API const Json::Value& JsonObject(const Json::Value& object, std::string_view key);

VORN_API std::string JsonString(const Json::Value& object, std::string_view key,
                                const std::string& fallback);
VORN_API bool JsonBool(const Json::Value& object, std::string_view key, bool fallback);
VORN_API int JsonInt(const Json::Value& object, std::string_view key, int fallback);
VORN_API unsigned int JsonUInt(const Json::Value& object, std::string_view key,
                               unsigned int fallback);
VORN_API float JsonFloat(const Json::Value& object, std::string_view key, float fallback);

/// The members of an object under several keys, found in one walk along it, which is cheaper than a
/// search for each key. Each is null when the key is absent.
///
///   static constexpr JsonKeys<2> keys{"Type", "Variant"};
///   const auto [type, variant] = JsonMembers(element, keys);
///   const std::string name = JsonString(type, keys[0], "typeless");
template <std::size_t N>
using JsonKeys = std::array<std::string_view, N>;

template <std::size_t N>
std::array<const Json::Value*, N> JsonMembers(const Json::Value& object, const JsonKeys<N>& keys) {
    std::array<const Json::Value*, N> found{};
    FindJsonMembers(object, keys.data(), N, found.data());
    return found;
}

// The conversions for members found so: null gives `fallback`, and `key` is for the text of an
// error.
VORN_API const Json::Value& JsonObject(const Json::Value* value, std::string_view key);
VORN_API std::string JsonString(const Json::Value* value, std::string_view key,
                                const std::string& fallback);
VORN_API int JsonInt(const Json::Value* value, std::string_view key, int fallback);
VORN_API float JsonFloat(const Json::Value* value, std::string_view key, float fallback);

/// A number as it is written: JSON has no infinities and no NaN. An infinity becomes 1e308 with its
/// sign, which JsonFloat reads back as an infinity; a NaN becomes null, which reads back as 0.
VORN_API Json::Value JsonReal(float number);
VORN_API Json::Value JsonReal(double number);

} // namespace Vorn
