// SPDX-License-Identifier: MIT
//
// What all backends together ask of OpenGL and hold in it. Who shows them puts them back to 0:
// calls since the last Present, objects never.
#pragma once

namespace VornPlatform {

struct GlCounters {
    int drawCalls = 0;
    int stateChanges = 0; // programs, textures, targets, buffers, blending and the like
    int textures = 0;
    int buffers = 0;
};
inline constinit GlCounters glCounters;

} // namespace VornPlatform
