// SPDX-License-Identifier: MIT
#include "platform/control/vorn_overlay.hpp"

namespace VornPlatform {

namespace {

constinit ScreenOverlay* current = nullptr;

} // namespace

void SetOverlay(ScreenOverlay* overlay) {
    current = overlay;
}

ScreenOverlay* GetOverlay() {
    return current;
}

} // namespace VornPlatform
