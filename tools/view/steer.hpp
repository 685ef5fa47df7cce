// SPDX-License-Identifier: MIT
#pragma once

#include "tools/view/viewer.hpp"

namespace View {

enum class Wish { Nothing, Save, Quit };

/// Mouse and keys of this frame, as docs/view.md has them; InputManager is up to date.
Wish Steer(Viewer& viewer, float dt);

} // namespace View
