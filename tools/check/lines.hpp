// SPDX-License-Identifier: MIT
#pragma once

#include "tools/check/form.hpp"

namespace Check {

/// An element of "Event", and one of "Action", of a trigger script.
void CheckEvent(const Table& table, const JsonText& text, const Json::Value& line,
                Findings& findings);
void CheckCommand(const Table& table, const JsonText& text, const Json::Value& line,
                  Findings& findings, std::vector<Reference>& references);

} // namespace Check
