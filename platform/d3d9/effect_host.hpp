// SPDX-License-Identifier: MIT
//
// What an effect asks of our device beyond Direct3D: shaders from its own compiler, which read one
// block of constants in place of registers.
//
//   auto* host = dynamic_cast<EffectHost*>(device);
//   host->MakeVertexShader(code, &shader);
//   host->SetEffectConstants(block.data(), block.size());
//   device->SetVertexShader(shader);
#pragma once

#include "platform/d3d9/shader_code.hpp"

namespace VornPlatform {

class EffectHost {
public:
    virtual HRESULT MakeVertexShader(std::shared_ptr<const ShaderCode>,
                                     IDirect3DVertexShader9**) = 0;
    virtual HRESULT MakePixelShader(std::shared_ptr<const ShaderCode>, IDirect3DPixelShader9**) = 0;
    /// For both stages, copied, until the next call. Shaders that read more find zeros there.
    virtual void SetEffectConstants(const void* block, UINT bytes) = 0;

protected:
    ~EffectHost() = default;
};

} // namespace VornPlatform
