// SPDX-License-Identifier: MIT
#include "tools/view/steer.hpp"

#include "tools/view/panel.hpp"

#include "vorn/input/input_manager.hpp"
#include "vorn/render/graphic.hpp"

#include <algorithm>
#include <cmath>

namespace View {
namespace {

constexpr float DegreesPerPixel = 0.35f;
constexpr float KeyDegrees = 90.0f; // (unit: 1 / second)
constexpr float Notch = 1.12f;

void SteerByMouse(Orbit& orbit) {
    auto& input = *Vorn::InputManager::Instance();
    Vorn::Point2 moved;
    input.GetMouseMovement(moved);
    // Left of the window the place is a large number.
    if (std::abs(moved.x) > 2000 || std::abs(moved.y) > 2000)
        return;
    if (input.MmouseIsPressed(VK_LBUTTON) && !input.MmouseIsTrigger(VK_LBUTTON))
        orbit.Turn(moved.x * DegreesPerPixel, moved.y * DegreesPerPixel);
    if (input.MmouseIsPressed(VK_RBUTTON) || input.MmouseIsPressed(VK_MBUTTON)) {
        const auto height =
            static_cast<float>(std::max(1u, Vorn::Graphic::Instance()->BackBufferHeight()));
        orbit.Pan(-moved.x / height, moved.y / height);
    }
    if (input.MmouseIsScrolled())
        orbit.Zoom(std::pow(Notch, static_cast<float>(input.MmouseScrollCurr()) / 120.0f));
}

void Toggle(bool& on) {
    on = !on;
}

} // namespace

Wish Steer(Viewer& viewer, float dt) {
    auto& input = *Vorn::InputManager::Instance();
    const auto hit = [&input](unsigned int key) {
        return input.IsKeyTriggered(Vorn::CONTROL_KEYBOARD, key);
    };
    const auto held = [&input](unsigned int more, unsigned int less) {
        return (input.IsKeyPressed(Vorn::CONTROL_KEYBOARD, more) ? 1.0f : 0.0f) -
               (input.IsKeyPressed(Vorn::CONTROL_KEYBOARD, less) ? 1.0f : 0.0f);
    };
    Orbit& orbit = viewer.Orbit();
    SteerByMouse(orbit);
    orbit.Turn(held(VK_LEFT, VK_RIGHT) * KeyDegrees * dt, held(VK_UP, VK_DOWN) * KeyDegrees * dt);

    const std::pair<unsigned int, bool*> switches[] = {
        {'G', &viewer.shown.grid},     {'B', &viewer.shown.bones},   {'V', &viewer.shown.volumes},
        {'W', &viewer.shown.wire},     {'N', &viewer.shown.normals}, {'T', &viewer.shown.texture},
        {VK_TAB, &viewer.shown.panel}, {VK_SPACE, &viewer.playing}};
    for (const auto& [key, on] : switches)
        if (hit(key))
            Toggle(*on);
    if (hit('F') || hit(VK_HOME))
        viewer.FrameAll();
    if (hit('R'))
        viewer.Restart();
    if (hit('1'))
        orbit.Set(-90, 0);
    if (hit('2'))
        orbit.Set(0, 0);
    if (hit('3'))
        orbit.Set(-90, 89);
    if (hit(VK_ESCAPE))
        return CloseMenus() ? Wish::Nothing : Wish::Quit;
    return hit('P') ? Wish::Save : Wish::Nothing;
}

} // namespace View
