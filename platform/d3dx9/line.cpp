// SPDX-License-Identifier: MIT
//
// Lines of D3DX, drawn as triangles over what is there.
#include "platform/d3d9/guarded.hpp"
#include "platform/d3d9/limits.hpp"
#include "platform/d3dx9/device_object.hpp"
#include "platform/d3dx9/line_shape.hpp"

#include <cmath>
#include <new>

namespace VornPlatform {

namespace {

class Line final : public DeviceObject<ID3DXLine> {
public:
    explicit Line(IDirect3DDevice9* device) : DeviceObject(ObjectKind::Line, device) {}

    HRESULT Draw(const D3DXVECTOR2* points, DWORD count, D3DCOLOR color) override {
        const bool sound = count >= 2 && count <= MaxPrimitives;
        const FloatRows rows = {points ? &points->x : nullptr, sound ? count : 0, 2};
        const CallScope call("Draw", rows, count, color);
        if (count < 2)
            return D3D_OK;
        auto* overlay = dynamic_cast<Overlay*>(&Device());
        if (!points || !overlay || !sound)
            return D3DERR_INVALIDCALL;
        return Guarded([&]() -> HRESULT {
            const auto vertices = LineVertices(points, count, mStyle, color);
            if (vertices.empty())
                return D3D_OK;
            if (vertices.size() / 3 > MaxPrimitives)
                return D3DERR_INVALIDCALL;
            return overlay->DrawOverlay(vertices.data(), static_cast<UINT>(vertices.size()),
                                        nullptr);
        });
    }

    HRESULT SetWidth(float width) override {
        const CallScope call("SetWidth", width);
        if (!(width > 0) || !std::isfinite(width))
            return D3DERR_INVALIDCALL;
        mStyle.width = width;
        return D3D_OK;
    }
    HRESULT SetAntialias(BOOL antialias) override {
        const CallScope call("SetAntialias", antialias);
        mStyle.antialias = antialias;
        return D3D_OK;
    }
    HRESULT SetGLLines(BOOL glLines) override {
        const CallScope call("SetGLLines", glLines);
        mStyle.glLines = glLines;
        return D3D_OK;
    }

private:
    LineStyle mStyle;
};

} // namespace

} // namespace VornPlatform

HRESULT D3DXCreateLine(IDirect3DDevice9* device, ID3DXLine** line) {
    const VornPlatform::CallScope call("D3DXCreateLine", device);
    if (!line)
        return D3DERR_INVALIDCALL;
    *line = nullptr;
    if (!device)
        return D3DERR_INVALIDCALL;
    *line = new (std::nothrow) VornPlatform::Line(device);
    return *line ? D3D_OK : D3DERR_OUTOFVIDEOMEMORY;
}
