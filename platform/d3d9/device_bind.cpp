// SPDX-License-Identifier: MIT
//
// What draws use and go to. What is bound is kept, also when its host has let go of it.
#include "platform/d3d9/bindings.hpp"
#include "platform/d3d9/device.hpp"
#include "platform/d3d9/guarded.hpp"
#include "platform/d3d9/recorder/call_log.hpp"

#include <utility>

namespace VornPlatform {

namespace {

void RebindSurface(Surface*& place, Surface* surface) {
    if (surface)
        surface->Owner().Bind();
    if (Surface* old = std::exchange(place, surface))
        old->Owner().Unbind();
}

} // namespace

// --- textures, formats, buffers

HRESULT Device::SetTexture(DWORD stage, IDirect3DBaseTexture9* texture) {
    const CallScope call("SetTexture", stage, texture);
    // All textures are ours: no other implementation meets our devices.
    auto* ours = static_cast<Texture*>(texture);
    if (stage >= MaxTextures || (ours && (!ours->IsOf(*this) || !ours->Gpu())))
        return D3DERR_INVALIDCALL;
    if (mTextures[stage] == ours)
        return D3D_OK;
    Rebind(mTextures[stage], ours);
    mState.textures[stage] = ours ? ours->Gpu() : nullptr;
    mSomethingBehind |= ours && ours->IsBehind();
    mChanged |= Changed::Textures;
    return D3D_OK;
}

HRESULT Device::GetTexture(DWORD stage, IDirect3DBaseTexture9** texture) {
    const CallScope call("GetTexture", stage);
    if (stage >= MaxTextures || !texture)
        return D3DERR_INVALIDCALL;
    return GiveOutBound(mTextures[stage], texture);
}

void Device::setLayout(const VertexLayout* layout) {
    if (mLayout == layout)
        return;
    mLayout = layout;
    mState.format = layout ? &layout->format : nullptr;
    mChanged |= Changed::Format;
}

HRESULT Device::SetFVF(DWORD fvf) {
    const CallScope call("SetFVF", fvf);
    const VertexLayout* layout = LayoutOfFvf(fvf);
    if (!layout)
        return D3DERR_INVALIDCALL;
    setLayout(layout);
    Rebind<VertexDeclaration>(mDeclaration, nullptr);
    return D3D_OK;
}

HRESULT Device::SetVertexDeclaration(IDirect3DVertexDeclaration9* declaration) {
    const CallScope call("SetVertexDeclaration", declaration);
    auto* ours = static_cast<VertexDeclaration*>(declaration);
    if (ours && !ours->IsOf(*this))
        return D3DERR_INVALIDCALL;
    setLayout(ours ? &ours->Layout() : nullptr);
    Rebind(mDeclaration, ours);
    return D3D_OK;
}

HRESULT Device::GetVertexDeclaration(IDirect3DVertexDeclaration9** declaration) {
    const CallScope call("GetVertexDeclaration");
    if (!declaration)
        return D3DERR_INVALIDCALL;
    return GiveOutBound(mDeclaration, declaration);
}

HRESULT Device::GetFVF(DWORD* fvf) {
    const CallScope call("GetFVF");
    if (!fvf)
        return D3DERR_INVALIDCALL;
    *fvf = mLayout ? mLayout->format.fvf : 0;
    return D3D_OK;
}

HRESULT Device::SetStreamSource(UINT stream, IDirect3DVertexBuffer9* buffer, UINT offset,
                                UINT stride) {
    const CallScope call("SetStreamSource", stream, buffer, offset, stride);
    auto* ours = static_cast<VertexBuffer*>(buffer);
    if (!ours && stream > 0 && stream < MaxStreams)
        return D3D_OK; // nothing is there, and nothing stays
    if (stream != 0 || (ours && (!ours->IsOf(*this) || stride > MaxStride)))
        return D3DERR_INVALIDCALL;
    if (!ours)
        offset = stride = 0;
    if (mVertices == ours && mState.vertexOffset == offset && mState.stride == stride)
        return D3D_OK;
    Rebind(mVertices, ours);
    mState.vertices = ours ? ours->content.Gpu() : nullptr;
    mState.vertexOffset = offset;
    mState.stride = stride;
    mSomethingBehind |= ours && ours->content.IsBehind();
    mChanged |= Changed::Vertices;
    return D3D_OK;
}

HRESULT Device::SetIndices(IDirect3DIndexBuffer9* buffer) {
    const CallScope call("SetIndices", buffer);
    auto* ours = static_cast<IndexBuffer*>(buffer);
    if (ours && !ours->IsOf(*this))
        return D3DERR_INVALIDCALL;
    if (mIndices == ours)
        return D3D_OK;
    Rebind(mIndices, ours);
    mState.indices = ours ? ours->content.Gpu() : nullptr;
    mState.wideIndices = !ours || ours->IsWide();
    mSomethingBehind |= ours && ours->content.IsBehind();
    mChanged |= Changed::Indices;
    return D3D_OK;
}

// --- targets

void Device::updateTarget() {
    const D3DSURFACE_DESC& color = mTarget->Desc();
    mDepthFits =
        !mDepth || (mDepth->Desc().Width >= color.Width && mDepth->Desc().Height >= color.Height);
    const Target target = {mTarget->Gpu(), mDepth && mDepthFits ? mDepth->Gpu() : nullptr,
                           color.Width, color.Height};
    mTargetMakesMips = mTarget->MakesMips();
    if (mState.target == target)
        return;
    mState.target = target;
    mChanged |= Changed::Target;
}

void Device::finishMips() {
    if (!mMipsAreOld)
        return;
    mMipsAreOld = false;
    mTarget->Gpu()->GenerateMips();
    mChanged |= Changed::Samplers; // a stage that has the target may sample them
}

HRESULT Device::SetRenderTarget(DWORD index, IDirect3DSurface9* surface) {
    const CallScope call("SetRenderTarget", index, surface);
    auto* ours = static_cast<Surface*>(surface);
    if (!ours && index > 0 && index < MaxTargets)
        return D3D_OK; // nothing is there, and nothing stays
    if (index != 0 || !ours || !ours->Owner().IsOf(*this) || !ours->IsTarget() ||
        ours->Level() != 0)
        return D3DERR_INVALIDCALL;
    if (ours != mTarget)
        finishMips();
    RebindSurface(mTarget, ours);
    updateTarget();
    storeViewport({0, 0, ours->Desc().Width, ours->Desc().Height, 0, 1});
    return D3D_OK;
}

HRESULT Device::GetRenderTarget(DWORD index, IDirect3DSurface9** surface) {
    const CallScope call("GetRenderTarget", index);
    if (index != 0 || !surface)
        return D3DERR_INVALIDCALL;
    return GiveOut(mTarget, mTarget->Owner(), surface);
}

HRESULT Device::SetDepthStencilSurface(IDirect3DSurface9* surface) {
    const CallScope call("SetDepthStencilSurface", surface);
    auto* ours = static_cast<Surface*>(surface);
    if (ours && (!ours->Owner().IsOf(*this) || !ours->IsDepth()))
        return D3DERR_INVALIDCALL;
    RebindSurface(mDepth, ours);
    updateTarget();
    return D3D_OK;
}

HRESULT Device::GetDepthStencilSurface(IDirect3DSurface9** surface) {
    const CallScope call("GetDepthStencilSurface");
    if (!surface)
        return D3DERR_INVALIDCALL;
    return mDepth ? GiveOut(mDepth, mDepth->Owner(), surface) : D3DERR_NOTFOUND;
}

HRESULT Device::GetBackBuffer(UINT swapChain, UINT index, D3DBACKBUFFER_TYPE type,
                              IDirect3DSurface9** surface) {
    const CallScope call("GetBackBuffer", swapChain, index, type);
    if (swapChain != 0 || index != 0 || type != D3DBACKBUFFER_TYPE_MONO || !surface)
        return D3DERR_INVALIDCALL;
    return GiveOut(mBackBuffer, *mBackBuffer, surface);
}

HRESULT Device::GetRenderTargetData(IDirect3DSurface9* target, IDirect3DSurface9* systemMemory) {
    const CallScope call("GetRenderTargetData", target, systemMemory);
    auto* from = static_cast<Surface*>(target);
    auto* to = static_cast<Surface*>(systemMemory);
    if (!from || !to || !from->Owner().IsOf(*this) || !to->Owner().IsOf(*this))
        return D3DERR_INVALIDCALL;
    const D3DSURFACE_DESC &have = from->Desc(), &want = to->Desc();
    if (!from->IsTarget() || want.Pool != D3DPOOL_SYSTEMMEM || to->Memory()->IsLocked() ||
        have.Width != want.Width || have.Height != want.Height || have.Format != want.Format)
        return D3DERR_INVALIDCALL;
    if (mStatus != D3D_OK)
        return D3DERR_DEVICELOST;
    const RECT all = {0, 0, static_cast<LONG>(have.Width), static_cast<LONG>(have.Height)};
    return Guarded([&] {
        const bool read =
            from->Gpu()->Read(from->Level(), all, to->Memory()->At(0, 0), to->Memory()->Pitch());
        return read ? D3D_OK : D3DERR_DRIVERINTERNALERROR;
    });
}

} // namespace VornPlatform
