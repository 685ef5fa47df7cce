// SPDX-License-Identifier: MIT
//
// What a vertex buffer and an index buffer are behind their interfaces. In the default pool a lock
// is memory of the machine itself, so that a large mesh is copied once. In the other pools the
// content is in memory, survives everything, and goes to the machine before the next draw.
#pragma once

#include "platform/d3d9/backend.hpp"
#include "platform/d3d9/memory.hpp"

namespace VornPlatform {

class Buffer {
public:
    /// `memory` is null in the default pool.
    Buffer(UINT size, DWORD usage, std::unique_ptr<GpuBuffer> gpu, Memory memory);
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    ~Buffer();

    HRESULT Lock(UINT offset, UINT size, void** data, DWORD flags);
    HRESULT Unlock();
    bool IsLocked() const { return mLocked; }

    UINT Size() const { return mSize; }
    GpuBuffer* Gpu() { return mGpu.get(); }

    /// Something was written that the machine does not have yet.
    bool IsBehind() const { return mWrittenEnd > mWrittenBegin; }
    void Upload();

private:
    UINT mSize;
    DWORD mUsage;
    std::unique_ptr<GpuBuffer> mGpu;
    Memory mMemory;
    bool mLocked = false;
    UINT mLockBegin = 0, mLockEnd = 0; // empty while it is locked for reading
    UINT mWrittenBegin = 0, mWrittenEnd = 0;
};

} // namespace VornPlatform
