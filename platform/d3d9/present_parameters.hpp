// SPDX-License-Identifier: MIT
#pragma once

#include <d3d9.h>

#include <optional>

namespace VornPlatform {

/// The parameters with what is left open filled in: format, count, and in a window the size, from
/// the client area. Nothing if they make no sense, or if the size is not known because the window
/// does not live.
std::optional<D3DPRESENT_PARAMETERS> FillParameters(const D3DPRESENT_PARAMETERS& parameters,
                                                    HWND window);

} // namespace VornPlatform
