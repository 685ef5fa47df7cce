// SPDX-License-Identifier: MIT
//
// Setters of plain values. A scene makes hundreds of thousands of these calls in a frame: each
// compares, and marks its group only if something differs.
#include "platform/d3d9/device.hpp"
#include "platform/d3d9/recorder/call_log.hpp"

#include <cstring>

namespace VornPlatform {

namespace {

// The last numbers that Direct3D knows, and those of transforms.
constexpr DWORD LastRenderState = 209;
constexpr DWORD LastStageState = 32;
constexpr DWORD LastSamplerState = 13;
constexpr DWORD LastTextureTransform = 23;
constexpr DWORD FirstWorld = 256, LastWorld = 511;

// What a light that was enabled and never set shines like.
constexpr D3DLIGHT9 WhiteFromTheFront = {.Type = D3DLIGHT_DIRECTIONAL,
                                         .Diffuse = {1, 1, 1, 0},
                                         .Specular = {},
                                         .Ambient = {},
                                         .Position = {},
                                         .Direction = {0, 0, 1},
                                         .Range = 0,
                                         .Falloff = 0,
                                         .Attenuation0 = 0,
                                         .Attenuation1 = 0,
                                         .Attenuation2 = 0,
                                         .Theta = 0,
                                         .Phi = 0};

// By bits: -0 and NaNs come back as they were given.
template <typename Record>
bool StoreRecord(Record& place, const Record& value) {
    if (std::memcmp(&place, &value, sizeof value) == 0)
        return false;
    place = value;
    return true;
}

unsigned int TransformGroup(D3DTRANSFORMSTATETYPE type) {
    switch (type) {
    case D3DTS_PROJECTION:
        return Changed::Projection;
    case D3DTS_TEXTURE0:
        return Changed::TextureMatrix;
    default:
        return Changed::World;
    }
}

bool IsTransform(DWORD type) {
    return type == D3DTS_VIEW || type == D3DTS_PROJECTION ||
           (type >= D3DTS_TEXTURE0 && type <= LastTextureTransform) ||
           (type >= FirstWorld && type <= LastWorld);
}

} // namespace

// --- transforms, viewport, lights

D3DMATRIX* Device::transformSlot(D3DTRANSFORMSTATETYPE type) {
    switch (type) {
    case D3DTS_WORLD:
        return &mState.world;
    case D3DTS_VIEW:
        return &mState.view;
    case D3DTS_PROJECTION:
        return &mState.projection;
    case D3DTS_TEXTURE0:
        return &mState.textureMatrix;
    default:
        return nullptr;
    }
}

HRESULT Device::SetTransform(D3DTRANSFORMSTATETYPE type, const D3DMATRIX* matrix) {
    const CallScope call("SetTransform", type, matrix);
    D3DMATRIX* place = transformSlot(type);
    if (!matrix || (!place && !IsTransform(type)))
        return D3DERR_INVALIDCALL;
    if (place && StoreRecord(*place, *matrix))
        mChanged |= TransformGroup(type);
    return D3D_OK;
}

HRESULT Device::GetTransform(D3DTRANSFORMSTATETYPE type, D3DMATRIX* matrix) {
    const CallScope call("GetTransform", type);
    const D3DMATRIX* place = transformSlot(type);
    if (!matrix || !place)
        return D3DERR_INVALIDCALL;
    *matrix = *place;
    return D3D_OK;
}

HRESULT Device::SetViewport(const D3DVIEWPORT9* viewport) {
    const CallScope call("SetViewport", viewport);
    if (!viewport)
        return D3DERR_INVALIDCALL;
    const D3DVIEWPORT9& v = *viewport;
    const auto isPart = [](DWORD begin, DWORD size, UINT whole) {
        return size > 0 && size <= whole && begin <= whole - size;
    };
    const D3DSURFACE_DESC& target = mTarget->Desc();
    if (!isPart(v.X, v.Width, target.Width) || !isPart(v.Y, v.Height, target.Height) ||
        !IsDepthValue(v.MinZ) || !IsDepthValue(v.MaxZ))
        return D3DERR_INVALIDCALL;
    storeViewport(v);
    return D3D_OK;
}

void Device::storeViewport(const D3DVIEWPORT9& viewport) {
    if (StoreRecord(mState.viewport, viewport))
        mChanged |= Changed::Viewport;
}

HRESULT Device::GetViewport(D3DVIEWPORT9* viewport) {
    const CallScope call("GetViewport");
    if (!viewport)
        return D3DERR_INVALIDCALL;
    *viewport = mState.viewport;
    return D3D_OK;
}

HRESULT Device::SetLight(DWORD index, const D3DLIGHT9* light) {
    const CallScope call("SetLight", index, light);
    if (index >= MaxLights || !light || light->Type < D3DLIGHT_POINT ||
        light->Type > D3DLIGHT_DIRECTIONAL)
        return D3DERR_INVALIDCALL;
    mLightIsSet[index] = true;
    if (StoreRecord(mState.lights[index].values, *light))
        mChanged |= Changed::Lights;
    return D3D_OK;
}

HRESULT Device::LightEnable(DWORD index, BOOL on) {
    const CallScope call("LightEnable", index, on);
    if (index >= MaxLights)
        return D3DERR_INVALIDCALL;
    Light& light = mState.lights[index];
    if (!mLightIsSet[index]) {
        mLightIsSet[index] = true;
        light.values = WhiteFromTheFront;
        mChanged |= Changed::Lights;
    }
    if (light.on != (on != FALSE)) {
        light.on = on != FALSE;
        mChanged |= Changed::Lights;
    }
    return D3D_OK;
}

HRESULT Device::GetLightEnable(DWORD index, BOOL* on) {
    const CallScope call("GetLightEnable", index);
    if (index >= MaxLights || !on || !mLightIsSet[index])
        return D3DERR_INVALIDCALL;
    *on = mState.lights[index].on;
    return D3D_OK;
}

// --- numbered states

HRESULT Device::store(const Slot& slot, DWORD value) {
    if (value < slot.least || value > slot.most)
        return D3DERR_INVALIDCALL;
    if (*slot.value != value) {
        *slot.value = value;
        mChanged |= slot.group;
    }
    return D3D_OK;
}

Device::Slot Device::renderStateSlot(D3DRENDERSTATETYPE state) {
    switch (state) {
    case D3DRS_ZENABLE:
        return {&mState.depth.enable, Changed::Depth, FALSE, TRUE};
    case D3DRS_ZWRITEENABLE:
        return {&mState.depth.write, Changed::Depth, FALSE, TRUE};
    case D3DRS_ZFUNC:
        return {&mState.depth.function, Changed::Depth, D3DCMP_NEVER, D3DCMP_ALWAYS};
    case D3DRS_FILLMODE:
        return {&mState.raster.fill, Changed::Raster, D3DFILL_POINT, D3DFILL_SOLID};
    case D3DRS_CULLMODE:
        return {&mState.raster.cull, Changed::Raster, D3DCULL_NONE, D3DCULL_CCW};
    case D3DRS_ALPHATESTENABLE:
        return {&mState.alphaTest.enable, Changed::AlphaTest, FALSE, TRUE};
    case D3DRS_ALPHAFUNC:
        return {&mState.alphaTest.function, Changed::AlphaTest, D3DCMP_NEVER, D3DCMP_ALWAYS};
    case D3DRS_ALPHAREF:
        return {&mState.alphaTest.reference, Changed::AlphaTest};
    case D3DRS_ALPHABLENDENABLE:
        return {&mState.blend.enable, Changed::Blend, FALSE, TRUE};
    case D3DRS_SRCBLEND:
        return {&mState.blend.source, Changed::Blend, D3DBLEND_ZERO, D3DBLEND_INVBLENDFACTOR};
    case D3DRS_DESTBLEND:
        return {&mState.blend.destination, Changed::Blend, D3DBLEND_ZERO, D3DBLEND_INVBLENDFACTOR};
    case D3DRS_BLENDOP:
        return {&mState.blend.operation, Changed::Blend, D3DBLENDOP_ADD, D3DBLENDOP_MAX};
    case D3DRS_BLENDFACTOR:
        return {&mState.blend.factor, Changed::Blend};
    case D3DRS_COLORWRITEENABLE:
        return {&mState.blend.writeMask, Changed::Blend};
    case D3DRS_LIGHTING:
        return {&mState.lighting, Changed::Lights, FALSE, TRUE};
    case D3DRS_AMBIENT:
        return {&mState.ambient, Changed::Lights};
    default:
        return {};
    }
}

HRESULT Device::SetRenderState(D3DRENDERSTATETYPE state, DWORD value) {
    const CallScope call("SetRenderState", state, value);
    const Slot slot = renderStateSlot(state);
    if (!slot.value)
        return state >= D3DRS_ZENABLE && state <= LastRenderState ? D3D_OK : D3DERR_INVALIDCALL;
    // Switches take any number, the bits beyond masks and references have no meaning.
    if (slot.least == FALSE && slot.most == TRUE)
        value = value != 0;
    else if (state == D3DRS_ALPHAREF)
        value &= 0xff;
    else if (state == D3DRS_COLORWRITEENABLE)
        value &= 0xf;
    return store(slot, value);
}

HRESULT Device::GetRenderState(D3DRENDERSTATETYPE state, DWORD* value) {
    const CallScope call("GetRenderState", state);
    const Slot slot = renderStateSlot(state);
    if (!slot.value || !value)
        return D3DERR_INVALIDCALL;
    *value = *slot.value;
    return D3D_OK;
}

Device::Slot Device::stageSlot(D3DTEXTURESTAGESTATETYPE type) {
    TextureStage& stage = mState.stage;
    switch (type) {
    case D3DTSS_COLOROP:
        return {&stage.colorOp, Changed::Stage, D3DTOP_DISABLE, D3DTOP_ADD};
    case D3DTSS_COLORARG1:
        return {&stage.colorArg1, Changed::Stage, D3DTA_DIFFUSE, D3DTA_TEXTURE};
    case D3DTSS_COLORARG2:
        return {&stage.colorArg2, Changed::Stage, D3DTA_DIFFUSE, D3DTA_TEXTURE};
    case D3DTSS_ALPHAOP:
        return {&stage.alphaOp, Changed::Stage, D3DTOP_DISABLE, D3DTOP_ADD};
    case D3DTSS_ALPHAARG1:
        return {&stage.alphaArg1, Changed::Stage, D3DTA_DIFFUSE, D3DTA_TEXTURE};
    case D3DTSS_ALPHAARG2:
        return {&stage.alphaArg2, Changed::Stage, D3DTA_DIFFUSE, D3DTA_TEXTURE};
    case D3DTSS_TEXTURETRANSFORMFLAGS:
        return {&stage.transformFlags, Changed::Stage, D3DTTFF_DISABLE, D3DTTFF_COUNT2};
    default:
        return {};
    }
}

HRESULT Device::SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD value) {
    const CallScope call("SetTextureStageState", stage, type, value);
    if (stage >= MaxTextures || type < D3DTSS_COLOROP || type > LastStageState)
        return D3DERR_INVALIDCALL;
    const Slot slot = stageSlot(type);
    // The other stages are off.
    if (stage > 0 || !slot.value)
        return D3D_OK;
    if (type == D3DTSS_TEXTURETRANSFORMFLAGS && value == 1) // one coordinate
        return D3DERR_INVALIDCALL;
    return store(slot, value);
}

