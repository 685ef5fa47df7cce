// SPDX-License-Identifier: MIT
#include "vorn/render/graphic.hpp"

#include "vorn/resource/device_object.hpp"

#include <algorithm>
#include <cmath>
#include <exception>
#include <iterator>
#include <string_view>

namespace Vorn {

IDirect3D9* Graphic::m3D = nullptr;
IDirect3DDevice9* Graphic::m3DDevice = nullptr;
D3DPRESENT_PARAMETERS Graphic::m3Dpp{};
D3DPRESENT_PARAMETERS Graphic::m3DppFull{};
D3DPRESENT_PARAMETERS Graphic::m3DppWindow{};
D3DVIEWPORT9 Graphic::mViewport{};
HWND Graphic::mWnd = nullptr;
std::uint32_t Graphic::mBackBufferColor = 0;
D3DXMATRIXA16 Graphic::mMatProj{};
bool Graphic::isDeviceLost = false;
float Graphic::sDistortionTime = 0.0f;
float Graphic::sDistortionTargetTime = 0.0f;
IDirect3DDevice9* Graphic::mEnded = nullptr;

namespace {

constexpr double PictureAspect = 1.3333333333333333;

D3DPRESENT_PARAMETERS WindowParameters(HWND window, unsigned int width, unsigned int height) {
    D3DPRESENT_PARAMETERS pp{};
    pp.BackBufferWidth = width;
    pp.BackBufferHeight = height;
    pp.SwapEffect = D3DSWAPEFFECT_DISCARD;
    pp.hDeviceWindow = window;
    pp.Windowed = TRUE;
    pp.EnableAutoDepthStencil = TRUE;
    pp.AutoDepthStencilFormat = D3DFMT_D16;
    pp.PresentationInterval = D3DPRESENT_INTERVAL_IMMEDIATE;
    return pp;
}

D3DPRESENT_PARAMETERS FullParameters(const D3DPRESENT_PARAMETERS& window) {
    D3DPRESENT_PARAMETERS pp = window;
    pp.BackBufferFormat = D3DFMT_X8R8G8B8;
    pp.BackBufferCount = 1;
    pp.Windowed = FALSE;
    return pp;
}

} // namespace

Graphic::~Graphic() {
    ReleaseObject(mFont);
}

void Graphic::Init(HWND window, unsigned int width, unsigned int height, bool fullscreen) {
    Free();
    mFrontFog = mBackFog = 0.0f;
    m3D = Direct3DCreate9(D3D_SDK_VERSION);
    if (!m3D)
        throw std::exception();

    mWnd = window;
    m3DppWindow = WindowParameters(window, width, height);
    m3DppFull = FullParameters(m3DppWindow);
    m3Dpp = fullscreen ? m3DppFull : m3DppWindow;
    m3DDevice = mEnded = nullptr;
    if (FAILED(m3D->CreateDevice(0, D3DDEVTYPE_HAL, window, D3DCREATE_HARDWARE_VERTEXPROCESSING,
                                 &m3Dpp, &m3DDevice))) {
        m3DDevice = nullptr;
        ReleaseObject(m3D);
        throw std::exception();
    }

    setDefaults(10000.0f);
    makeHelpers();
    CreatePointLight(Vector3(0.0f, 200.0f, 0.0f));
    loadQuad();
    try {
        InitShaders();
    } catch (...) {
        Free();
        m3DDevice = mEnded = nullptr;
        m3D = nullptr;
        throw;
    }
}

// What is the same after Init and after Reset, up to the font: viewport, camera, states.
void Graphic::setDefaults(float farPlane) {
    SetViewportAspect(&mViewport, m3Dpp.BackBufferWidth, m3Dpp.BackBufferHeight, PictureAspect);
    m3DDevice->SetViewport(&mViewport);

    mDefaultFOV = 0.7853982f;
    mDefaultAspect = static_cast<float>(m3DppFull.BackBufferWidth) /
                     static_cast<float>(m3DppFull.BackBufferHeight);
    mDefaultNear = 1.0f;
    mDefaultFar = farPlane;

    m3DDevice->SetRenderState(D3DRS_LIGHTING, FALSE);
    m3DDevice->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
    m3DDevice->SetSamplerState(0, D3DSAMP_MAGFILTER, D3DTEXF_LINEAR);
}

void Graphic::makeHelpers() {
    constexpr std::string_view face = "Arial";
    std::fill(face.copy(mFontFace, face.size()) + mFontFace, std::end(mFontFace), '\0');
    constexpr DWORD antialiased = 4, defaultCharset = 1;
    if (!mFont)
        D3DXCreateFontA(m3DDevice, 22, 0, 400, 1, FALSE, defaultCharset, 0, antialiased, 0,
                        mFontFace, &mFont);
    D3DXCreateLine(m3DDevice, &mLine);
    if (mLine)
        mLine->SetGLLines(TRUE);
}

// A square of size 1 about the origin, which everything on the screen is made of.
void Graphic::loadQuad() {
    static constexpr VERTEX_2D vertices[] = {{-0.5f, -0.5f, 0.0f, 0xFFFFFFFFu, 0.0f, 0.0f},
                                             {0.5f, -0.5f, 0.0f, 0xFFFFFFFFu, 1.0f, 0.0f},
                                             {0.5f, 0.5f, 0.0f, 0xFFFFFFFFu, 1.0f, 1.0f},
                                             {-0.5f, 0.5f, 0.0f, 0xFFFFFFFFu, 0.0f, 1.0f}};
    static constexpr unsigned int indices[] = {0, 1, 2, 2, 3, 0};
    Create2DVertexBuffer(sizeof vertices, mQuadVB, vertices);
    CreateIndexBuffer(sizeof indices, mQuadIB, indices);
}

void Graphic::Free() {
    ReleaseObject(mFont);
    ReleaseObject(mLine);
    ReleaseObject(mSkelConstants);
    ReleaseObject(mSkelVS);
    ReleaseObject(mSkelPS);
    ReleaseObject(mSkelDecl);
    ReleaseObject(mDecl3D);
    ReleaseObject(mDecl2D);
    ReleaseObject(mQuadVB);
    ReleaseObject(mQuadIB);
    // Before effects and targets, which hold the device: it goes with the last of them.
    if (LiveDevice()) {
        mEnded = m3DDevice;
        m3DDevice->Release();
        if (m3D)
            m3D->Release();
    }
    releaseShaders();
    releaseTargets();
}

void Graphic::SetViewportAspect(D3DVIEWPORT9* viewport, unsigned int width, unsigned int height,
                                double aspect) {
    if (!viewport)
        return;
    *viewport = {0, 0, width, height, 0.0f, 1.0f};
    if (!(aspect > 0.0))
        return;
    const double wide = height * aspect;
    if (wide < width + 1.0) { // it is cut to whole pixels
        viewport->Width = static_cast<DWORD>(wide);
        viewport->X = (width - viewport->Width) >> 1;
    } else {
        viewport->Height = std::min(static_cast<DWORD>(width / aspect), height);
        viewport->Y = (height - viewport->Height) >> 1;
    }
}

} // namespace Vorn
