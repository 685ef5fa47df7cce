// SPDX-License-Identifier: MIT
//
// A sampler object for each set of values.
#pragma once

#include "platform/d3d9/gl/formats.hpp"
#include "platform/d3d9/state.hpp"

#include <cstdint>
#include <unordered_map>

namespace VornPlatform {

class Samplers {
public:
    /// Of a texture of this format.
    GLuint Of(const Sampler& sampler, const GlFormat& format);
    /// Time to free them: a border colour may change with every draw.
    bool Full() const { return mNames.size() >= 256; }
    /// OpenGL unbinds them, and may give the same names again.
    void Free();

private:
    std::unordered_map<std::uint64_t, GLuint> mNames;
};

} // namespace VornPlatform
