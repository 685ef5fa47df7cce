// SPDX-License-Identifier: MIT
//
// The part of the Direct3D 9 interface that Vorn and its hosts use, under the platform's own names.
//
//   IDirect3D9* d3d = Direct3DCreate9(D3D_SDK_VERSION);
//   D3DPRESENT_PARAMETERS pp = {};
//   pp.BackBufferWidth = 800, pp.BackBufferHeight = 600, pp.Windowed = TRUE;
//   pp.SwapEffect = D3DSWAPEFFECT_DISCARD;
//   IDirect3DDevice9* device = nullptr;
//   d3d->CreateDevice(0, D3DDEVTYPE_HAL, window, D3DCREATE_HARDWARE_VERTEXPROCESSING, &pp,
//   &device);
//
// Objects are counted: who made one or was given one releases it, and a child holds its device.
// Every function answers with an HRESULT and raises nothing; out pointers are left as they were
// when it fails. What stands in an interface behind the line "beyond" is there for hosts, and has
// a body that refuses, so that another implementation of the interface may leave it out.
//
// States and transforms of Direct3D that stand in no enumeration here are taken, have no effect,
// and cannot be asked for. What cannot be followed is refused with D3DERR_INVALIDCALL and changes
// nothing: unknown values, other streams than 0, other FVFs than position with any of normal,
// diffuse and one texture.
//
//   [X] vectors, matrices, viewport: the records that mathematics works on
//   [X] interfaces, states, formats
//   [X] shaders and their registers of floats
//   [ ] cube and volume textures, queries, stencil, fog, several streams or targets
#ifndef VORN_PLATFORM_D3D9_H
#define VORN_PLATFORM_D3D9_H
#pragma GCC system_header

#include <windows.h>

typedef DWORD D3DCOLOR;
#define D3DCOLOR_ARGB(a, r, g, b)                                                                  \
    ((D3DCOLOR)((((a)&0xffu) << 24) | (((r)&0xffu) << 16) | (((g)&0xffu) << 8) | ((b)&0xffu)))
#define D3DCOLOR_XRGB(r, g, b) D3DCOLOR_ARGB(0xff, r, g, b)
#define MAKEFOURCC(a, b, c, d)                                                                     \
    ((DWORD)(BYTE)(a) | ((DWORD)(BYTE)(b) << 8) | ((DWORD)(BYTE)(c) << 16) |                       \
     ((DWORD)(BYTE)(d) << 24))

