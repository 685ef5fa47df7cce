// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3d9/buffer.hpp"
#include "platform/d3d9/child.hpp"

namespace VornPlatform {

class VertexBuffer final : public CountedChild<IDirect3DVertexBuffer9> {
public:
    VertexBuffer(Device& device, D3DPOOL pool, UINT size, DWORD usage,
                 std::unique_ptr<GpuBuffer> gpu, Memory memory);

    HRESULT Lock(UINT offset, UINT size, void** data, DWORD flags) override;
    HRESULT Unlock() override;

    Buffer content;
};

} // namespace VornPlatform
