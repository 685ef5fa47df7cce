// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/mesh_copies.hpp"
#include "platform/d3d9/gl/gl_counters.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

namespace VornPlatform {

namespace {

// Of one mesh, and of all its copies.
constexpr std::int64_t MostVertices = 256;
constexpr std::size_t MostBytes = 1 << 20;

void Fetch(const GlBuffer& buffer, std::size_t offset, std::size_t size, void* to) {
    if (size > 0)
        glGetNamedBufferSubData(buffer.Name(), static_cast<GLintptr>(offset),
                                static_cast<GLsizeiptr>(size), to);
}

std::vector<GLuint> FetchIndices(const MeshKey& key) {
    std::vector<GLuint> indices(key.count);
    if (!key.indices) {
        for (UINT i = 0; i < key.count; ++i)
            indices[i] = key.start + i;
    } else if (key.wide) {
        Fetch(*key.indices, std::size_t(key.start) * 4, indices.size() * 4, indices.data());
    } else {
        std::vector<GLushort> narrow(key.count);
        Fetch(*key.indices, std::size_t(key.start) * 2, narrow.size() * 2, narrow.data());
        std::copy(narrow.begin(), narrow.end(), indices.begin());
    }
    return indices;
}

} // namespace

std::size_t MeshCopies::Hash::operator()(const MeshKey& key) const {
    std::size_t hash = std::hash<const void*>()(key.vertices);
    for (const std::size_t part :
         {std::hash<const void*>()(key.indices), std::size_t(key.offset), std::size_t(key.start),
          std::size_t(key.count), static_cast<std::size_t>(key.baseVertex)})
        hash = hash * 31 + part;
    return hash;
}

MeshCopy MeshCopies::read(const MeshKey& key) {
    MeshCopy mesh;
    std::vector<GLuint> indices = FetchIndices(key);
    if (indices.empty())
        return mesh;
    const auto [least, most] = std::minmax_element(indices.begin(), indices.end());
    const std::int64_t first = std::int64_t(*least) + (key.indices ? key.baseVertex : 0);
    const std::int64_t count = std::int64_t(*most) - *least + 1;
    if (first < 0 || count > MostVertices)
        return mesh;

    // Vertices beyond the end of the buffer are zeros, here as there.
    mesh.shift = static_cast<unsigned int>(std::bit_width(static_cast<std::uint64_t>(count - 1)));
    mesh.vertices.resize((std::size_t(1) << mesh.shift) * key.stride);
    const std::uint64_t begin = key.offset + static_cast<std::uint64_t>(first) * key.stride;
    const std::uint64_t size = key.vertices->Size();
    if (begin < size)
        Fetch(*key.vertices, begin,
              std::min<std::uint64_t>(size - begin, static_cast<std::uint64_t>(count) * key.stride),
              mesh.vertices.data());
    const GLuint lowest = *least;
    for (GLuint& index : indices)
        index -= lowest;
    mesh.indices = std::move(indices);
    return mesh;
}

void MeshCopies::grow(MeshCopy& mesh, UINT copies) {
    std::vector<std::byte> vertices;
    std::vector<GLuint> indices;
    vertices.reserve(mesh.vertices.size() * copies);
    indices.reserve(mesh.indices.size() * copies);
    for (UINT copy = 0; copy < copies; ++copy) {
        vertices.insert(vertices.end(), mesh.vertices.begin(), mesh.vertices.end());
        for (const GLuint index : mesh.indices)
            indices.push_back(index + (copy << mesh.shift));
    }
    for (GLuint* buffer : {&mesh.vertexBuffer, &mesh.indexBuffer})
        if (!*buffer) {
            glCreateBuffers(1, buffer);
            ++glCounters.buffers;
        }
    glNamedBufferData(mesh.vertexBuffer, static_cast<GLsizeiptr>(vertices.size()), vertices.data(),
                      GL_STATIC_DRAW);
    glNamedBufferData(mesh.indexBuffer, static_cast<GLsizeiptr>(indices.size() * sizeof indices[0]),
                      indices.data(), GL_STATIC_DRAW);
    mesh.copies = copies;
}

const MeshCopy& MeshCopies::Of(const MeshKey& key, UINT wanted) {
    auto found = mMeshes.find(key);
    if (found == mMeshes.end()) {
        found = mMeshes.emplace(key, read(key)).first;
        key.vertices->NoteCopied();
        if (key.indices)
            key.indices->NoteCopied();
    }
    MeshCopy& mesh = found->second;
    if (mesh.indices.empty() || wanted <= mesh.copies)
        return mesh;
    const std::size_t most =
        std::max<std::size_t>(MostBytes / (mesh.vertices.size() + mesh.indices.size() * 4), 1);
    const auto copies = static_cast<UINT>(std::min<std::size_t>(std::bit_ceil(wanted), most));
    if (copies > mesh.copies)
        grow(mesh, copies);
    return mesh;
}

void MeshCopies::freeBuffers(const MeshCopy& mesh) {
    for (const GLuint buffer : {mesh.vertexBuffer, mesh.indexBuffer})
        if (buffer) {
            glDeleteBuffers(1, &buffer);
            --glCounters.buffers;
        }
}

void MeshCopies::Free() {
    for (auto& [key, mesh] : mMeshes)
        freeBuffers(mesh);
    mMeshes.clear();
}

} // namespace VornPlatform