enum D3DFORMAT : DWORD {
    D3DFMT_UNKNOWN = 0,
    D3DFMT_A8R8G8B8 = 21,
    D3DFMT_X8R8G8B8 = 22,
    D3DFMT_A8 = 28,
    D3DFMT_L8 = 50,
    D3DFMT_A8L8 = 51,
    D3DFMT_D24S8 = 75,
    D3DFMT_D24X8 = 77,
    D3DFMT_D16 = 80,
    D3DFMT_INDEX16 = 101,
    D3DFMT_INDEX32 = 102,
    D3DFMT_DXT1 = MAKEFOURCC('D', 'X', 'T', '1'),
    D3DFMT_DXT3 = MAKEFOURCC('D', 'X', 'T', '3'),
    D3DFMT_DXT5 = MAKEFOURCC('D', 'X', 'T', '5')
};
enum D3DPOOL : DWORD { D3DPOOL_DEFAULT = 0, D3DPOOL_MANAGED = 1, D3DPOOL_SYSTEMMEM = 2 };
enum D3DRESOURCETYPE : DWORD {
    D3DRTYPE_SURFACE = 1,
    D3DRTYPE_TEXTURE = 3,
    D3DRTYPE_VERTEXBUFFER = 6,
    D3DRTYPE_INDEXBUFFER = 7
};
enum D3DDEVTYPE : DWORD { D3DDEVTYPE_HAL = 1 };
enum D3DSWAPEFFECT : DWORD { D3DSWAPEFFECT_DISCARD = 1 };
enum D3DMULTISAMPLE_TYPE : DWORD { D3DMULTISAMPLE_NONE = 0 };
enum D3DPRIMITIVETYPE : DWORD {
    D3DPT_POINTLIST = 1,
    D3DPT_LINELIST = 2,
    D3DPT_LINESTRIP = 3,
    D3DPT_TRIANGLELIST = 4,
    D3DPT_TRIANGLESTRIP = 5,
    D3DPT_TRIANGLEFAN = 6
};
enum D3DTRANSFORMSTATETYPE : DWORD {
    D3DTS_VIEW = 2,
    D3DTS_PROJECTION = 3,
    D3DTS_TEXTURE0 = 16,
    D3DTS_WORLD = 256
};
enum D3DRENDERSTATETYPE : DWORD {
    D3DRS_ZENABLE = 7,
    D3DRS_FILLMODE = 8,
    D3DRS_ZWRITEENABLE = 14,
    D3DRS_ALPHATESTENABLE = 15,
    D3DRS_SRCBLEND = 19,
    D3DRS_DESTBLEND = 20,
    D3DRS_CULLMODE = 22,
    D3DRS_ZFUNC = 23,
    D3DRS_ALPHAREF = 24,
    D3DRS_ALPHAFUNC = 25,
    D3DRS_ALPHABLENDENABLE = 27,
    D3DRS_LIGHTING = 137,
    D3DRS_AMBIENT = 139,
    D3DRS_COLORWRITEENABLE = 168,
    D3DRS_BLENDOP = 171,
    D3DRS_BLENDFACTOR = 193
};
enum D3DTEXTURESTAGESTATETYPE : DWORD {
    D3DTSS_COLOROP = 1,
    D3DTSS_COLORARG1 = 2,
    D3DTSS_COLORARG2 = 3,
    D3DTSS_ALPHAOP = 4,
    D3DTSS_ALPHAARG1 = 5,
    D3DTSS_ALPHAARG2 = 6,
    D3DTSS_TEXTURETRANSFORMFLAGS = 24
};
enum D3DSAMPLERSTATETYPE : DWORD {
    D3DSAMP_ADDRESSU = 1,
    D3DSAMP_ADDRESSV = 2,
    D3DSAMP_BORDERCOLOR = 4,
    D3DSAMP_MAGFILTER = 5,
    D3DSAMP_MINFILTER = 6,
    D3DSAMP_MIPFILTER = 7
};
enum : DWORD {
    D3DTEXF_NONE = 0,
    D3DTEXF_POINT = 1,
    D3DTEXF_LINEAR = 2,
    D3DTEXF_ANISOTROPIC = 3, // as LINEAR
    D3DTADDRESS_WRAP = 1,
    D3DTADDRESS_MIRROR = 2,
    D3DTADDRESS_CLAMP = 3,
    D3DTADDRESS_BORDER = 4,
    D3DTADDRESS_MIRRORONCE = 5,
    D3DFILL_POINT = 1,
    D3DFILL_WIREFRAME = 2,
    D3DFILL_SOLID = 3,
    D3DCULL_NONE = 1,
    D3DCULL_CW = 2,
    D3DCULL_CCW = 3,
    D3DCMP_NEVER = 1,
    D3DCMP_LESS = 2,
    D3DCMP_EQUAL = 3,
    D3DCMP_LESSEQUAL = 4,
    D3DCMP_GREATER = 5,
    D3DCMP_NOTEQUAL = 6,
    D3DCMP_GREATEREQUAL = 7,
    D3DCMP_ALWAYS = 8,
    D3DBLEND_ZERO = 1,
    D3DBLEND_ONE = 2,
    D3DBLEND_SRCCOLOR = 3,
    D3DBLEND_INVSRCCOLOR = 4,
    D3DBLEND_SRCALPHA = 5,
    D3DBLEND_INVSRCALPHA = 6,
    D3DBLEND_DESTALPHA = 7,
    D3DBLEND_INVDESTALPHA = 8,
    D3DBLEND_DESTCOLOR = 9,
    D3DBLEND_INVDESTCOLOR = 10,
    D3DBLEND_SRCALPHASAT = 11,
    D3DBLEND_BOTHSRCALPHA = 12,
    D3DBLEND_BOTHINVSRCALPHA = 13,
    D3DBLEND_BLENDFACTOR = 14,
    D3DBLEND_INVBLENDFACTOR = 15,
    D3DBLENDOP_ADD = 1,
    D3DBLENDOP_SUBTRACT = 2,
    D3DBLENDOP_REVSUBTRACT = 3,
    D3DBLENDOP_MIN = 4,
    D3DBLENDOP_MAX = 5,
    D3DTOP_DISABLE = 1,
    D3DTOP_SELECTARG1 = 2,
    D3DTOP_SELECTARG2 = 3,
    D3DTOP_MODULATE = 4,
    D3DTOP_MODULATE2X = 5,
    D3DTOP_MODULATE4X = 6,
    D3DTOP_ADD = 7,
    D3DTTFF_DISABLE = 0,
    D3DTTFF_COUNT2 = 2,
    D3DTA_DIFFUSE = 0,
    D3DTA_CURRENT = 1,
    D3DTA_TEXTURE = 2,
    D3DCLEAR_TARGET = 1,
    D3DCLEAR_ZBUFFER = 2,
    D3DCLEAR_STENCIL = 4, // of a D24S8 buffer only, and without effect
    D3DUSAGE_RENDERTARGET = 1,
    D3DUSAGE_DEPTHSTENCIL = 2,
    D3DUSAGE_WRITEONLY = 8,
    D3DUSAGE_DYNAMIC = 0x200,
    D3DUSAGE_AUTOGENMIPMAP = 0x400,
    D3DLOCK_READONLY = 0x10,
    D3DLOCK_NOOVERWRITE = 0x1000,
    D3DLOCK_DISCARD = 0x2000,
    D3DFVF_XYZ = 2,
    D3DFVF_NORMAL = 0x10,
    D3DFVF_DIFFUSE = 0x40,
    D3DFVF_TEX1 = 0x100,
    D3DCREATE_SOFTWARE_VERTEXPROCESSING = 0x20, // the three are alike here
    D3DCREATE_HARDWARE_VERTEXPROCESSING = 0x40,
    D3DCREATE_MIXED_VERTEXPROCESSING = 0x80,
    D3DADAPTER_DEFAULT = 0,
    D3DPRESENT_INTERVAL_DEFAULT = 0,
    D3DPRESENT_INTERVAL_ONE = 1,
    D3DPRESENT_INTERVAL_IMMEDIATE = 0x80000000u,
    D3D_SDK_VERSION = 32
};
enum D3DLIGHTTYPE : DWORD { D3DLIGHT_POINT = 1, D3DLIGHT_SPOT = 2, D3DLIGHT_DIRECTIONAL = 3 };
enum D3DBACKBUFFER_TYPE : DWORD { D3DBACKBUFFER_TYPE_MONO = 0 };

