// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/programs.hpp"
#include "platform/d3d9/counters.hpp"

#include <algorithm>
#include <utility>

namespace VornPlatform {

namespace {

GLuint Compile(GLenum stage, const std::string& source) {
    const GLuint shader = glCreateShader(stage);
    const char* text = source.c_str();
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    return shader;
}

void UseSampler(Program& program, const std::string& name, const SamplerUse& use) {
    const GLint location = glGetUniformLocation(program.name, name.c_str());
    if (location < 0)
        return; // the driver has found that nothing reads it
    glProgramUniform1i(program.name, location, static_cast<GLint>(use.unit));
    const auto sameUnit = [&](const SamplerUse& other) { return other.unit == use.unit; };
    if (std::none_of(program.samplers.begin(), program.samplers.end(), sameUnit))
        program.samplers.push_back(use);
}

void SetUp(Program& program) {
    const ProgramParts& parts = program.parts;
    program.sharesBlock = ShareBlock(parts);
    program.setsPointSize = SetsPointSize(parts);
    if (!parts.pixel && parts.fixed.textured)
        UseSampler(program, "vp_image", {0, SamplerKind::Flat});
    for (const ShaderCode* code : {parts.vertex, parts.pixel})
        if (code)
            for (const ShaderSampler& sampler : code->samplers)
                UseSampler(program, SamplerName(code->stage, sampler.index),
                           {sampler.index, sampler.kind});
}

// The driver lays the array out as its blocks lie one behind the other.
bool IsAsLaidOut(const Program& program) {
    const GLuint block = glGetUniformBlockIndex(program.name, "vp_B0");
    GLint size = 0;
    if (block != GL_INVALID_INDEX)
        glGetActiveUniformBlockiv(program.name, block, GL_UNIFORM_BLOCK_DATA_SIZE, &size);
    return static_cast<UINT>(size) == program.parts.blocks * BlockSizeOf(program.parts);
}

UINT MostMerged(const ProgramParts& parts) {
    constexpr GLint MostBytes = 1 << 16;
    constexpr UINT Least = 4;
    if (!MayMerge(parts))
        return 0;
    GLint bytes = 0;
    glGetIntegerv(GL_MAX_UNIFORM_BLOCK_SIZE, &bytes);
    const UINT blocks = static_cast<UINT>(std::min(bytes, MostBytes)) / BlockSizeOf(parts);
    return blocks >= Least ? blocks : 0;
}

} // namespace

bool Compiles(GLenum stage, const std::string& source) {
    const GLuint shader = Compile(stage, source);
    GLint compiled = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    glDeleteShader(shader);
    return compiled == GL_TRUE;
}

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

std::size_t Programs::Hash::operator()(const ProgramParts& parts) const {
    const std::hash<const void*> pointer;
    return (pointer(parts.vertex) * 31 + pointer(parts.pixel)) * 31 +
           std::hash<std::uint64_t>()(parts.fixed.Packed() << 1 | (parts.blocks ? 1 : 0));
}

Program& Programs::Of(const ProgramParts& parts, const std::shared_ptr<const ShaderCode>* vertex,
                      const std::shared_ptr<const ShaderCode>* pixel) {
    if (const auto found = mPrograms.find(parts); found != mPrograms.end())
        return found->second;
    // What may raise comes before there is an entry.
    const std::string vertexSource = VertexSourceOf(parts), pixelSource = PixelSourceOf(parts);
    Program& program = mPrograms[parts];
    program.parts = parts;
    if (vertex)
        program.vertex = *vertex;
    if (pixel)
        program.pixel = *pixel;
    program.name = LinkProgram(vertexSource, pixelSource);
    if (program.name == 0)
        return program;
    ++shaderCount.linked;
    SetUp(program);
    if (parts.blocks && !IsAsLaidOut(program))
        glDeleteProgram(std::exchange(program.name, 0));
    return program;
}

UINT Programs::Merges(const std::shared_ptr<const ShaderCode>* vertex,
                      const std::shared_ptr<const ShaderCode>* pixel) {
    static const std::shared_ptr<const ShaderCode> fixedFunction;
    if (!vertex)
        vertex = &fixedFunction;
    if (!pixel)
        pixel = &fixedFunction;
    if (mLastPair && mLastPair->vertex == *vertex && mLastPair->pixel == *pixel)
        return mLastPair->merges;
    const ProgramParts parts = {vertex->get(), pixel->get(), {}};
    auto found = mPairs.find(parts);
    if (found == mPairs.end())
        found = mPairs.emplace(parts, Pair{*vertex, *pixel, MostMerged(parts)}).first;
    mLastPair = &found->second;
    return mLastPair->merges;
}

void Programs::Free() {
    mPairs.clear();
    mLastPair = nullptr;
    for (const auto& [key, program] : mPrograms)
        glDeleteProgram(program.name);
    mPrograms.clear();
}

} // namespace VornPlatform
