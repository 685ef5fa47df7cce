// SPDX-License-Identifier: MIT
//
// The development mode and Dear ImGui out of the package.
#include "dev/dev_mode.hpp"

#include <imgui.h>

int main() {
    Vorn::Dev::Update();
    Vorn::Dev::Start({.folders = {}});
    Vorn::Dev::AddPanel([] { ImGui::ShowMetricsWindow(); });
    Vorn::Dev::Update();
    Vorn::Dev::Stop();
    return Vorn::Dev::IsOn();
}
