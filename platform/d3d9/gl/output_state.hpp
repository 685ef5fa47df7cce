// SPDX-License-Identifier: MIT
//
// What stands behind the vertex shader and beside the pixel shader: viewport, rasteriser, depth
// test, blending. OpenGL is told of differences only.
#pragma once

#include "platform/d3d9/gl/shadow.hpp"
#include "platform/d3d9/state.hpp"

#include <epoxy/gl.h>

#include <array>

namespace VornPlatform {

class OutputState {
public:
    /// Once, of a fresh context: the conventions of Direct3D.
    void SetUp();

    /// Nothing is drawn outside of the viewport, neither lines nor the edges of wire frames.
    /// True if Place has changed.
    bool Viewport(const D3DVIEWPORT9& viewport, const Target& target);
    /// What a vertex shader does to x and y: scales, and shifts in units of w.
    const std::array<GLfloat, 4>& Place(bool lines) const { return lines ? mLinePlace : mPlace; }
    void Raster(const RasterState& raster);
    void Depth(const DepthState& depth, bool hasBuffer);
    /// @param hasAlpha of the target; else its alpha counts as 1
    void Blend(const BlendState& blend, bool hasAlpha);

    void Scissor(const RECT& rect);
    void Scissor(bool on);
    /// Every channel and depth.
    void WriteAll();
    /// Somebody else has drawn: nothing is known of OpenGL's state.
    void Forget();

private:
    struct Factors {
        GLenum source, destination;
        bool operator==(const Factors&) const = default;
    };

    GLfloat mLargestViewport[2] = {};
    bool mUpperLeft = false; // clip control's origin
    std::array<GLfloat, 4> mPlace = {}, mLinePlace = {};
    Shadow<std::array<GLfloat, 4>> mViewport;
    Shadow<std::array<GLfloat, 2>> mDepthRange;
    Shadow<std::array<GLint, 4>> mScissor;
    Shadow<bool> mScissorOn;
    Shadow<GLenum> mFill;
    Shadow<bool> mCullOn;
    Shadow<GLenum> mCull;
    Shadow<bool> mDepthOn;
    Shadow<bool> mDepthWrite;
    Shadow<GLenum> mDepthFunction;
    Shadow<bool> mBlendOn;
    Shadow<Factors> mFactors;
    Shadow<D3DCOLOR> mFactor;
    Shadow<GLenum> mEquation;
    Shadow<DWORD> mWriteMask;
};

} // namespace VornPlatform
