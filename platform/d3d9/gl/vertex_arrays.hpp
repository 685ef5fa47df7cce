// SPDX-License-Identifier: MIT
//
// A vertex array object for each vertex format.
#pragma once

#include "platform/d3d9/gl/shadow.hpp"
#include "platform/d3d9/state.hpp"

#include <epoxy/gl.h>

#include <memory>
#include <string>
#include <unordered_map>

namespace VornPlatform {

/// Where vertex shaders find an element: the same for all formats. -1 for one that has no place.
int AttributeLocation(BYTE usage, BYTE usageIndex);

struct VertexSource {
    GLuint buffer = 0;
    GLintptr offset = 0;
    GLsizei stride = 0;

    bool operator==(const VertexSource&) const = default;
};

struct VertexArray {
    GLuint name = 0;
    bool hasNormal = false, hasColor = false, hasCoordinates = false;
    Shadow<VertexSource> vertices;
    Shadow<GLuint> indices;
};

class VertexArrays {
public:
    VertexArray& Of(const VertexFormat& format);
    /// The buffer is about to go; an array object would keep its memory.
    void Forget(GLuint buffer);
    /// All of them.
    void ForgetBuffers();
    /// Time to free them: a host may make format after format.
    bool Full() const { return mArrays.size() >= 1024 || mById.size() >= 4096; }
    /// OpenGL unbinds them, and may give the same names again.
    void Free();

private:
    VertexArray& make(const VertexFormat& format);

    // By content: formats come and go, and many have the same. By id as a short cut.
    std::unordered_map<std::string, std::unique_ptr<VertexArray>> mArrays;
    std::unordered_map<unsigned int, VertexArray*> mById;
};

} // namespace VornPlatform
