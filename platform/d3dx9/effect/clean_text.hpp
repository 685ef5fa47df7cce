// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace VornPlatform {

/// A file without comments and without `\` at the ends of lines. What stands on line n stands on
/// line n of the result, up to a directive that goes over several lines: it stands on its first.
/// `file` is for the EffectError of a comment without an end.
std::string CleanText(std::string_view text, const std::string& file);

} // namespace VornPlatform
