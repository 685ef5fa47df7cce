// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace VornPlatform {

/// Calls the function and comes back when it is done, with what it raises. It has far more stack
/// than a host's thread: compilers walk over what they read by recursion, several kilobytes for
/// each loop of a shader. Raises std::bad_alloc where the system has no room for it.
void CallOnLargeStack(const std::function<void()>& function);

} // namespace VornPlatform
