// SPDX-License-Identifier: MIT
#include "platform/d3d9/counters.hpp"
#include "platform/d3d9/device.hpp"
#include "platform/d3d9/guarded.hpp"
#include "platform/d3d9/recorder/call_log.hpp"

#include <algorithm>

namespace VornPlatform {

namespace {

std::uint64_t VerticesOf(D3DPRIMITIVETYPE type, UINT primitives) {
    const std::uint64_t count = primitives;
    switch (type) {
    case D3DPT_POINTLIST:
        return count;
    case D3DPT_LINELIST:
        return count * 2;
    case D3DPT_LINESTRIP:
        return count + 1;
    case D3DPT_TRIANGLELIST:
        return count * 3;
    default:
        return count + 2;
    }
}

RECT ViewportRect(const D3DVIEWPORT9& v) {
    return {static_cast<LONG>(v.X), static_cast<LONG>(v.Y), static_cast<LONG>(v.X + v.Width),
            static_cast<LONG>(v.Y + v.Height)};
}

RECT Cut(const RECT& a, const D3DRECT& b) {
    return {std::max(a.left, b.x1), std::max(a.top, b.y1), std::min(a.right, b.x2),
            std::min(a.bottom, b.y2)};
}

} // namespace

HRESULT Device::Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR color, float z,
                      DWORD stencil) {
    const bool sound = mayClear(flags, z) && (count > 0) == (rects != nullptr);
    const CallScope call("Clear", count, RectRows{rects, sound ? count : 0}, flags, color, z,
                         stencil);
    if (mStatus != D3D_OK || !sound)
        return D3DERR_INVALIDCALL;
    const RECT viewport = ViewportRect(mState.viewport);
    const auto clear = [&](const RECT& rect) {
        if (rect.left >= rect.right || rect.top >= rect.bottom)
            return;
        mBackend->Clear(mState.target, rect, flags, color, z);
        noteTargetWritten();
    };
    return Guarded([&] {
        if (!rects)
            clear(viewport);
        for (DWORD i = 0; rects && i < count; ++i)
            clear(Cut(viewport, rects[i]));
        return D3D_OK;
    });
}

bool Device::mayClear(DWORD flags, float z) const {
    constexpr DWORD Known = D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER | D3DCLEAR_STENCIL;
    if (flags == 0 || (flags & ~Known))
        return false;
    if ((flags & D3DCLEAR_ZBUFFER) && (!mState.target.depth || !IsDepthValue(z)))
        return false;
    return !(flags & D3DCLEAR_STENCIL) ||
           (mState.target.depth && mDepth->Desc().Format == D3DFMT_D24S8);
}

// --- draws

HRESULT Device::checkDraw(D3DPRIMITIVETYPE type, UINT primitiveCount) const {
    if (!mayDraw() || type < D3DPT_POINTLIST || type > D3DPT_TRIANGLEFAN ||
        primitiveCount > MaxPrimitives || !mLayout ||
        (!mLayout->hasPosition && !mVertexShader)) // which may make it of anything
        return D3DERR_INVALIDCALL;
    return D3D_OK;
}

bool Device::isInMemory(D3DPRIMITIVETYPE type, UINT primitiveCount, const void* vertices,
                        UINT stride) const {
    return vertices && mLayout && stride >= mLayout->size && stride <= MaxStride &&
           primitiveCount <= MaxPrimitives &&
           VerticesOf(type, primitiveCount) * stride <= MaxBufferSize;
}

UINT Device::boundVertices() const {
    const UINT size = mVertices->content.Size(), needed = mLayout->size;
    if (mState.stride == 0 || mState.vertexOffset > size || size - mState.vertexOffset < needed)
        return 0;
    return (size - mState.vertexOffset - needed) / mState.stride + 1;
}

HRESULT Device::DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT baseVertex, UINT minVertex,
                                     UINT vertexCount, UINT startIndex, UINT primitiveCount) {
    const CallScope call("DrawIndexedPrimitive", type, baseVertex, minVertex, vertexCount,
                         startIndex, primitiveCount);
    if (FAILED(checkDraw(type, primitiveCount)) || type == D3DPT_POINTLIST)
        return D3DERR_INVALIDCALL;
    if (primitiveCount == 0 || !mVertices || !mIndices)
        return D3D_OK;

    const UINT indexBytes = mState.wideIndices ? 4 : 2;
    const std::uint64_t indexEnd = startIndex + VerticesOf(type, primitiveCount);
    const std::int64_t first = std::int64_t(baseVertex) + minVertex;
    if (mVertices->content.IsLocked() || mIndices->content.IsLocked() ||
        indexEnd > mIndices->content.Size() / indexBytes || vertexCount == 0 || first < 0 ||
        first >= boundVertices())
        return D3DERR_INVALIDCALL;
    // Where the range ends is a hint, and hosts take it wide.
    Primitive primitive = {.type = type, .count = primitiveCount, .indexed = true};
    primitive.start = startIndex;
    primitive.baseVertex = baseVertex;
    return drawChecked(primitive);
}

HRESULT Device::DrawPrimitive(D3DPRIMITIVETYPE type, UINT startVertex, UINT primitiveCount) {
    const CallScope call("DrawPrimitive", type, startVertex, primitiveCount);
    if (const HRESULT error = checkDraw(type, primitiveCount); FAILED(error))
        return error;
    if (primitiveCount == 0 || !mVertices)
        return D3D_OK;
    if (mVertices->content.IsLocked() ||
        startVertex + VerticesOf(type, primitiveCount) > boundVertices())
        return D3DERR_INVALIDCALL;
    Primitive primitive = {.type = type, .count = primitiveCount};
    primitive.start = startVertex;
    return drawChecked(primitive);
}

