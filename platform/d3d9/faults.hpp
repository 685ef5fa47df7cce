// SPDX-License-Identifier: MIT
//
// What tests ask of devices through control/: to be the recorder, to be lost, to fail.
#pragma once

#include <windows.h>

#include <optional>

namespace VornPlatform {

class Device;

bool RecorderIsUsed();

/// What the next Reset is to fail with, which is used up by this call.
std::optional<HRESULT> TakeResetFault();

/// All that live can be lost together.
void AddDevice(Device& device);
void RemoveDevice(Device& device);

} // namespace VornPlatform
