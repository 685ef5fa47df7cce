// SPDX-License-Identifier: MIT
#include "platform/control/vorn_platform.hpp"
namespace VornPlatform {
void StopInput() {}
} // namespace VornPlatform
