// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/texture_units.hpp"

#include <utility>

namespace VornPlatform {

void TextureUnits::Bind(UINT unit, SamplerKind kind, const GlTexture* texture,
                        const Sampler& sampler) {
    const bool isThere = texture && kind == SamplerKind::Flat;
    if (isThere && sampler.mipFilter != D3DTEXF_NONE)
        texture->FinishMips();
    Unit& place = mUnits[unit];
    if (const GLuint name = isThere ? texture->Name() : black(kind); place.texture.Set(name))
        glBindTextureUnit(unit, name);
    if (const GLuint name = isThere ? mSamplers.Of(sampler, texture->Format()) : 0;
        place.sampler.Set(name))
        glBindSampler(unit, name);
}

GLuint TextureUnits::black(SamplerKind kind) {
    constexpr GLenum targets[] = {GL_TEXTURE_2D, GL_TEXTURE_CUBE_MAP, GL_TEXTURE_3D};
    const auto index = static_cast<std::size_t>(kind);
    GLuint& name = mBlack[index];
    if (name)
        return name;
    glCreateTextures(targets[index], 1, &name);
    ++glCounters.textures;
    if (kind == SamplerKind::Volume)
        glTextureStorage3D(name, 1, GL_RGBA8, 1, 1, 1);
    else
        glTextureStorage2D(name, 1, GL_RGBA8, 1, 1);
    constexpr GLubyte opaque[] = {0, 0, 0, 0xff};
    glClearTexImage(name, 0, GL_RGBA, GL_UNSIGNED_BYTE, opaque);
    glTextureParameteri(name, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    return name;
}

void TextureUnits::Forget() {
    for (Unit& unit : mUnits)
        unit.texture.Forget();
}

bool TextureUnits::MakeRoom() {
    if (!mSamplers.Full())
        return false;
    mSamplers.Free();
    ForgetSamplers();
    return true;
}

void TextureUnits::ForgetSamplers() {
    for (Unit& unit : mUnits)
        unit.sampler.Forget();
}

void TextureUnits::Free() {
    mSamplers.Free();
    for (GLuint& black : mBlack)
        if (const GLuint name = std::exchange(black, 0)) {
            glDeleteTextures(1, &name);
            --glCounters.textures;
        }
}

} // namespace VornPlatform
