// SPDX-License-Identifier: MIT
#include "platform/d3d9/direct3d.hpp"
#include "platform/d3d9/device.hpp"
#include "platform/d3d9/faults.hpp"
#include "platform/d3d9/guarded.hpp"
#include "platform/d3d9/present_parameters.hpp"
#include "platform/d3d9/recorder/call_log.hpp"
#include "platform/window/window.hpp"

#include <bit>
#include <memory>
#include <utility>

namespace VornPlatform {

namespace {

// Where vertices are processed: a device is made for exactly one of them. All are the same here.
constexpr DWORD VertexProcessing = D3DCREATE_SOFTWARE_VERTEXPROCESSING |
                                   D3DCREATE_HARDWARE_VERTEXPROCESSING |
                                   D3DCREATE_MIXED_VERTEXPROCESSING;

std::unique_ptr<Backend> MakeBackend(HWND window) {
    if (RecorderIsUsed())
        return MakeRecorderBackend();
    return window ? MakeGlBackend() : nullptr;
}

} // namespace

Direct3D::Direct3D() : LiveObject(ObjectKind::Direct3D) {}

ULONG Direct3D::AddRef() {
    const CallScope call("AddRef");
    return ++mCount;
}

ULONG Direct3D::Release() {
    const CallScope call("Release");
    return LetGo();
}

ULONG Direct3D::LetGo() {
    const ULONG left = --mCount;
    if (left == 0)
        delete this;
    return left;
}

HRESULT Direct3D::CreateDevice(UINT adapter, D3DDEVTYPE type, HWND window, DWORD flags,
                               D3DPRESENT_PARAMETERS* parameters, IDirect3DDevice9** device) {
    const CallScope call("CreateDevice", adapter, type, window, flags, parameters);
    if (adapter != D3DADAPTER_DEFAULT || type != D3DDEVTYPE_HAL || !parameters || !device ||
        !std::has_single_bit(flags & VertexProcessing))
        return D3DERR_INVALIDCALL;
    const HWND target = parameters->hDeviceWindow ? parameters->hDeviceWindow : window;
    if (target && !LiveWindow(target))
        return D3DERR_INVALIDCALL;
    const auto filled = FillParameters(*parameters, target);
    if (!filled)
        return D3DERR_INVALIDCALL;
    return Guarded([&] {
        std::unique_ptr<Backend> backend = MakeBackend(target);
        if (!backend)
            return D3DERR_NOTAVAILABLE;
        return Device::Make(*this, std::move(backend), target, *filled, *parameters, device);
    });
}

} // namespace VornPlatform

IDirect3D9* Direct3DCreate9(UINT sdkVersion) {
    return sdkVersion == D3D_SDK_VERSION ? new (std::nothrow) VornPlatform::Direct3D : nullptr;
}
