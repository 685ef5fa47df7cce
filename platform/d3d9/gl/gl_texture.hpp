// SPDX-License-Identifier: MIT
//
// A texture of OpenGL: an image, a target or a depth buffer.
#pragma once

#include "platform/d3d9/backend.hpp"
#include "platform/d3d9/gl/formats.hpp"

namespace VornPlatform {

class GlBackend;

class GlTexture final : public GpuTexture {
public:
    /// With a current context. Null if there is not the memory.
    static std::unique_ptr<GlTexture> Make(GlBackend& backend, const TextureDesc& desc);
    GlTexture(const GlTexture&) = delete;
    GlTexture& operator=(const GlTexture&) = delete;
    ~GlTexture() override;

    void Write(UINT level, const RECT& rect, const void* pixels, UINT pitch) override;
    void Read(UINT level, const RECT& rect, void* pixels, UINT pitch) override;
    void GenerateMips() override;

    GLuint Name() const { return mName; }
    const GlFormat& Format() const { return mFormat; }

private:
    GlTexture(GlBackend& backend, const GlFormat& format, GLuint name)
        : mBackend(backend), mFormat(format), mName(name) {}
    void writeBlocks(UINT level, const RECT& rect, const void* pixels, UINT pitch);

    GlBackend& mBackend;
    const GlFormat& mFormat;
    GLuint mName;
};

} // namespace VornPlatform
