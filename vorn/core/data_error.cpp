// SPDX-License-Identifier: MIT
#include "vorn/core/data_error.hpp"

namespace Vorn {

// Out of line, so that the library holds the one type that hosts catch.
DataError::~DataError() = default;

} // namespace Vorn
