// SPDX-License-Identifier: MIT
//
// ID3DXEffect on a compiled effect: the code is shared, values and shader objects are its own. It
// goes on working where the host has released the device, which it holds.
//
// The sources are split by idea: effect.cpp (techniques and passes), effect_parameters.cpp.
#pragma once

#include "platform/d3d9/effect_host.hpp"
#include "platform/d3dx9/device_object.hpp"
#include "platform/d3dx9/effect/effect_states.hpp"

namespace VornPlatform {

class Effect final : public DeviceObject<ID3DXEffect> {
public:
    /// Raises std::bad_alloc, EffectError for a shader that the machine does not take, and
    /// std::runtime_error for code that does not hold together.
    static HRESULT Make(IDirect3DDevice9* device, EffectHost& host,
                        std::shared_ptr<const EffectCode> code, ID3DXEffect** effect);

    D3DXHANDLE GetTechniqueByName(LPCSTR name) override;
    D3DXHANDLE GetTechnique(UINT index) override;
    D3DXHANDLE GetCurrentTechnique() override;
    HRESULT SetTechnique(D3DXHANDLE technique) override;
    HRESULT ValidateTechnique(D3DXHANDLE technique) override;
    HRESULT FindNextValidTechnique(D3DXHANDLE technique, D3DXHANDLE* next) override;

    HRESULT Begin(UINT* passes, DWORD flags) override;
    HRESULT BeginPass(UINT pass) override;
    HRESULT CommitChanges() override;
    HRESULT EndPass() override;
    HRESULT End() override;
    HRESULT OnLostDevice() override;
    HRESULT OnResetDevice() override;

    D3DXHANDLE GetParameterByName(D3DXHANDLE parent, LPCSTR name) override;
    D3DXHANDLE GetParameterBySemantic(D3DXHANDLE parent, LPCSTR semantic) override;
    D3DXHANDLE GetParameter(D3DXHANDLE parent, UINT index) override;

    HRESULT SetValue(D3DXHANDLE parameter, const void* data, UINT bytes) override;
    HRESULT SetBool(D3DXHANDLE parameter, BOOL value) override;
    HRESULT SetBoolArray(D3DXHANDLE parameter, const BOOL* values, UINT count) override;
    HRESULT SetInt(D3DXHANDLE parameter, INT value) override;
    HRESULT SetIntArray(D3DXHANDLE parameter, const INT* values, UINT count) override;
    HRESULT SetFloat(D3DXHANDLE parameter, float value) override;
    HRESULT SetFloatArray(D3DXHANDLE parameter, const float* values, UINT count) override;
    HRESULT SetVector(D3DXHANDLE parameter, const D3DXVECTOR4* vector) override;
    HRESULT SetVectorArray(D3DXHANDLE parameter, const D3DXVECTOR4* vectors, UINT count) override;
    HRESULT SetMatrix(D3DXHANDLE parameter, const D3DXMATRIX* matrix) override;
    HRESULT SetMatrixArray(D3DXHANDLE parameter, const D3DXMATRIX* matrices, UINT count) override;
    HRESULT SetMatrixTranspose(D3DXHANDLE parameter, const D3DXMATRIX* matrix) override;
    HRESULT SetTexture(D3DXHANDLE parameter, IDirect3DBaseTexture9* texture) override;

    HRESULT GetValue(D3DXHANDLE parameter, void* data, UINT bytes) override;
    HRESULT GetBool(D3DXHANDLE parameter, BOOL* value) override;
    HRESULT GetInt(D3DXHANDLE parameter, INT* value) override;
    HRESULT GetFloat(D3DXHANDLE parameter, float* value) override;
    HRESULT GetVector(D3DXHANDLE parameter, D3DXVECTOR4* vector) override;
    HRESULT GetMatrix(D3DXHANDLE parameter, D3DXMATRIX* matrix) override;
    HRESULT GetString(D3DXHANDLE parameter, LPCSTR* text) override;
    HRESULT GetTexture(D3DXHANDLE parameter, IDirect3DBaseTexture9** texture) override;

private:
    struct Pass {
        std::vector<StateStep> steps;
        bool setsVertexShader = false, setsPixelShader = false;
        IDirect3DVertexShader9* vertexShader = nullptr; // null: the fixed function
        IDirect3DPixelShader9* pixelShader = nullptr;
    };
    struct Technique {
        std::vector<Pass> passes;
        StateKeeper keeper;
    };
    /// Of EffectCode::shaders, one of the two.
    struct Shader {
        Held<IDirect3DVertexShader9> vertex;
        Held<IDirect3DPixelShader9> pixel;
    };

    Effect(IDirect3DDevice9* device, EffectHost& host, std::shared_ptr<const EffectCode> code);
    ~Effect() override;

    void checkPlaces() const;
    HRESULT makeShaders();
    void makeTechniques();
    Technique makeTechnique(const EffectTechnique& technique) const;
    Pass makePass(const EffectPass& pass) const;
    void addSamplers(int shader, Pass& pass) const;
    void sendConstants();

    const NameTable& names() const { return mPlaces.Names(); }
    /// Null for what is not there.
    const Place* find(D3DXHANDLE parameter) const {
        const int number = names().Find(parameter);
        return number < 0 ? nullptr : &mPlaces[number];
    }
    ParameterValues values() const { return {mPlaces, mBlock.data()}; }
    Held<IDirect3DBaseTexture9>* textureOf(const Place* place);
    const std::byte* at(const Place& place, UINT number) const {
        return &mBlock[place.NumberOffset(number)];
    }
    void store(const Place& place, UINT number, std::uint32_t bits);
    void storeMatrix(const Place& place, UINT element, const float* from);
    void storePacked(const Place& place, const std::byte* from);
    template <typename Number>
    HRESULT setOne(const Place* place, Number value);
    template <typename Number>
    HRESULT setArray(const Place* place, const Number* values, UINT count);
    template <typename Number>
    HRESULT getOne(const Place* place, Number* value) const;

    const std::shared_ptr<const EffectCode> mCode;
    EffectHost& mHost;
    const Places mPlaces;
    const NameTable mTechniqueNames;
    std::vector<Shader> mShaders;
    std::vector<Technique> mTechniques;

    std::vector<std::byte> mBlock;
    TextureValues mTextures; // by place
    bool mBlockChanged = true, mTexturesChanged = true;

    int mTechnique = -1;           // that the next Begin takes
    Technique* mBegun = nullptr;   // between Begin and End
    const Pass* mInPass = nullptr; // between BeginPass and EndPass
};

} // namespace VornPlatform
