// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/batch.hpp"

#include <cstring>

namespace VornPlatform {

namespace {

// Of numbers without gaps between them.
template <typename Record>
bool Same(const Record& a, const Record& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

const GlBuffer* Of(const GpuBuffer* buffer) {
    return static_cast<const GlBuffer*>(buffer);
}

} // namespace

void Batch::Open(const State& state, const FormatTraits& traits, const Primitive& primitive,
                 Program& program) {
    mOpen = true;
    count = 0;
    mProgram = &program;
    mPrimitive = primitive;
    mTarget = state.target;
    mViewport = state.viewport;
    mRaster = state.raster;
    mDepth = state.depth;
    mBlend = state.blend;
    mAlphaTest = state.alphaTest;
    mFormat = state.format->id;
    mTraits = traits;
    mVertices = state.vertices;
    mVertexOffset = state.vertexOffset;
    mStride = state.stride;
    mIndices = state.indices;
    mWideIndices = state.wideIndices;
    for (const SamplerUse& use : program.samplers)
        mUnits[use.unit] = {state.textures[use.unit], state.samplers[use.unit]};
}

bool Batch::samplesTheSame(const State& state) const {
    for (const SamplerUse& use : mProgram->samplers) {
        const Unit& unit = mUnits[use.unit];
        if (unit.texture != state.textures[use.unit] ||
            !Same(unit.sampler, state.samplers[use.unit]))
            return false;
    }
    return true;
}

bool Batch::Takes(const State& state, unsigned int groups, const Primitive& primitive) const {
    const auto keeps = [groups](unsigned int group, auto isSame) {
        return (groups & group) == 0 || isSame();
    };
    return primitive.start == mPrimitive.start && primitive.count == mPrimitive.count &&
           primitive.type == mPrimitive.type && primitive.indexed == mPrimitive.indexed &&
           primitive.baseVertex == mPrimitive.baseVertex && !primitive.userVertices &&
           keeps(Changed::Shaders,
                 [&] {
                     return state.vertexShader.code == mProgram->parts.vertex &&
                            state.pixelShader.code == mProgram->parts.pixel;
                 }) &&
           keeps(Changed::Format, [&] { return state.format && state.format->id == mFormat; }) &&
           keeps(Changed::Vertices,
                 [&] {
                     return state.vertices == mVertices && state.vertexOffset == mVertexOffset &&
                            state.stride == mStride;
                 }) &&
           keeps(Changed::Indices,
                 [&] {
                     return !mPrimitive.indexed ||
                            (state.indices == mIndices && state.wideIndices == mWideIndices);
                 }) &&
           keeps(Changed::Lights | Changed::Stage | Changed::Textures,
                 [&] {
                     return mProgram->parts.vertex ||
                            KeyOf(state, mTraits) == mProgram->parts.fixed;
                 }) &&
           keeps(Changed::Textures | Changed::Samplers, [&] { return samplesTheSame(state); }) &&
           keeps(Changed::Target, [&] { return state.target == mTarget; }) &&
           keeps(Changed::Viewport, [&] { return Same(state.viewport, mViewport); }) &&
           keeps(Changed::Raster, [&] { return Same(state.raster, mRaster); }) &&
           keeps(Changed::Depth, [&] { return Same(state.depth, mDepth); }) &&
           keeps(Changed::Blend, [&] { return Same(state.blend, mBlend); }) &&
           keeps(Changed::AlphaTest, [&] { return Same(state.alphaTest, mAlphaTest); });
}

MeshKey Batch::Mesh() const {
    MeshKey key;
    key.vertices = Of(mVertices);
    key.offset = mVertexOffset;
    key.stride = mStride;
    key.start = mPrimitive.start;
    key.count = mPrimitive.count * 3;
    if (mPrimitive.indexed) {
        key.indices = Of(mIndices);
        key.wide = mWideIndices;
        key.baseVertex = mPrimitive.baseVertex;
    }
    return key;
}

} // namespace VornPlatform
