// SPDX-License-Identifier: MIT
//
// The part of the D3DX 9 interface that Vorn and its hosts use, under the platform's own names.
//
//   D3DXMATRIX view;
//   D3DXMatrixLookAtLH(&view, &eye, &at, &up);
//
// Matrices multiply row vectors: v' = v M, the translation stands in the fourth row. Angles are
// radians. An out pointer may be the same as an argument; each function returns its first argument.
// The mathematics report no error: a vector without length has the direction (0, 0, 0), so a
// look-at without one has axes of zeros, and a singular matrix gives infinities or NaNs. What makes
// objects answers with an HRESULT; a file that is missing or broken gives a negative one, and null.
//
//   [X] mathematics
//   [X] textures from files, surfaces to files, render-to-surface, fonts, lines
//   [X] effects and shaders of HLSL: docs/effects.md tells the dialect
//   [ ] effect pools, clones, state managers, shader fragments, sprites, meshes
#ifndef VORN_PLATFORM_D3DX9_H
#define VORN_PLATFORM_D3DX9_H
#pragma GCC system_header

#include <d3d9.h>

struct D3DXVECTOR2 {
    float x, y;
    D3DXVECTOR2() = default;
    D3DXVECTOR2(float a, float b) : x(a), y(b) {}
};
struct D3DXVECTOR3 : D3DVECTOR {
    D3DXVECTOR3() = default;
    D3DXVECTOR3(float a, float b, float c) {
        x = a;
        y = b;
        z = c;
    }
};
struct D3DXVECTOR4 {
    float x, y, z, w;
    D3DXVECTOR4() = default;
    D3DXVECTOR4(float a, float b, float c, float d) : x(a), y(b), z(c), w(d) {}
};
struct D3DXQUATERNION {
    float x, y, z, w;
    D3DXQUATERNION() = default;
    D3DXQUATERNION(float a, float b, float c, float d) : x(a), y(b), z(c), w(d) {}
};
struct D3DXMATRIX : D3DMATRIX {
    D3DXMATRIX() = default;
    D3DXMATRIX(const float* p) {
        for (int i = 0; i < 16; ++i)
            m[i / 4][i % 4] = p[i];
    }
};
typedef D3DXMATRIX D3DXMATRIXA16;

/// A file that is none of its kind, or not there.
#define D3DXERR_INVALIDDATA ((HRESULT)0x88760B59)