#define D3D_OK 0
#define D3DERR_DRIVERINTERNALERROR ((HRESULT)0x88760827)
#define D3DERR_NOTFOUND ((HRESULT)0x88760866)
#define D3DERR_DEVICELOST ((HRESULT)0x88760868)
#define D3DERR_DEVICENOTRESET ((HRESULT)0x88760869)
#define D3DERR_NOTAVAILABLE ((HRESULT)0x8876086A)
#define D3DERR_INVALIDCALL ((HRESULT)0x8876086C)
#define D3DERR_OUTOFVIDEOMEMORY ((HRESULT)0x8876017C)

struct D3DPRESENT_PARAMETERS {
    UINT BackBufferWidth, BackBufferHeight;
    D3DFORMAT BackBufferFormat;
    UINT BackBufferCount;
    D3DMULTISAMPLE_TYPE MultiSampleType;
    DWORD MultiSampleQuality;
    D3DSWAPEFFECT SwapEffect;
    HWND hDeviceWindow;
    BOOL Windowed;
    BOOL EnableAutoDepthStencil;
    D3DFORMAT AutoDepthStencilFormat;
    DWORD Flags;
    UINT FullScreen_RefreshRateInHz;
    UINT PresentationInterval;
};
struct D3DVIEWPORT9 {
    DWORD X, Y, Width, Height;
    float MinZ, MaxZ;
};
struct D3DVECTOR {
    float x, y, z;
};
struct D3DCOLORVALUE {
    float r, g, b, a;
};
struct D3DLIGHT9 {
    D3DLIGHTTYPE Type;
    D3DCOLORVALUE Diffuse, Specular, Ambient;
    D3DVECTOR Position, Direction;
    float Range, Falloff, Attenuation0, Attenuation1, Attenuation2, Theta, Phi;
};
struct D3DMATRIX {
    union {
        struct {
            float _11, _12, _13, _14, _21, _22, _23, _24, _31, _32, _33, _34, _41, _42, _43, _44;
        };
        float m[4][4];
    };
};
struct D3DRECT {
    LONG x1, y1, x2, y2;
};
struct D3DVERTEXELEMENT9 {
    WORD Stream, Offset;
    BYTE Type, Method, Usage, UsageIndex;
};
enum : BYTE {
    D3DDECLTYPE_FLOAT1 = 0,
    D3DDECLTYPE_FLOAT2 = 1,
    D3DDECLTYPE_FLOAT3 = 2,
    D3DDECLTYPE_FLOAT4 = 3,
    D3DDECLTYPE_D3DCOLOR = 4,
    D3DDECLTYPE_UBYTE4 = 5,
    D3DDECLTYPE_UNUSED = 17,
    D3DDECLMETHOD_DEFAULT = 0,
    D3DDECLUSAGE_POSITION = 0,
    D3DDECLUSAGE_BLENDWEIGHT = 1,
    D3DDECLUSAGE_BLENDINDICES = 2,
    D3DDECLUSAGE_NORMAL = 3,
    D3DDECLUSAGE_PSIZE = 4,
    D3DDECLUSAGE_TEXCOORD = 5,
    D3DDECLUSAGE_TANGENT = 6,
    D3DDECLUSAGE_BINORMAL = 7,
    D3DDECLUSAGE_TESSFACTOR = 8,
    D3DDECLUSAGE_POSITIONT = 9,
    D3DDECLUSAGE_COLOR = 10,
    D3DDECLUSAGE_FOG = 11,
    D3DDECLUSAGE_DEPTH = 12,
    D3DDECLUSAGE_SAMPLE = 13
};
#define D3DDECL_END()                                                                              \
    { 0xFF, 0, D3DDECLTYPE_UNUSED, 0, 0, 0 }
