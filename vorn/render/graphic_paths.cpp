// SPDX-License-Identifier: MIT
//
// The draw paths: each fills the parameters of its effect, chooses a technique and runs the passes.
// docs/shaders.md has the names as a table.
#include "vorn/core/delta_clock.hpp"
#include "vorn/render/graphic.hpp"
#include "vorn/resource/material.hpp"
#include "vorn/resource/mesh.hpp"
#include "vorn/resource/skeleton.hpp"

#include <algorithm>
#include <cstddef>

namespace Vorn {

namespace {

constexpr DWORD ImageFormat = D3DFVF_XYZ | D3DFVF_DIFFUSE | D3DFVF_TEX1;

D3DXMATRIX TransformOf(IDirect3DDevice9& device, D3DTRANSFORMSTATETYPE which) {
    D3DXMATRIX matrix;
    if (FAILED(device.GetTransform(which, &matrix)))
        matrix = Matrix4::Identity;
    return matrix;
}

void SetTransforms(IDirect3DDevice9& device, ID3DXEffect& effect, const D3DXMATRIX& world) {
    const D3DXMATRIX view = TransformOf(device, D3DTS_VIEW);
    const D3DXMATRIX projection = TransformOf(device, D3DTS_PROJECTION);
    effect.SetMatrix("worldMatrix", &world);
    effect.SetMatrix("viewMatrix", &view);
    effect.SetMatrix("projectionMatrix", &projection);
}

HRESULT SetTechnique(ID3DXEffect& effect, const char* name) {
    return effect.SetTechnique(effect.GetTechniqueByName(name));
}

void SetVector(ID3DXEffect& effect, const char* name, const Vector3& v) {
    const float three[] = {v.x, v.y, v.z};
    effect.SetValue(name, three, sizeof three);
}

void SetVector(ID3DXEffect& effect, const char* name, const Vector3& v, float w) {
    const float four[] = {v.x, v.y, v.z, w};
    effect.SetValue(name, four, sizeof four);
}

void SetVector(ID3DXEffect& effect, const char* name, const Vector4& v) {
    SetVector(effect, name, Vector3(v.x, v.y, v.z), v.w);
}

// A channel of a packed colour, on the scale from 0 to 255.
float Channel(unsigned int color, int shift) {
    return static_cast<float>((color >> shift) & 0xFFu);
}

// What `draw` does, once in each pass of the technique.
template <typename Draw>
void RunPasses(ID3DXEffect& effect, const Draw& draw) {
    UINT passes = 0;
    if (FAILED(effect.Begin(&passes, 0)))
        return;
    for (UINT pass = 0; pass < passes; ++pass)
        if (SUCCEEDED(effect.BeginPass(pass))) {
            draw();
            effect.EndPass();
        }
    effect.End();
}

} // namespace

// The unit square, with the technique that most effects have.
void Graphic::beginQuad(ID3DXEffect& effect) {
    SetTransparent();
    SetTechnique(effect, "TransformTech");
    m3DDevice->SetFVF(ImageFormat);
    m3DDevice->SetVertexDeclaration(mDecl2D);
    m3DDevice->SetStreamSource(0, mQuadVB, 0, sizeof(VERTEX_2D));
    m3DDevice->SetIndices(mQuadIB);
}

void Graphic::drawQuad() {
    Draw(4, 2);
}

void Graphic::drawMesh(const Mesh& mesh) {
    Draw(mesh.mVertexCount, mesh.mIndexCount / 3);
}

void Graphic::DrawTwoD(D3DXMATRIX world, IDirect3DTexture9* texture) {
    if (!LiveDevice() || !mEffectTwoD)
        return;
    ID3DXEffect& effect = *mEffectTwoD;
    beginQuad(effect);

    SetTransforms(*m3DDevice, effect, world);
    effect.SetTexture("ModelTexture", orWhite(texture));
    RunPasses(effect, [this] { drawQuad(); });
}

void Graphic::DrawTwoDModulate(D3DXMATRIX world, IDirect3DTexture9* texture, float alpha) {
    if (!LiveDevice() || !mEffectTwoD)
        return;
    ID3DXEffect& effect = *mEffectTwoD;
    SetTransparent();
    m3DDevice->SetFVF(ImageFormat);
    m3DDevice->SetStreamSource(0, mQuadVB, 0, sizeof(VERTEX_2D));
    m3DDevice->SetIndices(mQuadIB);

    SetTransforms(*m3DDevice, effect, world);
    effect.SetFloat("PF", mFrontFog);
    effect.SetFloat("PB", mBackFog);
    // Shader files out there are made for this number, which is neither 255 nor 256.
    constexpr float full = 258.0f;
    effect.SetFloat("R", full);
    effect.SetFloat("G", full);
    effect.SetFloat("B", full);
    effect.SetFloat("A", alpha);
    effect.SetTexture("ModelTexture", orWhite(texture));
    SetTechnique(effect, "pixelmodulate");
    m3DDevice->SetVertexDeclaration(mDecl2D);
    RunPasses(effect, [this] { drawQuad(); });
}

void Graphic::DistortionEffect(Point2 center, bool distortion) {
    const auto dt = static_cast<float>(DeltaClock::Instance()->GetDeltaTime());
    sDistortionTime += dt;
    if (sDistortionTime > 0.7f)
        sDistortionTime = 0.0f;
    sDistortionTargetTime += dt;
    if (static_cast<double>(sDistortionTargetTime) > 0.07)
        sDistortionTargetTime = 0.0f;
    if (!LiveDevice() || !mEffectDistortion)
        return;
    ID3DXEffect& effect = *mEffectDistortion;
    beginQuad(effect);

    // The unit square from (0, 0) to (800, 600), whatever the size of the back buffer.
    const D3DXMATRIX world = Matrix4(800, 0, 0, 400, 0, 600, 0, 300, 0, 0, 0, 0, 0, 0, 0, 1);
    SetTransforms(*m3DDevice, effect, world);
    effect.SetTexture("ModelTexture", mRTTexture);
    effect.SetTexture("BeamTexture", mRTBeamTexture);
    effect.SetTexture("ParticlesTexture", mRTParticlesTexture);
    effect.SetFloat("Time", sDistortionTime);
    effect.SetFloat("TargetTime", sDistortionTargetTime);
    effect.SetBool("distortion", distortion);
    const float centre[] = {center.x * 0.5f + 0.5f, center.y * 0.5f + 0.5f};
    effect.SetFloatArray("center", centre, 2);
    RunPasses(effect, [this] { drawQuad(); });
}

void Graphic::BasicShaderDraw(Mesh* mesh, D3DXMATRIX world, IDirect3DTexture9* texture) {
    if (!LiveDevice() || !mEffectBasic || !mesh)
        return;
    ID3DXEffect& effect = *mEffectBasic;
    effect.SetTexture("ModelTexture", orWhite(texture));
    SetTransforms(*m3DDevice, effect, world);
    SetTechnique(effect, "TransformTech");
    m3DDevice->SetVertexDeclaration(mDecl3D);
    SetTransparent();
    RunPasses(effect, [&] { drawMesh(*mesh); });
}

void Graphic::PhongLightingDraw(Mesh* mesh, D3DXMATRIX world, IDirect3DTexture9* texture,
                                Material* material, unsigned int modulation,
                                unsigned int additive) {
    if (!LiveDevice() || !mEffectLight || !mesh || !material)
        return;
    ID3DXEffect& effect = *mEffectLight;
    if (FAILED(SetTechnique(effect, "PhongLighting")))
        return;
    m3DDevice->SetVertexDeclaration(mDecl3D);
    setColors(effect, modulation, additive);
    setLight(effect);
    effect.SetTexture("colorMapTexture", orWhite(texture));
    SetVector(effect, "material.ambient", material->Ambient());
    SetVector(effect, "material.diffuse", material->Diffuse());
    SetVector(effect, "material.emissive", material->Emissive());
    SetVector(effect, "material.specular", material->Specular());
    effect.SetFloat("material.shininess", material->Shininess());
    SetVector(effect, "cameraPos", mCameraPos);
    SetTransforms(*m3DDevice, effect, world);
    SetVector(effect, "globalAmbient", Vector3(0.9f, 0.9f, 0.9f), 0.0f);
    const D3DXMATRIX identity = Matrix4::Identity;
    effect.SetMatrix("worldInverseTransposeMatrix", &identity);
    RunPasses(effect, [&] { drawMesh(*mesh); });
}

void Graphic::setColors(ID3DXEffect& effect, unsigned int modulation, unsigned int additive) {
    effect.SetFloat("PF", mFrontFog);
    effect.SetFloat("PB", mBackFog);
    effect.SetFloat("modR", Channel(modulation, 16));
    effect.SetFloat("modG", Channel(modulation, 8));
    effect.SetFloat("modB", Channel(modulation, 0));
    effect.SetFloat("modA", Channel(modulation, 24));
    effect.SetFloat("addR", Channel(additive, 16));
    effect.SetFloat("addG", Channel(additive, 8));
    effect.SetFloat("addB", Channel(additive, 0));
    effect.SetFloat("addA", Channel(additive, 24));
    effect.SetFloat("time", static_cast<float>(DeltaClock::Instance()->GetDeltaTime()));
}

void Graphic::setLight(ID3DXEffect& effect) {
    SetVector(effect, "lights.pos", mLightPos);
    SetVector(effect, "lights.ambient", mLightAmbient, 1.0f);
    SetVector(effect, "lights.diffuse", mLightDiffuse, 1.0f);
    SetVector(effect, "lights.specular", mLightSpecular, 1.0f);
    effect.SetFloat("lights.radius", 100.0f);
}

void Graphic::ShadowMap(Mesh* mesh, D3DXMATRIX world) {
    if (!LiveDevice() || !mEffectShadow || !mesh)
        return;
    ID3DXEffect& effect = *mEffectShadow;
    if (FAILED(SetTechnique(effect, "TransformTech")))
        return;
    m3DDevice->SetVertexDeclaration(mDecl3D);
    SetTransforms(*m3DDevice, effect, world);
    RunPasses(effect, [&] { drawMesh(*mesh); });
}

void Graphic::SetSkelMatrix(Mesh& mesh, D3DXMATRIX world, float dt) {
    if (!LiveDevice() || !mSkelVS || !mSkelPS || !mSkelConstants)
        return;
    const D3DXMATRIX view = TransformOf(*m3DDevice, D3DTS_VIEW);
    const D3DXMATRIX projection = TransformOf(*m3DDevice, D3DTS_PROJECTION);
    D3DXMATRIX worldViewProj;
    D3DXMatrixMultiply(&worldViewProj, &world, &view);
    D3DXMatrixMultiply(&worldViewProj, &worldViewProj, &projection);
    if (mSkelConstants->GetConstantByName(nullptr, "WorldViewProj"))
        mSkelConstants->SetMatrix(m3DDevice, "WorldViewProj", &worldViewProj);

    UpdateSkeleton(dt, mesh);
    const auto bones =
        static_cast<UINT>(std::min(std::size_t{mesh.mBoneCount}, mesh.mBones.size()));
    if (!mesh.mFinalTransforms && bones) // a copy of a mesh has none
        mesh.mFinalTransforms = new D3DXMATRIX[mesh.mBoneCount];
    StoreFinalTransforms(mesh);
    if (mSkelConstants->GetConstantByName(nullptr, "FinalTransforms"))
        mSkelConstants->SetMatrixArray(m3DDevice, "FinalTransforms", mesh.mFinalTransforms, bones);

    m3DDevice->SetVertexDeclaration(mSkelDecl);
    m3DDevice->SetVertexShader(mSkelVS);
    m3DDevice->SetPixelShader(mSkelPS);
    drawMesh(mesh);
}

} // namespace Vorn
