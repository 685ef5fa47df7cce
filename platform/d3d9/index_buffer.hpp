// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3d9/buffer.hpp"
#include "platform/d3d9/child.hpp"

namespace VornPlatform {

class IndexBuffer final : public CountedChild<IDirect3DIndexBuffer9> {
public:
    IndexBuffer(Device& device, D3DPOOL pool, UINT size, DWORD usage, bool wide,
                std::unique_ptr<GpuBuffer> gpu, Memory memory);

    HRESULT Lock(UINT offset, UINT size, void** data, DWORD flags) override;
    HRESULT Unlock() override;

    /// 32 bits an index, else 16.
    bool IsWide() const { return mWide; }

    Buffer content;

private:
    bool mWide;
};

} // namespace VornPlatform
