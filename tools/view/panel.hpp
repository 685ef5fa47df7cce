// SPDX-License-Identifier: MIT
#pragma once

#include "tools/view/viewer.hpp"

namespace View {

/// With Dear ImGui, in an overlay's panel: what is written in the world, the faults of the files,
/// and where it is shown, the panel itself.
void DrawPanel(Viewer& viewer);
/// Closes lists and pickers that are open over the panel; false if there were none.
bool CloseMenus();
/// The colours and the face of it; once, when there is an overlay.
void StylePanel();

} // namespace View
