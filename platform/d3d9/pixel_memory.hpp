// SPDX-License-Identifier: MIT
//
// The pixels of a level or a plain surface, in memory that a host may lock. It keeps in mind which
// of them were written since they were last taken to the machine.
#pragma once

#include "platform/d3d9/memory.hpp"
#include "platform/d3d9/pixel_format.hpp"

namespace VornPlatform {

class PixelMemory {
public:
    /// IsThere is false if there is no memory.
    PixelMemory(const PixelFormat& format, UINT width, UINT height);

    bool IsThere() const { return mPixels != nullptr; }

    HRESULT Lock(D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags);
    HRESULT Unlock();
    bool IsLocked() const { return mLocked; }

    /// (unit: bytes)
    UINT Pitch() const { return mPitch; }
    /// The block of a pixel.
    std::byte* At(LONG x, LONG y) const;

    /// What was written and unlocked; empty if nothing was.
    const RECT& Written() const { return mWritten; }
    bool IsWritten() const { return mWritten.right > mWritten.left; }
    void NoteAllWritten() { mWritten = {0, 0, mWidth, mHeight}; }
    void ForgetWritten() { mWritten = {}; }

private:
    bool isPart(const RECT& rect) const;

    const PixelFormat* mFormat;
    LONG mWidth, mHeight;
    UINT mPitch;
    Memory mPixels;
    bool mLocked = false;
    RECT mWriting = {}; // empty while it is locked for reading
    RECT mWritten = {};
};

} // namespace VornPlatform
