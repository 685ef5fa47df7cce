// SPDX-License-Identifier: MIT
//
// The device: all of Direct3D's rules that need no pixel. Setters keep values in a State and note
// which groups differ; a draw checks, brings what it uses to the machine, and hands all to the
// backend.
//
// Render states, stage states, sampler states and transforms that Direct3D knows and this layer
// does not are taken and passed over, and cannot be asked for; numbers that Direct3D does not know,
// and values that the layer cannot follow, are refused with D3DERR_INVALIDCALL.
//
// The sources are split by verb: device_create.cpp, _state.cpp, _bind.cpp, _shaders.cpp,
// _draw.cpp, _reset.cpp.
#pragma once

#include "platform/d3d9/backend.hpp"
#include "platform/d3d9/direct3d.hpp"
#include "platform/d3d9/effect_host.hpp"
#include "platform/d3d9/index_buffer.hpp"
#include "platform/d3d9/overlay.hpp"
#include "platform/d3d9/shader.hpp"
#include "platform/d3d9/texture.hpp"
#include "platform/d3d9/vertex_buffer.hpp"
#include "platform/d3d9/vertex_declaration.hpp"

#include <array>
#include <memory>
#include <vector>

namespace VornPlatform {

class Device final : public IDirect3DDevice9, public Overlay, public EffectHost, public LiveObject {
public:
    /// `filled` is what the device goes by, and is written to `parameters` when it is there.
    static HRESULT Make(Direct3D& direct3D, std::unique_ptr<Backend> backend, HWND window,
                        const D3DPRESENT_PARAMETERS& filled, D3DPRESENT_PARAMETERS& parameters,
                        IDirect3DDevice9** device);

    ULONG AddRef() override;
    ULONG Release() override;

    // Life of the device and of its scenes.
    HRESULT TestCooperativeLevel() override;
    HRESULT Reset(D3DPRESENT_PARAMETERS* parameters) override;
    HRESULT Present(const RECT* src, const RECT* dst, HWND window,
                    const void* dirtyRegion) override;
    HRESULT BeginScene() override;
    HRESULT EndScene() override;

    // What it makes.
    HRESULT CreateVertexBuffer(UINT length, DWORD usage, DWORD fvf, D3DPOOL pool,
                               IDirect3DVertexBuffer9** buffer, HANDLE* shared) override;
    HRESULT CreateIndexBuffer(UINT length, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                              IDirect3DIndexBuffer9** buffer, HANDLE* shared) override;
    HRESULT CreateOffscreenPlainSurface(UINT w, UINT h, D3DFORMAT format, D3DPOOL pool,
                                        IDirect3DSurface9** surface, HANDLE* shared) override;
    HRESULT CreateTexture(UINT w, UINT h, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                          IDirect3DTexture9** texture, HANDLE* shared) override;
    HRESULT CreateDepthStencilSurface(UINT w, UINT h, D3DFORMAT format,
                                      D3DMULTISAMPLE_TYPE multiSample, DWORD quality, BOOL discard,
                                      IDirect3DSurface9** surface, HANDLE* shared) override;
    HRESULT CreateVertexDeclaration(const D3DVERTEXELEMENT9* elements,
                                    IDirect3DVertexDeclaration9** declaration) override;
    HRESULT CreateVertexShader(const DWORD* code, IDirect3DVertexShader9** shader) override;
    HRESULT CreatePixelShader(const DWORD* code, IDirect3DPixelShader9** shader) override;
    HRESULT MakeVertexShader(std::shared_ptr<const ShaderCode> code,
                             IDirect3DVertexShader9** shader) override;
    HRESULT MakePixelShader(std::shared_ptr<const ShaderCode> code,
                            IDirect3DPixelShader9** shader) override;

    // Targets.
    HRESULT GetBackBuffer(UINT swapChain, UINT index, D3DBACKBUFFER_TYPE type,
                          IDirect3DSurface9** surface) override;
    HRESULT GetRenderTargetData(IDirect3DSurface9* target,
                                IDirect3DSurface9* systemMemory) override;
    HRESULT SetRenderTarget(DWORD index, IDirect3DSurface9* surface) override;
    HRESULT GetRenderTarget(DWORD index, IDirect3DSurface9** surface) override;
    HRESULT SetDepthStencilSurface(IDirect3DSurface9* surface) override;
    HRESULT GetDepthStencilSurface(IDirect3DSurface9** surface) override;

