// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/uniform_ring.hpp"
#include "platform/d3d9/gl/gl_counters.hpp"

#include <algorithm>
#include <utility>

namespace VornPlatform {

bool UniformRing::make() {
    constexpr GLbitfield access = GL_MAP_WRITE_BIT | GL_MAP_PERSISTENT_BIT | GL_MAP_COHERENT_BIT;
    constexpr auto size = static_cast<GLsizeiptr>(Parts * PartSize + Slack);
    constexpr GLenum limits[] = {GL_UNIFORM_BUFFER_OFFSET_ALIGNMENT,
                                 GL_SHADER_STORAGE_BUFFER_OFFSET_ALIGNMENT};
    for (const GLenum limit : limits) {
        GLint alignment = 0;
        glGetIntegerv(limit, &alignment);
        mAlignment = std::max(mAlignment, static_cast<std::size_t>(std::max(alignment, 1)));
    }
    glCreateBuffers(1, &mName);
    ++glCounters.buffers;
    glNamedBufferStorage(mName, size, nullptr, access);
    mMemory = static_cast<std::byte*>(glMapNamedBufferRange(mName, 0, size, access));
    if (!mMemory)
        Free(true);
    return mMemory != nullptr;
}

bool UniformRing::enter(std::size_t part) {
    mFences[mPart] = glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
    mPart = part;
    mEnd = part * PartSize;
    GLsync fence = std::exchange(mFences[part], nullptr);
    if (!fence)
        return true;
    constexpr GLuint64 second = 1'000'000'000;
    GLenum result = GL_TIMEOUT_EXPIRED;
    for (int i = 0; i < 10 && result == GL_TIMEOUT_EXPIRED; ++i)
        result = glClientWaitSync(fence, GL_SYNC_FLUSH_COMMANDS_BIT, second);
    glDeleteSync(fence);
    return result != GL_WAIT_FAILED;
}

std::byte* UniformRing::Take(std::size_t size) {
    if (size > PartSize || (!mMemory && !make()))
        return nullptr;
    mEnd = (mEnd + mAlignment - 1) / mAlignment * mAlignment;
    if (mEnd + size > (mPart + 1) * PartSize && !enter((mPart + 1) % Parts))
        return nullptr;
    std::byte* place = mMemory + mEnd;
    mEnd += size;
    return place;
}

void UniformRing::Free(bool lives) {
    if (!mName)
        return;
    for (GLsync& fence : mFences)
        if (GLsync old = std::exchange(fence, nullptr); old && lives)
            glDeleteSync(old);
    if (lives)
        glDeleteBuffers(1, &mName);
    --glCounters.buffers;
    mName = 0;
    mMemory = nullptr;
    mPart = mEnd = 0;
}

} // namespace VornPlatform
