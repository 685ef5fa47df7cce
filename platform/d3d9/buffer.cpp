// SPDX-License-Identifier: MIT
#include "platform/d3d9/buffer.hpp"

#include <algorithm>
#include <utility>

namespace VornPlatform {

Buffer::Buffer(UINT size, DWORD usage, std::unique_ptr<GpuBuffer> gpu, Memory memory)
    : mSize(size), mUsage(usage), mGpu(std::move(gpu)), mMemory(std::move(memory)),
      // What nobody writes reaches the machine too, as the zeros that it is in memory.
      mWrittenEnd(mMemory ? size : 0) {}

Buffer::~Buffer() {
    if (mLocked)
        Unlock();
}

HRESULT Buffer::Lock(UINT offset, UINT size, void** data, DWORD flags) {
    if (!data || mLocked || offset >= mSize || size > mSize - offset)
        return D3DERR_INVALIDCALL;
    if (size == 0)
        size = mSize - offset;
    void* memory = nullptr;
    if (mMemory) {
        memory = mMemory.get() + offset;
    } else {
        // Only who said so may throw away what lies beyond the range.
        const bool discard = (flags & D3DLOCK_DISCARD) && (mUsage & D3DUSAGE_DYNAMIC);
        memory = mGpu->Map(offset, size, discard);
    }
    if (!memory)
        return D3DERR_OUTOFVIDEOMEMORY;
    mLocked = true;
    mLockBegin = offset;
    mLockEnd = flags & D3DLOCK_READONLY ? offset : offset + size;
    *data = memory;
    return D3D_OK;
}

HRESULT Buffer::Unlock() {
    if (!mLocked)
        return D3DERR_INVALIDCALL;
    mLocked = false;
    if (!mMemory) {
        mGpu->Unmap();
    } else if (mLockEnd > mLockBegin) {
        mWrittenBegin = IsBehind() ? std::min(mWrittenBegin, mLockBegin) : mLockBegin;
        mWrittenEnd = std::max(mWrittenEnd, mLockEnd);
    }
    return D3D_OK;
}

void Buffer::Upload() {
    mGpu->Write(mWrittenBegin, mWrittenEnd - mWrittenBegin, mMemory.get() + mWrittenBegin);
    mWrittenBegin = mWrittenEnd = 0;
}

} // namespace VornPlatform