struct ID3DXSprite;
struct ID3DXEffectPool;
struct PALETTEENTRY;
/// A name, as a NUL-terminated text, or what a function that is asked for a handle has answered.
typedef const char* D3DXHANDLE;
/// A list ends with a null name. A null definition is an empty one.
struct D3DXMACRO {
    LPCSTR Name;
    LPCSTR Definition;
};
enum D3DXINCLUDE_TYPE : DWORD { D3DXINC_LOCAL = 0, D3DXINC_SYSTEM = 1 };
/// A host's own way to included files.
struct ID3DXInclude {
    /// `parent` is the content of the file that includes, null for the main one. What is handed
    /// out stays until Close.
    virtual HRESULT Open(D3DXINCLUDE_TYPE, LPCSTR name, LPCVOID parent, LPCVOID* data,
                         UINT* bytes) = 0;
    virtual HRESULT Close(LPCVOID data) = 0;

protected:
    ~ID3DXInclude() = default;
};
enum D3DXIMAGE_FILEFORMAT : DWORD {
    D3DXIFF_BMP = 0,
    D3DXIFF_JPG = 1,
    D3DXIFF_TGA = 2,
    D3DXIFF_PNG = 3,
    D3DXIFF_DDS = 4
};
enum : DWORD {
    D3DX_FILTER_NONE = 1,
    D3DXSHADER_NO_PRESHADER = 0x100, // there are none here
    D3DXFX_DONOTSAVESTATE = 1,       // of ID3DXEffect::Begin
    D3DXFX_DONOTSAVESHADERSTATE = 2,
    D3DXFX_DONOTSAVESAMPLERSTATE = 4,
    D3DXFX_NOT_CLONEABLE = 0x800 // all are like that here
};
#define D3DX_DEFAULT ((UINT)-1)
struct ID3DXFont : IUnknown {
    /// `text` is UTF-8, `count` its bytes, or -1 up to its NUL; a NUL ends it in any case. Drawn in
    /// screen pixels of the target, clipped to the rectangle unless DT_NOCLIP is given, and to the
    /// viewport; without a rectangle at the upper left. Inside or outside a scene; touches no state
    /// of the device. Of the flags count DT_CENTER, DT_RIGHT, DT_WORDBREAK, DT_SINGLELINE, with it
    /// DT_VCENTER and DT_BOTTOM, and DT_CALCRECT, which draws nothing and moves the rectangle's
    /// right and lower edges around the text. A tab goes on to the next eighth blank.
    /// @return the height of the text (unit: pixels); 0 if nothing was drawn
    virtual INT DrawTextA(ID3DXSprite*, LPCSTR text, INT count, LPRECT, DWORD format, D3DCOLOR) = 0;
};
struct ID3DXLine : IUnknown {
    /// A strip through `count` points, in screen pixels of the target; fewer than 2 draw nothing.
    /// Each line is a rectangle of its own, so that they overlap inside of a bend and leave a notch
    /// outside. One of width 1 from (10, 10) to (20, 10) covers the ten pixels from 10 to 19.
    virtual HRESULT Draw(const D3DXVECTOR2* points, DWORD count, D3DCOLOR) = 0;
    /// (unit: pixels) At the start 1; refused if not above 0.
    virtual HRESULT SetWidth(float) = 0;
    virtual HRESULT SetAntialias(BOOL) = 0;
    /// Lines as OpenGL draws them: steep and flat ones are equally many pixels wide, and ends are
    /// cut along the axes.
    virtual HRESULT SetGLLines(BOOL) = 0;
};
struct ID3DXRenderToSurface : IUnknown {
    /// Sets the surface, the helper's own depth buffer and the viewport, and begins a scene; a null
    /// viewport is the whole surface. Fails inside a scene, twice, or with a surface of another
    /// size or format. A viewport that reaches beyond the surface is refused.
    virtual HRESULT BeginScene(IDirect3DSurface9*, const D3DVIEWPORT9*) = 0;
    /// Ends the scene and puts target, depth buffer and viewport back.
    virtual HRESULT EndScene(DWORD mipFilter) = 0;
};
/// Bytes: code, or a text with a NUL behind it that counts.
struct ID3DXBuffer : IUnknown {
    virtual void* GetBufferPointer() = 0;
    virtual DWORD GetBufferSize() = 0;
};
/// The constants that a shader uses. Setting one writes registers of the device, which stay until
/// somebody sets them again, whatever shader is bound.
struct ID3DXConstantTable : IUnknown {
    /// By name, with `parent` null or a handle of a structure; "a.b" and "a[2]" work too. Null if
    /// there is none.
    virtual D3DXHANDLE GetConstantByName(D3DXHANDLE parent, LPCSTR name) = 0;
    virtual HRESULT SetMatrix(IDirect3DDevice9*, D3DXHANDLE, const D3DXMATRIX*) = 0;
    /// More than the array has is cut off, fewer set the first ones only.
    virtual HRESULT SetMatrixArray(IDirect3DDevice9*, D3DXHANDLE, const D3DXMATRIX*,
                                   UINT count) = 0;
    // beyond
    virtual HRESULT SetFloat(IDirect3DDevice9*, D3DXHANDLE, float) { return E_NOTIMPL; }
    virtual HRESULT SetFloatArray(IDirect3DDevice9*, D3DXHANDLE, const float*, UINT /*count*/) {
        return E_NOTIMPL;
    }
    virtual HRESULT SetVector(IDirect3DDevice9*, D3DXHANDLE, const D3DXVECTOR4*) {
        return E_NOTIMPL;
    }
    virtual HRESULT SetVectorArray(IDirect3DDevice9*, D3DXHANDLE, const D3DXVECTOR4*,
                                   UINT /*count*/) {
        return E_NOTIMPL;
    }
    /// Writes the start values of the file.
    virtual HRESULT SetDefaults(IDirect3DDevice9*) { return E_NOTIMPL; }
};
/// Parameters, techniques and passes of an effect file. A parameter is found by its name, "a.b" for
/// a member of a structure and "a[2]" for an element of an array; for one that is not there setters
/// answer D3DERR_INVALIDCALL and do nothing else. A value stays until it is set again, and starts
/// as the file says.
struct ID3DXEffect : IUnknown {
    /// Null if there is none.
    virtual D3DXHANDLE GetTechniqueByName(LPCSTR) = 0;
    /// Bytes as a program has them: floats, BOOLs and ints one behind the other, matrices row by
    /// row. Fewer than the parameter has are refused.
    virtual HRESULT SetValue(D3DXHANDLE, const void* data, UINT bytes) = 0;
    virtual HRESULT SetBool(D3DXHANDLE, BOOL) = 0;
    virtual HRESULT SetFloat(D3DXHANDLE, float) = 0;
    virtual HRESULT SetFloatArray(D3DXHANDLE, const float*, UINT count) = 0;
    virtual HRESULT SetMatrix(D3DXHANDLE, const D3DXMATRIX*) = 0;
    /// Keeps a reference until it is replaced or the effect dies.
    virtual HRESULT SetTexture(D3DXHANDLE, IDirect3DBaseTexture9*) = 0;
    virtual HRESULT SetTechnique(D3DXHANDLE) = 0;
    /// Of the technique that was set, at first the file's first. Saves the device's states that its
    /// passes change, unless flags say not to. Refused twice without End.
    virtual HRESULT Begin(UINT* passes, DWORD flags) = 0;
    /// Sets the pass's states, shaders and textures with the values that parameters have now.
    virtual HRESULT BeginPass(UINT) = 0;
    virtual HRESULT EndPass() = 0;
    /// Puts the states back.
    virtual HRESULT End() = 0;
    // beyond
    /// What was set since BeginPass takes effect.
    virtual HRESULT CommitChanges() { return E_NOTIMPL; }
    virtual D3DXHANDLE GetParameterByName(D3DXHANDLE /*parent*/, LPCSTR) { return nullptr; }
    virtual D3DXHANDLE GetParameterBySemantic(D3DXHANDLE /*parent*/, LPCSTR) { return nullptr; }
    virtual D3DXHANDLE GetParameter(D3DXHANDLE /*parent*/, UINT /*index*/) { return nullptr; }
    virtual D3DXHANDLE GetTechnique(UINT /*index*/) { return nullptr; }
    virtual D3DXHANDLE GetCurrentTechnique() { return nullptr; }
    virtual HRESULT ValidateTechnique(D3DXHANDLE) { return E_NOTIMPL; }
    virtual HRESULT FindNextValidTechnique(D3DXHANDLE, D3DXHANDLE*) { return E_NOTIMPL; }
    virtual HRESULT SetInt(D3DXHANDLE, INT) { return E_NOTIMPL; }
    virtual HRESULT SetIntArray(D3DXHANDLE, const INT*, UINT /*count*/) { return E_NOTIMPL; }
    virtual HRESULT SetBoolArray(D3DXHANDLE, const BOOL*, UINT /*count*/) { return E_NOTIMPL; }
    virtual HRESULT SetVector(D3DXHANDLE, const D3DXVECTOR4*) { return E_NOTIMPL; }
    virtual HRESULT SetVectorArray(D3DXHANDLE, const D3DXVECTOR4*, UINT /*count*/) {
        return E_NOTIMPL;
    }
    virtual HRESULT SetMatrixArray(D3DXHANDLE, const D3DXMATRIX*, UINT /*count*/) {
        return E_NOTIMPL;
    }
    virtual HRESULT SetMatrixTranspose(D3DXHANDLE, const D3DXMATRIX*) { return E_NOTIMPL; }
    /// The bytes that SetValue takes.
    virtual HRESULT GetValue(D3DXHANDLE, void* /*data*/, UINT /*bytes*/) { return E_NOTIMPL; }
    virtual HRESULT GetFloat(D3DXHANDLE, float*) { return E_NOTIMPL; }
    virtual HRESULT GetInt(D3DXHANDLE, INT*) { return E_NOTIMPL; }
    virtual HRESULT GetBool(D3DXHANDLE, BOOL*) { return E_NOTIMPL; }
    virtual HRESULT GetVector(D3DXHANDLE, D3DXVECTOR4*) { return E_NOTIMPL; }
    virtual HRESULT GetMatrix(D3DXHANDLE, D3DXMATRIX*) { return E_NOTIMPL; }
    virtual HRESULT GetString(D3DXHANDLE, LPCSTR*) { return E_NOTIMPL; }
    /// Adds a reference.
    virtual HRESULT GetTexture(D3DXHANDLE, IDirect3DBaseTexture9**) { return E_NOTIMPL; }
    /// Lets go of textures of the default pool, which are in the way of a reset; those parameters
    /// are null then.
    virtual HRESULT OnLostDevice() { return E_NOTIMPL; }
    virtual HRESULT OnResetDevice() { return E_NOTIMPL; }
};