struct D3DSURFACE_DESC {
    D3DFORMAT Format;
    DWORD Type, Usage;
    D3DPOOL Pool;
    D3DMULTISAMPLE_TYPE MultiSampleType;
    DWORD MultiSampleQuality;
    UINT Width, Height;
};
struct D3DLOCKED_RECT {
    INT Pitch;
    void* pBits;
};

struct IUnknown {
    virtual ULONG AddRef() = 0;
    /// The count left; at 0 the object is gone.
    virtual ULONG Release() = 0;

protected:
    virtual ~IUnknown() = default;
};
struct IDirect3DDevice9;
struct IDirect3DResource9 : IUnknown {};
struct IDirect3DBaseTexture9 : IDirect3DResource9 {
    // beyond
    virtual DWORD GetLevelCount() { return 0; }
};
struct IDirect3DSurface9 : IDirect3DResource9 {
    virtual HRESULT GetDesc(D3DSURFACE_DESC*) = 0;
    /// Rows top first, `Pitch` bytes apart; of a compressed format, rows of blocks.
    virtual HRESULT LockRect(D3DLOCKED_RECT*, const RECT*, DWORD flags) = 0;
    virtual HRESULT UnlockRect() = 0;
    // beyond
    /// Adds a reference.
    virtual HRESULT GetDevice(IDirect3DDevice9**) { return E_NOTIMPL; }
};
struct IDirect3DTexture9 : IDirect3DBaseTexture9 {
    virtual HRESULT GetLevelDesc(UINT level, D3DSURFACE_DESC*) = 0;
    /// Adds a reference. The same object every time; it shares the count of its texture.
    virtual HRESULT GetSurfaceLevel(UINT level, IDirect3DSurface9**) = 0;
    // beyond
    virtual HRESULT LockRect(UINT /*level*/, D3DLOCKED_RECT*, const RECT*, DWORD /*flags*/) {
        return E_NOTIMPL;
    }
    virtual HRESULT UnlockRect(UINT /*level*/) { return E_NOTIMPL; }
};
struct IDirect3DVertexBuffer9 : IDirect3DResource9 {
    /// A size of 0 means all. Plain memory until Unlock.
    virtual HRESULT Lock(UINT offset, UINT size, void** data, DWORD flags) = 0;
    virtual HRESULT Unlock() = 0;
};
struct IDirect3DIndexBuffer9 : IDirect3DResource9 {
    virtual HRESULT Lock(UINT offset, UINT size, void** data, DWORD flags) = 0;
    virtual HRESULT Unlock() = 0;
};
struct IDirect3DVertexDeclaration9 : IUnknown {};
struct IDirect3DVertexShader9 : IUnknown {};
struct IDirect3DPixelShader9 : IUnknown {};

