// SPDX-License-Identifier: MIT
#include "vorn/render/graphics_system.hpp"

#include "vorn/core/delta_clock.hpp"
#include "vorn/render/graphic.hpp"
#include "vorn/render/graphics_cmpt.hpp"
#include "vorn/resource/mesh.hpp"
#include "vorn/resource/texture.hpp"
#include "vorn/scene/entity.hpp"

#include <algorithm>

namespace Vorn {

namespace {

constexpr DWORD MeshFormat = D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_DIFFUSE;

bool IsDrawn(const GraphicsCmpt& cmpt, bool distortion) {
    return cmpt.Distortion() == distortion && cmpt.Parent() && cmpt.Parent()->IsAlive();
}

// The world matrix of the entity, which is on the device then as the mesh is.
D3DXMATRIX Bind(const GraphicsCmpt& cmpt) {
    const D3DXMATRIX world = cmpt.Parent()->GetWorld();
    IDirect3DDevice9* const device = Graphic::LiveDevice();
    if (!device)
        return world;
    device->SetTransform(D3DTS_WORLD, &world);
    const Mesh* const mesh = cmpt.GetMesh();
    if (mesh && mesh->mVertexBuffer)
        device->SetStreamSource(0, mesh->mVertexBuffer, 0, sizeof(Vertex_UTx));
    if (mesh && mesh->mIndexBuffer)
        device->SetIndices(mesh->mIndexBuffer);
    return world;
}

void AdvanceRamps(Material& material, float dt) {
    material.mAdditiveRamp.Advance(static_cast<double>(dt));
    material.mModulationRamp.Advance(static_cast<double>(dt));
}

IDirect3DTexture9* DeviceTexture(const Material& material) {
    const Texture* const texture = material.Texture();
    return texture && texture->mTexture ? *texture->mTexture : nullptr;
}

void EndPass() {
    IDirect3DDevice9* const device = Graphic::LiveDevice();
    if (!device)
        return;
    device->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
    device->SetRenderState(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
    device->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);
    device->SetTextureStageState(0, D3DTSS_ALPHAARG1, D3DTA_DIFFUSE);
}

} // namespace

void GraphicsSystem::Init() {
    for (GraphicsCmpt* cmpt : mCmpts.Cmpts())
        cmpt->Init();
}

void GraphicsSystem::Update(float dt) {
    beginPass();
    for (GraphicsCmpt* cmpt : mCmpts.Cmpts())
        if (IsDrawn(*cmpt, false))
            drawLit(*cmpt, dt);
    EndPass();
    ClearLine();
}

void GraphicsSystem::BeamEffects(float dt) {
    beginPass();
    for (GraphicsCmpt* cmpt : mCmpts.Cmpts())
        if (IsDrawn(*cmpt, true))
            drawBeam(*cmpt, dt);
    EndPass();
}

void GraphicsSystem::beginPass() const {
    IDirect3DDevice9* const device = Graphic::LiveDevice();
    if (!device)
        return;
    device->SetTextureStageState(0, D3DTSS_TEXTURETRANSFORMFLAGS, D3DTTFF_COUNT2);
    device->SetRenderState(D3DRS_ALPHABLENDENABLE, FALSE);
    device->SetRenderState(D3DRS_ZENABLE, TRUE);
    device->SetRenderState(D3DRS_ZWRITEENABLE, TRUE);
    device->SetRenderState(D3DRS_ZFUNC, D3DCMP_LESS);
    for (const Line& line : mLines)
        Graphic::Instance()->Draw3DLine(line.start, line.end, line.color);
    device->SetFVF(MeshFormat);
}

void GraphicsSystem::drawLit(GraphicsCmpt& cmpt, float dt) const {
    const D3DXMATRIX world = Bind(cmpt);
    if (!cmpt.GetMesh())
        return;
    Material& material = cmpt.GetMaterial();
    AdvanceRamps(material, dt);
    const unsigned int modulation = material.ModulationColor();
    Graphic::Instance()->PhongLightingDraw(cmpt.GetMesh(), world, DeviceTexture(material),
                                           &material, modulation, material.AdditiveColor());
}

void GraphicsSystem::drawBeam(GraphicsCmpt& cmpt, float dt) const {
    const D3DXMATRIX world = Bind(cmpt);
    Mesh* const mesh = cmpt.GetMesh();
    if (!mesh)
        return;
    if (mesh->mSkinned) {
        const double frame = DeltaClock::Instance()->GetDeltaTime();
        Graphic::Instance()->SetSkelMatrix(*mesh, world, static_cast<float>(frame));
        return;
    }
    Material& material = cmpt.GetMaterial();
    AdvanceRamps(material, dt);
    Graphic::Instance()->BasicShaderDraw(mesh, world, DeviceTexture(material));
}

void GraphicsSystem::Deinit() {
    for (GraphicsCmpt* cmpt : mCmpts.Cmpts())
        cmpt->Deinit();
}

void GraphicsSystem::Register(GraphicsCmpt* cmpt) {
    mCmpts.Add(cmpt);
}

void GraphicsSystem::Unregister(GraphicsCmpt* cmpt) {
    mCmpts.RemoveFirst(cmpt);
}

void GraphicsSystem::UnregisterAlpha(GraphicsCmpt* cmpt) {
    const auto found = std::find(mAlphaCmpts.begin(), mAlphaCmpts.end(), cmpt);
    if (found != mAlphaCmpts.end())
        mAlphaCmpts.erase(found);
}

} // namespace Vorn
