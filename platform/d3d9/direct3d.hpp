// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3d9/live_objects.hpp"

#include <d3d9.h>

namespace VornPlatform {

/// Makes devices; each holds it.
class Direct3D final : public IDirect3D9, public LiveObject {
public:
    Direct3D();

    ULONG AddRef() override;
    ULONG Release() override;
    HRESULT CreateDevice(UINT adapter, D3DDEVTYPE type, HWND window, DWORD flags,
                         D3DPRESENT_PARAMETERS* parameters, IDirect3DDevice9** device) override;

    void Hold() { ++mCount; }
    ULONG LetGo();

private:
    ~Direct3D() override = default;

    ULONG mCount = 1;
};

} // namespace VornPlatform
