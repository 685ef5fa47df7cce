// SPDX-License-Identifier: MIT
#include "platform/d3d9/pixel_memory.hpp"

#include <algorithm>

namespace VornPlatform {

PixelMemory::PixelMemory(const PixelFormat& format, UINT width, UINT height)
    : mFormat(&format), mWidth(static_cast<LONG>(width)), mHeight(static_cast<LONG>(height)),
      mPitch(PitchOf(format, width)),
      mPixels(MakeMemory(std::size_t(mPitch) * BlocksOf(format, height))) {}

bool PixelMemory::isPart(const RECT& rect) const {
    const auto side = static_cast<LONG>(mFormat->blockSide);
    const auto isEdge = [side](LONG place, LONG end) { return place % side == 0 || place == end; };
    return rect.left >= 0 && rect.top >= 0 && rect.left < rect.right && rect.top < rect.bottom &&
           rect.right <= mWidth && rect.bottom <= mHeight && rect.left % side == 0 &&
           rect.top % side == 0 && isEdge(rect.right, mWidth) && isEdge(rect.bottom, mHeight);
}

HRESULT PixelMemory::Lock(D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) {
    const RECT all = {0, 0, mWidth, mHeight};
    const RECT& part = rect ? *rect : all;
    if (!locked || mLocked || !isPart(part))
        return D3DERR_INVALIDCALL;
    mLocked = true;
    mWriting = flags & D3DLOCK_READONLY ? RECT{} : part;
    locked->Pitch = static_cast<INT>(mPitch);
    locked->pBits = At(part.left, part.top);
    return D3D_OK;
}

HRESULT PixelMemory::Unlock() {
    if (!mLocked)
        return D3DERR_INVALIDCALL;
    mLocked = false;
    if (mWriting.right == mWriting.left)
        return D3D_OK;
    mWritten = IsWritten() ? RECT{std::min(mWritten.left, mWriting.left),
                                  std::min(mWritten.top, mWriting.top),
                                  std::max(mWritten.right, mWriting.right),
                                  std::max(mWritten.bottom, mWriting.bottom)}
                           : mWriting;
    return D3D_OK;
}

std::byte* PixelMemory::At(LONG x, LONG y) const {
    const auto side = static_cast<LONG>(mFormat->blockSide);
    return mPixels.get() + static_cast<std::size_t>(y / side) * mPitch +
           static_cast<std::size_t>(x / side) * mFormat->blockBytes;
}

} // namespace VornPlatform
