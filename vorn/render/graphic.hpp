// SPDX-License-Identifier: MIT
//
// The device: the only one there is, made and ended by the engine's window.
//
//   auto* graphic = Vorn::Graphic::Instance();    // Engine::Init has made the device
//   graphic->SetBackBufferColor(0xFF203040);      // clears, colour and depth
//   graphic->BeginScene();
//   graphic->RenderText(10, 10, 0xFFFFFFFF, "Meadow");
//   graphic->EndScene();
//   graphic->Present();
//
// The picture is a centred column of 4 to 3 in the back buffer, whatever the buffer's shape. The
// frame belongs to the host: nothing in the library begins, ends or presents one. States that are
// set stay set; nothing puts them back.
//
// A device can be lost: CheckContext says so, and Engine::Reset brings it back. Then everything in
// the default pool is made anew, so what a host has put there must be released before.
//
// Without a device, and after Free, every operation that would draw does nothing, and what makes
// something answers false.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"
#include "vorn/math/matrix4.hpp"
#include "vorn/math/point2.hpp"
#include "vorn/math/vector3.hpp"
#include "vorn/math/vertex.hpp"
#include "vorn/render/line.hpp"
#include "vorn/render/vertex_2d.hpp"
#include "vorn/resource/fwd.hpp"

#include <d3d9.h>
#include <d3dx9.h>

#include <cstdint>

namespace Vorn {

class VORN_API Graphic : public Singleton<Graphic> {
public:
    Graphic() = default;
    Graphic(const Graphic&) = delete;
    Graphic& operator=(const Graphic&) = delete;
    /// Releases the font, if it is still there; all else is Free's.
    ~Graphic();

    // Set-up

    /// Makes the device, with a back buffer of that size (unit: pixels). Raises std::exception
    /// where there is no Direct3D, or no device: no OpenGL 4.5, or no such window; and what
    /// InitShaders raises. A device that is there goes first, as by Free; what the stores had on
    /// it, RscPackManager::Reload brings to the new one, and so what they loaded before there was
    /// any.
    void Init(HWND window, unsigned int width, unsigned int height, bool fullscreen);
    /// Brings the device back after a loss, or into the mode that m3Dpp asks for. Of the engine's
    /// own objects it releases and makes anew those of this class; the stores must be released
    /// before and reloaded after, which Engine::Reset does. The point light is not made again,
    /// flags and light colours stay, and the far plane is 200000 from then on.
    ///
    /// While the device stays lost it tries again every 10 milliseconds and dispatches the window's
    /// messages; it gives up when the window goes, or the host is to quit. Raises
    /// std::runtime_error after a hundred refusals in a row, which mean that a host holds something
    /// of the default pool, and what InitShaders raises; a later Reset tries again. A driver that
    /// reports an internal error ends the window, and then shaders that fail are passed over.
    void Reset();
    /// Switches the mode by a Reset: the stores must be released first, and reloaded after. If the
    /// reset raises, m3Dpp asks for the new mode all the same.
    void SetFullscreen(bool fullscreen);
    /// Returns when the device is no longer lost, which means that it waits for its Reset, or
    /// works. Meanwhile as Reset, while the device stays lost.
    void WaitForLostDevice();
    /// Whether there is a device that works.
    bool CheckContext();
    bool IsDeviceLost() const { return isDeviceLost; }
    /// Releases everything, each once; twice does no harm. m3D and m3DDevice keep their values and
    /// must not be used. Buffers and textures of the stores are theirs to release.
    void Free();
    /// What Free has ended too: see LiveDevice.
    static IDirect3DDevice9* GetDevice() { return m3DDevice; }
    /// The device for whoever draws or makes something: null when there is none, and after Free.
    static IDirect3DDevice9* LiveDevice() { return m3DDevice == mEnded ? nullptr : m3DDevice; }
    void RenderAnTweakBar() {}

    // Shaders: the seven files of "data/shaders/", which docs/shaders.md describes.

