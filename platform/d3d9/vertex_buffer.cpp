// SPDX-License-Identifier: MIT
#include "platform/d3d9/vertex_buffer.hpp"
#include "platform/d3d9/device.hpp"

#include <utility>

namespace VornPlatform {

VertexBuffer::VertexBuffer(Device& device, D3DPOOL pool, UINT size, DWORD usage,
                           std::unique_ptr<GpuBuffer> gpu, Memory memory)
    : CountedChild(device, ObjectKind::VertexBuffer,
                   pool == D3DPOOL_DEFAULT ? Resets::IsInTheWay : Resets::Survives),
      content(size, usage, std::move(gpu), std::move(memory)) {}

HRESULT VertexBuffer::Lock(UINT offset, UINT size, void** data, DWORD flags) {
    const CallScope call("Lock", offset, size, flags);
    return content.Lock(offset, size, data, flags);
}

HRESULT VertexBuffer::Unlock() {
    const CallScope call("Unlock");
    const HRESULT result = content.Unlock();
    if (content.IsBehind())
        mDevice.OnWritten();
    return result;
}

} // namespace VornPlatform
