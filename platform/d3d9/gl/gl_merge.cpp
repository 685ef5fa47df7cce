// SPDX-License-Identifier: MIT
//
// GlBackend: draws of a small mesh that differ in nothing but an effect's constants, or the fixed
// function's place, become one. Each draw's block is an element of an array, and the number of a
// vertex tells whose it is.
#include "platform/d3d9/gl/gl_backend.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

namespace VornPlatform {

namespace {

constexpr UINT MostTriangles = 64; // of a mesh that gains by it
constexpr UINT WorthCopies = 4;    // draws that make up for copying a mesh
// So many batches of one draw in a row, and draws go by themselves for a while, which is twice as
// long after each try that failed, until the frame ends: a change of program costs as much as ten
// draws.
constexpr UINT MostLonely = 64, MostAlone = 8192;
// Behind all vertices, so that each is of the draw's first block.
constexpr int NoShift = 31;

constexpr unsigned int Matrices = Changed::World | Changed::Projection;

// In which draws of a batch may differ, or which the next draw has to look at by itself.
constexpr unsigned int Unseen = Changed::World | Changed::Projection | Changed::TextureMatrix |
                                Changed::Lights | Changed::Stage | Changed::Textures |
                                Changed::Samplers | Changed::Constants;

} // namespace

UINT GlBackend::mayMerge(const State& state, const Primitive& primitive) {
    if (primitive.type != D3DPT_TRIANGLELIST || primitive.count > MostTriangles ||
        primitive.userVertices || state.raster.fill != D3DFILL_SOLID)
        return 0;
    const ShaderState &vertex = state.vertexShader, &pixel = state.pixelShader;
    const bool both = vertex.constants && pixel.code;
    const bool fixed = !vertex.code && !pixel.code && !state.lighting &&
                       state.stage.transformFlags == D3DTTFF_DISABLE;
    if (!both && !fixed)
        return 0;
    if (mLonely >= MostLonely) {
        if (++mAlone < mAloneFor)
            return 0;
        mAlone = 0;
        mAloneFor = std::min(2 * mAloneFor, MostAlone);
        --mLonely;
    }
    return mPrograms.Merges(vertex.holder, pixel.holder);
}

bool GlBackend::joinBatch(const State& state, const Primitive& primitive) {
    if (!mBatch.Takes(state, mPending, primitive) || !addBlock(state))
        return false;
    mPending &= Unseen;
    return true;
}

const void* GlBackend::blockOf(const State& state) {
    if (mBatch.Uses().parts.vertex)
        return state.vertexShader.constants;
    resolveMatrices(state, mPending & Matrices);
    mPending &= ~Matrices;
    return &mWorldViewProjection.value;
}

bool GlBackend::addBlock(const State& state) {
    const ProgramParts& parts = mBatch.Uses().parts;
    const UINT size = BlockSizeOf(parts);
    if (mBatch.count == parts.blocks)
        return false;
    if (mBatch.count == 0)
        mBatch.blocks = mRing.Take(size);
    else if (!mRing.Extend(size))
        return false;
    if (!mBatch.blocks)
        return false;
    std::memcpy(mBatch.blocks + std::size_t(mBatch.count) * size, blockOf(state), size);
    ++mBatch.count;
    return true;
}

void GlBackend::openBatch(const State& state, const Primitive& primitive) {
    loadUniforms(state, false);
    mBatch.Open(state, {mArray->hasNormal, mArray->hasColor, mArray->hasCoordinates}, primitive,
                *mProgram);
    if (!addBlock(state))
        mBatch.Close(); // no memory
}

void GlBackend::loadRecords(Program& program, int first, int shift) {
    if (std::exchange(program.firstRecord, first) != first)
        glUniform1i(Uniform::FirstRecord, first);
    if (std::exchange(program.recordShift, shift) != shift)
        glUniform1i(Uniform::RecordShift, shift);
}

void GlBackend::Flush() {
    if (!mBatch.IsOpen())
        return;
    mBatch.Close();
    if (mBatch.count == 1) {
        ++mLonely;
    } else {
        mLonely = 0;
        mAloneFor = LeastAlone;
    }
    if (!MakeCurrent())
        return;
    const ProgramParts& parts = mBatch.Uses().parts;
    glBindBufferRange(GL_UNIFORM_BUFFER, Block::Vertex, mRing.Name(), mRing.OffsetOf(mBatch.blocks),
                      static_cast<GLsizeiptr>(parts.blocks) * BlockSizeOf(parts));
    mBlocks[Block::Vertex].place = nullptr;
    mPending |= Changed::Constants;

    const MeshKey key = mBatch.Mesh();
    if (mBatch.count >= (mMeshes.Knows(key) ? 2 : WorthCopies)) {
        if (mMeshes.Full())
            freeMeshes();
        const MeshCopy& mesh = mMeshes.Of(key, mBatch.count);
        if (mesh.copies > 1) {
            drawCopies(key, mesh);
            return;
        }
    }
    drawOneByOne(key);
}

void GlBackend::drawCopies(const MeshKey& key, const MeshCopy& mesh) {
    bindSource({mesh.vertexBuffer, 0, static_cast<GLsizei>(key.stride)});
    bindIndices(mesh.indexBuffer);
    for (UINT first = 0; first < mBatch.count; first += mesh.copies) {
        const UINT copies = std::min(mesh.copies, mBatch.count - first);
        loadRecords(mBatch.Uses(), static_cast<int>(first), static_cast<int>(mesh.shift));
        glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(copies * mesh.indices.size()),
                       GL_UNSIGNED_INT, nullptr);
        ++glCounters.drawCalls;
    }
}

void GlBackend::drawOneByOne(const MeshKey& key) {
    bindSource({key.vertices->Name(), static_cast<GLintptr>(key.offset),
                static_cast<GLsizei>(key.stride)});
    for (UINT draw = 0; draw < mBatch.count; ++draw) {
        loadRecords(mBatch.Uses(), static_cast<int>(draw), NoShift);
        drawBound(mBatch.Shape(), key.indices, key.wide);
    }
}

void GlBackend::freeMeshes() {
    mMeshes.Free();
    // OpenGL gives the same names again.
    mArrays.ForgetBuffers();
}

} // namespace VornPlatform