    /// Makes the shaders, from their files, and the render targets, of the back buffer's size; Init
    /// and Reset do so. Raises std::exception for skel.vsh and skel.psh, with the compiler's text
    /// on standard output; std::runtime_error for an effect file, with the compiler's text, or
    /// "Failed to load shader: " and a name where there is none. Then no shader is left; out of
    /// Init there is no device either, and out of Reset nothing but the device, for a later Reset.
    void InitShaders();
    /// False, and null, where there is no such file. Raises std::runtime_error with the compiler's
    /// text. The effect is the caller's to release, before Reset and Free; what the reference held
    /// is not released.
    static bool LoadShader(const char* path, ID3DXEffect*& effect);

    // The frame

    void BeginScene();
    void EndScene();
    void Present();
    /// Clears at once, colour and depth: the name says less than it does.
    void SetBackBufferColor(const unsigned long& color);
    /// A number that is kept and that nothing reads.
    void BackBufferColor(unsigned long color);
    std::uint32_t BackBufferColor() const { return mBackBufferColor; }

    // Drawing

    void SetFVF(unsigned long fvf);
    void SetTexture(IDirect3DTexture9* const& texture);
    /// With the format of VERTEX_2D.
    void SetTwoDTexture(IDirect3DTexture9* texture);
    void SetMesh(IDirect3DVertexBuffer9* const& vertices, unsigned int stride);
    void SetIndices(IDirect3DIndexBuffer9* const& indices);
    /// Triangles of what SetMesh and SetIndices have set.
    void Draw(unsigned int vertexCount, unsigned int primitiveCount);
    /// Buffers with `bytes` from `source`. False if one cannot be made or filled; the reference is
    /// then as the device left it, or null. Those of meshes and indices lie in the default pool and
    /// must go before a Reset; 2D ones are managed and stay.
    bool CreateVertexBuffer(unsigned int bytes, IDirect3DVertexBuffer9*& buffer,
                            const Vertex_UTx* source);
    bool Create2DVertexBuffer(unsigned int bytes, IDirect3DVertexBuffer9*& buffer,
                              const VERTEX_2D* source);
    bool CreateIndexBuffer(unsigned int bytes, IDirect3DIndexBuffer9*& buffer,
                           const unsigned int* source);

    // Drawing with shaders: view and projection are those of the device at that moment, `world` is
    // transposed already, as operator D3DXMATRIX of Matrix4 does. A null texture is white; a null
    // mesh or material draws nothing. Meshes are bound by the caller, both buffers.

    /// A unit square about the origin. Calls SetTransparent.
    void DrawTwoD(D3DXMATRIX world, IDirect3DTexture9* texture);
    /// The same, with `alpha` from 0 to 1 and with fog.
    void DrawTwoDModulate(D3DXMATRIX world, IDirect3DTexture9* texture, float alpha);
    /// Without light. Calls SetTransparent.
    void BasicShaderDraw(Mesh* mesh, D3DXMATRIX world, IDirect3DTexture9* texture);
    /// With the light of SetPointLightSettings, which is black before, and CameraPos. The two
    /// colours are packed as COLORS. States are the caller's.
    void PhongLightingDraw(Mesh* mesh, D3DXMATRIX world, IDirect3DTexture9* texture,
                           Material* material, unsigned int modulation, unsigned int additive);
    /// Moves the mesh's animation on by `dt` (unit: seconds) and draws it with its bones, with the
    /// texture that is bound and the caller's states. Its shaders stay bound; the next effect sets
    /// its own, and Draw3DLine none.
    void SetSkelMatrix(Mesh& mesh, D3DXMATRIX world, float dt);
    /// Lays the three render targets over each other, on a square from (0, 0) to (800, 600): view
    /// and projection must show those units. With `distortion` a shock wave runs out of `center`,
    /// from -1 to 1 across the picture, Y down. Its times go on in each call, by DeltaClock.
    void DistortionEffect(Point2 center, bool distortion);
    /// In the colour of a shadow, into the target that is current. Nothing in the library calls it.
    void ShadowMap(Mesh* mesh, D3DXMATRIX world);

