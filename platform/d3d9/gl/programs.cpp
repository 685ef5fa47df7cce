// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/programs.hpp"

namespace VornPlatform {

namespace {

GLuint Compile(GLenum stage, const std::string& source) {
    const GLuint shader = glCreateShader(stage);
    const char* text = source.c_str();
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    return shader;
}

} // namespace

GLuint LinkProgram(const std::string& vertexSource, const std::string& pixelSource) {
    const GLuint shaders[] = {Compile(GL_VERTEX_SHADER, vertexSource),
                              Compile(GL_FRAGMENT_SHADER, pixelSource)};
    GLuint program = glCreateProgram();
    for (const GLuint shader : shaders)
        glAttachShader(program, shader);
    glLinkProgram(program);
    for (const GLuint shader : shaders) {
        glDetachShader(program, shader);
        glDeleteShader(shader);
    }
    GLint linked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked != GL_TRUE) {
        glDeleteProgram(program);
        program = 0;
    }
    return program;
}

Program& Programs::Of(const FixedFunctionKey& key) {
    if (const auto found = mPrograms.find(key.Packed()); found != mPrograms.end())
        return found->second;
    // What may raise comes before there is an entry.
    const std::string vertexSource = VertexSourceOf(key), pixelSource = PixelSourceOf(key);
    Program& program = mPrograms[key.Packed()];
    program.key = key;
    program.name = LinkProgram(vertexSource, pixelSource);
    return program;
}

void Programs::Free() {
    for (const auto& [key, program] : mPrograms)
        glDeleteProgram(program.name);
    mPrograms.clear();
}

} // namespace VornPlatform
