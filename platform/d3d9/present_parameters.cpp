// SPDX-License-Identifier: MIT
#include "platform/d3d9/present_parameters.hpp"
#include "platform/d3d9/limits.hpp"
#include "platform/d3d9/pixel_format.hpp"
#include "platform/window/window.hpp"

namespace VornPlatform {

namespace {

constexpr UINT MostBackBuffers = 3;

bool IsDepthFormat(D3DFORMAT format) {
    const PixelFormat* known = FindPixelFormat(format);
    return known && known->use == PixelUse::Depth;
}

bool MakesSense(const D3DPRESENT_PARAMETERS& p) {
    const bool format =
        p.BackBufferFormat == D3DFMT_X8R8G8B8 || p.BackBufferFormat == D3DFMT_A8R8G8B8;
    const bool interval = p.PresentationInterval == D3DPRESENT_INTERVAL_DEFAULT ||
                          p.PresentationInterval == D3DPRESENT_INTERVAL_ONE ||
                          p.PresentationInterval == D3DPRESENT_INTERVAL_IMMEDIATE;
    return IsTextureSize(p.BackBufferWidth, p.BackBufferHeight) && format &&
           p.BackBufferCount <= MostBackBuffers && p.MultiSampleType == D3DMULTISAMPLE_NONE &&
           p.SwapEffect == D3DSWAPEFFECT_DISCARD &&
           (!p.EnableAutoDepthStencil || IsDepthFormat(p.AutoDepthStencilFormat)) && interval;
}

} // namespace

std::optional<D3DPRESENT_PARAMETERS> FillParameters(const D3DPRESENT_PARAMETERS& parameters,
                                                    HWND window) {
    D3DPRESENT_PARAMETERS filled = parameters;
    if (filled.BackBufferFormat == D3DFMT_UNKNOWN)
        filled.BackBufferFormat = D3DFMT_X8R8G8B8;
    if (filled.BackBufferCount == 0)
        filled.BackBufferCount = 1;
    if (const HWND__* live = filled.Windowed ? LiveWindow(window) : nullptr) {
        const RECT client = WindowRect(*live);
        if (filled.BackBufferWidth == 0)
            filled.BackBufferWidth = static_cast<UINT>(client.right - client.left);
        if (filled.BackBufferHeight == 0)
            filled.BackBufferHeight = static_cast<UINT>(client.bottom - client.top);
    }
    return MakesSense(filled) ? std::optional(filled) : std::nullopt;
}

} // namespace VornPlatform
