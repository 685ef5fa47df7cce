// SPDX-License-Identifier: MIT
//
// Functions under the platform's names raise nothing: where there is no memory, they say so.
//
//   return Guarded([&]() -> HRESULT { ... });
#pragma once

#include <d3d9.h>

#include <new>

namespace VornPlatform {

template <typename Function>
HRESULT Guarded(Function function) {
    try {
        return function();
    } catch (const std::bad_alloc&) {
        return D3DERR_OUTOFVIDEOMEMORY;
    }
}

} // namespace VornPlatform
