// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace Vorn::Dev {

/// Reads a script of "data/trigger/" again, for the triggers that were loaded from it and pushed:
/// they have the new event and commands. One that is done stays done, an interval counts from its
/// start, and what runs goes on. False where there is none. Raises, and changes nothing, for a file
/// with a fault, and for an event that no script can wait for.
bool ReloadTrigger(const std::string& name);

} // namespace Vorn::Dev
