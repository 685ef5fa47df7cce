// SPDX-License-Identifier: MIT
#include "platform/d3d9/counters.hpp"
#include "platform/d3d9/gl/gl_counters.hpp"

namespace VornPlatform {

void BeginFrameCount() {
    frameCount = {};
    glCounters.drawCalls = 0;
    glCounters.stateChanges = 0;
}

FrameCounters CountFrame() {
    FrameCounters counters = frameCount;
    counters.drawCalls = glCounters.drawCalls;
    counters.stateChanges = glCounters.stateChanges;
    return counters;
}

ShaderCounters CountShaders() {
    return shaderCount;
}

GpuObjects CountGpuObjects() {
    return {glCounters.textures + recorderObjects.textures,
            glCounters.buffers + recorderObjects.buffers};
}

} // namespace VornPlatform
