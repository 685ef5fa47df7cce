// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/gl_texture.hpp"
#include "platform/d3d9/dxt.hpp"
#include "platform/d3d9/gl/gl_backend.hpp"

#include <cstring>
#include <utility>
#include <vector>

namespace VornPlatform {

namespace {

struct Box {
    GLint x, y;
    GLsizei width, height;

    explicit Box(const RECT& rect)
        : x(rect.left), y(rect.top), width(rect.right - rect.left), height(rect.bottom - rect.top) {
    }
    bool Empty() const { return width <= 0 || height <= 0; }
};

bool DriverDecompresses() {
    return epoxy_has_gl_extension("GL_EXT_texture_compression_s3tc");
}

std::size_t Size(GLsizei count) {
    return static_cast<std::size_t>(count);
}

} // namespace

std::unique_ptr<GlTexture> GlTexture::Make(GlBackend& backend, const TextureDesc& desc) {
    const GlFormat* format = FindFormat(desc.format);
    if (!format)
        return nullptr;
    const bool decompress = format->compressed && !DriverDecompresses();
    std::unique_ptr<GlTexture> texture(new GlTexture(backend, *format));
    TakeErrors();
    glCreateTextures(GL_TEXTURE_2D, 1, &texture->mName);
    glTextureStorage2D(texture->mName, static_cast<GLsizei>(desc.levels),
                       decompress ? GL_RGBA8 : format->internal, static_cast<GLsizei>(desc.width),
                       static_cast<GLsizei>(desc.height));
    if (TakeErrors())
        return nullptr;
    if (!format->depth)
        glTextureParameteriv(texture->mName, GL_TEXTURE_SWIZZLE_RGBA, format->swizzle);
    if (desc.target)
        texture->clear(desc.levels);
    return texture;
}

GlTexture::GlTexture(GlBackend& backend, const GlFormat& format)
    : mBackend(backend), mFormat(format) {
    ++glCounters.textures;
}

// What was never written is undefined in Direct3D; the same every time is kinder to the host.
void GlTexture::clear(UINT levels) {
    for (UINT level = 0; level < levels; ++level)
        glClearTexImage(mName, static_cast<GLint>(level),
                        mFormat.depth ? GL_DEPTH_COMPONENT : GL_RGBA,
                        mFormat.depth ? GL_FLOAT : GL_UNSIGNED_BYTE, nullptr);
}

GlTexture::~GlTexture() {
    --glCounters.textures;
    if (!mBackend.MakeCurrent())
        return;
    mBackend.Forget(*this);
    glDeleteTextures(1, &mName);
}

void GlTexture::Write(UINT level, const RECT& rect, const void* pixels, UINT pitch) {
    const Box box(rect);
    if (box.Empty() || mFormat.depth || !mBackend.MakeCurrent())
        return;
    mBackend.Flush();
    if (level > 0)
        FinishMips();
    if (mFormat.compressed)
        return writeBlocks(level, rect, pixels, pitch);
    const auto write = [&](GLint y, GLsizei height, const void* from) {
        glTextureSubImage2D(mName, static_cast<GLint>(level), box.x, y, box.width, height,
                            mFormat.external, mFormat.type, from);
    };
    if (pitch % mFormat.bytes == 0 && pitch >= Size(box.width) * mFormat.bytes) {
        glPixelStorei(GL_UNPACK_ROW_LENGTH, static_cast<GLint>(pitch / mFormat.bytes));
        write(box.y, box.height, pixels);
        glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
        return;
    }
    for (GLsizei row = 0; row < box.height; ++row)
        write(box.y + row, 1, static_cast<const BYTE*>(pixels) + Size(row) * pitch);
}

void GlTexture::writeBlocks(UINT level, const RECT& rect, const void* pixels, UINT pitch) {
    const Box box(rect);
    const std::size_t rows = Size(box.height + 3) / 4;
    const std::size_t rowBytes = Size(box.width + 3) / 4 * mFormat.bytes;
    std::vector<BYTE> packed;
    if (pitch != rowBytes) {
        packed.resize(rows * rowBytes);
        for (std::size_t row = 0; row < rows; ++row)
            std::memcpy(&packed[row * rowBytes], static_cast<const BYTE*>(pixels) + row * pitch,
                        rowBytes);
        pixels = packed.data();
    }
    if (!DriverDecompresses()) {
        const auto plain = DecompressBlocks(
            mFormat.format, static_cast<UINT>(box.width), static_cast<UINT>(box.height),
            {static_cast<const std::uint8_t*>(pixels), rows * rowBytes});
        glTextureSubImage2D(mName, static_cast<GLint>(level), box.x, box.y, box.width, box.height,
                            GL_BGRA, GL_UNSIGNED_BYTE, plain.data());
        return;
    }
    glCompressedTextureSubImage2D(mName, static_cast<GLint>(level), box.x, box.y, box.width,
                                  box.height, mFormat.internal,
                                  static_cast<GLsizei>(rows * rowBytes), pixels);
}

bool GlTexture::Read(UINT level, const RECT& rect, void* pixels, UINT pitch) {
    const Box box(rect);
    if (box.Empty() || mFormat.depth || mFormat.compressed || !mBackend.MakeCurrent())
        return false;
    mBackend.Flush();
    if (level > 0)
        FinishMips();
    // In one go, then apart: the pitch need not be a whole number of pixels.
    const std::size_t rowBytes = Size(box.width) * mFormat.bytes;
    std::vector<BYTE> packed;
    BYTE* to = static_cast<BYTE*>(pixels);
    if (pitch != rowBytes) {
        packed.resize(rowBytes * Size(box.height));
        to = packed.data();
    }
    // llvmpipe's own wait passes over what has been sent to its threads for a target that is no
    // longer bound, and gives the pixels from before.
    glFinish();
    glGetTextureSubImage(mName, static_cast<GLint>(level), box.x, box.y, 0, box.width, box.height,
                         1, mFormat.external, mFormat.type,
                         static_cast<GLsizei>(rowBytes * Size(box.height)), to);
    for (std::size_t row = 0; row < Size(box.height); ++row) {
        BYTE* line = to + row * rowBytes;
        if (!mFormat.alpha)
            for (std::size_t x = 3; x < rowBytes; x += 4)
                line[x] = 0xff;
        if (!packed.empty())
            std::memcpy(static_cast<BYTE*>(pixels) + row * pitch, line, rowBytes);
    }
    return true;
}

void GlTexture::GenerateMips() {
    if (mFormat.compressed || mFormat.depth || !mBackend.MakeCurrent())
        return;
    mBackend.Flush();
    mMipsAreOld = true;
}

void GlTexture::FinishMips() const {
    if (std::exchange(mMipsAreOld, false))
        glGenerateTextureMipmap(mName);
}

} // namespace VornPlatform
