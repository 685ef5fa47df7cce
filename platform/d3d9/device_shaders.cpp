// SPDX-License-Identifier: MIT
//
// Shaders, and the constants that they read: registers of the device, or an effect's block.
#include "platform/d3d9/bindings.hpp"
#include "platform/d3d9/device.hpp"
#include "platform/d3d9/guarded.hpp"
#include "platform/d3d9/recorder/call_log.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

namespace VornPlatform {

namespace {

bool IsRange(UINT first, const float* values, UINT count) {
    return values && first <= MaxRegisters && count <= MaxRegisters - first;
}

FloatRows RowsOf(UINT first, const float* values, UINT count) {
    return {values, IsRange(first, values, count) ? count : 0, 4};
}

} // namespace

// --- shaders

template <typename Interface, typename Object>
HRESULT Device::makeShader(ShaderStage stage, std::shared_ptr<const ShaderCode> code,
                           Interface** out) {
    if (!out || !code || code->stage != stage || !IsSound(*code))
        return D3DERR_INVALIDCALL;
    return Guarded([&]() -> HRESULT {
        if (const HRESULT error = creationError(D3DPOOL_MANAGED); FAILED(error))
            return error;
        if (!mBackend->Takes(*code))
            return D3DERR_INVALIDCALL;
        auto* made = new Object(*this, TheOne(std::move(code)));
        made->Hold();
        *out = made;
        return D3D_OK;
    });
}

HRESULT Device::MakeVertexShader(std::shared_ptr<const ShaderCode> code,
                                 IDirect3DVertexShader9** shader) {
    return makeShader<IDirect3DVertexShader9, VertexShader>(ShaderStage::Vertex, std::move(code),
                                                            shader);
}

HRESULT Device::MakePixelShader(std::shared_ptr<const ShaderCode> code,
                                IDirect3DPixelShader9** shader) {
    return makeShader<IDirect3DPixelShader9, PixelShader>(ShaderStage::Pixel, std::move(code),
                                                          shader);
}

HRESULT Device::CreateVertexShader(const DWORD* code, IDirect3DVertexShader9** shader) {
    const CallScope call("CreateVertexShader", static_cast<const void*>(code));
    return Guarded([&] { return MakeVertexShader(Unpack(code), shader); });
}

HRESULT Device::CreatePixelShader(const DWORD* code, IDirect3DPixelShader9** shader) {
    const CallScope call("CreatePixelShader", static_cast<const void*>(code));
    return Guarded([&] { return MakePixelShader(Unpack(code), shader); });
}

template <typename Object>
HRESULT Device::bindShader(Object*& place, Object* shader, ShaderState& state) {
    if (shader && !shader->IsOf(*this))
        return D3DERR_INVALIDCALL;
    if (place == shader)
        return D3D_OK;
    Rebind(place, shader);
    state.code = shader ? shader->Code().get() : nullptr;
    state.holder = shader ? &shader->Code() : nullptr;
    mConstantsBehind = true;
    mChanged |= Changed::Shaders;
    return D3D_OK;
}

HRESULT Device::SetVertexShader(IDirect3DVertexShader9* shader) {
    const CallScope call("SetVertexShader", shader);
    return bindShader(mVertexShader, static_cast<VertexShader*>(shader), mState.vertexShader);
}

HRESULT Device::GetVertexShader(IDirect3DVertexShader9** shader) {
    const CallScope call("GetVertexShader");
    return shader ? GiveOutBound(mVertexShader, shader) : D3DERR_INVALIDCALL;
}

HRESULT Device::SetPixelShader(IDirect3DPixelShader9* shader) {
    const CallScope call("SetPixelShader", shader);
    return bindShader(mPixelShader, static_cast<PixelShader*>(shader), mState.pixelShader);
}

HRESULT Device::GetPixelShader(IDirect3DPixelShader9** shader) {
    const CallScope call("GetPixelShader");
    return shader ? GiveOutBound(mPixelShader, shader) : D3DERR_INVALIDCALL;
}

// --- constants

HRESULT Device::setRegisters(StageConstants& constants, UINT first, const float* values,
                             UINT count) {
    if (!IsRange(first, values, count))
        return D3DERR_INVALIDCALL;
    float* place = constants.registers.data()->data() + std::size_t(first) * 4;
    const std::size_t bytes = std::size_t(count) * 4 * sizeof(float);
    if (std::memcmp(place, values, bytes) == 0) // by bits, as -0 and NaNs are values too
        return D3D_OK;
    std::memcpy(place, values, bytes);
    constants.gathered = nullptr;
    mConstantsBehind = true;
    return D3D_OK;
}

HRESULT Device::getRegisters(const StageConstants& constants, UINT first, float* values,
                             UINT count) {
    if (!IsRange(first, values, count))
        return D3DERR_INVALIDCALL;
    std::memcpy(values, constants.registers.data()->data() + std::size_t(first) * 4,
                std::size_t(count) * 4 * sizeof(float));
    return D3D_OK;
}

HRESULT Device::SetVertexShaderConstantF(UINT first, const float* values, UINT count) {
    const CallScope call("SetVertexShaderConstantF", first, RowsOf(first, values, count), count);
    return setRegisters(mVertexConstants, first, values, count);
}

HRESULT Device::GetVertexShaderConstantF(UINT first, float* values, UINT count) {
    const CallScope call("GetVertexShaderConstantF", first, count);
    return getRegisters(mVertexConstants, first, values, count);
}

HRESULT Device::SetPixelShaderConstantF(UINT first, const float* values, UINT count) {
    const CallScope call("SetPixelShaderConstantF", first, RowsOf(first, values, count), count);
    return setRegisters(mPixelConstants, first, values, count);
}

HRESULT Device::GetPixelShaderConstantF(UINT first, float* values, UINT count) {
    const CallScope call("GetPixelShaderConstantF", first, count);
    return getRegisters(mPixelConstants, first, values, count);
}

void Device::SetEffectConstants(const void* block, UINT bytes) {
    if (bytes == mEffectBlock.size() &&
        (bytes == 0 || std::memcmp(mEffectBlock.data(), block, bytes) == 0))
        return;
    mEffectBlock.resize(bytes);
    if (bytes > 0)
        std::memcpy(mEffectBlock.data(), block, bytes);
    mEffectVersion = ++mLastVersion;
    mConstantsBehind = true;
}

template <typename Object>
void Device::gatherStage(const Object* shader, StageConstants& constants, ShaderState& state) {
    const ShaderCode* code = state.code;
    state.constants = nullptr;
    if (!shader || code->blockSize == 0)
        return;
    if (!shader->Reads().Any()) {
        state.constants = mEffectBlock.data();
        state.version = mEffectVersion;
        return;
    }
    if (constants.gathered.get() != code) {
        constants.block.assign(code->blockSize, std::byte(0));
        shader->Reads().Gather(constants.registers, constants.block.data());
        constants.gathered = shader->Code();
        constants.version = ++mLastVersion;
    }
    state.constants = constants.block.data();
    state.version = constants.version;
}

void Device::gatherConstants() {
    // An effect's block may be shorter than what another effect's shader reads.
    std::size_t effectBytes = mEffectBlock.size();
    for (const ShaderCode* code : {mState.vertexShader.code, mState.pixelShader.code})
        effectBytes = std::max<std::size_t>(effectBytes, code ? code->blockSize : 0);
    mEffectBlock.resize(effectBytes);
    gatherStage(mVertexShader, mVertexConstants, mState.vertexShader);
    gatherStage(mPixelShader, mPixelConstants, mState.pixelShader);
    mChanged |= Changed::Constants;
    mConstantsBehind = false;
}

} // namespace VornPlatform
