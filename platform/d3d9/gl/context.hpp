// SPDX-License-Identifier: MIT
//
// A context of OpenGL 4.5 core, with a hidden window of its own: it goes on drawing into its
// framebuffers when the window that shows them is gone.
//
//   if (!context.MakeCurrent())
//       return; // the host has ended SDL, and the context with it
//
// Each context has its objects for itself. All contexts of a thread may be used in turn.
#pragma once

#include <windows.h>

#include <SDL.h>

#include <memory>

namespace VornPlatform {

class GlContext {
public:
    /// Null where there is no OpenGL 4.5. Current afterwards.
    static std::unique_ptr<GlContext> Make();
    GlContext(const GlContext&) = delete;
    GlContext& operator=(const GlContext&) = delete;
    ~GlContext();

    /// Cheap when it is current already. False once SDL has been ended: from then on nothing of
    /// OpenGL may be called, and its objects are gone.
    bool MakeCurrent() {
        return (mContext && SDL_GL_GetCurrentContext() == mContext) || becomeCurrent();
    }
    /// Current for the default framebuffer of this window; null where it has none.
    SDL_Window* MakeCurrentFor(HWND window);
    /// After MakeCurrentFor.
    void SwapInterval(SDL_Window* window, int interval);

private:
    GlContext() = default;
    bool becomeCurrent();
    bool lives() const;

    SDL_Window* mWindow = nullptr;
    Uint32 mWindowId = 0;
    SDL_GLContext mContext = nullptr; // null once it is lost
    // Of the window that was shown last; the interval belongs to both it and the context.
    Uint32 mShownId = 0;
    int mInterval = -1;
};

/// True if a call since the last time went wrong. For creations only: it waits for the driver.
bool TakeErrors();

} // namespace VornPlatform
