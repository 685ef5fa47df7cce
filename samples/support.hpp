// SPDX-License-Identifier: MIT
//
// What samples with a window have in common: the loop of a host, and a picture for where nobody
// looks.
//
//   Samples::Loop([&](float dt) { reef.Update(dt); reef.Draw(dt); });
#pragma once

#include "platform/control/vorn_picture.hpp"
#include "vorn/vorn.hpp"

#include <cstdio>
#include <filesystem>
#include <string>

namespace Samples {

/// Calls `frame` with its time (unit: seconds) and shows what it has drawn, until Escape or the
/// cross of the window ends it. F switches between window and full screen.
template <typename Frame>
void Loop(const Frame& frame) {
    auto& engine = *Vorn::Engine::Instance();
    auto& input = *Vorn::InputManager::Instance();
    auto& clock = *Vorn::DeltaClock::Instance();
    for (;;) {
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
        if (engine.IsShutdown() || input.IsKeyTriggered(Vorn::CONTROL_KEYBOARD, VK_ESCAPE))
            return;
        // A device that was lost is the host's to bring back.
        if (!engine.CheckContext())
            engine.Reset();
        clock.Update();
        input.Update();
        if (input.IsKeyTriggered(Vorn::CONTROL_KEYBOARD, 'F'))
            engine.ToggleFullScreen();
        frame(static_cast<float>(clock.GetDeltaTime()));
        Vorn::Graphic::Instance()->Present();
        Sleep(5);
    }
}

/// Where a result goes that nobody has given a place.
inline std::string InTemporaryFolder(const char* name) {
    return (std::filesystem::temp_directory_path() / name).string();
}

/// Writes what has been drawn and not been shown yet.
inline void SavePicture(const std::string& path) {
    VornPlatform::SavePicture(Vorn::Graphic::GetDevice(), path);
    std::printf("wrote %s\n", path.c_str());
}

} // namespace Samples
