// SPDX-License-Identifier: MIT
//
// A frame of the viewer. What gives off particles is drawn as games do it, by the three targets and
// the last pass over them; all else straight into the back buffer.
#include "tools/view/pose.hpp"
#include "tools/view/viewer.hpp"

#include "platform/control/vorn_platform.hpp"
#include "vorn/render/graphic.hpp"
#include "vorn/render/graphics_2d_system.hpp"

#include <algorithm>
#include <array>

namespace View {
namespace {

constexpr D3DCOLOR Background = D3DCOLOR_XRGB(38, 43, 51), Black = D3DCOLOR_XRGB(0, 0, 0);

void Set(std::initializer_list<std::pair<D3DRENDERSTATETYPE, DWORD>> states) {
    for (const auto& [state, value] : states)
        Vorn::Graphic::GetDevice()->SetRenderState(state, value);
}

/// The whole back buffer, which the engine leaves to a column of 4 to 3.
void UseWholePicture() {
    const auto& graphic = *Vorn::Graphic::Instance();
    const D3DVIEWPORT9 all{0, 0, graphic.BackBufferWidth(), graphic.BackBufferHeight(), 0, 1};
    Vorn::Graphic::GetDevice()->SetViewport(&all);
}

void SolidStates() {
    Set({{D3DRS_ZENABLE, TRUE},
         {D3DRS_ZWRITEENABLE, TRUE},
         {D3DRS_ZFUNC, D3DCMP_LESSEQUAL},
         {D3DRS_CULLMODE, D3DCULL_NONE},
         {D3DRS_FILLMODE, D3DFILL_SOLID},
         {D3DRS_ALPHABLENDENABLE, FALSE},
         {D3DRS_ALPHATESTENABLE, FALSE},
         {D3DRS_SRCBLEND, D3DBLEND_SRCALPHA},
         {D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA}});
    for (const D3DSAMPLERSTATETYPE filter :
         {D3DSAMP_MINFILTER, D3DSAMP_MAGFILTER, D3DSAMP_MIPFILTER})
        Vorn::Graphic::GetDevice()->SetSamplerState(0, filter, D3DTEXF_LINEAR);
}

IDirect3DTexture9* PictureOf(const Vorn::Material& material) {
    const Vorn::Texture* const texture = material.Texture();
    return texture && texture->mTexture ? *texture->mTexture : nullptr;
}

} // namespace

void Viewer::Draw() {
    if (!Vorn::Graphic::LiveDevice())
        return;
    auto& graphic = *Vorn::Graphic::Instance();
    pose();
    UseWholePicture();
    mOrbit.Apply(aspect(), panelShare());
    placeLight();
    gatherLines();
    if (mSubject->HasParticles()) {
        drawTargets();
    } else {
        graphic.BeginScene();
        drawWorld();
    }
    if (shown.texture)
        drawTexture();
    graphic.EndScene();
    mDrawCalls = VornPlatform::CountFrame().drawCalls;
}

void Viewer::drawWorld() {
    Vorn::Graphic::Instance()->SetBackBufferColor(Background);
    SolidStates();
    const Vorn::Camera& camera = mOrbit.Camera();
    if (!mSubject->Draw({mOrbit.Eye(), mLight, camera.viewMatrix(), camera.Projection(), mTime}))
        for (const Part& part : mSubject->Parts())
            drawPart(part);
    mLines.Draw(camera.Projection(), false);
    mFront.Draw(camera.Projection(), true);
}

void Viewer::drawPart(const Part& part) const {
    auto& graphic = *Vorn::Graphic::Instance();
    const Vorn::Mesh& mesh = *part.mesh;
    if (!mesh.mVertexBuffer || !mesh.mIndexBuffer)
        return;
    const DWORD through = part.material->HasTransparency() || mSubject->IsFlat() ? TRUE : FALSE;
    Set({{D3DRS_ALPHABLENDENABLE, through}});
    graphic.SetMesh(mesh.mVertexBuffer, sizeof(Vorn::Vertex_UTx));
    graphic.SetIndices(mesh.mIndexBuffer);
    if (isPosed(part)) {
        graphic.SetTexture(PictureOf(*part.material));
        graphic.SetSkelMatrix(*part.mesh, part.world, 0.0f);
        return;
    }
    graphic.PhongLightingDraw(part.mesh, part.world, PictureOf(*part.material), part.material,
                              part.material->ModulationColor(), part.material->AdditiveColor());
}

// Leaves the scene of the back buffer open.
void Viewer::drawTargets() {
    auto& graphic = *Vorn::Graphic::Instance();
    graphic.RTBeamBegin();
    graphic.SetBackBufferColor(Black);
    graphic.RTBeamEnd();
    graphic.RTBegin();
    drawWorld();
    graphic.RTEnd();
    graphic.RTParticlesBegin();
    // The scene's depth stays, so that particles pass behind things.
    Vorn::Graphic::GetDevice()->Clear(0, nullptr, D3DCLEAR_TARGET, Black, 1.0f, 0);
    Vorn::Graphics2DSystem::Instance()->RenderParticle();
    graphic.RTParticlesEnd();

    UseWholePicture();
    graphic.SetView(Vorn::Matrix4::Identity);
    graphic.SetProjection(Vorn::Matrix4::orthogonal(800, 600, -1, 1));
    graphic.SetBackBufferColor(Black);
    graphic.BeginScene();
    Set({{D3DRS_ZENABLE, FALSE}});
    graphic.DistortionEffect({}, false);
}

// The first part's texture, in a corner, with its triangles as u and v have them.
void Viewer::drawTexture() {
    const std::vector<Part> parts = mSubject->Parts();
    if (parts.empty())
        return;
    constexpr float side = 320, margin = 16;
    constexpr std::uint32_t line = 0x90FFFFFFu;
    auto& graphic = *Vorn::Graphic::Instance();
    const auto width = static_cast<float>(graphic.BackBufferWidth());
    const auto height = static_cast<float>(graphic.BackBufferHeight());
    const Vorn::Matrix4 flat = Vorn::Matrix4::orthogonal(width, height, -1, 1);
    graphic.SetView(Vorn::Matrix4::Identity);
    graphic.SetProjection(flat);
    Set({{D3DRS_ZENABLE, FALSE}});
    const float left = margin, top = height - margin - side;
    const Vorn::Matrix4 place(side, 0, 0, left + side / 2, 0, side, 0, top + side / 2, 0, 0, 0, 0,
                              0, 0, 0, 1);
    graphic.DrawTwoD(place, PictureOf(*parts[0].material));

    Lines lines;
    const Vorn::Mesh& mesh = *parts[0].mesh;
    const auto at = [&](unsigned int index) {
        const Vorn::Vertex_UTx& vertex = mesh.mVertices[std::min(index, mesh.mVertexCount - 1)];
        return Vorn::Vector3(left + vertex.u * side, top + vertex.v * side, 0);
    };
    for (std::uint32_t i = 0; i + 2 < mesh.mIndexCount && mesh.mVertexCount > 0; i += 3)
        for (std::uint32_t edge = 0; edge < 3; ++edge)
            lines.Add(at(mesh.mIndices[i + edge]), at(mesh.mIndices[i + (edge + 1) % 3]), line);
    lines.Draw(flat, true);
}

} // namespace View
