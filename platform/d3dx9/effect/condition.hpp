// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3dx9/effect/macros.hpp"

namespace VornPlatform {

/// The value of an `#if`: tokens with macros and `defined` replaced. Names that are left are 0.
/// What is wrong with it raises std::invalid_argument with a text for the author.
bool IsConditionTrue(const std::vector<FileToken>& tokens);

} // namespace VornPlatform
