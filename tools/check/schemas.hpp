// SPDX-License-Identifier: MIT
#pragma once

#include "tools/check/table.hpp"

#include <map>
#include <string>

namespace Check {

/// JSON schemas, draft 7, by file name: "entity.schema.json" and so on.
std::map<std::string, std::string> Schemas(const Table& table);

} // namespace Check
