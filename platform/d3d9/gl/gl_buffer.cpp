// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/gl_buffer.hpp"
#include "platform/d3d9/gl/gl_backend.hpp"

#include <algorithm>
#include <cstring>

namespace VornPlatform {

std::unique_ptr<GlBuffer> GlBuffer::Make(GlBackend& backend, BufferKind /*kind*/, UINT size) {
    std::unique_ptr<GlBuffer> buffer(new GlBuffer(backend, size));
    TakeErrors();
    glCreateBuffers(1, &buffer->mName);
    // Not immutable: what is mapped for reading again and again belongs where the host reaches it.
    glNamedBufferData(buffer->mName, static_cast<GLsizeiptr>(size), nullptr, GL_DYNAMIC_DRAW);
    if (TakeErrors())
        return nullptr;
    return buffer;
}

GlBuffer::GlBuffer(GlBackend& backend, UINT size) : mBackend(backend), mSize(size) {
    ++glCounters.buffers;
}

GlBuffer::~GlBuffer() {
    --glCounters.buffers;
    if (!mBackend.MakeCurrent())
        return;
    mBackend.Forget(*this);
    glDeleteBuffers(1, &mName);
}

void* GlBuffer::Map(UINT offset, UINT size, bool discard) {
    if (!mBackend.MakeCurrent())
        return nullptr;
    mBackend.ForgetCopies(*this);
    // OpenGL waits for draws that still read the buffer, unless the content may go: then it takes
    // other memory.
    const GLbitfield access =
        GL_MAP_WRITE_BIT |
        static_cast<GLbitfield>(discard ? GL_MAP_INVALIDATE_BUFFER_BIT : GL_MAP_READ_BIT);
    return glMapNamedBufferRange(mName, static_cast<GLintptr>(offset),
                                 static_cast<GLsizeiptr>(size), access);
}

void GlBuffer::Unmap() {
    if (mBackend.MakeCurrent())
        glUnmapNamedBuffer(mName);
}

void GlBuffer::Write(UINT offset, UINT size, const void* data) {
    if (!mBackend.MakeCurrent())
        return;
    mBackend.ForgetCopies(*this);
    glNamedBufferSubData(mName, static_cast<GLintptr>(offset), static_cast<GLsizeiptr>(size), data);
}

bool StreamBuffer::Write(const void* data, std::size_t size) {
    constexpr std::size_t StartSize = 1 << 20, Alignment = 16;
    GLbitfield access = GL_MAP_WRITE_BIT | GL_MAP_INVALIDATE_RANGE_BIT | GL_MAP_UNSYNCHRONIZED_BIT;
    if (!mName) {
        glCreateBuffers(1, &mName);
        ++glCounters.buffers;
    }
    if (size > mSize) {
        mSize = std::max(StartSize, size);
        mEnd = 0;
        glNamedBufferData(mName, static_cast<GLsizeiptr>(mSize), nullptr, GL_STREAM_DRAW);
    } else if (size > mSize - mEnd) {
        mEnd = 0;
        access = GL_MAP_WRITE_BIT | GL_MAP_INVALIDATE_BUFFER_BIT;
    }
    mOffset = static_cast<GLintptr>(mEnd);
    void* to = glMapNamedBufferRange(mName, mOffset, static_cast<GLsizeiptr>(size), access);
    if (!to) {
        mSize = mEnd = 0;
        return false;
    }
    std::memcpy(to, data, size);
    mEnd = std::min(mSize, (mEnd + size + Alignment - 1) / Alignment * Alignment);
    return glUnmapNamedBuffer(mName) == GL_TRUE;
}

void StreamBuffer::Free(bool lives) {
    if (!mName)
        return;
    if (lives)
        glDeleteBuffers(1, &mName);
    --glCounters.buffers;
    mName = 0;
}

} // namespace VornPlatform
