// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/vertex_layouts.hpp"

namespace VornPlatform {

namespace {

constexpr WORD LargestOffset = 2047; // that every OpenGL takes

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
    };
    for (const Range& range : ranges)
        if (range.usage == usage && index < range.count)
            return range.first + index;
    return -1;
}

VertexLayout& VertexLayouts::Of(const VertexFormat& format) {
    if (const auto found = mById.find(format.id); found != mById.end())
        return *found->second;
    VertexLayout& layout = make(format);
    mById[format.id] = &layout;
    return layout;
}

VertexLayout& VertexLayouts::make(const VertexFormat& format) {
    auto& layout = mLayouts[KeyOf(format)];
    if (layout)
        return *layout;
    layout = std::make_unique<VertexLayout>();
    glCreateVertexArrays(1, &layout->name);
    for (const D3DVERTEXELEMENT9& element : format.elements) {
        const int location = AttributeLocation(element.Usage, element.UsageIndex);
        const ElementType type = TypeOf(element.Type);
        if (location < 0 || type.size == 0 || element.Stream != 0 || element.Offset > LargestOffset)
            continue;
        const auto index = static_cast<GLuint>(location);
        glEnableVertexArrayAttrib(layout->name, index);
        glVertexArrayAttribFormat(layout->name, index, type.size, type.type, type.normalized,
                                  element.Offset);
        glVertexArrayAttribBinding(layout->name, index, 0);
        layout->hasNormal |= element.Usage == D3DDECLUSAGE_NORMAL && element.UsageIndex == 0;
        layout->hasColor |= element.Usage == D3DDECLUSAGE_COLOR && element.UsageIndex == 0;
        layout->hasCoordinates |= element.Usage == D3DDECLUSAGE_TEXCOORD && element.UsageIndex == 0;
    }
    return *layout;
}

void VertexLayouts::Forget(GLuint buffer) {
    for (auto& [key, layout] : mLayouts) {
        if (layout->vertices.Value().buffer == buffer) {
            glVertexArrayVertexBuffer(layout->name, 0, 0, 0, 0);
            layout->vertices = {};
        }
        if (layout->indices.Value() == buffer) {
            glVertexArrayElementBuffer(layout->name, 0);
            layout->indices = {};
        }
    }
}

void VertexLayouts::Free() {
    for (auto& [key, layout] : mLayouts)
        glDeleteVertexArrays(1, &layout->name);
    mLayouts.clear();
    mById.clear();
}

} // namespace VornPlatform
