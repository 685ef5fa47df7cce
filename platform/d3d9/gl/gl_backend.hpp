// SPDX-License-Identifier: MIT
//
// The backend that draws. It holds no rules of Direct3D but those of pixels: state goes in as the
// device keeps it, and what differs from the draw before reaches OpenGL.
//
//   [X] fixed function, one texture stage, lights
//   [X] shaders, sixteen samplers
//   [ ] more than one stage, cube and volume textures, stencil, fog
#pragma once

#include "platform/d3d9/backend.hpp"
#include "platform/d3d9/gl/batch.hpp"
#include "platform/d3d9/gl/context.hpp"
#include "platform/d3d9/gl/framebuffers.hpp"
#include "platform/d3d9/gl/gl_buffer.hpp"
#include "platform/d3d9/gl/gl_texture.hpp"
#include "platform/d3d9/gl/lights.hpp"
#include "platform/d3d9/gl/output_state.hpp"
#include "platform/d3d9/gl/programs.hpp"
#include "platform/d3d9/gl/texture_units.hpp"
#include "platform/d3d9/gl/uniform_ring.hpp"
#include "platform/d3d9/gl/vertex_arrays.hpp"

namespace VornPlatform {

class ScreenOverlay;

class GlBackend final : public Backend {
public:
    explicit GlBackend(std::unique_ptr<GlContext> context);
    ~GlBackend() override;

    std::unique_ptr<GpuTexture> CreateTexture(const TextureDesc& desc) override;
    std::unique_ptr<GpuBuffer> CreateBuffer(BufferKind kind, UINT size) override;
    bool Takes(const ShaderCode& code) override;
    void Clear(const Target& target, const RECT& rect, DWORD flags, D3DCOLOR color,
               float z) override;
    void Draw(const State& state, unsigned int changed, const Primitive& primitive) override;
    void Present(GpuTexture& backBuffer, UINT width, UINT height, HWND window,
                 bool waitForDisplay) override;

    // For its textures and buffers.
    bool MakeCurrent() { return mContext->MakeCurrent(); }
    /// Draws that wait are drawn: before anything that they use, or draw to, is touched.
    void Flush();
    void Forget(const GlTexture& texture);
    void Forget(const GlBuffer& buffer);
    /// It is about to be written.
    void ForgetCopies(const GlBuffer& buffer);

private:
    /// A matrix, and which one it is: programs compare the number.
    struct Versioned {
        D3DMATRIX value = IdentityMatrix;
        unsigned int version = 1;
        void Set(const D3DMATRIX& matrix);
    };

    void resolve(const State& state, unsigned int groups);
    void resolveOutput(const State& state, unsigned int groups);
    void resolveProgram(const State& state);
    void resolveMatrices(const State& state, unsigned int groups);
    void resolveTextures(const State& state);
    bool resolveBlocks(const State& state);
    bool resolveBlock(unsigned int binding, const ShaderState& shader);
    unsigned int makeRoom();
    void loadUniforms(const State& state, bool lines);
    void loadLights(const State& state);
    bool bindVertices(const State& state, const Primitive& primitive, UINT vertexCount);
    void bindSource(const VertexSource& source);
    void bindIndices(GLuint buffer);
    void drawBound(const Primitive& primitive, const GlBuffer* indices, bool wide);

    UINT mayMerge(const State& state, const Primitive& primitive);
    bool joinBatch(const State& state, const Primitive& primitive);
    void openBatch(const State& state, const Primitive& primitive);
    bool addBlock(const State& state);
    const void* blockOf(const State& state);
    static void loadRecords(Program& program, int first, int shift);
    void drawCopies(const MeshKey& key, const MeshCopy& mesh);
    void drawOneByOne(const MeshKey& key);
    void freeMeshes();

    void drawOverlay(ScreenOverlay& overlay, const GlTexture* backBuffer, UINT width, UINT height,
                     HWND window);
    void forgetState();

    std::unique_ptr<GlContext> mContext;
    Framebuffers mFramebuffers;
    Programs mPrograms;
    VertexArrays mArrays;
    TextureUnits mUnits;
    StreamBuffer mStream;
    UniformRing mRing;
    Batch mBatch;
    MeshCopies mMeshes;
    UINT mMerging = 0; // draws that the next one may be merged with
    UINT mLonely = 0;  // batches of one draw, in a row
    // Draws since that was found to earn nothing, and how many go before the next try.
    static constexpr UINT LeastAlone = 256;
    UINT mAlone = 0, mAloneFor = LeastAlone;

    // Groups that the next draw looks at, whatever the device says.
    unsigned int mPending = Changed::All;
    VertexArray* mArray = nullptr;
    Program* mProgram = nullptr;
    bool mOverlaid = false;    // an overlay has drawn in the context
    bool mBlocksLoaded = true; // else there was no memory, and nothing can be drawn

    Versioned mWorldViewProjection, mWorldView, mTextureMatrix;
    unsigned int mPlaceVersion = 1;
    D3DMATRIX mView = IdentityMatrix;
    PackedLights mLights;
    unsigned int mLightsVersion = 1;
    bool mLightsKnown = false;

    /// What a binding's range holds.
    struct LoadedBlock {
        const std::byte* place = nullptr;
        std::size_t size = 0;
        unsigned int version = 0;
    };
    std::array<LoadedBlock, 2> mBlocks;

    OutputState mOutput;
    Shadow<GLuint> mBoundFramebuffer, mBoundProgram, mBoundArray;
    Shadow<bool> mPointSize; // is the program's
};

} // namespace VornPlatform
