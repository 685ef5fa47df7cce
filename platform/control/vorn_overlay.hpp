// SPDX-License-Identifier: MIT
//
// What draws over the picture of a device, at the last moment before it is shown, and hears of
// input before the host does: panels of a tool, messages of a development mode.
//
//   class Panel final : public VornPlatform::ScreenOverlay { ... };
//   Panel panel;
//   VornPlatform::SetOverlay(&panel);
//   ...
//   VornPlatform::SetOverlay(nullptr); // before it dies
//
// Without one, a frame costs a test of a pointer.
#pragma once

union SDL_Event;
struct SDL_Window;

#pragma GCC visibility push(default)

namespace VornPlatform {

class ScreenOverlay {
public:
    /// Each event of the machine, while the host fetches its messages, those too that a recording
    /// keeps from the host. True keeps an event of key, mouse or text from the host; who keeps a
    /// press keeps the release too, and no other.
    virtual bool OnEvent(const SDL_Event& event) = 0;
    /// In each Present of a device that draws, when all draws of the frame are done. A context of
    /// OpenGL 4.5 is current and the back buffer, of this size, is its framebuffer; row 0 is the
    /// top row. All channels may be written, the scissor is off. Left changed may be program,
    /// vertex array, framebuffer, textures and samplers of units, viewport, scissor, fill mode,
    /// culling, depth and blending; all else is put back. `window` is the one that will show it,
    /// or null.
    virtual void OnPresent(SDL_Window* window, int width, int height) = 0;
    /// The context in which it has drawn goes, and its objects there with it. With `lives` it is
    /// current once more; else it is gone already and OpenGL must not be called.
    virtual void OnContextLost(bool lives) = 0;

protected:
    ~ScreenOverlay() = default;
};

/// The overlay from now on, of all devices; null for none. Not owned.
void SetOverlay(ScreenOverlay* overlay);
ScreenOverlay* GetOverlay();

} // namespace VornPlatform

#pragma GCC visibility pop
