// SPDX-License-Identifier: MIT
//
// Transforms, lights and states.
#include "vorn/render/graphic.hpp"

namespace Vorn {

namespace {

void SetTransform(D3DTRANSFORMSTATETYPE which, const D3DXMATRIX& matrix) {
    if (IDirect3DDevice9* const device = Graphic::LiveDevice())
        device->SetTransform(which, &matrix);
}

void SetState(D3DRENDERSTATETYPE state, DWORD value) {
    if (IDirect3DDevice9* const device = Graphic::LiveDevice())
        device->SetRenderState(state, value);
}

} // namespace

void Graphic::SetWorldTransform(const Matrix4& m) {
    SetTransform(D3DTS_WORLD, D3DXMATRIX(m.m));
}

void Graphic::SetView(const Matrix4& m) {
    SetTransform(D3DTS_VIEW, m);
}

void Graphic::SetProjection(const Matrix4& m) {
    SetTransform(D3DTS_PROJECTION, m);
}

void Graphic::SetTextureMatrix(const Matrix4& m) {
    SetTransform(D3DTS_TEXTURE0, m);
}

Matrix4 Graphic::GetWorldMatrix() {
    D3DXMATRIX world = Matrix4::Identity;
    if (LiveDevice())
        m3DDevice->GetTransform(D3DTS_WORLD, &world);
    return Matrix4(&world.m[0][0]).Transposed();
}

Point2 Graphic::Unproject(const Point2& p, Matrix4 projection, Matrix4 view) {
    const D3DXMATRIX dxProjection = projection, dxView = view, world = Matrix4::Identity;
    D3DVIEWPORT9 viewport = mViewport;
    if (LiveDevice())
        m3DDevice->GetViewport(&viewport);
    const D3DXVECTOR3 point(p.x, p.y, 0.0f);
    D3DXVECTOR3 out;
    D3DXVec3Unproject(&out, &point, &viewport, &dxProjection, &dxView, &world);
    return {out.x, out.y};
}

void Graphic::SetWireFrame(bool on) {
    SetState(D3DRS_FILLMODE, on ? D3DFILL_WIREFRAME : D3DFILL_SOLID);
    mWireFrame = on;
}

void Graphic::SetPointLight(bool on) {
    SetState(D3DRS_LIGHTING, on);
    mPointLightOn = on;
}

void Graphic::CreatePointLight(const Vector3& position) {
    mPointLight = {};
    mPointLight.Type = D3DLIGHT_POINT;
    mPointLight.Diffuse = {1.0f, 1.0f, 1.0f, 0.0f};
    mPointLight.Position = {position.x, position.y, position.z};
    mPointLight.Attenuation0 = 0.1f;
    mPointLight.Range = 200.0f;
    if (!LiveDevice())
        return;
    m3DDevice->SetLight(1, &mPointLight);
    m3DDevice->LightEnable(1, TRUE);
}

void Graphic::SetPointLightSettings(const Vector3& diffuse, const Vector3& specular,
                                    const Vector3& ambient) {
    mLightDiffuse = diffuse;
    mLightSpecular = specular;
    mLightAmbient = ambient;
}

void Graphic::SetFog(float front, float back) {
    mFrontFog = front;
    mBackFog = back;
}

void Graphic::SetTransparent() {
    SetState(D3DRS_ALPHABLENDENABLE, TRUE);
    SetState(D3DRS_CULLMODE, D3DCULL_NONE);
    SetState(D3DRS_ALPHAFUNC, D3DCMP_GREATEREQUAL);
    SetState(D3DRS_ALPHAREF, 8);
    SetState(D3DRS_ALPHATESTENABLE, TRUE);
}

} // namespace Vorn
