// SPDX-License-Identifier: MIT
//
// A framebuffer object for each pair of a colour and a depth texture that are drawn to together.
#pragma once

#include "platform/d3d9/gl/gl_texture.hpp"

#include <vector>

namespace VornPlatform {

class Framebuffers {
public:
    /// Either may be null.
    GLuint Of(const GlTexture* color, const GlTexture* depth);
    /// The texture is about to go. True if framebuffers have gone with it.
    bool Forget(const GlTexture& texture);
    void Free();

private:
    struct Pair {
        const GlTexture* color;
        const GlTexture* depth;
        GLuint name;
    };
    std::vector<Pair> mPairs;
};

} // namespace VornPlatform
