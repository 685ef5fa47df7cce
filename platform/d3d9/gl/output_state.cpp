// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/output_state.hpp"
#include "platform/d3d9/gl/fill_rule.hpp"
#include "platform/d3d9/gl/formats.hpp"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace VornPlatform {

namespace {

void Switch(GLenum what, bool on) {
    if (on)
        glEnable(what);
    else
        glDisable(what);
}

template <std::size_t N>
GLenum Entry(const GLenum (&table)[N], DWORD value, GLenum fallback) {
    return value < N ? table[value] : fallback;
}

GLenum CompareOf(DWORD function) {
    constexpr GLenum table[] = {GL_ALWAYS,  GL_NEVER,    GL_LESS,   GL_EQUAL, GL_LEQUAL,
                                GL_GREATER, GL_NOTEQUAL, GL_GEQUAL, GL_ALWAYS};
    return Entry(table, function, GL_ALWAYS);
}

GLenum FactorOf(DWORD factor, bool hasAlpha, GLenum fallback) {
    if (!hasAlpha && factor == D3DBLEND_DESTALPHA)
        return GL_ONE;
    if (!hasAlpha && (factor == D3DBLEND_INVDESTALPHA || factor == D3DBLEND_SRCALPHASAT))
        return GL_ZERO; // of the colour; the alpha has no say
    constexpr GLenum table[] = {GL_ONE,
                                GL_ZERO,
                                GL_ONE,
                                GL_SRC_COLOR,
                                GL_ONE_MINUS_SRC_COLOR,
                                GL_SRC_ALPHA,
                                GL_ONE_MINUS_SRC_ALPHA,
                                GL_DST_ALPHA,
                                GL_ONE_MINUS_DST_ALPHA,
                                GL_DST_COLOR,
                                GL_ONE_MINUS_DST_COLOR,
                                GL_SRC_ALPHA_SATURATE,
                                GL_SRC_ALPHA,
                                GL_ONE_MINUS_SRC_ALPHA,
                                GL_CONSTANT_COLOR,
                                GL_ONE_MINUS_CONSTANT_COLOR};
    static_assert(std::size(table) == D3DBLEND_INVBLENDFACTOR + 1);
    return Entry(table, factor, fallback);
}

GLenum EquationOf(DWORD operation) {
    constexpr GLenum table[] = {
        GL_FUNC_ADD, GL_FUNC_ADD, GL_FUNC_SUBTRACT, GL_FUNC_REVERSE_SUBTRACT, GL_MIN, GL_MAX};
    return Entry(table, operation, GL_FUNC_ADD);
}

} // namespace

void OutputState::SetUp() {
    // Row 0 of memory is the top row either way; the driver's rule for edges decides which is
    // right.
    mUpperLeft = !EdgeBelongsToLaterRow();
    glClipControl(mUpperLeft ? GL_UPPER_LEFT : GL_LOWER_LEFT, GL_ZERO_TO_ONE);
    // A front is what looks clockwise.
    glFrontFace(mUpperLeft ? GL_CW : GL_CCW);
    glProvokingVertex(GL_FIRST_VERTEX_CONVENTION);
    glDisable(GL_DITHER);
    glDisable(GL_MULTISAMPLE);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glGetFloatv(GL_MAX_VIEWPORT_DIMS, mLargestViewport);
}

// The centres of Direct3D's pixels lie at whole numbers, those of OpenGL half a pixel further. That
// must not be made up for by the viewport: OpenGL cuts triangles off at its edges, which would then
// run through the middle of pixels. Nor is the viewport OpenGL's own: it is wider, as a cut moves
// the edges that it meets a little, and the pixels on a shared edge with them; the scissor has the
// last word.
bool OutputState::Viewport(const D3DVIEWPORT9& v, const Target& target) {
    const auto x = static_cast<GLfloat>(v.X), y = static_cast<GLfloat>(v.Y);
    const auto w = static_cast<GLfloat>(std::max<DWORD>(v.Width, 1));
    const auto h = static_cast<GLfloat>(std::max<DWORD>(v.Height, 1));
    std::array<GLfloat, 4> window = {x, y, w, h};
    std::array<GLfloat, 4> place = {1, -1, 1 / w, 1 / h};
    constexpr GLfloat Wide = 4;
    if (w * Wide <= mLargestViewport[0] && h * Wide <= mLargestViewport[1]) {
        // One size of it before, two behind: whole pixels, and a power of two to scale by.
        window = {x - w, y - h, w * Wide, h * Wide};
        place = {1 / Wide, -1 / Wide, (1 / w - 1) / Wide, (1 / h - 1) / Wide};
    }
    // Lines that run through corners of pixels' diamonds go to the upper and left pixel, and
    // drivers differ there: a line a little further up and left leaves no choice. It is one step
    // where they keep 8 bits of a pixel.
    constexpr GLfloat Little = 3.0f / 1024;
    std::array<GLfloat, 4> linePlace = place;
    linePlace[2] -= 2 * Little / window[2];
    linePlace[3] -= 2 * Little / window[3];
    if (mUpperLeft)
        for (auto* p : {&place, &linePlace}) {
            (*p)[1] = -(*p)[1];
            (*p)[3] = -(*p)[3];
        }
    const bool changed = place != mPlace;
    mPlace = place;
    mLinePlace = linePlace;
    if (mViewport.Set(window))
        glViewportIndexedf(0, window[0], window[1], window[2], window[3]);
    if (mDepthRange.Set({v.MinZ, v.MaxZ}))
        glDepthRangef(v.MinZ, v.MaxZ);

    const auto end = [](DWORD start, DWORD size, UINT limit) {
        return static_cast<LONG>(std::min<std::uint64_t>(std::uint64_t(start) + size, limit));
    };
    const auto begin = [](DWORD start, UINT limit) {
        return static_cast<LONG>(std::min<DWORD>(start, limit));
    };
    Scissor({begin(v.X, target.width), begin(v.Y, target.height), end(v.X, v.Width, target.width),
             end(v.Y, v.Height, target.height)});
    Scissor(true);
    return changed;
}