HRESULT Device::DrawPrimitiveUP(D3DPRIMITIVETYPE type, UINT primitiveCount, const void* vertices,
                                UINT stride) {
    const bool inMemory = isInMemory(type, primitiveCount, vertices, stride);
    VertexRows rows = {.values = vertices};
    if (inMemory)
        rows = {vertices, VerticesOf(type, primitiveCount), stride, mLayout->format.elements.data(),
                mLayout->format.elements.size()};
    const CallScope call("DrawPrimitiveUP", type, primitiveCount, rows, stride);
    if (!inMemory || FAILED(checkDraw(type, primitiveCount)))
        return D3DERR_INVALIDCALL;
    if (primitiveCount == 0)
        return D3D_OK;
    Primitive primitive = {.type = type, .count = primitiveCount};
    primitive.userVertices = vertices;
    primitive.userStride = stride;
    const HRESULT result = drawChecked(primitive);
    SetStreamSource(0, nullptr, 0, 0);
    return result;
}

void Device::uploadBound() {
    for (Texture* texture : mTextures)
        if (texture && texture->IsBehind())
            texture->Upload();
    if (mVertices && mVertices->content.IsBehind())
        mVertices->content.Upload();
    if (mIndices && mIndices->content.IsBehind())
        mIndices->content.Upload();
    mSomethingBehind = false;
}

HRESULT Device::drawChecked(const Primitive& primitive) {
    return Guarded([&] {
        if (mSomethingBehind)
            uploadBound();
        if (mConstantsBehind)
            gatherConstants();
        mBackend->Draw(mState, mChanged, primitive);
        mChanged = 0;
        noteDraw(primitive);
        return D3D_OK;
    });
}

void Device::noteDraw(const Primitive& primitive) {
    noteTargetWritten();
    ++frameCount.draws;
    frameCount.primitives += primitive.count;
}

// --- overlay

void Device::prepareOverlay(Texture* texture) {
    State& state = mOverlay;
    const D3DVIEWPORT9& v = mState.viewport;
    state.target = mState.target;
    state.viewport = {v.X, v.Y, v.Width, v.Height, 0, 1};

    // From pixels of the target to the viewport. That centres lie at whole numbers is the
    // convention of every draw already.
    const auto width = static_cast<float>(v.Width), height = static_cast<float>(v.Height);
    const auto left = static_cast<float>(v.X), top = static_cast<float>(v.Y);
    state.projection = IdentityMatrix;
    state.projection._11 = 2 / width;
    state.projection._22 = -2 / height;
    state.projection._41 = -1 - 2 * left / width;
    state.projection._42 = 1 + 2 * top / height;

    state.raster = {D3DFILL_SOLID, D3DCULL_NONE};
    state.depth = {FALSE, FALSE, D3DCMP_ALWAYS};
    state.blend = {.enable = TRUE,
                   .source = D3DBLEND_SRCALPHA,
                   .destination = D3DBLEND_INVSRCALPHA,
                   .operation = D3DBLENDOP_ADD,
                   .writeMask = 0xf};
    state.lighting = FALSE;
    const DWORD operation = texture ? D3DTOP_MODULATE : D3DTOP_SELECTARG2;
    state.stage.colorOp = state.stage.alphaOp = operation;
    state.stage.colorArg1 = state.stage.alphaArg1 = D3DTA_TEXTURE;
    state.stage.colorArg2 = state.stage.alphaArg2 = D3DTA_DIFFUSE;
    state.samplers[0].addressU = state.samplers[0].addressV = D3DTADDRESS_CLAMP;
    state.textures[0] = texture ? texture->Gpu() : nullptr;
    state.format = &LayoutOfFvf(D3DFVF_XYZ | D3DFVF_DIFFUSE | D3DFVF_TEX1)->format;
}

HRESULT Device::DrawOverlay(const OverlayVertex* vertices, UINT count, IDirect3DTexture9* texture) {
    auto* ours = static_cast<Texture*>(texture);
    if (mStatus != D3D_OK || count % 3 || count / 3 > MaxPrimitives || (count && !vertices) ||
        (ours && (!ours->IsOf(*this) || !ours->Gpu())))
        return D3DERR_INVALIDCALL;
    if (count == 0)
        return D3D_OK;
    struct Vertex {
        float x, y, z;
        D3DCOLOR color;
        float u, v;
    };
    if (std::uint64_t(count) * sizeof(Vertex) > MaxBufferSize)
        return D3DERR_INVALIDCALL;
    return Guarded([&] {
        std::vector<Vertex> list(count);
        std::transform(vertices, vertices + count, list.begin(), [](const OverlayVertex& vertex) {
            return Vertex{vertex.x, vertex.y, 0, vertex.color, vertex.u, vertex.v};
        });
        if (ours && ours->IsBehind())
            ours->Upload();
        prepareOverlay(ours);
        Primitive primitive = {.type = D3DPT_TRIANGLELIST, .count = count / 3};
        primitive.userVertices = list.data();
        primitive.userStride = sizeof(Vertex);
        mChanged = Changed::All;
        mBackend->Draw(mOverlay, Changed::All, primitive);
        noteDraw(primitive);
        return D3D_OK;
    });
}

} // namespace VornPlatform
