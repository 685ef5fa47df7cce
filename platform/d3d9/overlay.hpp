// SPDX-License-Identifier: MIT
//
// How text and lines of D3DX reach the target without the states of the device having a say or
// being touched: our devices have this interface beside that of Direct3D.
//
//   if (auto* overlay = dynamic_cast<Overlay*>(device))
//       overlay->DrawOverlay(vertices, 6, glyphs);
#pragma once

#include <d3d9.h>

namespace VornPlatform {

/// Pixels of the target, their centres at whole numbers.
struct OverlayVertex {
    float x, y;
    D3DCOLOR color;
    float u, v;
};

class Overlay {
public:
    /// A list of triangles, blended by source alpha, without depth and culling, cut to the
    /// viewport. The texture, point-sampled, is multiplied with colour and alpha; null is white.
    virtual HRESULT DrawOverlay(const OverlayVertex* vertices, UINT count, IDirect3DTexture9*) = 0;

protected:
    ~Overlay() = default;
};

} // namespace VornPlatform
