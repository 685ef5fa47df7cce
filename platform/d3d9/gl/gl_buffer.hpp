// SPDX-License-Identifier: MIT
//
// Buffers of OpenGL: those of a host, and the one that vertices of a single draw go through.
#pragma once

#include "platform/d3d9/backend.hpp"

#include <epoxy/gl.h>

namespace VornPlatform {

class GlBackend;

class GlBuffer final : public GpuBuffer {
public:
    /// With a current context. Null if there is not the memory.
    static std::unique_ptr<GlBuffer> Make(GlBackend& backend, BufferKind kind, UINT size);
    GlBuffer(const GlBuffer&) = delete;
    GlBuffer& operator=(const GlBuffer&) = delete;
    ~GlBuffer() override;

    void* Map(UINT offset, UINT size, bool discard) override;
    void Unmap() override;
    void Write(UINT offset, UINT size, const void* data) override;

    GLuint Name() const { return mName; }
    UINT Size() const { return mSize; }
    /// Its content is kept elsewhere too.
    void NoteCopied() const { mHasCopies = true; }
    bool HasCopies() const { return mHasCopies; }

private:
    /// Without memory yet.
    GlBuffer(GlBackend& backend, UINT size);

    GlBackend& mBackend;
    GLuint mName = 0;
    UINT mSize;
    mutable bool mHasCopies = false;
};

/// Vertices that are used once, one draw behind the other. When it is full it starts anew in fresh
/// memory, so that no draw waits for an earlier one.
class StreamBuffer {
public:
    /// Copies them; false if there is not the memory.
    bool Write(const void* data, std::size_t size);
    /// Where the last ones went.
    GLuint Name() const { return mName; }
    GLintptr Offset() const { return mOffset; }
    /// `lives`: the context is there, and current.
    void Free(bool lives);

private:
    GLuint mName = 0;
    std::size_t mSize = 0, mEnd = 0;
    GLintptr mOffset = 0;
};

} // namespace VornPlatform
