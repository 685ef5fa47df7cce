// SPDX-License-Identifier: MIT
//
// Programs of OpenGL, one for each pair of stages.
#pragma once

#include "platform/d3d9/gl/shader_source.hpp"

#include <epoxy/gl.h>

#include <memory>
#include <unordered_map>

namespace VornPlatform {

bool Compiles(GLenum stage, const std::string& source);
/// 0 if the driver does not take the sources.
GLuint LinkProgram(const std::string& vertexSource, const std::string& pixelSource);

struct SamplerUse {
    UINT unit;
    SamplerKind kind;
};

/// With each group of uniforms the version of the values that the program has; 0 for none.
struct Program {
    GLuint name = 0; // 0 if the driver did not take the source
    ProgramParts parts;
    std::vector<SamplerUse> samplers;
    bool sharesBlock = false, setsPointSize = false;
    // For as long as the program is there, nothing else is at the address of its key.
    std::shared_ptr<const ShaderCode> vertex, pixel;

    unsigned int worldViewProjection = 0, worldView = 0, textureMatrix = 0, lights = 0;
    unsigned int place = 0;
    int alphaReference = -1;
    int firstRecord = -1, recordShift = -1;
};

class Programs {
public:
    /// Good until Free. The holders are those of the two shaders.
    Program& Of(const ProgramParts& parts, const std::shared_ptr<const ShaderCode>* vertex,
                const std::shared_ptr<const ShaderCode>* pixel);
    /// As many draws of the pair as can be merged, or 0. The holders may be null.
    UINT Merges(const std::shared_ptr<const ShaderCode>* vertex,
                const std::shared_ptr<const ShaderCode>* pixel);
    /// Time to free them: a host may make shader after shader.
    bool Full() const { return mPrograms.size() >= 1024 || mPairs.size() >= 4096; }
    void Free();

private:
    struct Hash {
        std::size_t operator()(const ProgramParts& parts) const;
    };
    std::unordered_map<ProgramParts, Program, Hash> mPrograms;

    struct Pair {
        std::shared_ptr<const ShaderCode> vertex, pixel;
        UINT merges;
    };
    std::unordered_map<ProgramParts, Pair, Hash> mPairs; // by their shaders alone
    const Pair* mLastPair = nullptr;
};

} // namespace VornPlatform
