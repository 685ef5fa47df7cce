// SPDX-License-Identifier: MIT
//
// Programs of OpenGL, one for each key of the fixed function.
#pragma once

#include "platform/d3d9/gl/fixed_function.hpp"

#include <epoxy/gl.h>

#include <unordered_map>

namespace VornPlatform {

/// 0 if the driver does not take the sources.
GLuint LinkProgram(const std::string& vertexSource, const std::string& pixelSource);

/// With each group of uniforms the version of the values that the program has; 0 for none.
struct Program {
    GLuint name = 0; // 0 if the driver did not take the source
    FixedFunctionKey key;
    unsigned int worldViewProjection = 0, worldView = 0, textureMatrix = 0, lights = 0;
    unsigned int place = 0;
    int alphaReference = -1;
};

class Programs {
public:
    /// Good until Free.
    Program& Of(const FixedFunctionKey& key);
    void Free();

private:
    std::unordered_map<std::uint64_t, Program> mPrograms;
};

} // namespace VornPlatform