    // States.
    HRESULT SetTransform(D3DTRANSFORMSTATETYPE type, const D3DMATRIX* matrix) override;
    HRESULT GetTransform(D3DTRANSFORMSTATETYPE type, D3DMATRIX* matrix) override;
    HRESULT SetViewport(const D3DVIEWPORT9* viewport) override;
    HRESULT GetViewport(D3DVIEWPORT9* viewport) override;
    HRESULT SetLight(DWORD index, const D3DLIGHT9* light) override;
    HRESULT LightEnable(DWORD index, BOOL on) override;
    HRESULT GetLightEnable(DWORD index, BOOL* on) override;
    HRESULT SetRenderState(D3DRENDERSTATETYPE state, DWORD value) override;
    HRESULT GetRenderState(D3DRENDERSTATETYPE state, DWORD* value) override;
    HRESULT SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value) override;
    HRESULT GetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD* value) override;
    HRESULT SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value) override;
    HRESULT GetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD* value) override;

    // What draws use.
    HRESULT SetTexture(DWORD stage, IDirect3DBaseTexture9* texture) override;
    HRESULT GetTexture(DWORD stage, IDirect3DBaseTexture9** texture) override;
    HRESULT SetVertexDeclaration(IDirect3DVertexDeclaration9* declaration) override;
    HRESULT GetVertexDeclaration(IDirect3DVertexDeclaration9** declaration) override;
    HRESULT SetFVF(DWORD fvf) override;
    HRESULT GetFVF(DWORD* fvf) override;
    HRESULT SetStreamSource(UINT stream, IDirect3DVertexBuffer9* buffer, UINT offset,
                            UINT stride) override;
    HRESULT SetIndices(IDirect3DIndexBuffer9* buffer) override;

    // Shaders and their constants.
    HRESULT SetVertexShader(IDirect3DVertexShader9* shader) override;
    HRESULT GetVertexShader(IDirect3DVertexShader9** shader) override;
    HRESULT SetPixelShader(IDirect3DPixelShader9* shader) override;
    HRESULT GetPixelShader(IDirect3DPixelShader9** shader) override;
    HRESULT SetVertexShaderConstantF(UINT first, const float* values, UINT count) override;
    HRESULT GetVertexShaderConstantF(UINT first, float* values, UINT count) override;
    HRESULT SetPixelShaderConstantF(UINT first, const float* values, UINT count) override;
    HRESULT GetPixelShaderConstantF(UINT first, float* values, UINT count) override;
    void SetEffectConstants(const void* block, UINT bytes) override;

    HRESULT Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR color, float z,
                  DWORD stencil) override;
    HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT baseVertex, UINT minVertex,
                                 UINT vertexCount, UINT startIndex, UINT primitiveCount) override;
    HRESULT DrawPrimitive(D3DPRIMITIVETYPE type, UINT startVertex, UINT primitiveCount) override;
    HRESULT DrawPrimitiveUP(D3DPRIMITIVETYPE type, UINT primitiveCount, const void* vertices,
                            UINT stride) override;
    HRESULT DrawOverlay(const OverlayVertex* vertices, UINT count,
                        IDirect3DTexture9* texture) override;

    // For what it has made.
    void OnChildHeld(bool isInTheWay);
    void OnChildLetGo(bool wasInTheWay);
    /// Something that may be bound has content that the machine lacks.
    void OnWritten() { mSomethingBehind = true; }

    // For faults on request.
    void Lose() { mStatus = D3DERR_DEVICELOST; }
    void Restore();

