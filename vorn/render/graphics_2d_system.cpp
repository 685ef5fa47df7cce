// SPDX-License-Identifier: MIT
#include "vorn/render/graphics_2d_system.hpp"

#include "vorn/render/emitter_cmpt.hpp"
#include "vorn/render/graphic.hpp"
#include "vorn/render/vorn_2d_obj.hpp"
#include "vorn/resource/texture_manager.hpp"

namespace Vorn {

namespace {

IDirect3DTexture9* DeviceTexture(const Texture* texture) {
    return texture && texture->mTexture ? *texture->mTexture : nullptr;
}

Matrix4 Translation(const Vector3& v) {
    Matrix4 matrix;
    matrix.m[3] = v.x, matrix.m[7] = v.y, matrix.m[11] = v.z;
    return matrix;
}

Matrix4 Scale(float x, float y, float z) {
    Matrix4 matrix;
    matrix.m[0] = x, matrix.m[5] = y, matrix.m[10] = z;
    return matrix;
}

// T(position) * S(scale), without the zeros and transposed.
D3DXMATRIX PlaceOf(const Particle& particle) {
    const Vector3 &at = particle.position, &size = particle.scale;
    const float rows[] = {size.x, 0, 0, 0, 0, size.y, 0, 0, 0, 0, size.z, 0, at.x, at.y, at.z, 1};
    return {rows};
}

void BeginParticles() {
    IDirect3DDevice9* device = Graphic::LiveDevice();
    if (!device)
        return;
    device->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
    device->SetRenderState(D3DRS_ZENABLE, TRUE);
    device->SetRenderState(D3DRS_ZWRITEENABLE, FALSE);
}

// With the texture that `textureOf` gives for each emitter and particle.
template <typename TextureOf>
void DrawLiving(const EmitterCmpt& emitter, const TextureOf& textureOf) {
    for (const Particle& particle : emitter.mParticles)
        if (particle.alive)
            Graphic::Instance()->DrawTwoD(PlaceOf(particle), DeviceTexture(textureOf()));
}

} // namespace

void Graphics2DSystem::Render2DObj(Vorn2DObj* obj, float alpha, bool modulate) {
    if (!obj || !obj->mVisible)
        return;
    // Without thickness, whatever the rotation.
    const Matrix4 world = Translation(obj->mPosition) *
                          Matrix4::RotationAxisAngle(Vector3(0, 0, 1), obj->mAngle) *
                          Scale(obj->mWidth, obj->mHeight, 0.0f);
    if (modulate)
        Graphic::Instance()->DrawTwoDModulate(world, DeviceTexture(obj->mTexture), alpha);
    else
        Graphic::Instance()->DrawTwoD(world, DeviceTexture(obj->mTexture));
}

void Graphics2DSystem::RenderParticle() {
    BeginParticles();
    if (!mEmitterList)
        return;
    for (const EmitterCmpt* emitter : *mEmitterList)
        if (const Texture* texture = emitter->GetTexture())
            DrawLiving(*emitter, [texture] { return texture; });
}

void Graphics2DSystem::RenderParticleGlowOverLay() {
    BeginParticles();
    if (!mEmitterList)
        return;
    // Looked for only when there is a particle to draw with it.
    const Texture* texture = nullptr;
    const auto white = [&texture] {
        if (!texture)
            texture = TextureManager::Instance()->Get("WhiteParticle.dds");
        return texture;
    };
    for (const EmitterCmpt* emitter : *mEmitterList)
        DrawLiving(*emitter, white);
}

} // namespace Vorn
