// SPDX-License-Identifier: MIT
//
// Dear ImGui in the game's own window, without the game's help: it is drawn over the picture just
// before that is shown, and what is typed and clicked there does not reach the game.
//
//   Vorn::Dev::Overlay overlay;
//   overlay.AddPanel([] {
//       ImGui::Begin("Light");
//       ImGui::SliderFloat("Fog", &fog, 0, 100);
//       ImGui::End();
//   });
//
// Panels run inside Present, once a frame and in the order in which they came. They may call
// whatever does not draw with the device and does not present; an exception leaves Present.
#pragma once

#include <functional>
#include <memory>

namespace Vorn::Dev {

class Overlay {
public:
    /// Takes effect with the next Present of any device that draws. Raises std::logic_error while
    /// another overlay lives.
    Overlay();
    Overlay(const Overlay&) = delete;
    Overlay& operator=(const Overlay&) = delete;
    ~Overlay();

    void AddPanel(std::function<void()> panel);
    /// Asked for each key that goes down, before the panels and the game hear of it; `scancode` is
    /// SDL's. True keeps it from both.
    void OnKey(std::function<bool(int scancode)> handler);
    /// Whether the last frame's panels have the mouse, or the keys: the game does not get them
    /// then.
    bool WantsMouse() const;
    bool WantsKeys() const;

private:
    struct Impl;
    std::unique_ptr<Impl> mImpl;
};

} // namespace Vorn::Dev
