// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/context.hpp"
#include "platform/window/session.hpp"
#include "platform/window/window.hpp"

#include <epoxy/gl.h>

#include <utility>

namespace VornPlatform {

namespace {

constexpr const char* OwnerName = "Vorn context";

// The attributes of SDL are those of the whole process; a host may have set them for itself.
class Attributes {
public:
    Attributes() {
        for (auto& [attribute, value] : mBefore)
            SDL_GL_GetAttribute(attribute, &value);
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    ~Attributes() {
        for (const auto& [attribute, value] : mBefore)
            SDL_GL_SetAttribute(attribute, value);
    }

private:
    std::pair<SDL_GLattr, int> mBefore[5] = {{SDL_GL_CONTEXT_MAJOR_VERSION, 0},
                                             {SDL_GL_CONTEXT_MINOR_VERSION, 0},
                                             {SDL_GL_CONTEXT_PROFILE_MASK, 0},
                                             {SDL_GL_CONTEXT_FLAGS, 0},
                                             {SDL_GL_SHARE_WITH_CURRENT_CONTEXT, 0}};
};

SDL_GLContext MakeContext(SDL_Window* window) {
    const Attributes before;
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 4);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 5);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_CORE);
    SDL_GL_SetAttribute(SDL_GL_SHARE_WITH_CURRENT_CONTEXT, 0);
    // An index beyond the vertex buffer reads zeros then. Not every driver has it.
    const int kinds[] = {SDL_GL_CONTEXT_ROBUST_ACCESS_FLAG, 0};
    for (const int flags : kinds) {
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_FLAGS, flags);
        if (SDL_GLContext context = SDL_GL_CreateContext(window))
            return context;
    }
    return nullptr;
}

} // namespace

std::unique_ptr<GlContext> GlContext::Make() {
    if (!StartVideo())
        return nullptr;
    std::unique_ptr<GlContext> context(new GlContext);
    SDL_Window* window = SDL_CreateWindow("", 0, 0, 1, 1, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
    if (!window)
        return nullptr;
    SDL_GLContext made = MakeContext(window);
    if (!made) {
        SDL_DestroyWindow(window);
        return nullptr;
    }
    context->mWindow = window;
    context->mWindowId = SDL_GetWindowID(window);
    context->mContext = made;
    SDL_SetWindowData(window, OwnerName, context.get());
    if (!context->MakeCurrent() || epoxy_gl_version() < 45)
        return nullptr;
    return context;
}

GlContext::~GlContext() {
    if (!lives())
        return;
    SDL_GL_DeleteContext(mContext);
    SDL_DestroyWindow(mWindow);
}

// SDL frees its windows when it ends, and starts to count them anew when it comes up again.
bool GlContext::lives() const {
    if (!mContext || !VideoRuns() || SDL_GetWindowFromID(mWindowId) != mWindow)
        return false;
    return SDL_GetWindowData(mWindow, OwnerName) == this;
}

bool GlContext::becomeCurrent() {
    if (!lives())
        mContext = nullptr;
    return mContext && SDL_GL_MakeCurrent(mWindow, mContext) == 0;
}

SDL_Window* GlContext::MakeCurrentFor(HWND handle) {
    const HWND__* window = LiveWindow(handle);
    if (!window || !window->window || !lives() ||
        (SDL_GetWindowFlags(window->window) & SDL_WINDOW_OPENGL) == 0)
        return nullptr;
    return SDL_GL_MakeCurrent(window->window, mContext) == 0 ? window->window : nullptr;
}

void GlContext::SwapInterval(SDL_Window* window, int interval) {
    const Uint32 id = SDL_GetWindowID(window);
    if (id == mShownId && interval == mInterval)
        return;
    mShownId = id;
    mInterval = interval;
    SDL_GL_SetSwapInterval(interval); // a driver without it shows at once
}

bool TakeErrors() {
    bool any = false;
    // A context that the driver has lost answers with an error for ever.
    for (int i = 0; i < 16 && glGetError() != GL_NO_ERROR; ++i)
        any = true;
    return any;
}

} // namespace VornPlatform