HRESULT Device::GetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE type, DWORD* value) {
    const CallScope call("GetTextureStageState", stage, type);
    const Slot slot = stageSlot(type);
    if (stage > 0 || !slot.value || !value)
        return D3DERR_INVALIDCALL;
    *value = *slot.value;
    return D3D_OK;
}

Device::Slot Device::samplerSlot(DWORD sampler, D3DSAMPLERSTATETYPE type) {
    Sampler& states = mState.samplers[sampler];
    switch (type) {
    case D3DSAMP_ADDRESSU:
        return {&states.addressU, Changed::Samplers, D3DTADDRESS_WRAP, D3DTADDRESS_MIRRORONCE};
    case D3DSAMP_ADDRESSV:
        return {&states.addressV, Changed::Samplers, D3DTADDRESS_WRAP, D3DTADDRESS_MIRRORONCE};
    case D3DSAMP_BORDERCOLOR:
        return {&states.border, Changed::Samplers};
    case D3DSAMP_MAGFILTER:
        return {&states.magFilter, Changed::Samplers, D3DTEXF_POINT, D3DTEXF_ANISOTROPIC};
    case D3DSAMP_MINFILTER:
        return {&states.minFilter, Changed::Samplers, D3DTEXF_POINT, D3DTEXF_ANISOTROPIC};
    case D3DSAMP_MIPFILTER:
        return {&states.mipFilter, Changed::Samplers, D3DTEXF_NONE, D3DTEXF_LINEAR};
    default:
        return {};
    }
}

HRESULT Device::SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD value) {
    const CallScope call("SetSamplerState", sampler, type, value);
    if (sampler >= MaxTextures || type < D3DSAMP_ADDRESSU || type > LastSamplerState)
        return D3DERR_INVALIDCALL;
    const Slot slot = samplerSlot(sampler, type);
    return slot.value ? store(slot, value) : D3D_OK;
}

HRESULT Device::GetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE type, DWORD* value) {
    const CallScope call("GetSamplerState", sampler, type);
    const Slot slot = sampler < MaxTextures ? samplerSlot(sampler, type) : Slot{};
    if (!slot.value || !value)
        return D3DERR_INVALIDCALL;
    *value = *slot.value;
    return D3D_OK;
}

} // namespace VornPlatform
