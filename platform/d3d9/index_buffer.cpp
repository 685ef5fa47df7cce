// SPDX-License-Identifier: MIT
#include "platform/d3d9/index_buffer.hpp"
#include "platform/d3d9/device.hpp"

#include <utility>

namespace VornPlatform {

IndexBuffer::IndexBuffer(Device& device, D3DPOOL pool, UINT size, DWORD usage, bool wide,
                         std::unique_ptr<GpuBuffer> gpu, Memory memory)
    : CountedChild(device, ObjectKind::IndexBuffer,
                   pool == D3DPOOL_DEFAULT ? Resets::IsInTheWay : Resets::Survives),
      content(size, usage, std::move(gpu), std::move(memory)), mWide(wide) {}

HRESULT IndexBuffer::Lock(UINT offset, UINT size, void** data, DWORD flags) {
    const CallScope call("Lock", offset, size, flags);
    return content.Lock(offset, size, data, flags);
}

HRESULT IndexBuffer::Unlock() {
    const CallScope call("Unlock");
    const HRESULT result = content.Unlock();
    if (content.IsBehind())
        mDevice.OnWritten();
    return result;
}

} // namespace VornPlatform
