// SPDX-License-Identifier: MIT
//
// What programs sample: a texture and a sampler in each unit, or opaque black where there is none.
#pragma once

#include "platform/d3d9/gl/gl_texture.hpp"
#include "platform/d3d9/gl/samplers.hpp"
#include "platform/d3d9/gl/shadow.hpp"
#include "platform/d3d9/shader_code.hpp"

#include <array>

namespace VornPlatform {

class TextureUnits {
public:
    /// Only flat textures exist: those of another kind are black.
    void Bind(UINT unit, SamplerKind kind, const GlTexture* texture, const Sampler& sampler);
    /// A texture is gone.
    void Forget();
    void ForgetSamplers();
    /// Frees samplers if there are many; true if something has to be bound again.
    bool MakeRoom();
    void Free();

private:
    struct Unit {
        Shadow<GLuint> texture, sampler;
    };
    GLuint black(SamplerKind kind);

    Samplers mSamplers;
    std::array<Unit, MaxTextures> mUnits;
    std::array<GLuint, 3> mBlack = {}; // of each kind, when it is first needed
};

} // namespace VornPlatform
