// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/vertex_arrays.hpp"

#include <utility>

namespace VornPlatform {

namespace {

struct ElementType {
    GLint size;
    GLenum type;
    GLboolean normalized;
};

ElementType TypeOf(BYTE type) {
    switch (type) {
    case D3DDECLTYPE_FLOAT1:
        return {1, GL_FLOAT, GL_FALSE};
    case D3DDECLTYPE_FLOAT2:
        return {2, GL_FLOAT, GL_FALSE};
    case D3DDECLTYPE_FLOAT3:
        return {3, GL_FLOAT, GL_FALSE};
    case D3DDECLTYPE_FLOAT4:
        return {4, GL_FLOAT, GL_FALSE};
    case D3DDECLTYPE_D3DCOLOR:
        return {GL_BGRA, GL_UNSIGNED_BYTE, GL_TRUE};
    case D3DDECLTYPE_UBYTE4:
        return {4, GL_UNSIGNED_BYTE, GL_FALSE};
    default:
        return {};
    }
}

std::string KeyOf(const VertexFormat& format) {
    std::string key;
    for (const D3DVERTEXELEMENT9& e : format.elements)
        for (const unsigned int value : {unsigned(e.Stream), unsigned(e.Offset), unsigned(e.Type),
                                         unsigned(e.Usage), unsigned(e.UsageIndex)}) {
            key += static_cast<char>(value & 0xff);
            key += static_cast<char>(value >> 8);
        }
    return key;
}

} // namespace

int AttributeLocation(BYTE usage, BYTE index) {
    struct Range {
        BYTE usage, count;
        int first;
    };
    constexpr Range ranges[] = {
        {D3DDECLUSAGE_POSITION, 1, 0},     {D3DDECLUSAGE_NORMAL, 1, 1},
        {D3DDECLUSAGE_COLOR, 2, 2},        {D3DDECLUSAGE_TEXCOORD, 8, 4},
        {D3DDECLUSAGE_BLENDWEIGHT, 1, 12}, {D3DDECLUSAGE_BLENDINDICES, 1, 13},
        {D3DDECLUSAGE_TANGENT, 1, 14},     {D3DDECLUSAGE_BINORMAL, 1, 15},
    };
    for (const Range& range : ranges)
        if (range.usage == usage && index < range.count)
            return range.first + index;
    return -1;
}

VertexArray& VertexArrays::Of(const VertexFormat& format) {
    if (const auto found = mById.find(format.id); found != mById.end())
        return *found->second;
    VertexArray& array = make(format);
    mById[format.id] = &array;
    return array;
}

VertexArray& VertexArrays::make(const VertexFormat& format) {
    const std::string key = KeyOf(format);
    if (const auto found = mArrays.find(key); found != mArrays.end())
        return *found->second;
    auto made = std::make_unique<VertexArray>();
    VertexArray* array = made.get();
    mArrays.emplace(key, std::move(made));
    glCreateVertexArrays(1, &array->name);
    for (const D3DVERTEXELEMENT9& element : format.elements) {
        const int location = AttributeLocation(element.Usage, element.UsageIndex);
        const ElementType type = TypeOf(element.Type);
        if (location < 0)
            continue;
        const auto index = static_cast<GLuint>(location);
        glEnableVertexArrayAttrib(array->name, index);
        glVertexArrayAttribFormat(array->name, index, type.size, type.type, type.normalized,
                                  element.Offset);
        glVertexArrayAttribBinding(array->name, index, 0);
        array->hasNormal |= element.Usage == D3DDECLUSAGE_NORMAL && element.UsageIndex == 0;
        array->hasColor |= element.Usage == D3DDECLUSAGE_COLOR && element.UsageIndex == 0;
        array->hasCoordinates |= element.Usage == D3DDECLUSAGE_TEXCOORD && element.UsageIndex == 0;
    }
    return *array;
}

void VertexArrays::Forget(GLuint buffer) {
    for (auto& [key, array] : mArrays) {
        if (array->vertices.Value().buffer == buffer) {
            glVertexArrayVertexBuffer(array->name, 0, 0, 0, 0);
            array->vertices = {};
        }
        if (array->indices.Value() == buffer) {
            glVertexArrayElementBuffer(array->name, 0);
            array->indices = {};
        }
    }
}

void VertexArrays::ForgetBuffers() {
    for (auto& [key, array] : mArrays) {
        glVertexArrayVertexBuffer(array->name, 0, 0, 0, 0);
        array->vertices = {};
        glVertexArrayElementBuffer(array->name, 0);
        array->indices = {};
    }
}

void VertexArrays::Free() {
    for (auto& [key, array] : mArrays)
        glDeleteVertexArrays(1, &array->name);
    mArrays.clear();
    mById.clear();
}

} // namespace VornPlatform
