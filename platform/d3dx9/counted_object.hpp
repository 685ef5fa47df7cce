// SPDX-License-Identifier: MIT
//
// The counting of an object of D3DX: it begins with one reference, and goes with the last.
//
//   class DataBuffer final : public CountedObject<ID3DXBuffer> {
//   public:
//       DataBuffer() : CountedObject(ObjectKind::DataBuffer) {}
//   };
#pragma once

#include "platform/d3d9/live_objects.hpp"
#include "platform/d3d9/recorder/call_log.hpp"

#include <d3dx9.h>

namespace VornPlatform {

template <typename Interface>
class CountedObject : public Interface, public LiveObject {
public:
    CountedObject(const CountedObject&) = delete;
    CountedObject& operator=(const CountedObject&) = delete;

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
    explicit CountedObject(ObjectKind kind) : LiveObject(kind) {}
    ~CountedObject() override = default;

private:
    ULONG mReferences = 1;
};

} // namespace VornPlatform