#pragma GCC visibility push(default)

/// A compile error gives a negative result and the compiler's text, a line for each fault that
/// begins with file and line. A file that is not there gives a negative result and no buffer.
/// Warnings may be in the buffer when all is well. Out pointers are null on failure.
HRESULT D3DXCreateEffectFromFileA(IDirect3DDevice9*, LPCSTR path, const D3DXMACRO*, ID3DXInclude*,
                                  DWORD flags, ID3DXEffectPool*, ID3DXEffect**,
                                  ID3DXBuffer** errors);
/// The same from memory.
HRESULT D3DXCreateEffect(IDirect3DDevice9*, LPCVOID text, UINT bytes, const D3DXMACRO*,
                         ID3DXInclude*, DWORD flags, ID3DXEffectPool*, ID3DXEffect**,
                         ID3DXBuffer** errors);
/// Profiles are vs_1_1 to vs_3_0 and ps_1_1 to ps_3_0 (and their _a, _b and _sw), all alike.
HRESULT D3DXCompileShaderFromFileA(LPCSTR path, const D3DXMACRO*, ID3DXInclude*, LPCSTR entry,
                                   LPCSTR profile, DWORD flags, ID3DXBuffer** code,
                                   ID3DXBuffer** errors, ID3DXConstantTable** constants);
