// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/gl_backend.hpp"
#include "platform/control/vorn_overlay.hpp"
#include "platform/window/window.hpp"

namespace VornPlatform {

std::unique_ptr<Backend> MakeGlBackend() {
    auto context = GlContext::Make();
    return context ? std::make_unique<GlBackend>(std::move(context)) : nullptr;
}

GlBackend::GlBackend(std::unique_ptr<GlContext> context) : mContext(std::move(context)) {
    mOutput.SetUp();
}

GlBackend::~GlBackend() {
    const bool lives = MakeCurrent();
    if (mOverlaid && GetOverlay())
        GetOverlay()->OnContextLost(lives);
    mStream.Free(lives);
    mRing.Free(lives);
    if (!lives)
        return;
    mFramebuffers.Free();
    mMeshes.Free();
    mPrograms.Free();
    mArrays.Free();
    mUnits.Free();
}

std::unique_ptr<GpuTexture> GlBackend::CreateTexture(const TextureDesc& desc) {
    return MakeCurrent() ? GlTexture::Make(*this, desc) : nullptr;
}

std::unique_ptr<GpuBuffer> GlBackend::CreateBuffer(BufferKind kind, UINT size) {
    return MakeCurrent() ? GlBuffer::Make(*this, kind, size) : nullptr;
}

bool GlBackend::Takes(const ShaderCode& code) {
    const bool isVertex = code.stage == ShaderStage::Vertex;
    const ProgramParts parts = {isVertex ? &code : nullptr, isVertex ? nullptr : &code, {}};
    return !MakeCurrent() || Compiles(isVertex ? GL_VERTEX_SHADER : GL_FRAGMENT_SHADER,
                                      isVertex ? VertexSourceOf(parts) : PixelSourceOf(parts));
}

// OpenGL unbinds what is deleted, and may give the same name again.
void GlBackend::Forget(const GlTexture& texture) {
    Flush();
    if (mFramebuffers.Forget(texture))
        mBoundFramebuffer.Forget();
    mUnits.Forget();
    mPending |= Changed::Target | Changed::Textures;
}

void GlBackend::Forget(const GlBuffer& buffer) {
    ForgetCopies(buffer);
    mArrays.Forget(buffer.Name());
    mPending |= Changed::Vertices | Changed::Indices;
}

void GlBackend::ForgetCopies(const GlBuffer& buffer) {
    Flush();
    if (buffer.HasCopies())
        mMeshes.Forget(buffer, [this](GLuint name) { mArrays.Forget(name); });
}

void GlBackend::Clear(const Target& target, const RECT& rect, DWORD flags, D3DCOLOR color,
                      float z) {
    if (rect.right <= rect.left || rect.bottom <= rect.top || !MakeCurrent())
        return;
    Flush();
    const GLuint framebuffer = mFramebuffers.Of(Of(target.color), Of(target.depth));
    mOutput.Scissor(rect);
    mOutput.Scissor(true);
    mOutput.WriteAll();
    mPending |= Changed::Viewport | Changed::Depth | Changed::Blend;
    if ((flags & D3DCLEAR_TARGET) && target.color) {
        GLfloat channels[4];
        Unpack(color, channels);
        glClearNamedFramebufferfv(framebuffer, GL_COLOR, 0, channels);
    }
    if ((flags & D3DCLEAR_ZBUFFER) && target.depth)
        glClearNamedFramebufferfv(framebuffer, GL_DEPTH, 0, &z);
}

void GlBackend::Present(GpuTexture& backBuffer, UINT width, UINT height, HWND handle,
                        bool waitForDisplay) {
    if (!MakeCurrent())
        return;
    Flush();
    mLonely = 0; // the next frame may be another
    mAloneFor = LeastAlone;
    if (GetOverlay())
        drawOverlay(*GetOverlay(), Of(&backBuffer), width, height, handle);
    SDL_Window* window = mContext->MakeCurrentFor(handle);
    if (!window) {
        glFlush();
        return;
    }
    mContext->SwapInterval(window, waitForDisplay ? 1 : 0);
    int shownWidth = 0, shownHeight = 0;
    SDL_GL_GetDrawableSize(window, &shownWidth, &shownHeight);
    // Row 0 is the top row of ours, and the bottom row of the window.
    mOutput.Scissor(false);
    mPending |= Changed::Viewport;
    const auto w = static_cast<GLint>(width), h = static_cast<GLint>(height);
    const bool same = w == shownWidth && h == shownHeight;
    glBlitNamedFramebuffer(mFramebuffers.Of(Of(&backBuffer), nullptr), 0, 0, 0, w, h, 0,
                           shownHeight, shownWidth, 0, GL_COLOR_BUFFER_BIT,
                           same ? GL_NEAREST : GL_LINEAR);
    SDL_GL_SwapWindow(window);
}

void GlBackend::drawOverlay(ScreenOverlay& overlay, const GlTexture* backBuffer, UINT width,
                            UINT height, HWND handle) {
    glBindFramebuffer(GL_FRAMEBUFFER, mFramebuffers.Of(backBuffer, nullptr));
    mOutput.Scissor(false);
    mOutput.WriteAll();
    // Beforehand, since it may raise.
    forgetState();
    mOverlaid = true;
    const HWND__* window = LiveWindow(handle);
    overlay.OnPresent(window ? window->window : nullptr, static_cast<int>(width),
                      static_cast<int>(height));
}

void GlBackend::forgetState() {
    mOutput.Forget();
    mUnits.Forget();
    mUnits.ForgetSamplers();
    mBoundFramebuffer.Forget();
    mBoundProgram.Forget();
    mBoundArray.Forget();
    mPointSize.Forget();
    mPending = Changed::All;
}

} // namespace VornPlatform
