// SPDX-License-Identifier: MIT
#include "platform/d3d9/faults.hpp"
#include "platform/control/vorn_platform.hpp"
#include "platform/d3d9/device.hpp"

#include <algorithm>
#include <vector>

namespace VornPlatform {

namespace {

// Never destroyed: a host may leave its device to the end of the process.
std::vector<Device*>& Devices() {
    static auto& devices = *new std::vector<Device*>;
    return devices;
}

constinit bool useRecorder = false;
constinit int failures = 0;
constinit HRESULT failureResult = D3D_OK;

} // namespace

bool RecorderIsUsed() {
    return useRecorder;
}

std::optional<HRESULT> TakeResetFault() {
    if (failures <= 0)
        return std::nullopt;
    --failures;
    return failureResult;
}

void AddDevice(Device& device) {
    Devices().push_back(&device);
}

void RemoveDevice(Device& device) {
    auto& devices = Devices();
    devices.erase(std::find(devices.begin(), devices.end(), &device));
}

void UseRecorder(bool use) {
    useRecorder = use;
}

void LoseDevice() {
    for (Device* device : Devices())
        device->Lose();
}

void RestoreDevice() {
    for (Device* device : Devices())
        device->Restore();
}

void FailResets(int count, HRESULT result) {
    failures = count;
    failureResult = result;
}

} // namespace VornPlatform
