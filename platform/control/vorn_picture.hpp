// SPDX-License-Identifier: MIT
//
// What a device has drawn, as a file: for samples, tools and whoever looks at a frame.
//
//   VornPlatform::SavePicture(Vorn::Graphic::GetDevice(), "reef.png");
#pragma once

#include <d3d9.h>

#include <string>

#pragma GCC visibility push(default)

namespace VornPlatform {

/// Writes the back buffer as a PNG, shown by Present yet or not. Raises std::runtime_error where
/// the file cannot be written, or there is no device.
void SavePicture(IDirect3DDevice9* device, const std::string& path);
/// The same for a surface, which is the caller's last reference; null is one that cannot be
/// written.
void SaveAndRelease(IDirect3DSurface9* surface, const std::string& path);

} // namespace VornPlatform

#pragma GCC visibility pop
