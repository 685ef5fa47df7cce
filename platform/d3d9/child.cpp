// SPDX-License-Identifier: MIT
#include "platform/d3d9/child.hpp"
#include "platform/d3d9/device.hpp"

#include <cassert>

namespace VornPlatform {

Child::Child(Device& device, ObjectKind kind, Resets resets, Part part)
    : LiveObject(kind, false), mDevice(device), mResets(resets), mPart(part) {}

ULONG Child::Hold() {
    if (mCount++ == 0) {
        SetCounted(mPart == Part::OfHost);
        mDevice.OnChildHeld(mResets == Resets::IsInTheWay);
    }
    return mCount;
}

ULONG Child::LetGo() {
    // One Release too many on something that is still bound.
    if (mCount == 0)
        return 0;
    if (--mCount)
        return mCount;
    SetCounted(false);
    Device& device = mDevice;
    const bool wasInTheWay = mResets == Resets::IsInTheWay;
    if (mBindings == 0)
        delete this;
    device.OnChildLetGo(wasInTheWay); // which may be the end of the device, and of what it binds
    return 0;
}

void Child::Unbind() {
    assert(mBindings > 0 && "bound before");
    if (--mBindings == 0 && mCount == 0)
        delete this;
}

} // namespace VornPlatform
