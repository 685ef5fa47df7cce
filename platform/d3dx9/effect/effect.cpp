// SPDX-License-Identifier: MIT
//
// Techniques and passes of an effect.
#include "platform/d3dx9/effect/effect.hpp"

#include <algorithm>
#include <stdexcept>

namespace VornPlatform {

namespace {

std::vector<std::string> TechniqueNames(const EffectCode& code) {
    std::vector<std::string> names;
    for (const EffectTechnique& technique : code.techniques)
        names.push_back(technique.name);
    return names;
}

/// Whose constants the devices have. For comparison only: it may have gone.
constinit const void* lastSender = nullptr;

} // namespace

// --- making

HRESULT Effect::Make(IDirect3DDevice9* device, EffectHost& host,
                     std::shared_ptr<const EffectCode> code, ID3DXEffect** effect) {
    const Held<ID3DXEffect> held(new Effect(device, host, std::move(code)));
    Effect& made = static_cast<Effect&>(*held);
    made.checkPlaces();
    const HRESULT result = made.makeShaders();
    if (FAILED(result))
        return result;
    made.makeTechniques();
    held->AddRef();
    *effect = held.get();
    return D3D_OK;
}

Effect::Effect(IDirect3DDevice9* device, EffectHost& host, std::shared_ptr<const EffectCode> code)
    : DeviceObject(ObjectKind::Effect, device), mCode(std::move(code)), mHost(host),
      mPlaces(mCode->parameters, mCode->start.size()), mTechniqueNames(TechniqueNames(*mCode)),
      mBlock(mCode->start), mTextures(mPlaces.Size()),
      mTechnique(mCode->techniques.empty() ? -1 : 0) {
    const std::vector<std::byte>& annotations = mPlaces.AnnotationValues();
    mBlock.insert(mBlock.end(), annotations.begin(), annotations.end());
}

Effect::~Effect() {
    if (mBegun)
        End();
    if (lastSender == this)
        lastSender = nullptr;
}

// Setters write where places say without looking again.
void Effect::checkPlaces() const {
    for (int i = 0; i < static_cast<int>(mPlaces.Size()); ++i) {
        const Place& place = mPlaces[i];
        const ShaderConstant& constant = *place.constant;
        if (!place.IsNumeric() || place.elements > 0)
            continue;
        if (place.numbers == 0 || constant.rows > 4 || constant.columns > 4 ||
            std::uint64_t(place.NumberOffset(place.numbers - 1)) + 4 > mBlock.size())
            throw std::runtime_error("a parameter lies outside of its block: " + names().Name(i));
    }
}

HRESULT Effect::makeShaders() {
    for (const EffectShader& shader : mCode->shaders) {
        Shader& made = mShaders.emplace_back();
        HRESULT result = D3D_OK;
        if (shader.code->stage == ShaderStage::Vertex) {
            IDirect3DVertexShader9* object = nullptr;
            result = mHost.MakeVertexShader(shader.code, &object);
            made.vertex.reset(object);
        } else {
            IDirect3DPixelShader9* object = nullptr;
            result = mHost.MakePixelShader(shader.code, &object);
            made.pixel.reset(object);
        }
        if (result == D3DERR_INVALIDCALL)
            throw EffectError(shader.place, "the graphics driver does not take this shader");
        if (FAILED(result))
            return result;
    }
    return D3D_OK;
}

void Effect::makeTechniques() {
    for (const EffectTechnique& technique : mCode->techniques)
        mTechniques.push_back(makeTechnique(technique));
}

Effect::Technique Effect::makeTechnique(const EffectTechnique& technique) const {
    Technique made;
    for (const EffectPass& pass : technique.passes) {
        made.passes.push_back(makePass(pass));
        for (const StateStep& step : made.passes.back().steps)
            made.keeper.Add(step);
    }
    return made;
}

Effect::Pass Effect::makePass(const EffectPass& pass) const {
    const auto shaderOf = [&](int shader, int parameter) {
        return parameter < 0 ? shader
                             : mCode->parameters[static_cast<std::size_t>(parameter)].shader;
    };
    Pass made;
    for (const EffectState& state : pass.states)
        if (state.kind != EffectState::Kind::Ignored)
            made.steps.push_back(MakeStep(state, state.index));
    made.setsVertexShader = pass.setsVertexShader;
    made.setsPixelShader = pass.setsPixelShader;
    const int vertexShader = shaderOf(pass.vertexShader, pass.vertexShaderParameter);
    const int pixelShader = shaderOf(pass.pixelShader, pass.pixelShaderParameter);
    if (vertexShader >= 0)
        made.vertexShader = mShaders[static_cast<std::size_t>(vertexShader)].vertex.get();
    if (pixelShader >= 0)
        made.pixelShader = mShaders[static_cast<std::size_t>(pixelShader)].pixel.get();
    addSamplers(vertexShader, made);
    addSamplers(pixelShader, made);
    return made;
}

void Effect::addSamplers(int shader, Pass& pass) const {
    if (shader < 0)
        return;
    for (const EffectShader::Use& use : mCode->shaders[static_cast<std::size_t>(shader)].samplers)
        if (use.sampler >= 0)
            for (const EffectState& state :
                 mCode->samplers[static_cast<std::size_t>(use.sampler)].states)
                if (state.kind != EffectState::Kind::Ignored)
                    pass.steps.push_back(MakeStep(state, use.index));
}

// --- techniques

D3DXHANDLE Effect::GetTechniqueByName(LPCSTR name) {
    const CallScope call("GetTechniqueByName", mTechniqueNames.Text(name));
    return mTechniqueNames.Handle(mTechniqueNames.Find(name));
}

D3DXHANDLE Effect::GetTechnique(UINT index) {
    const CallScope call("GetTechnique", index);
    return index < mTechniques.size() ? mTechniqueNames.Handle(static_cast<int>(index)) : nullptr;
}

D3DXHANDLE Effect::GetCurrentTechnique() {
    const CallScope call("GetCurrentTechnique");
    return mTechniqueNames.Handle(mTechnique);
}

HRESULT Effect::SetTechnique(D3DXHANDLE technique) {
    const CallScope call("SetTechnique", mTechniqueNames.Text(technique));
    const int number = mTechniqueNames.Find(technique);
    if (number < 0)
        return D3DERR_INVALIDCALL;
    mTechnique = number;
    return D3D_OK;
}

HRESULT Effect::ValidateTechnique(D3DXHANDLE technique) {
    const CallScope call("ValidateTechnique", mTechniqueNames.Text(technique));
    return mTechniqueNames.Find(technique) < 0 ? D3DERR_INVALIDCALL : D3D_OK;
}

HRESULT Effect::FindNextValidTechnique(D3DXHANDLE technique, D3DXHANDLE* next) {
    const CallScope call("FindNextValidTechnique", mTechniqueNames.Text(technique));
    const int number = mTechniqueNames.Find(technique);
    if (!next || (technique && number < 0))
        return D3DERR_INVALIDCALL;
    const bool isThere = number + 1 < static_cast<int>(mTechniques.size());
    *next = isThere ? mTechniqueNames.Handle(number + 1) : nullptr;
    return isThere ? D3D_OK : S_FALSE;
}

// --- passes

HRESULT Effect::Begin(UINT* passes, DWORD flags) {
    const CallScope call("Begin", flags);
    if (mBegun || mTechnique < 0)
        return D3DERR_INVALIDCALL;
    mBegun = &mTechniques[static_cast<std::size_t>(mTechnique)];
    // Without passes nothing changes.
    if (!mBegun->passes.empty())
        mBegun->keeper.Save(Device(), flags);
    mBlockChanged = true; // a reset may have been
    if (passes)
        *passes = static_cast<UINT>(mBegun->passes.size());
    return D3D_OK;
}

HRESULT Effect::BeginPass(UINT pass) {
    const CallScope call("BeginPass", pass);
    if (!mBegun || mInPass || pass >= mBegun->passes.size())
        return D3DERR_INVALIDCALL;
    const Pass& begun = mBegun->passes[pass];
    IDirect3DDevice9& device = Device();
    HRESULT result = D3D_OK;
    if (begun.setsVertexShader)
        result = device.SetVertexShader(begun.vertexShader);
    if (SUCCEEDED(result) && begun.setsPixelShader)
        result = device.SetPixelShader(begun.pixelShader);
    if (FAILED(result))
        return result;
    for (const StateStep& step : begun.steps)
        SetState(device, step, values(), mTextures);
    if (begun.vertexShader || begun.pixelShader)
        sendConstants();
    mTexturesChanged = false;
    mInPass = &begun;
    return D3D_OK;
}

void Effect::sendConstants() {
    if (!mBlockChanged && lastSender == this)
        return;
    mHost.SetEffectConstants(mBlock.data(), static_cast<UINT>(mCode->start.size()));
    mBlockChanged = false;
    lastSender = this;
}

// What no parameter decides stays as the host may have set it since.
HRESULT Effect::CommitChanges() {
    const CallScope call("CommitChanges");
    if (!mInPass)
        return D3DERR_INVALIDCALL;
    for (const StateStep& step : mInPass->steps)
        if (step.Varies() &&
            (step.kind == EffectState::Kind::Texture ? mTexturesChanged : mBlockChanged))
            SetState(Device(), step, values(), mTextures);
    if (mInPass->vertexShader || mInPass->pixelShader)
        sendConstants();
    mTexturesChanged = false;
    return D3D_OK;
}

HRESULT Effect::EndPass() {
    const CallScope call("EndPass");
    if (!mInPass)
        return D3DERR_INVALIDCALL;
    mInPass = nullptr;
    return D3D_OK;
}

HRESULT Effect::End() {
    const CallScope call("End");
    if (!mBegun)
        return D3DERR_INVALIDCALL;
    mInPass = nullptr;
    std::exchange(mBegun, nullptr)->keeper.Restore(Device());
    return D3D_OK;
}

// --- reset

HRESULT Effect::OnLostDevice() {
    const CallScope call("OnLostDevice");
    for (Held<IDirect3DBaseTexture9>& texture : mTextures) {
        D3DSURFACE_DESC desc = {};
        auto* flat = dynamic_cast<IDirect3DTexture9*>(texture.get());
        if (flat && SUCCEEDED(flat->GetLevelDesc(0, &desc)) && desc.Pool == D3DPOOL_DEFAULT) {
            texture.reset();
            mTexturesChanged = true;
        }
    }
    return D3D_OK;
}

HRESULT Effect::OnResetDevice() {
    const CallScope call("OnResetDevice");
    return D3D_OK;
}

} // namespace VornPlatform
