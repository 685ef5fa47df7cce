// SPDX-License-Identifier: MIT
//
// Draws that wait, because the next ones may be the same but for their constants. All of OpenGL's
// state is as they need it, for as long as the batch is open: whoever changes anything flushes
// first.
#pragma once

#include "platform/d3d9/backend.hpp"
#include "platform/d3d9/gl/mesh_copies.hpp"
#include "platform/d3d9/gl/programs.hpp"

namespace VornPlatform {

class Batch {
public:
    /// Copies of State's values that a draw of the program depends on.
    void Open(const State& state, const FormatTraits& traits, const Primitive& primitive,
              Program& program);
    /// The draw is the same as those before, but for its constants.
    /// @param groups in which the state may differ from theirs
    bool Takes(const State& state, unsigned int groups, const Primitive& primitive) const;
    bool IsOpen() const { return mOpen; }
    void Close() { mOpen = false; }

    MeshKey Mesh() const;
    const Primitive& Shape() const { return mPrimitive; }
    Program& Uses() const { return *mProgram; }

    std::byte* blocks = nullptr; // one for each draw
    UINT count = 0;

private:
    struct Unit {
        const GpuTexture* texture;
        Sampler sampler;
    };
    bool samplesTheSame(const State& state) const;

    bool mOpen = false;
    Program* mProgram = nullptr;
    Primitive mPrimitive;
    Target mTarget;
    D3DVIEWPORT9 mViewport = {};
    RasterState mRaster;
    DepthState mDepth;
    BlendState mBlend;
    AlphaTest mAlphaTest;
    unsigned int mFormat = 0; // its id
    FormatTraits mTraits = {};
    const GpuBuffer* mVertices = nullptr;
    UINT mVertexOffset = 0, mStride = 0;
    const GpuBuffer* mIndices = nullptr;
    bool mWideIndices = true;
    std::array<Unit, MaxTextures> mUnits = {}; // those that the program samples
};

} // namespace VornPlatform
