// SPDX-License-Identifier: MIT
//
// Memory of the machine for constants that one draw reads, one behind the other in a buffer that
// starts anew when it is full. No draw waits for an earlier one, but for those of a whole round
// before.
//
//   if (std::byte* place = ring.Take(size)) {
//       std::memcpy(place, block, size);
//       glBindBufferRange(GL_UNIFORM_BUFFER, 0, ring.Name(), ring.OffsetOf(place), size);
//   }
#pragma once

#include <epoxy/gl.h>

#include <array>
#include <cstddef>

namespace VornPlatform {

class UniformRing {
public:
    /// Null if the machine has not the memory.
    std::byte* Take(std::size_t size);
    /// More memory right behind the last; false where the next Take has to begin anew.
    bool Extend(std::size_t size) {
        if (mEnd + size > (mPart + 1) * PartSize)
            return false;
        mEnd += size;
        return true;
    }
    /// Whether a place is safe for one more draw: until the next part of the buffer is begun.
    bool Keeps(const std::byte* place) const {
        return place && place >= mMemory + mPart * PartSize && place < mMemory + mEnd;
    }
    GLuint Name() const { return mName; }
    GLintptr OffsetOf(const std::byte* place) const { return place - mMemory; }
    /// `lives`: the context is there, and current.
    void Free(bool lives);

private:
    static constexpr std::size_t Parts = 4;
    static constexpr std::size_t PartSize = 1 << 20;
    // Ranges that are bound may be longer than what was taken.
    static constexpr std::size_t Slack = 1 << 16;

    bool make();
    bool enter(std::size_t part);

    GLuint mName = 0;
    std::byte* mMemory = nullptr;
    std::size_t mAlignment = 16;
    std::size_t mPart = 0, mEnd = 0; // that draws take from, and how far
    std::array<GLsync, Parts> mFences = {};
};

} // namespace VornPlatform