    // Transforms

    /// As it stands: the caller has transposed it.
    void SetWorldTransform(const Matrix4& m);
    void SetView(const Matrix4& m);
    void SetProjection(const Matrix4& m);
    void SetTextureMatrix(const Matrix4& m);
    /// The device's world transform, transposed; so do the other two: view and projection are the
    /// camera's to tell.
    Matrix4 GetWorldMatrix();
    Matrix4 GetProjMatrix() { return GetWorldMatrix(); }
    Matrix4 GetViewMatrix() { return GetWorldMatrix(); }
    /// From client pixels to the near plane.
    Point2 Unproject(const Point2& p, Matrix4 projection, Matrix4 view);
    /// The largest centred viewport of full height that has the aspect (width / height); in a
    /// buffer too narrow for it, of full width. An aspect that is no positive number takes it all.
    static void SetViewportAspect(D3DVIEWPORT9* viewport, unsigned int width, unsigned int height,
                                  double aspect);

    // States

    void SetWireFrame(bool on);
    void toggleWireFrame() { SetWireFrame(!mWireFrame); }
    /// Lighting of the fixed function.
    void SetPointLight(bool on);
    void togglePointLight() { SetPointLight(!mPointLightOn); }
    /// The white light of the fixed function, with index 1.
    void CreatePointLight(const Vector3& position);
    /// The light of the shaders: diffuse, specular, ambient; each channel from 0 to 1.
    void SetPointLightSettings(const Vector3& diffuse, const Vector3& specular,
                               const Vector3& ambient);
    void SetPointLightPosition(const Vector3& position) { mLightPos = position; }
    /// For the shaders: from `front` on there is fog, and from `back` on nothing else (unit:
    /// distance along the view). None where `back` is not beyond `front`, as at the start.
    void SetFog(float front, float back);
    float BackFog() const { return mBackFog; }
    /// The eye, for the shaders.
    void CameraPos(Vector3 position) { mCameraPos = position; }
    Vector3 CameraPos() const { return mCameraPos; }
    /// Blending on, culling off, and a test that passes alpha from 8 up.
    void SetTransparent();
    /// (unit: radians)
    float DefaultFOV() const { return mDefaultFOV; }
    float DefaultAspect() const { return mDefaultAspect; }
    float DefaultNear() const { return mDefaultNear; }
    float DefaultFar() const { return mDefaultFar; }
    unsigned int BackBufferWidth() const { return m3Dpp.BackBufferWidth; }
    unsigned int BackBufferHeight() const { return m3Dpp.BackBufferHeight; }

    // Render targets: of the back buffer's size, with one depth buffer. Begin and End are a scene.

    void RTBegin() { beginTarget(mRTSurface); }
    void RTBeamBegin() { beginTarget(mRTBeamSurface); }
    void RTParticlesBegin() { beginTarget(mRTParticlesSurface); }
    void RTEnd() { endTarget(); }
    void RTBeamEnd() { endTarget(); }
    void RTParticlesEnd() { endTarget(); }
    IDirect3DTexture9* GeTRTexture() const { return mRTTexture; }
    IDirect3DTexture9* GeTRBeamTexture() const { return mRTBeamTexture; }
    IDirect3DTexture9* GeTRParticlesTexture() const { return mRTParticlesTexture; }

    // Lines and text

    /// In the world. Leaves texture, world transform, shaders and format changed.
    void Draw3DLine(Vector3 a, Vector3 b, COLORS color);
    /// A strip in pixels of the target. The last point is left out.
    void Draw2DLine(const Point2* points, unsigned int count, COLORS color, float width);
    /// (unit: pixels) `x` and `y` are the text's top left; `text` is UTF-8.
    void RenderText(int x, int y, unsigned int color, const char* text);

