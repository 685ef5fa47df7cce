// SPDX-License-Identifier: MIT
//
// What the objects of D3DX have in common: their references are counted, and they hold their device
// for as long as they live.
//
//   class Line final : public DeviceObject<ID3DXLine> {
//   public:
//       explicit Line(IDirect3DDevice9* device) : DeviceObject(ObjectKind::Line, device) {}
//   };
#pragma once

#include "platform/d3d9/live_objects.hpp"
#include "platform/d3d9/recorder/call_log.hpp"
#include "platform/d3dx9/held.hpp"

#include <d3dx9.h>

namespace VornPlatform {

template <typename Interface>
class DeviceObject : public Interface, public LiveObject {
public:
    DeviceObject(const DeviceObject&) = delete;
    DeviceObject& operator=(const DeviceObject&) = delete;

    ULONG AddRef() final {
        const CallScope call("AddRef");
        return ++mReferences;
    }
    ULONG Release() final {
        const CallScope call("Release");
        const ULONG left = --mReferences;
        if (left == 0)
            delete this;
        return left;
    }

protected:
    DeviceObject(ObjectKind kind, IDirect3DDevice9* device)
        : LiveObject(kind), mDevice(Hold(device)) {}
    ~DeviceObject() override = default;

    IDirect3DDevice9& Device() const { return *mDevice; }

private:
    const Held<IDirect3DDevice9> mDevice; // goes after all that a derived class has made of it
    ULONG mReferences = 1;
};

} // namespace VornPlatform