HRESULT D3DXCompileShader(LPCSTR text, UINT bytes, const D3DXMACRO*, ID3DXInclude*, LPCSTR entry,
                          LPCSTR profile, DWORD flags, ID3DXBuffer** code, ID3DXBuffer** errors,
                          ID3DXConstantTable** constants);

/// DDS (DXT1, DXT3, DXT5 as they are, and uncompressed), TGA, PNG, JPG, BMP: the content decides,
/// not the name. A managed texture of the file's size, with all levels down to 1 by 1: those that
/// the file lacks are means of the one before. Colours are A8R8G8B8, or X8R8G8B8 if the file has no
/// alpha; greys L8 or A8L8. A file that is cut off is refused whole.
HRESULT D3DXCreateTextureFromFileA(IDirect3DDevice9*, LPCSTR path, IDirect3DTexture9**);
/// 0 levels, or more than there are, means all down to 1 by 1; a side of 0 counts as 1, the format
/// 0 as A8R8G8B8. A side of D3DX_DEFAULT is as long as the other, both are 256.
HRESULT D3DXCreateTexture(IDirect3DDevice9*, UINT w, UINT h, UINT levels, DWORD usage, D3DFORMAT,
                          D3DPOOL, IDirect3DTexture9**);
HRESULT D3DXCreateRenderToSurface(IDirect3DDevice9*, UINT w, UINT h, D3DFORMAT, BOOL depth,
                                  D3DFORMAT depthFormat, ID3DXRenderToSurface**);
