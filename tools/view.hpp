// SPDX-License-Identifier: MIT
//
// `vorn view`: shows a file of a game in a window that goes on showing it while it is edited, or
// saves a picture of it. docs/view.md is its manual.
#pragma once

#include "tools/view/options.hpp"

namespace View {

/// Returns when the window is closed or the picture is written. The exit status of the program: 0,
/// or 1, with a line on standard error, for what cannot be shown.
int Run(const Options& options);

} // namespace View