void OutputState::Scissor(const RECT& r) {
    const std::array<GLint, 4> box = {r.left, r.top, std::max(r.right - r.left, 0),
                                      std::max(r.bottom - r.top, 0)};
    if (mScissor.Set(box))
        glScissor(box[0], box[1], box[2], box[3]);
}

void OutputState::Scissor(bool on) {
    if (mScissorOn.Set(on))
        Switch(GL_SCISSOR_TEST, on);
}

void OutputState::Raster(const RasterState& raster) {
    constexpr GLenum fills[] = {GL_FILL, GL_POINT, GL_LINE, GL_FILL};
    const GLenum fill = Entry(fills, raster.fill, GL_FILL);
    if (mFill.Set(fill))
        glPolygonMode(GL_FRONT_AND_BACK, fill);
    const bool cullOn = raster.cull == D3DCULL_CW || raster.cull == D3DCULL_CCW;
    if (mCullOn.Set(cullOn))
        Switch(GL_CULL_FACE, cullOn);
    const GLenum cull = raster.cull == D3DCULL_CW ? GL_FRONT : GL_BACK;
    if (cullOn && mCull.Set(cull))
        glCullFace(cull);
}

void OutputState::Depth(const DepthState& depth, bool hasBuffer) {
    const bool on = depth.enable && hasBuffer;
    if (mDepthOn.Set(on))
        Switch(GL_DEPTH_TEST, on);
    if (!on)
        return; // then nothing is written either
    const bool write = depth.write != 0;
    if (mDepthWrite.Set(write))
        glDepthMask(write);
    const GLenum function = CompareOf(depth.function);
    if (mDepthFunction.Set(function))
        glDepthFunc(function);
}

void OutputState::Blend(const BlendState& blend, bool hasAlpha) {
    const DWORD mask = blend.writeMask & 0xf;
    if (mWriteMask.Set(mask))
        glColorMask((mask & 1) != 0, (mask & 2) != 0, (mask & 4) != 0, (mask & 8) != 0);
    const bool on = blend.enable != 0;
    if (mBlendOn.Set(on))
        Switch(GL_BLEND, on);
    if (!on)
        return;
    Factors factors = {FactorOf(blend.source, hasAlpha, GL_ONE),
                       FactorOf(blend.destination, hasAlpha, GL_ZERO)};
    if (blend.source == D3DBLEND_BOTHSRCALPHA)
        factors.destination = GL_ONE_MINUS_SRC_ALPHA;
    else if (blend.source == D3DBLEND_BOTHINVSRCALPHA)
        factors.destination = GL_SRC_ALPHA;
    if (mFactors.Set(factors))
        glBlendFunc(factors.source, factors.destination);
    if (mFactor.Set(blend.factor)) {
        GLfloat channels[4];
        Unpack(blend.factor, channels);
        glBlendColor(channels[0], channels[1], channels[2], channels[3]);
    }
    const GLenum equation = EquationOf(blend.operation);
    if (mEquation.Set(equation))
        glBlendEquation(equation);
}

void OutputState::WriteAll() {
    if (mWriteMask.Set(0xf))
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    if (mDepthWrite.Set(true))
        glDepthMask(GL_TRUE);
}

void OutputState::Forget() {
    const auto forget = [](auto&... shadows) { (shadows.Forget(), ...); };
    forget(mViewport, mDepthRange, mScissor, mScissorOn, mFill, mCullOn, mCull, mDepthOn,
           mDepthWrite, mDepthFunction, mBlendOn, mFactors, mFactor, mEquation, mWriteMask);
}

} // namespace VornPlatform