private:
    Device(Direct3D& direct3D, std::unique_ptr<Backend> backend, HWND window);
    ~Device() override;

    // The device's own surfaces, before it takes them into use.
    struct Screen {
        D3DSURFACE_DESC colorDesc = {}, depthDesc = {};
        std::unique_ptr<GpuTexture> color, depth;
    };
    HRESULT makeScreen(const D3DPRESENT_PARAMETERS& parameters, Screen& screen);
    void takeScreen(const D3DPRESENT_PARAMETERS& parameters, Screen screen);
    void showFullScreen(bool fullScreen);
    void unbindAll();
    void setDefaults();
    HRESULT creationError(D3DPOOL pool) const;
    std::unique_ptr<GpuTexture> makeTarget(const D3DSURFACE_DESC& desc);

    /// Null for what this layer does not know.
    struct Slot {
        DWORD* value = nullptr;
        unsigned int group = 0;
        DWORD least = 0, most = 0xffffffffu;
    };
    HRESULT store(const Slot& slot, DWORD value);
    Slot renderStateSlot(D3DRENDERSTATETYPE state);
    Slot stageSlot(D3DTEXTURESTAGESTATETYPE type);
    Slot samplerSlot(DWORD sampler, D3DSAMPLERSTATETYPE type);
    D3DMATRIX* transformSlot(D3DTRANSFORMSTATETYPE type);
    void storeViewport(const D3DVIEWPORT9& viewport);
    void setLayout(const VertexLayout* layout);
    void updateTarget();
    /// Levels that are made of the target's first are made anew if it was drawn to.
    void finishMips();

    /// What a stage's shader reads of the device.
    struct StageConstants {
        Registers registers = {};
        std::vector<std::byte> block; // of the bound shader, if it reads registers
        unsigned int version = 0;
        std::shared_ptr<const ShaderCode> gathered; // whose block that is, while the registers stay
    };
    template <typename Interface, typename Object>
    HRESULT makeShader(ShaderStage stage, std::shared_ptr<const ShaderCode> code, Interface** out);
    template <typename Object>
    HRESULT bindShader(Object*& place, Object* shader, ShaderState& state);
    HRESULT setRegisters(StageConstants& constants, UINT first, const float* values, UINT count);
    static HRESULT getRegisters(const StageConstants& constants, UINT first, float* values,
                                UINT count);
    /// The blocks of both stages are up to date afterwards.
    void gatherConstants();
    template <typename Object>
    void gatherStage(const Object* shader, StageConstants& constants, ShaderState& state);

    bool mayDraw() const { return mInScene && mStatus == D3D_OK && mDepthFits; }
    bool mayClear(DWORD flags, float z) const;
    HRESULT checkDraw(D3DPRIMITIVETYPE type, UINT primitiveCount) const;
    /// Vertices that a host hands over with a draw: as many as may be read.
    bool isInMemory(D3DPRIMITIVETYPE type, UINT primitiveCount, const void* vertices,
                    UINT stride) const;
    /// That the bound vertices hold, from the offset on.
    UINT boundVertices() const;
    void uploadBound();
    HRESULT drawChecked(const Primitive& primitive);
    void noteDraw(const Primitive& primitive);
    void noteTargetWritten() { mMipsAreOld = mTargetMakesMips; }
    void prepareOverlay(Texture* texture);

    std::unique_ptr<Backend> mBackend; // the last to go
    Direct3D& mDirect3D;
    HWND mWindow;
    ULONG mCount = 1;
    HRESULT mStatus = D3D_OK;
    UINT mInTheWay = 0; // objects that a reset is refused for
    D3DPRESENT_PARAMETERS mParameters = {};

    State mState;
    unsigned int mChanged = Changed::All;
    bool mInScene = false;
    bool mSomethingBehind = false;
    bool mDepthFits = true; // the depth buffer is not smaller than the target
    bool mTargetMakesMips = false;
    bool mFullScreen = false; // the device has put its window there
    bool mMipsAreOld = false;
    std::array<bool, MaxLights> mLightIsSet = {};

    // Never null while the device lives, but for the depth buffers.
    PlainSurface* mBackBuffer = nullptr;
    PlainSurface* mScreenDepth = nullptr;
    Surface* mTarget = nullptr;
    Surface* mDepth = nullptr;

    std::array<Texture*, MaxTextures> mTextures = {};
    VertexDeclaration* mDeclaration = nullptr;
    const VertexLayout* mLayout = nullptr;
    VertexBuffer* mVertices = nullptr;
    IndexBuffer* mIndices = nullptr;
    VertexShader* mVertexShader = nullptr;
    PixelShader* mPixelShader = nullptr;

    StageConstants mVertexConstants, mPixelConstants;
    std::vector<std::byte> mEffectBlock; // as long as either shader reads
    unsigned int mEffectVersion = 1;
    unsigned int mLastVersion = 1; // of any block
    bool mConstantsBehind = false; // or the shaders are others

    State mOverlay;
};

} // namespace VornPlatform
