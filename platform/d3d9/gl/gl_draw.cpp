// SPDX-License-Identifier: MIT
//
// GlBackend: from the state of the device to a draw of OpenGL.
#include "platform/d3d9/gl/gl_backend.hpp"

#include <cstddef>
#include <cstring>

namespace VornPlatform {

namespace {

const GlBuffer* Of(const GpuBuffer* buffer) {
    return static_cast<const GlBuffer*>(buffer);
}

// Each sum in the order of the rows, as shaders compute v * M: a host that multiplies the same
// matrices in a shader of its own gets the same pixels.
D3DMATRIX Multiply(const D3DMATRIX& a, const D3DMATRIX& b) {
    D3DMATRIX product;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            product.m[i][j] = a.m[i][0] * b.m[0][j] + a.m[i][1] * b.m[1][j] +
                              a.m[i][2] * b.m[2][j] + a.m[i][3] * b.m[3][j];
    return product;
}

bool Same(const D3DMATRIX& a, const D3DMATRIX& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

struct Shape {
    GLenum mode;
    UINT perPrimitive, extra; // vertices
};

Shape ShapeOf(D3DPRIMITIVETYPE type) {
    switch (type) {
    case D3DPT_POINTLIST:
        return {GL_POINTS, 1, 0};
    case D3DPT_LINELIST:
        return {GL_LINES, 2, 0};
    case D3DPT_LINESTRIP:
        return {GL_LINE_STRIP, 1, 1};
    case D3DPT_TRIANGLESTRIP:
        return {GL_TRIANGLE_STRIP, 1, 2};
    case D3DPT_TRIANGLEFAN:
        return {GL_TRIANGLE_FAN, 1, 2};
    default:
        return {GL_TRIANGLES, 3, 0};
    }
}

UINT VerticesOf(const Shape& shape, const Primitive& primitive) {
    return primitive.count * shape.perPrimitive + shape.extra;
}

// What the program's key is made of.
constexpr unsigned int ProgramGroups = Changed::Format | Changed::Lights | Changed::Stage |
                                       Changed::Textures | Changed::AlphaTest | Changed::Shaders;

} // namespace

void GlBackend::Versioned::Set(const D3DMATRIX& matrix) {
    if (Same(value, matrix))
        return;
    value = matrix;
    ++version;
}

void GlBackend::Draw(const State& state, unsigned int changed, const Primitive& primitive) {
    mPending |= changed;
    if (!MakeCurrent()) {
        mBatch.Close(); // and its memory with it
        return;
    }
    if (mBatch.IsOpen()) {
        if (joinBatch(state, primitive))
            return;
        Flush();
    }
    if (!state.format || !state.target.color)
        return;
    if (const UINT merge = mayMerge(state, primitive); merge != mMerging) {
        mMerging = merge;
        mPending |= Changed::Shaders;
    }
    if (mPending != 0) {
        resolve(state, mPending);
        mPending = 0;
    }
    if (mProgram->name == 0 || !mBlocksLoaded)
        return;
    if (mMerging > 0)
        return openBatch(state, primitive);
    const Shape shape = ShapeOf(primitive.type);
    if (!bindVertices(state, primitive, VerticesOf(shape, primitive)))
        return;
    const bool lines = shape.mode == GL_LINES || shape.mode == GL_LINE_STRIP ||
                       state.raster.fill == D3DFILL_WIREFRAME;
    loadUniforms(state, lines);
    drawBound(primitive, primitive.indexed ? Of(state.indices) : nullptr, state.wideIndices);
}

void GlBackend::drawBound(const Primitive& primitive, const GlBuffer* indices, bool wide) {
    const Shape shape = ShapeOf(primitive.type);
    const auto count = static_cast<GLsizei>(VerticesOf(shape, primitive));
    ++glCounters.drawCalls;
    if (!indices) {
        const UINT start = primitive.userVertices ? 0 : primitive.start;
        glDrawArrays(shape.mode, static_cast<GLint>(start), count);
        return;
    }
    bindIndices(indices->Name());
    const std::uintptr_t start = std::uintptr_t(primitive.start) * (wide ? 4 : 2);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): an offset in a pointer
    const auto* offset = reinterpret_cast<const void*>(start);
    const GLenum type = wide ? GL_UNSIGNED_INT : GL_UNSIGNED_SHORT;
    if (primitive.baseVertex == 0)
        glDrawElements(shape.mode, count, type, offset);
    else
        glDrawElementsBaseVertex(shape.mode, count, type, offset, primitive.baseVertex);
}

void GlBackend::bindIndices(GLuint buffer) {
    if (mArray->indices.Set(buffer))
        glVertexArrayElementBuffer(mArray->name, buffer);
}

void GlBackend::bindSource(const VertexSource& source) {
    if (mArray->vertices.Set(source))
        glVertexArrayVertexBuffer(mArray->name, 0, source.buffer, source.offset, source.stride);
}

bool GlBackend::bindVertices(const State& state, const Primitive& primitive, UINT vertexCount) {
    VertexSource source;
    if (primitive.userVertices) {
        const std::size_t size = std::size_t(vertexCount) * primitive.userStride;
        if (!mStream.Write(primitive.userVertices, size))
            return false;
        source = {mStream.Name(), mStream.Offset(), static_cast<GLsizei>(primitive.userStride)};
    } else {
        source = {Of(state.vertices)->Name(), static_cast<GLintptr>(state.vertexOffset),
                  static_cast<GLsizei>(state.stride)};
    }
    bindSource(source);
    return true;
}

void GlBackend::resolve(const State& state, unsigned int groups) {
    resolveOutput(state, groups);
    groups |= makeRoom();
    if (groups & Changed::Format) {
        mArray = &mArrays.Of(*state.format);
        if (mBoundArray.Set(mArray->name))
            glBindVertexArray(mArray->name);
    }
    if (groups & ProgramGroups)
        resolveProgram(state);
    resolveMatrices(state, groups);
    if (groups & (ProgramGroups | Changed::Samplers))
        resolveTextures(state);
    if (groups & (ProgramGroups | Changed::Constants))
        mBlocksLoaded = resolveBlocks(state);
}

void GlBackend::resolveOutput(const State& state, unsigned int groups) {
    const GlTexture* color = Of(state.target.color);
    if (groups & Changed::Target) {
        const GLuint framebuffer = mFramebuffers.Of(color, Of(state.target.depth));
        if (mBoundFramebuffer.Set(framebuffer))
            glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    }
    if ((groups & (Changed::Target | Changed::Viewport)) &&
        mOutput.Viewport(state.viewport, state.target))
        ++mPlaceVersion;
    if (groups & Changed::Raster)
        mOutput.Raster(state.raster);
    if (groups & (Changed::Target | Changed::Depth))
        mOutput.Depth(state.depth, state.target.depth != nullptr);
    if (groups & (Changed::Target | Changed::Blend))
        mOutput.Blend(state.blend, color->Format().alpha);
}

// What a host can make more and more of starts anew at times.
unsigned int GlBackend::makeRoom() {
    unsigned int groups = 0;
    if (mArrays.Full()) {
        mArrays.Free();
        mBoundArray.Forget();
        groups |= Changed::Format;
    }
    if (mUnits.MakeRoom())
        groups |= Changed::Samplers;
    if (mPrograms.Full()) {
        mPrograms.Free();
        mProgram = nullptr;
        mBoundProgram.Forget();
        groups |= Changed::Shaders;
    }
    return groups;
}

void GlBackend::resolveProgram(const State& state) {
    const ShaderState &vertex = state.vertexShader, &pixel = state.pixelShader;
    const ProgramParts parts = {
        vertex.code, pixel.code,
        KeyOf(state, {mArray->hasNormal, mArray->hasColor, mArray->hasCoordinates}), mMerging};
    if (!mProgram || mProgram->parts != parts)
        mProgram = &mPrograms.Of(parts, vertex.holder, pixel.holder);
    if (mMerging > 0 && mProgram->name == 0) {
        mMerging = 0;
        return resolveProgram(state);
    }
    if (mBoundProgram.Set(mProgram->name))
        glUseProgram(mProgram->name);
    if (mPointSize.Set(mProgram->setsPointSize))
        (mProgram->setsPointSize ? glEnable : glDisable)(GL_PROGRAM_POINT_SIZE);
}

void GlBackend::resolveMatrices(const State& state, unsigned int groups) {
    if (groups & (Changed::World | Changed::Projection)) {
        if (groups & Changed::World) {
            mWorldView.Set(Multiply(state.world, state.view));
            mLightsKnown = mLightsKnown && Same(mView, state.view);
        }
        mWorldViewProjection.Set(Multiply(mWorldView.value, state.projection));
    }
    if (groups & Changed::TextureMatrix)
        mTextureMatrix.Set(state.textureMatrix);
    if (groups & Changed::Lights)
        mLightsKnown = false;
}

void GlBackend::resolveTextures(const State& state) {
    for (const SamplerUse& use : mProgram->samplers)
        mUnits.Bind(use.unit, use.kind, Of(state.textures[use.unit]), state.samplers[use.unit]);
}

bool GlBackend::resolveBlocks(const State& state) {
    return mMerging > 0 ||
           (resolveBlock(Block::Vertex, state.vertexShader) &&
            (mProgram->sharesBlock || resolveBlock(Block::Pixel, state.pixelShader)));
}

bool GlBackend::resolveBlock(unsigned int binding, const ShaderState& shader) {
    const std::size_t size = shader.code ? shader.code->blockSize : 0;
    if (size == 0)
        return true;
    LoadedBlock& loaded = mBlocks[binding];
    if (mRing.Keeps(loaded.place) && loaded.size == size && loaded.version == shader.version)
        return true;
    std::byte* place = mRing.Take(size);
    loaded = {place, size, shader.version};
    if (!place)
        return false;
    std::memcpy(place, shader.constants, size);
    glBindBufferRange(GL_UNIFORM_BUFFER, binding, mRing.Name(), mRing.OffsetOf(place),
                      static_cast<GLsizeiptr>(size));
    return true;
}

// Each program keeps its own uniforms. The matrices go as they are: a row of Direct3D is a column
// of OpenGL, and v * M is M * v then.
void GlBackend::loadUniforms(const State& state, bool lines) {
    Program& program = *mProgram;
    const auto load = [](int location, const Versioned& matrix, unsigned int& version) {
        if (version == matrix.version)
            return;
        version = matrix.version;
        glUniformMatrix4fv(location, 1, GL_FALSE, &matrix.value.m[0][0]);
    };
    const unsigned int place = 2 * mPlaceVersion + (lines ? 1u : 0u);
    if (program.place != place)
        glUniform4fv(Uniform::Place, 1, mOutput.Place(lines).data());
    program.place = place;
    const FixedFunctionKey& key = program.parts.fixed;
    if (!program.parts.vertex && program.parts.blocks == 0) {
        load(Uniform::WorldViewProjection, mWorldViewProjection, program.worldViewProjection);
        if (key.transformed)
            load(Uniform::TextureMatrix, mTextureMatrix, program.textureMatrix);
        if (key.lighting == Lighting::Lit) {
            load(Uniform::WorldView, mWorldView, program.worldView);
            loadLights(state);
        }
    }
    if (key.alphaTest != 0) {
        const auto reference = static_cast<int>(state.alphaTest.reference & 0xff);
        if (program.alphaReference != reference)
            glUniform1i(Uniform::AlphaReference, reference);
        program.alphaReference = reference;
    }
}

void GlBackend::loadLights(const State& state) {
    if (!mLightsKnown) {
        mLightsKnown = true;
        mView = state.view;
        const PackedLights lights = PackLights(state.lights, state.view);
        if (lights != mLights) {
            mLights = lights;
            ++mLightsVersion;
        }
    }
    if (mProgram->lights == mLightsVersion)
        return;
    mProgram->lights = mLightsVersion;
    glUniform1i(Uniform::LightCount, mLights.count);
    glUniform4fv(Uniform::Lights, static_cast<GLsizei>(mLights.vectors.size()),
                 mLights.vectors[0].data());
}

} // namespace VornPlatform
