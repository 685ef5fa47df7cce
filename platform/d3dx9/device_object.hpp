// SPDX-License-Identifier: MIT
//
// What the objects of D3DX have in common that work on a device: they hold it for as long as they
// live.
//
//   class Line final : public DeviceObject<ID3DXLine> {
//   public:
//       explicit Line(IDirect3DDevice9* device) : DeviceObject(ObjectKind::Line, device) {}
//   };
#pragma once

#include "platform/d3dx9/counted_object.hpp"
#include "platform/d3dx9/held.hpp"

namespace VornPlatform {

template <typename Interface>
class DeviceObject : public CountedObject<Interface> {
protected:
    DeviceObject(ObjectKind kind, IDirect3DDevice9* device)
        : CountedObject<Interface>(kind), mDevice(Hold(device)) {}
    ~DeviceObject() override = default;

    IDirect3DDevice9& Device() const { return *mDevice; }

private:
    const Held<IDirect3DDevice9> mDevice; // goes after all that a derived class has made of it
};

} // namespace VornPlatform
