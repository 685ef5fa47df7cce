// SPDX-License-Identifier: MIT
//
// What is counted of the work, for CountFrame and CountGpuObjects. The device counts draws and
// primitives and begins a new frame; gl/ keeps its own numbers, which are added where they are
// asked for.
#pragma once

#include "platform/control/vorn_platform.hpp"

namespace VornPlatform {

inline constinit FrameCounters frameCount;
/// Of the recorder.
inline constinit GpuObjects recorderObjects;

inline constinit ShaderCounters shaderCount;

/// A frame is shown.
void BeginFrameCount();

} // namespace VornPlatform