    static IDirect3D9* m3D;
    static IDirect3DDevice9* m3DDevice;
    /// The parameters in force: one of the two below, copied.
    static D3DPRESENT_PARAMETERS m3Dpp;
    static D3DPRESENT_PARAMETERS m3DppFull;
    static D3DPRESENT_PARAMETERS m3DppWindow;
    /// As Init or Reset has computed it last.
    static D3DVIEWPORT9 mViewport;
    static HWND mWnd;
    static std::uint32_t mBackBufferColor;
    /// Nothing reads or writes it.
    static D3DXMATRIXA16 mMatProj;
    /// Nothing writes it.
    static bool isDeviceLost;

private:
    void setDefaults(float farPlane);
    void makeHelpers();
    void loadQuad();
    void loadSkinning();
    void loadEffects();
    void makeTargets();
    void makeWhite();
    void releaseForReset();
    void releaseShaders();
    void releaseTargets();
    bool resetDevice();
    void beginQuad(ID3DXEffect& effect);
    void drawQuad();
    void drawMesh(const Mesh& mesh);
    void setColors(ID3DXEffect& effect, unsigned int modulation, unsigned int additive);
    void setLight(ID3DXEffect& effect);
    IDirect3DTexture9* orWhite(IDirect3DTexture9* texture) const {
        return texture ? texture : mWhite;
    }
    void beginTarget(IDirect3DSurface9* surface);
    void endTarget();

    static float sDistortionTime;       // (unit: seconds)
    static float sDistortionTargetTime; // (unit: seconds)
    static IDirect3DDevice9* mEnded;    // the device that Free has released; null if there is none

    ID3DXLine* mLine = nullptr;
    D3DLIGHT9 mPointLight{};
    bool mWireFrame = false;
    bool mPointLightOn = false;
    float mDefaultFOV = 0.0f;
    float mDefaultAspect = 0.0f;
    float mDefaultNear = 0.0f;
    float mDefaultFar = 0.0f;
    IDirect3DVertexDeclaration9* mSkelDecl = nullptr;
    IDirect3DVertexShader9* mSkelVS = nullptr;
    ID3DXConstantTable* mSkelConstants = nullptr;
    IDirect3DPixelShader9* mSkelPS = nullptr;
    ID3DXBuffer* mShaderBuffer = nullptr;
    IDirect3DVertexDeclaration9* mDecl2D = nullptr;
    IDirect3DVertexDeclaration9* mDecl3D = nullptr;
    ID3DXEffect* mEffectTwoD = nullptr;
    ID3DXEffect* mEffectBasic = nullptr;
    ID3DXEffect* mEffectLight = nullptr;
    ID3DXEffect* mEffectDistortion = nullptr;
    ID3DXEffect* mEffectShadow = nullptr;
    ID3DXFont* mFont = nullptr;
    char mFontFace[256] = {};
    IDirect3DVertexBuffer9* mQuadVB = nullptr;
    IDirect3DIndexBuffer9* mQuadIB = nullptr;
    float mFrontFog = 0.0f;
    float mBackFog = 0.0f;
    Vector3 mCameraPos;
    Vector3 mLightPos;
    Vector3 mLightAmbient;
    Vector3 mLightDiffuse;
    Vector3 mLightSpecular;
    ID3DXRenderToSurface* mRenderToSurface = nullptr;
    IDirect3DTexture9* mRTTexture = nullptr;
    IDirect3DSurface9* mRTSurface = nullptr;
    IDirect3DTexture9* mRTBeamTexture = nullptr;
    IDirect3DSurface9* mRTBeamSurface = nullptr;
    IDirect3DTexture9* mRTParticlesTexture = nullptr;
    IDirect3DSurface9* mRTParticlesSurface = nullptr;
    IDirect3DTexture9* mWhite = nullptr; // what a draw without a texture has
};

template <>
VORN_API Graphic Singleton<Graphic>::mSingleton;

} // namespace Vorn
