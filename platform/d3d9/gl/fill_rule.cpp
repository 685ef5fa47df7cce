// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/fill_rule.hpp"
#include "platform/d3d9/gl/programs.hpp"

namespace VornPlatform {

namespace {

// Its first edge runs through the centres of row 0 of four rows.
constexpr const char* VertexSource = R"(#version 450 core
void main() {
    const vec2 corners[3] = vec2[3](vec2(0.5, 0.5), vec2(3.5, 0.5), vec2(0.5, 3.5));
    gl_Position = vec4(corners[gl_VertexID] / 2.0 - 1.0, 0.0, 1.0);
}
)";
constexpr const char* PixelSource = R"(#version 450 core
layout(location = 0) out vec4 result;
void main() {
    result = vec4(1.0);
}
)";

} // namespace

bool EdgeBelongsToLaterRow() {
    constexpr GLsizei Size = 4;
    GLuint texture = 0, framebuffer = 0, vertices = 0;
    glCreateTextures(GL_TEXTURE_2D, 1, &texture);
    glTextureStorage2D(texture, 1, GL_RGBA8, Size, Size);
    glCreateFramebuffers(1, &framebuffer);
    glNamedFramebufferTexture(framebuffer, GL_COLOR_ATTACHMENT0, texture, 0);
    glCreateVertexArrays(1, &vertices);
    const GLuint program = LinkProgram(VertexSource, PixelSource);

    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glBindVertexArray(vertices);
    glUseProgram(program);
    glViewport(0, 0, Size, Size);
    glClear(GL_COLOR_BUFFER_BIT);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    GLubyte pixel[4] = {};
    glReadPixels(1, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);

    glUseProgram(0);
    glDeleteProgram(program);
    glDeleteVertexArrays(1, &vertices);
    glDeleteFramebuffers(1, &framebuffer);
    glDeleteTextures(1, &texture);
    return pixel[0] != 0;
}

} // namespace VornPlatform
