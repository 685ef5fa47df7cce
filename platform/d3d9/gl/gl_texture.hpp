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
    bool Read(UINT level, const RECT& rect, void* pixels, UINT pitch) override;
    /// Put off until somebody looks at them. A target is drawn in each frame and most often sampled
    /// without them, and on a renderer in software they cost more than a pass over the target.
    void GenerateMips() override;
    /// For who samples or reads them. With a current context.
    void FinishMips() const;

    GLuint Name() const { return mName; }
    const GlFormat& Format() const { return mFormat; }

private:
    /// Without memory yet.
    GlTexture(GlBackend& backend, const GlFormat& format);
    void clear(UINT levels);
    void writeBlocks(UINT level, const RECT& rect, const void* pixels, UINT pitch);

    GlBackend& mBackend;
    const GlFormat& mFormat;
    GLuint mName = 0;
    mutable bool mMipsAreOld = false;
};

inline const GlTexture* Of(const GpuTexture* texture) {
    return static_cast<const GlTexture*>(texture);
}

} // namespace VornPlatform
