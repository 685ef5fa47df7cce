// SPDX-License-Identifier: MIT
//
// What the opponents that are written in OpenGL by hand have in common, and both sides of a
// comparison: a context with a target, programs, filled buffers.
#pragma once

#include <d3d9.h>

#include <epoxy/gl.h>

#include <SDL.h>

#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>

namespace Bench {

inline void Require(bool fine, const char* what) {
    if (!fine)
        throw std::runtime_error(what);
}

/// A buffer of Direct3D.
template <typename Buffer>
void Fill(Buffer& buffer, const void* data, std::size_t size) {
    void* memory = nullptr;
    Require(SUCCEEDED(buffer.Lock(0, 0, &memory, 0)), "no memory");
    std::memcpy(memory, data, size);
    buffer.Unlock();
}

/// A context without a display, current, that draws into a square target of its own by the
/// conventions of Direct3D, with a depth buffer and the depth test LEQUAL.
class PlainContext {
public:
    explicit PlainContext(GLsizei side) {
        SDL_SetHint(SDL_HINT_VIDEODRIVER, "offscreen");
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 4);
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 5);
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_CORE);
        Require(SDL_InitSubSystem(SDL_INIT_VIDEO) == 0, "no video");
        mWindow = SDL_CreateWindow("", 0, 0, 1, 1, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
        mContext = SDL_GL_CreateContext(mWindow);
        SDL_GL_ResetAttributes();
        Require(mContext, "no OpenGL");
        makeTarget(side);
    }
    PlainContext(const PlainContext&) = delete;
    PlainContext& operator=(const PlainContext&) = delete;
    ~PlainContext() {
        SDL_GL_DeleteContext(mContext);
        SDL_DestroyWindow(mWindow);
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
    }

    GLuint Framebuffer() const { return mFramebuffer; }

private:
    void makeTarget(GLsizei side) {
        GLuint textures[2] = {};
        glCreateTextures(GL_TEXTURE_2D, 2, textures);
        glTextureStorage2D(textures[0], 1, GL_RGBA8, side, side);
        glTextureStorage2D(textures[1], 1, GL_DEPTH_COMPONENT16, side, side);
        glCreateFramebuffers(1, &mFramebuffer);
        glNamedFramebufferTexture(mFramebuffer, GL_COLOR_ATTACHMENT0, textures[0], 0);
        glNamedFramebufferTexture(mFramebuffer, GL_DEPTH_ATTACHMENT, textures[1], 0);
        glBindFramebuffer(GL_FRAMEBUFFER, mFramebuffer);
        glClipControl(GL_LOWER_LEFT, GL_ZERO_TO_ONE);
        glViewport(0, 0, side, side);
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
    }

    SDL_Window* mWindow = nullptr;
    SDL_GLContext mContext = nullptr;
    GLuint mFramebuffer = 0;
};

/// Links the two stages and takes the program into use.
inline void UseProgram(const std::string& vertex, const std::string& pixel) {
    const GLuint program = glCreateProgram();
    for (const auto& [stage, source] :
         {std::pair(GL_VERTEX_SHADER, &vertex), std::pair(GL_FRAGMENT_SHADER, &pixel)}) {
        const GLuint shader = glCreateShader(static_cast<GLenum>(stage));
        const char* text = source->c_str();
        glShaderSource(shader, 1, &text, nullptr);
        glCompileShader(shader);
        glAttachShader(program, shader);
        glDeleteShader(shader);
    }
    glLinkProgram(program);
    GLint linked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    Require(linked == GL_TRUE, "no program");
    glUseProgram(program);
}

/// Four channels of a byte each where `size` is GL_BGRA.
inline void Attribute(GLuint array, GLuint location, GLint size, GLenum type, GLuint offset,
                      GLuint binding = 0) {
    glEnableVertexArrayAttrib(array, location);
    glVertexArrayAttribBinding(array, location, binding);
    const bool color = size == GL_BGRA;
    glVertexArrayAttribFormat(array, location, size, type, color ? GL_TRUE : GL_FALSE, offset);
}

/// A buffer of a context's lifetime, for writing from then on.
inline std::byte* MapStream(GLuint buffer, GLsizeiptr size) {
    constexpr GLbitfield access = GL_MAP_WRITE_BIT | GL_MAP_PERSISTENT_BIT | GL_MAP_COHERENT_BIT;
    glNamedBufferStorage(buffer, size, nullptr, access);
    void* memory = glMapNamedBufferRange(buffer, 0, size, access);
    Require(memory, "no memory");
    return static_cast<std::byte*>(memory);
}

} // namespace Bench
