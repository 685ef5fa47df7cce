// SPDX-License-Identifier: MIT
//
// Sets of categories and the texts that name them.
//
//   "Wall + Bird"     the bits of both
//   "ALL - Bird"      every bit but Bird's
#pragma once

#include "vorn/core/api.hpp"

#include <bitset>
#include <string>
#include <unordered_map>

namespace Vorn {

using CategorySet = std::bitset<64>;
using CategoryTable = std::unordered_map<std::string, CategorySet>;
using VolumeTable = std::unordered_map<std::string, unsigned int>;

/// The value under a name. Raises std::out_of_range, "invalid unordered_map<K, T> key", for a name
/// that the table lacks.
const CategorySet& FindName(const CategoryTable& table, const std::string& name);
unsigned int FindName(const VolumeTable& table, const std::string& name);

/// Reads names joined by " + " and " - ", from left to right, with exactly one blank on either side
/// of an operator. An empty text is the empty set; a text that ends in an operator ends there.
/// Raises as FindName does.
CategorySet ParseCategories(const CategoryTable& table, const std::string& text);

/// Writes a set by its names, in the table's order: "ALL - Bird" for a set that stands above half
/// of "ALL" as a number, "Wall + Bird" for another, an empty text for the empty set (and for that
/// of "ALL", which therefore does not come back). Raises as FindName does where the table has no
/// "ALL", and std::overflow_error, "bitset<N> overflow", for bits above the low 32.
std::string WriteCategories(const CategoryTable& table, const CategorySet& set);

} // namespace Vorn
