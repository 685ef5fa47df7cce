// SPDX-License-Identifier: MIT
//
// What a fault in a data file raises: its text begins with the fault and ends with the file.
//
//   Type is not convertible to double: "X" in "Position" in Entities[17] in data/scene/meadow.scene
#pragma once

#include "vorn/core/api.hpp"

#include <stdexcept>
#include <string>
#include <utility>

namespace Vorn {

class VORN_API DataError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    DataError(const DataError&) = default;
    DataError& operator=(const DataError&) = default;
    ~DataError() override;
};

/// Runs `read` and passes its result on. A DataError that leaves it goes on with " in " and
/// `Where()` at its end.
template <typename Read, typename Where>
decltype(auto) ReadingIn(Where&& where, Read&& read) {
    try {
        return std::forward<Read>(read)();
    } catch (const DataError& error) {
        throw DataError(std::string(error.what()) + " in " + std::forward<Where>(where)());
    }
}

} // namespace Vorn