struct IDirect3DDevice9 : IUnknown {
    /// D3D_OK, or D3DERR_DEVICELOST, or D3DERR_DEVICENOTRESET: then Reset brings the device back.
    virtual HRESULT TestCooperativeLevel() = 0;
    /// Puts every state back to its default, unbinds everything and ends an open scene. Refused
    /// with D3DERR_INVALIDCALL while an object of the default pool lives that a host holds. After
    /// any that fails the device is D3DERR_DEVICENOTRESET, until a Reset succeeds; one to null
    /// changes nothing.
    virtual HRESULT Reset(D3DPRESENT_PARAMETERS*) = 0;
    virtual HRESULT Present(const RECT* src, const RECT* dst, HWND window,
                            const void* dirtyRegion) = 0;
    virtual HRESULT GetBackBuffer(UINT swapChain, UINT index, D3DBACKBUFFER_TYPE,
                                  IDirect3DSurface9**) = 0;
    virtual HRESULT CreateVertexBuffer(UINT length, DWORD usage, DWORD fvf, D3DPOOL,
                                       IDirect3DVertexBuffer9**, HANDLE*) = 0;
    virtual HRESULT CreateIndexBuffer(UINT length, DWORD usage, D3DFORMAT, D3DPOOL,
                                      IDirect3DIndexBuffer9**, HANDLE*) = 0;
    /// Both surfaces of one size and format; `systemMemory` in the pool of that name.
    virtual HRESULT GetRenderTargetData(IDirect3DSurface9* target,
                                        IDirect3DSurface9* systemMemory) = 0;
    virtual HRESULT CreateOffscreenPlainSurface(UINT w, UINT h, D3DFORMAT, D3DPOOL,
                                                IDirect3DSurface9**, HANDLE*) = 0;
    virtual HRESULT BeginScene() = 0;
    virtual HRESULT EndScene() = 0;
    virtual HRESULT Clear(DWORD count, const D3DRECT*, DWORD flags, D3DCOLOR, float z,
                          DWORD stencil) = 0;
    virtual HRESULT SetTransform(D3DTRANSFORMSTATETYPE, const D3DMATRIX*) = 0;
    virtual HRESULT GetTransform(D3DTRANSFORMSTATETYPE, D3DMATRIX*) = 0;
    virtual HRESULT SetViewport(const D3DVIEWPORT9*) = 0;
    virtual HRESULT GetViewport(D3DVIEWPORT9*) = 0;
    virtual HRESULT SetLight(DWORD index, const D3DLIGHT9*) = 0;
    virtual HRESULT LightEnable(DWORD index, BOOL) = 0;
    virtual HRESULT SetRenderState(D3DRENDERSTATETYPE, DWORD) = 0;
    virtual HRESULT SetTexture(DWORD stage, IDirect3DBaseTexture9*) = 0;
    virtual HRESULT SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE, DWORD) = 0;
    virtual HRESULT SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE, DWORD) = 0;
    virtual HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE, INT baseVertex, UINT minVertex,
                                         UINT vertexCount, UINT startIndex,
                                         UINT primitiveCount) = 0;
    /// Unsets stream 0 afterwards.
    virtual HRESULT DrawPrimitiveUP(D3DPRIMITIVETYPE, UINT primitiveCount, const void* vertices,
                                    UINT stride) = 0;
    virtual HRESULT CreateVertexDeclaration(const D3DVERTEXELEMENT9*,
                                            IDirect3DVertexDeclaration9**) = 0;
    /// Takes the place of the FVF; null leaves no format, and draws fail until SetFVF.
    virtual HRESULT SetVertexDeclaration(IDirect3DVertexDeclaration9*) = 0;
    virtual HRESULT SetFVF(DWORD) = 0;
    virtual HRESULT CreateVertexShader(const DWORD* code, IDirect3DVertexShader9**) = 0;
    virtual HRESULT SetVertexShader(IDirect3DVertexShader9*) = 0;
    virtual HRESULT SetStreamSource(UINT stream, IDirect3DVertexBuffer9*, UINT offset,
                                    UINT stride) = 0;
    virtual HRESULT SetIndices(IDirect3DIndexBuffer9*) = 0;
    virtual HRESULT CreatePixelShader(const DWORD* code, IDirect3DPixelShader9**) = 0;
    virtual HRESULT SetPixelShader(IDirect3DPixelShader9*) = 0;
    // beyond
    /// 0 levels means all down to 1 by 1.
    virtual HRESULT CreateTexture(UINT /*w*/, UINT /*h*/, UINT /*levels*/, DWORD /*usage*/,
                                  D3DFORMAT, D3DPOOL, IDirect3DTexture9**, HANDLE*) {
        return E_NOTIMPL;
    }
    virtual HRESULT CreateDepthStencilSurface(UINT /*w*/, UINT /*h*/, D3DFORMAT,
                                              D3DMULTISAMPLE_TYPE, DWORD /*quality*/,
                                              BOOL /*discard*/, IDirect3DSurface9**, HANDLE*) {
        return E_NOTIMPL;
    }
    /// Sets the viewport to the whole of the target.
    virtual HRESULT SetRenderTarget(DWORD /*index*/, IDirect3DSurface9*) { return E_NOTIMPL; }
    virtual HRESULT GetRenderTarget(DWORD /*index*/, IDirect3DSurface9**) { return E_NOTIMPL; }
    virtual HRESULT SetDepthStencilSurface(IDirect3DSurface9*) { return E_NOTIMPL; }
    virtual HRESULT GetDepthStencilSurface(IDirect3DSurface9**) { return E_NOTIMPL; }
    virtual HRESULT GetRenderState(D3DRENDERSTATETYPE, DWORD*) { return E_NOTIMPL; }
    virtual HRESULT GetTexture(DWORD /*stage*/, IDirect3DBaseTexture9**) { return E_NOTIMPL; }
    virtual HRESULT GetTextureStageState(DWORD /*stage*/, D3DTEXTURESTAGESTATETYPE, DWORD*) {
        return E_NOTIMPL;
    }
    virtual HRESULT GetSamplerState(DWORD /*sampler*/, D3DSAMPLERSTATETYPE, DWORD*) {
        return E_NOTIMPL;
    }
    virtual HRESULT DrawPrimitive(D3DPRIMITIVETYPE, UINT /*startVertex*/, UINT /*primitives*/) {
        return E_NOTIMPL;
    }
    // What is bound; the objects get a reference.
    virtual HRESULT GetVertexDeclaration(IDirect3DVertexDeclaration9**) { return E_NOTIMPL; }
    virtual HRESULT GetFVF(DWORD*) { return E_NOTIMPL; }
    virtual HRESULT GetVertexShader(IDirect3DVertexShader9**) { return E_NOTIMPL; }
    virtual HRESULT GetPixelShader(IDirect3DPixelShader9**) { return E_NOTIMPL; }
    virtual HRESULT GetLightEnable(DWORD /*index*/, BOOL*) { return E_NOTIMPL; }
    /// Registers of the device, of four floats each, 1,100 for either stage: they stay whatever
    /// shader is bound. At the start 0.
    virtual HRESULT SetVertexShaderConstantF(UINT /*first*/, const float*, UINT /*vectors*/) {
        return E_NOTIMPL;
    }
    virtual HRESULT GetVertexShaderConstantF(UINT /*first*/, float*, UINT /*vectors*/) {
        return E_NOTIMPL;
    }
    virtual HRESULT SetPixelShaderConstantF(UINT /*first*/, const float*, UINT /*vectors*/) {
        return E_NOTIMPL;
    }
    virtual HRESULT GetPixelShaderConstantF(UINT /*first*/, float*, UINT /*vectors*/) {
        return E_NOTIMPL;
    }
};
struct IDirect3D9 : IUnknown {
    virtual HRESULT CreateDevice(UINT adapter, D3DDEVTYPE, HWND, DWORD flags,
                                 D3DPRESENT_PARAMETERS*, IDirect3DDevice9**) = 0;
};

#pragma GCC visibility push(default)
/// Null for another version.
IDirect3D9* Direct3DCreate9(UINT sdkVersion);
#pragma GCC visibility pop

#endif
