// SPDX-License-Identifier: MIT
//
// The shader files of "data/shaders/", and the targets and the texture that drawing with them
// needs.
#include "vorn/render/graphic.hpp"
#include "vorn/resource/device_object.hpp"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>

namespace Vorn {

namespace {

constexpr D3DVERTEXELEMENT9 Element(std::size_t offset, BYTE type, BYTE usage, BYTE index = 0) {
    return {0, static_cast<WORD>(offset), type, D3DDECLMETHOD_DEFAULT, usage, index};
}

// Vertex_UTx as the skinning shader has always read it: the normal lies under the colour and the
// first two of TEXCOORD0, and the colour under the third.
constexpr D3DVERTEXELEMENT9 SkelElements[] = {
    Element(0, D3DDECLTYPE_FLOAT3, D3DDECLUSAGE_POSITION),
    Element(12, D3DDECLTYPE_D3DCOLOR, D3DDECLUSAGE_COLOR),
    Element(16, D3DDECLTYPE_FLOAT3, D3DDECLUSAGE_TEXCOORD),
    Element(28, D3DDECLTYPE_FLOAT2, D3DDECLUSAGE_TEXCOORD, 1),
    Element(36, D3DDECLTYPE_FLOAT4, D3DDECLUSAGE_BLENDWEIGHT),
    Element(52, D3DDECLTYPE_UBYTE4, D3DDECLUSAGE_BLENDINDICES),
    D3DDECL_END()};

constexpr D3DVERTEXELEMENT9 MeshElements[] = {
    Element(offsetof(Vertex_UTx, x), D3DDECLTYPE_FLOAT3, D3DDECLUSAGE_POSITION),
    Element(offsetof(Vertex_UTx, nx), D3DDECLTYPE_FLOAT3, D3DDECLUSAGE_NORMAL),
    Element(offsetof(Vertex_UTx, color), D3DDECLTYPE_D3DCOLOR, D3DDECLUSAGE_COLOR),
    Element(offsetof(Vertex_UTx, u), D3DDECLTYPE_FLOAT2, D3DDECLUSAGE_TEXCOORD), D3DDECL_END()};

constexpr D3DVERTEXELEMENT9 QuadElements[] = {
    Element(offsetof(VERTEX_2D, x), D3DDECLTYPE_FLOAT3, D3DDECLUSAGE_POSITION),
    Element(offsetof(VERTEX_2D, color), D3DDECLTYPE_D3DCOLOR, D3DDECLUSAGE_COLOR),
    Element(offsetof(VERTEX_2D, u), D3DDECLTYPE_FLOAT2, D3DDECLUSAGE_TEXCOORD), D3DDECL_END()};

/// The text of a buffer of D3DX, which is given back; empty where there is none.
std::string TakeText(ID3DXBuffer*& buffer) {
    std::string text;
    if (buffer)
        text = static_cast<const char*>(buffer->GetBufferPointer());
    ReleaseObject(buffer);
    return text;
}

/// Raises std::exception, with the compiler's text on standard output.
void CompileShader(const char* path, const char* entry, const char* profile, ID3DXBuffer*& code,
                   ID3DXConstantTable** constants) {
    ID3DXBuffer* errors = nullptr;
    const HRESULT result = D3DXCompileShaderFromFileA(path, nullptr, nullptr, entry, profile, 0,
                                                      &code, &errors, constants);
    const std::string text = TakeText(errors); // also of warnings, which nobody sees
    if (SUCCEEDED(result) && code)
        return;
    std::cout << text << std::flush;
    throw std::exception();
}

} // namespace

void Graphic::InitShaders() {
    releaseShaders();
    releaseTargets();
    if (!LiveDevice())
        return;
    try {
        loadSkinning();
        loadEffects();
    } catch (...) {
        releaseShaders();
        throw;
    }
    makeTargets();
    makeWhite();
}

void Graphic::loadSkinning() {
    m3DDevice->CreateVertexDeclaration(SkelElements, &mSkelDecl);
    const auto code = [this] {
        return static_cast<const DWORD*>(mShaderBuffer->GetBufferPointer());
    };

    CompileShader("data/shaders/skel.vsh", "VertexBlend", "vs_3_0", mShaderBuffer, &mSkelConstants);
    m3DDevice->CreateVertexShader(code(), &mSkelVS);
    ReleaseObject(mShaderBuffer);

    CompileShader("data/shaders/skel.psh", "ps_main", "ps_3_0", mShaderBuffer, nullptr);
    m3DDevice->CreatePixelShader(code(), &mSkelPS);
    ReleaseObject(mShaderBuffer);
}

void Graphic::loadEffects() {
    // `name` is what hosts know the file by in the message.
    const auto load = [](const char* path, const char* name, ID3DXEffect*& effect) {
        if (!LoadShader(path, effect))
            throw std::runtime_error(std::string("Failed to load shader: ") + name);
    };
    m3DDevice->CreateVertexDeclaration(QuadElements, &mDecl2D);
    load("data/shaders/twodbasicshader.fx", "twodbasicshader.fx", mEffectTwoD);
    m3DDevice->CreateVertexDeclaration(MeshElements, &mDecl3D);
    load("data/shaders/basicshader.fx", "BasicShader.fx", mEffectBasic);
    load("data/shaders/vornlight.fx", "vornlight.fx", mEffectLight);
    load("data/shaders/distortionshader.fx", "distortionshader.fx", mEffectDistortion);
    load("data/shaders/shadow.fx", "ShadowShader.fx", mEffectShadow);
}

bool Graphic::LoadShader(const char* path, ID3DXEffect*& effect) {
    effect = nullptr;
    if (!LiveDevice())
        return false;
    ID3DXBuffer* errors = nullptr;
    const HRESULT result = D3DXCreateEffectFromFileA(m3DDevice, path, nullptr, nullptr,
                                                     D3DXSHADER_NO_PRESHADER | D3DXFX_NOT_CLONEABLE,
                                                     nullptr, &effect, &errors);
    const bool told = errors != nullptr;
    const std::string text = TakeText(errors); // also of warnings, which nobody sees
    if (FAILED(result) && told)
        throw std::runtime_error(text);
    return effect != nullptr;
}

void Graphic::makeTargets() {
    const UINT width = m3Dpp.BackBufferWidth, height = m3Dpp.BackBufferHeight;
    D3DXCreateRenderToSurface(m3DDevice, width, height, D3DFMT_X8R8G8B8, TRUE, D3DFMT_D24X8,
                              &mRenderToSurface);
    const auto makeTarget = [&](IDirect3DTexture9*& texture, IDirect3DSurface9*& surface) {
        D3DXCreateTexture(m3DDevice, width, height, 0,
                          D3DUSAGE_RENDERTARGET | D3DUSAGE_AUTOGENMIPMAP, D3DFMT_X8R8G8B8,
                          D3DPOOL_DEFAULT, &texture);
        if (texture)
            texture->GetSurfaceLevel(0, &surface);
    };
    makeTarget(mRTTexture, mRTSurface);
    makeTarget(mRTBeamTexture, mRTBeamSurface);
    makeTarget(mRTParticlesTexture, mRTParticlesSurface);
}

void Graphic::makeWhite() {
    D3DXCreateTexture(m3DDevice, 1, 1, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, &mWhite);
    IDirect3DSurface9* surface = nullptr;
    if (mWhite)
        mWhite->GetSurfaceLevel(0, &surface);
    D3DLOCKED_RECT locked = {};
    if (surface && SUCCEEDED(surface->LockRect(&locked, nullptr, 0))) {
        *static_cast<std::uint32_t*>(locked.pBits) = 0xFFFFFFFFu;
        surface->UnlockRect();
    }
    ReleaseObject(surface);
}

void Graphic::releaseShaders() {
    ReleaseObject(mSkelConstants);
    ReleaseObject(mSkelVS);
    ReleaseObject(mSkelPS);
    ReleaseObject(mSkelDecl);
    ReleaseObject(mShaderBuffer);
    ReleaseObject(mDecl2D);
    ReleaseObject(mEffectTwoD);
    ReleaseObject(mDecl3D);
    ReleaseObject(mEffectBasic);
    ReleaseObject(mEffectLight);
    ReleaseObject(mEffectDistortion);
    ReleaseObject(mEffectShadow);
    ReleaseObject(mWhite);
}

void Graphic::releaseTargets() {
    ReleaseObject(mRenderToSurface);
    ReleaseObject(mRTTexture);
    ReleaseObject(mRTBeamTexture);
    ReleaseObject(mRTSurface);
    ReleaseObject(mRTBeamSurface);
    ReleaseObject(mRTParticlesTexture);
    ReleaseObject(mRTParticlesSurface);
}

} // namespace Vorn
