// SPDX-License-Identifier: MIT
#include "platform/window/cursors.hpp"

namespace VornPlatform {
HCURSOR ShowCursorPicture(HCURSOR) {
    return nullptr;
}
void ShowPointer(bool) {}
void DropCursors() {}
} // namespace VornPlatform
