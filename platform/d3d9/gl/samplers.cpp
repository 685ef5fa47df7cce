// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/samplers.hpp"

namespace VornPlatform {

namespace {

GLint AddressOf(DWORD mode) {
    switch (mode) {
    case D3DTADDRESS_MIRROR:
        return GL_MIRRORED_REPEAT;
    case D3DTADDRESS_CLAMP:
        return GL_CLAMP_TO_EDGE;
    case D3DTADDRESS_BORDER:
        return GL_CLAMP_TO_BORDER;
    case D3DTADDRESS_MIRRORONCE:
        return GL_MIRROR_CLAMP_TO_EDGE;
    default:
        return GL_REPEAT;
    }
}

// Those beyond LINEAR, anisotropic for one, are LINEAR.
bool IsLinear(DWORD filter) {
    return filter >= D3DTEXF_LINEAR;
}

GLint MinFilterOf(const Sampler& sampler) {
    const bool linear = IsLinear(sampler.minFilter);
    if (sampler.mipFilter == D3DTEXF_NONE)
        return linear ? GL_LINEAR : GL_NEAREST;
    if (IsLinear(sampler.mipFilter))
        return linear ? GL_LINEAR_MIPMAP_LINEAR : GL_NEAREST_MIPMAP_LINEAR;
    return linear ? GL_LINEAR_MIPMAP_NEAREST : GL_NEAREST_MIPMAP_NEAREST;
}

bool HasBorder(const Sampler& sampler) {
    return sampler.addressU == D3DTADDRESS_BORDER || sampler.addressV == D3DTADDRESS_BORDER;
}

std::uint64_t KeyOf(const Sampler& sampler, const GlFormat& format) {
    std::uint64_t key = 0;
    for (const DWORD value : {sampler.addressU, sampler.addressV, sampler.magFilter,
                              sampler.minFilter, sampler.mipFilter})
        key = key << 4 | (value & 15);
    // The format has a say in the border only.
    if (HasBorder(sampler))
        key = key << 40 | std::uint64_t(format.format & 0xff) << 32 | sampler.border;
    return key;
}

} // namespace

GLuint Samplers::Of(const Sampler& sampler, const GlFormat& format) {
    const std::uint64_t key = KeyOf(sampler, format);
    if (const auto found = mNames.find(key); found != mNames.end())
        return found->second;
    GLuint& name = mNames[key];
    glCreateSamplers(1, &name);
    glSamplerParameteri(name, GL_TEXTURE_WRAP_S, AddressOf(sampler.addressU));
    glSamplerParameteri(name, GL_TEXTURE_WRAP_T, AddressOf(sampler.addressV));
    glSamplerParameteri(name, GL_TEXTURE_MAG_FILTER,
                        IsLinear(sampler.magFilter) ? GL_LINEAR : GL_NEAREST);
    glSamplerParameteri(name, GL_TEXTURE_MIN_FILTER, MinFilterOf(sampler));
    if (HasBorder(sampler)) {
        GLfloat border[4];
        BorderFor(format, sampler.border, border);
        glSamplerParameterfv(name, GL_TEXTURE_BORDER_COLOR, border);
    }
    return name;
}

void Samplers::Free() {
    for (const auto& [key, name] : mNames)
        glDeleteSamplers(1, &name);
    mNames.clear();
}

} // namespace VornPlatform