/// A positive height is that of the line, a negative one that of the letters (unit: pixels), at
/// most 1024; 0 counts as 16. A face that the machine lacks is replaced by the nearest that it has;
/// fails where there is none at all.
HRESULT D3DXCreateFontA(IDirect3DDevice9*, INT height, UINT width, UINT weight, UINT mipLevels,
                        BOOL italic, DWORD charSet, DWORD outputPrecision, DWORD quality,
                        DWORD pitchAndFamily, LPCSTR face, ID3DXFont**);
HRESULT D3DXCreateLine(IDirect3DDevice9*, ID3DXLine**);
/// BMP, JPG, TGA, PNG and DDS; `rect` null means all. Surfaces without alpha, and all JPGs, become
/// files of 24 bits. A file that cannot be written whole is not left behind, and an older one of
/// the name stays.
HRESULT D3DXSaveSurfaceToFileA(LPCSTR path, D3DXIMAGE_FILEFORMAT, IDirect3DSurface9*,
                               const PALETTEENTRY*, const RECT* rect);

D3DXMATRIX* D3DXMatrixIdentity(D3DXMATRIX*);
D3DXMATRIX* D3DXMatrixTranspose(D3DXMATRIX*, const D3DXMATRIX*);
D3DXMATRIX* D3DXMatrixMultiply(D3DXMATRIX*, const D3DXMATRIX*, const D3DXMATRIX*);
D3DXMATRIX* D3DXMatrixTranslation(D3DXMATRIX*, float, float, float);
/// The quaternion is not normalised first.
D3DXMATRIX* D3DXMatrixRotationQuaternion(D3DXMATRIX*, const D3DXQUATERNION*);
D3DXMATRIX* D3DXMatrixLookAtLH(D3DXMATRIX*, const D3DXVECTOR3* eye, const D3DXVECTOR3* at,
                               const D3DXVECTOR3* up);
D3DXMATRIX* D3DXMatrixPerspectiveFovLH(D3DXMATRIX*, float fovY, float aspect, float zn, float zf);
D3DXMATRIX* D3DXMatrixOrthoOffCenterLH(D3DXMATRIX*, float l, float r, float b, float t, float zn,
                                       float zf);
/// From pixels of the viewport, Y down, and depth to the space before `world`.
D3DXVECTOR3* D3DXVec3Unproject(D3DXVECTOR3*, const D3DXVECTOR3*, const D3DVIEWPORT9*,
                               const D3DXMATRIX* projection, const D3DXMATRIX* view,
                               const D3DXMATRIX* world);
/// A vector of length 0 stays 0.
D3DXVECTOR4* D3DXVec4Normalize(D3DXVECTOR4*, const D3DXVECTOR4*);
/// Normalises the axis; a zero axis gives (0, 0, 0, cos(angle / 2)).
D3DXQUATERNION* D3DXQuaternionRotationAxis(D3DXQUATERNION*, const D3DXVECTOR3* axis, float angle);
/// Roll about Z first, then pitch about X, then yaw about Y.
D3DXQUATERNION* D3DXQuaternionRotationYawPitchRoll(D3DXQUATERNION*, float yaw, float pitch,
                                                   float roll);
/// Rotation `a` first, then `b`: the Hamilton product b a.
D3DXQUATERNION* D3DXQuaternionMultiply(D3DXQUATERNION*, const D3DXQUATERNION* a,
                                       const D3DXQUATERNION* b);
/// The conjugate divided by the square length; a quaternion of length 0 stays 0.
D3DXQUATERNION* D3DXQuaternionInverse(D3DXQUATERNION*, const D3DXQUATERNION*);
/// A quaternion of length 0 stays 0.
D3DXQUATERNION* D3DXQuaternionNormalize(D3DXQUATERNION*, const D3DXQUATERNION*);
/// The shorter way round; `t` outside 0 to 1 extrapolates. Nothing is normalised.
D3DXQUATERNION* D3DXQuaternionSlerp(D3DXQUATERNION*, const D3DXQUATERNION*, const D3DXQUATERNION*,
                                    float t);
/// The axis is x, y, z as they are, the angle 2 acos(w). Either out pointer may be null.
void D3DXQuaternionToAxisAngle(const D3DXQUATERNION*, D3DXVECTOR3* axis, float* angle);

#pragma GCC visibility pop

#endif
