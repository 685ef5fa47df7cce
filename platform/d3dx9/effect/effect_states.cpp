// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/effect_states.hpp"

#include <algorithm>
#include <bit>
#include <cmath>

namespace VornPlatform {

namespace {

using Kind = EffectState::Kind;

template <typename Enumeration>
Enumeration As(DWORD number) {
    return static_cast<Enumeration>(number);
}

bool IsColor(const StateStep& step) {
    return step.kind == Kind::Render
               ? step.number == D3DRS_AMBIENT || step.number == D3DRS_BLENDFACTOR
               : step.kind == Kind::Sampler && step.number == D3DSAMP_BORDERCOLOR;
}

/// Of red, green, blue and alpha, which is 1 where it is left out.
D3DCOLOR Pack(const ExpressionValue& color) {
    const auto channel = [](double value) {
        return static_cast<DWORD>(
            std::lround(std::clamp(std::isnan(value) ? 0 : value, 0.0, 1.0) * 255));
    };
    return D3DCOLOR_ARGB(channel(color.count > 3 ? color[3] : 1), channel(color[0]),
                         channel(color[1]), channel(color[2]));
}

DWORD ValueOf(const StateStep& step, const ParameterValues& values) {
    if (!step.expression)
        return step.value;
    const ExpressionValue value = Evaluate(*step.expression, values);
    if (step.isFloat)
        return std::bit_cast<DWORD>(static_cast<float>(value[0]));
    return value.count >= 3 && IsColor(step) ? Pack(value) : ToDword(value[0]);
}

void SetMatrix(IDirect3DDevice9& device, const StateStep& step, const ParameterValues& values) {
    if (!step.expression)
        return;
    const ExpressionValue value = Evaluate(*step.expression, values);
    if (value.count != 16)
        return;
    D3DMATRIX matrix;
    for (UINT i = 0; i < 16; ++i)
        matrix.m[i / 4][i % 4] = static_cast<float>(value[i]);
    device.SetTransform(As<D3DTRANSFORMSTATETYPE>(step.number), &matrix);
}

} // namespace

StateStep MakeStep(const EffectState& state, UINT index) {
    StateStep step = {.kind = state.kind,
                      .number = state.number,
                      .index = index,
                      .isFloat = state.isFloat,
                      .texture = state.object};
    if (state.value.kind != Expression::Kind::Number || state.kind == Kind::Transform)
        step.expression = &state.value;
    else if (state.isFloat)
        step.value = std::bit_cast<DWORD>(static_cast<float>(state.value.number));
    else
        step.value = ToDword(state.value.number);
    if (state.kind == Kind::Texture)
        step.expression = nullptr;
    return step;
}

void SetState(IDirect3DDevice9& device, const StateStep& step, const ParameterValues& values,
              const TextureValues& textures) {
    switch (step.kind) {
    case Kind::Render:
        device.SetRenderState(As<D3DRENDERSTATETYPE>(step.number), ValueOf(step, values));
        break;
    case Kind::Stage:
        device.SetTextureStageState(step.index, As<D3DTEXTURESTAGESTATETYPE>(step.number),
                                    ValueOf(step, values));
        break;
    case Kind::Sampler:
        device.SetSamplerState(step.index, As<D3DSAMPLERSTATETYPE>(step.number),
                               ValueOf(step, values));
        break;
    case Kind::Texture:
        device.SetTexture(step.index, step.texture < 0
                                          ? nullptr
                                          : textures[static_cast<std::size_t>(step.texture)].get());
        break;
    case Kind::Transform:
        SetMatrix(device, step, values);
        break;
    case Kind::LightEnable:
        device.LightEnable(step.index, ValueOf(step, values) != 0);
        break;
    case Kind::Ignored:
        break;
    }
}

// --- before and after

void StateKeeper::Add(const StateStep& step) {
    if (step.kind == Kind::Ignored)
        return;
    if (step.kind == Kind::Transform) {
        const auto isSame = [&](const SavedMatrix& have) { return have.number == step.number; };
        if (std::none_of(mMatrices.begin(), mMatrices.end(), isSame))
            mMatrices.push_back({.number = step.number});
        return;
    }
    const auto isSame = [&](const Saved& have) {
        return have.kind == step.kind && have.number == step.number && have.index == step.index;
    };
    if (std::none_of(mStates.begin(), mStates.end(), isSame))
        mStates.push_back({.kind = step.kind, .number = step.number, .index = step.index});
}

void StateKeeper::save(IDirect3DDevice9& device, Saved& saved) {
    HRESULT result = E_NOTIMPL;
    BOOL on = FALSE;
    IDirect3DBaseTexture9* texture = nullptr;
    switch (saved.kind) {
    case Kind::Render:
        result = device.GetRenderState(As<D3DRENDERSTATETYPE>(saved.number), &saved.value);
        break;
    case Kind::Stage:
        result = device.GetTextureStageState(
            saved.index, As<D3DTEXTURESTAGESTATETYPE>(saved.number), &saved.value);
        break;
    case Kind::Sampler:
        result = device.GetSamplerState(saved.index, As<D3DSAMPLERSTATETYPE>(saved.number),
                                        &saved.value);
        break;
    case Kind::Texture:
        result = device.GetTexture(saved.index, &texture);
        saved.texture.reset(SUCCEEDED(result) ? texture : nullptr);
        break;
    case Kind::LightEnable:
        result = device.GetLightEnable(saved.index, &on);
        saved.value = on != FALSE;
        break;
    default:
        break;
    }
    saved.isThere = SUCCEEDED(result);
}

void StateKeeper::restore(IDirect3DDevice9& device, Saved& saved) {
    if (!saved.isThere)
        return;
    saved.isThere = false;
    switch (saved.kind) {
    case Kind::Render:
        device.SetRenderState(As<D3DRENDERSTATETYPE>(saved.number), saved.value);
        break;
    case Kind::Stage:
        device.SetTextureStageState(saved.index, As<D3DTEXTURESTAGESTATETYPE>(saved.number),
                                    saved.value);
        break;
    case Kind::Sampler:
        device.SetSamplerState(saved.index, As<D3DSAMPLERSTATETYPE>(saved.number), saved.value);
        break;
    case Kind::Texture:
        device.SetTexture(saved.index, saved.texture.get());
        saved.texture.reset();
        break;
    case Kind::LightEnable:
        device.LightEnable(saved.index, static_cast<BOOL>(saved.value));
        break;
    default:
        break;
    }
}

void StateKeeper::Save(IDirect3DDevice9& device, DWORD flags) {
    if (flags & D3DXFX_DONOTSAVESTATE)
        return;
    const bool samplersToo = !(flags & D3DXFX_DONOTSAVESAMPLERSTATE);
    for (Saved& saved : mStates)
        if (samplersToo || saved.kind != Kind::Sampler)
            save(device, saved);
    for (SavedMatrix& saved : mMatrices)
        saved.isThere =
            SUCCEEDED(device.GetTransform(As<D3DTRANSFORMSTATETYPE>(saved.number), &saved.matrix));
    if (flags & D3DXFX_DONOTSAVESHADERSTATE)
        return;
    IDirect3DVertexShader9* vertexShader = nullptr;
    mHasVertexShader = SUCCEEDED(device.GetVertexShader(&vertexShader));
    mVertexShader.reset(mHasVertexShader ? vertexShader : nullptr);
    IDirect3DPixelShader9* pixelShader = nullptr;
    mHasPixelShader = SUCCEEDED(device.GetPixelShader(&pixelShader));
    mPixelShader.reset(mHasPixelShader ? pixelShader : nullptr);
}

void StateKeeper::Restore(IDirect3DDevice9& device) {
    for (Saved& saved : mStates)
        restore(device, saved);
    for (SavedMatrix& saved : mMatrices)
        if (std::exchange(saved.isThere, false))
            device.SetTransform(As<D3DTRANSFORMSTATETYPE>(saved.number), &saved.matrix);
    if (std::exchange(mHasVertexShader, false))
        device.SetVertexShader(mVertexShader.get());
    if (std::exchange(mHasPixelShader, false))
        device.SetPixelShader(mPixelShader.get());
    mVertexShader.reset();
    mPixelShader.reset();
}

} // namespace VornPlatform
