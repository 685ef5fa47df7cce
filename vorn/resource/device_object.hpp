// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

/// Gives up one reference to an object of Direct3D or D3DX and forgets it; null is passed over.
template <typename T>
void ReleaseObject(T*& object) {
    if (object)
        object->Release();
    object = nullptr;
}

} // namespace Vorn
