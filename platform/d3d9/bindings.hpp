// SPDX-License-Identifier: MIT
//
// How a device keeps what is bound to it, and gives it out.
#pragma once

#include "platform/d3d9/child.hpp"

#include <utility>

namespace VornPlatform {

// The new one first: it may be held by the old one alone.
template <typename Object>
void Rebind(Object*& place, Object* object) {
    if (object)
        object->Bind();
    if (Object* old = std::exchange(place, object))
        old->Unbind();
}

template <typename Object, typename Interface>
HRESULT GiveOut(Object* object, Child& counted, Interface** out) {
    counted.Hold();
    *out = object;
    return D3D_OK;
}

/// Null if there is none.
template <typename Object, typename Interface>
HRESULT GiveOutBound(Object* bound, Interface** out) {
    if (bound)
        return GiveOut(bound, *bound, out);
    *out = nullptr;
    return D3D_OK;
}

} // namespace VornPlatform
