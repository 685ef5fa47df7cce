// SPDX-License-Identifier: MIT
//
// What a device makes. A host's references are counted, and the first of them holds the device.
// What the device itself refers to, because it is bound or because it is part of the device, does
// not show in that count:
//
//   texture->Bind();     // SetTexture
//   texture->Release();  // 0: the host has done with it, and it goes on drawing
//   texture->Unbind();   // now it is deleted
#pragma once

#include "platform/d3d9/live_objects.hpp"
#include "platform/d3d9/recorder/call_log.hpp"

#include <d3d9.h>

namespace VornPlatform {

class Device;

class Child : public LiveObject {
public:
    /// The count of the host's references afterwards.
    ULONG Hold();
    ULONG LetGo();

    void Bind() { ++mBindings; }
    void Unbind();

    bool IsOf(const Device& device) const { return &mDevice == &device; }
    Device& MadeBy() const { return mDevice; }

protected:
    enum class Resets { Survives, IsInTheWay };
    enum class Part { OfDevice, OfHost };

    /// Nobody holds it yet.
    Child(Device& device, ObjectKind kind, Resets resets, Part part = Part::OfHost);
    virtual ~Child() = default;

    Device& mDevice;

private:
    ULONG mCount = 0;
    ULONG mBindings = 0;
    Resets mResets;
    Part mPart;
};

/// The counting of an interface by a Child.
template <typename Interface>
class CountedChild : public Interface, public Child {
public:
    ULONG AddRef() override {
        const CallScope call("AddRef");
        return Hold();
    }
    ULONG Release() override {
        const CallScope call("Release");
        return LetGo();
    }

protected:
    using Child::Child;
    ~CountedChild() override = default;
};

} // namespace VornPlatform
