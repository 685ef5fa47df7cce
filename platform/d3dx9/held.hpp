// SPDX-License-Identifier: MIT
//
// A reference to an object that is released at the end of its scope.
//
//   IDirect3DSurface9* surface = nullptr;
//   if (SUCCEEDED(texture->GetSurfaceLevel(0, &surface))) {
//       const Held<IDirect3DSurface9> held(surface);
#pragma once

#include <d3d9.h>

#include <memory>

namespace VornPlatform {

struct Releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
/// Takes over the reference that it is made of.
template <typename Interface>
using Held = std::unique_ptr<Interface, Releaser>;

/// With a reference of its own; of null, null.
template <typename Interface>
Held<Interface> Hold(Interface* object) {
    if (object)
        object->AddRef();
    return Held<Interface>(object);
}

} // namespace VornPlatform
