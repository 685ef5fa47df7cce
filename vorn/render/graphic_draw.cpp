// SPDX-License-Identifier: MIT
//
// The frame, buffers, lines and text.
#include "vorn/render/graphic.hpp"
#include "vorn/resource/device_object.hpp"

#include <cstring>

namespace Vorn {

namespace {

constexpr DWORD MeshFormat = D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_DIFFUSE;
constexpr DWORD ImageFormat = D3DFVF_XYZ | D3DFVF_DIFFUSE | D3DFVF_TEX1;
constexpr DWORD LineFormat = D3DFVF_XYZ | D3DFVF_DIFFUSE;

// The platform's numbers have 32 bits.
constexpr DWORD Low32(unsigned long number) {
    return static_cast<DWORD>(number & 0xFFFFFFFFul);
}

// A buffer that cannot be filled is of no use to anyone.
template <typename Buffer>
bool Fill(Buffer*& buffer, unsigned int bytes, const void* source) {
    void* memory = nullptr;
    if (FAILED(buffer->Lock(0, bytes, &memory, 0)) || !memory) {
        ReleaseObject(buffer);
        return false;
    }
    if (bytes)
        std::memcpy(memory, source, bytes);
    buffer->Unlock();
    return true;
}

} // namespace

void Graphic::BeginScene() {
    if (LiveDevice())
        m3DDevice->BeginScene();
}

void Graphic::EndScene() {
    if (LiveDevice())
        m3DDevice->EndScene();
}

void Graphic::Present() {
    if (LiveDevice())
        m3DDevice->Present(nullptr, nullptr, nullptr, nullptr);
}

void Graphic::SetBackBufferColor(const unsigned long& color) {
    if (LiveDevice())
        m3DDevice->Clear(0, nullptr, D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, Low32(color), 1.0f, 0);
}

void Graphic::BackBufferColor(unsigned long color) {
    mBackBufferColor = Low32(color);
}

void Graphic::SetFVF(unsigned long fvf) {
    if (LiveDevice())
        m3DDevice->SetFVF(Low32(fvf));
}

void Graphic::SetTexture(IDirect3DTexture9* const& texture) {
    if (LiveDevice())
        m3DDevice->SetTexture(0, texture);
}

void Graphic::SetTwoDTexture(IDirect3DTexture9* texture) {
    SetFVF(ImageFormat);
    SetTexture(texture);
}

void Graphic::SetMesh(IDirect3DVertexBuffer9* const& vertices, unsigned int stride) {
    if (LiveDevice())
        m3DDevice->SetStreamSource(0, vertices, 0, stride);
}

void Graphic::SetIndices(IDirect3DIndexBuffer9* const& indices) {
    if (LiveDevice())
        m3DDevice->SetIndices(indices);
}

void Graphic::Draw(unsigned int vertexCount, unsigned int primitiveCount) {
    if (LiveDevice())
        m3DDevice->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, vertexCount, 0, primitiveCount);
}

bool Graphic::CreateVertexBuffer(unsigned int bytes, IDirect3DVertexBuffer9*& buffer,
                                 const Vertex_UTx* source) {
    if (!LiveDevice() || (bytes && !source))
        return false;
    return SUCCEEDED(m3DDevice->CreateVertexBuffer(bytes, D3DUSAGE_WRITEONLY, MeshFormat,
                                                   D3DPOOL_DEFAULT, &buffer, nullptr)) &&
           Fill(buffer, bytes, source);
}

bool Graphic::Create2DVertexBuffer(unsigned int bytes, IDirect3DVertexBuffer9*& buffer,
                                   const VERTEX_2D* source) {
    if (!LiveDevice() || (bytes && !source))
        return false;
    return SUCCEEDED(m3DDevice->CreateVertexBuffer(bytes, 0, ImageFormat, D3DPOOL_MANAGED, &buffer,
                                                   nullptr)) &&
           Fill(buffer, bytes, source);
}

bool Graphic::CreateIndexBuffer(unsigned int bytes, IDirect3DIndexBuffer9*& buffer,
                                const unsigned int* source) {
    if (!LiveDevice() || (bytes && !source))
        return false;
    return SUCCEEDED(m3DDevice->CreateIndexBuffer(bytes, D3DUSAGE_WRITEONLY, D3DFMT_INDEX32,
                                                  D3DPOOL_DEFAULT, &buffer, nullptr)) &&
           Fill(buffer, bytes, source);
}

void Graphic::beginTarget(IDirect3DSurface9* surface) {
    if (!LiveDevice() || !mRenderToSurface || !surface)
        return;
    D3DVIEWPORT9 viewport{};
    m3DDevice->GetViewport(&viewport);
    mRenderToSurface->BeginScene(surface, &viewport);
}

void Graphic::endTarget() {
    if (mRenderToSurface)
        mRenderToSurface->EndScene(D3DX_FILTER_NONE);
}

void Graphic::Draw3DLine(Vector3 a, Vector3 b, COLORS color) {
    if (!LiveDevice())
        return;
    const VERTEX_LINE ends[] = {{a.x, a.y, a.z, color}, {b.x, b.y, b.z, color}};
    D3DXMATRIX identity;
    D3DXMatrixIdentity(&identity);
    m3DDevice->SetTexture(0, nullptr);
    m3DDevice->SetTransform(D3DTS_WORLD, &identity);
    m3DDevice->SetVertexDeclaration(nullptr);
    m3DDevice->SetVertexShader(nullptr);
    m3DDevice->SetPixelShader(nullptr);
    m3DDevice->SetFVF(LineFormat);
    m3DDevice->DrawPrimitiveUP(D3DPT_LINELIST, 1, ends, sizeof(VERTEX_LINE));
}

void Graphic::Draw2DLine(const Point2* points, unsigned int count, COLORS color, float width) {
    if (!mLine || !points || count == 0)
        return;
    mLine->SetAntialias(TRUE);
    mLine->SetWidth(width);
    mLine->SetGLLines(FALSE);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): two floats, as point2.hpp
    // asserts
    mLine->Draw(reinterpret_cast<const D3DXVECTOR2*>(points), count - 1, color);
}

void Graphic::RenderText(int x, int y, unsigned int color, const char* text) {
    if (!LiveDevice() || !mFont || !text)
        return;
    // Nothing is clipped, so only the left and the top count.
    RECT rect{x, y, 1, static_cast<LONG>(static_cast<unsigned int>(y) + 1)};
    mFont->DrawTextA(nullptr, text, -1, &rect, DT_NOCLIP, color);
}

} // namespace Vorn
