// SPDX-License-Identifier: MIT
//
// Small meshes, each many times one behind the other in buffers of our own, so that one draw shows
// it with many sets of constants:
//
//   const MeshCopy& mesh = copies.Of({vertices, 0, 24, indices, true, 0, 0, 6}, wanted);
//   draw n * mesh.indices.size() indices; vertex v belongs to copy v >> mesh.shift
#pragma once

#include "platform/d3d9/gl/gl_buffer.hpp"

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace VornPlatform {

/// A list of triangles as a draw names it.
struct MeshKey {
    const GlBuffer* vertices = nullptr;
    UINT offset = 0, stride = 0;       // (unit: bytes)
    const GlBuffer* indices = nullptr; // null: vertices one behind the other
    bool wide = true;
    UINT start = 0; // the first index, or the first vertex
    INT baseVertex = 0;
    UINT count = 0; // of indices

    bool operator==(const MeshKey&) const = default;
};

struct MeshCopy {
    std::vector<std::byte> vertices; // of one copy, which begins at a multiple of 1 << shift
    std::vector<GLuint> indices;     // empty: its vertices lie too far apart
    unsigned int shift = 0;
    UINT copies = 0; // that the buffers hold
    GLuint vertexBuffer = 0, indexBuffer = 0;
};

class MeshCopies {
public:
    bool Knows(const MeshKey& key) const { return mMeshes.contains(key); }
    /// With `wanted` copies, or as many as are sensible; with none if it cannot be copied.
    const MeshCopy& Of(const MeshKey& key, UINT wanted);
    /// The buffer is written or about to go. Calls `gone` with each buffer that goes with it.
    template <typename Function>
    void Forget(const GlBuffer& buffer, Function gone) {
        for (auto entry = mMeshes.begin(); entry != mMeshes.end();) {
            const auto& [key, mesh] = *entry;
            if (key.vertices != &buffer && key.indices != &buffer) {
                ++entry;
                continue;
            }
            gone(mesh.vertexBuffer);
            gone(mesh.indexBuffer);
            freeBuffers(mesh);
            entry = mMeshes.erase(entry);
        }
    }
    bool Full() const { return mMeshes.size() >= 256; }
    void Free();

private:
    struct Hash {
        std::size_t operator()(const MeshKey& key) const;
    };
    static MeshCopy read(const MeshKey& key);
    static void grow(MeshCopy& mesh, UINT copies);
    static void freeBuffers(const MeshCopy& mesh);

    std::unordered_map<MeshKey, MeshCopy, Hash> mMeshes;
};

} // namespace VornPlatform
