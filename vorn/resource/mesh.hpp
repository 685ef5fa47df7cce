// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/vertex.hpp"
#include "vorn/resource/bone.hpp"

#include <d3dx9.h>

#include <cstdint>
#include <vector>

namespace Vorn {

/// A model that can be drawn: vertices and indices in memory, the same on the device, and the bones
/// of one that is skinned. The arrays are the mesh's, made with `new[]`. The device buffers are
/// released by MeshManager and ModelLoader only, and a copy shares them uncounted.
struct VORN_API Mesh {
    /// Stay after they are on the device: a reset is answered from them.
    Vertex_UTx* mVertices = nullptr;
    unsigned int* mIndices = nullptr;
    /// A parent stands before its children.
    std::vector<Bone> mBones;
    /// Indices of the bones without a parent.
    std::vector<int> mRoots;
    /// The length of mBones and of mFinalTransforms.
    std::uint32_t mBoneCount = 0;
    /// Of the animation, which starts over then (unit: seconds).
    float mDuration = 0.0f;
    /// The clock, from 0 up to mDuration.
    float mTime = 0.0f;
    /// What the shader gets: mFinal of each bone, transposed. Null without bones.
    D3DXMATRIX* mFinalTransforms = nullptr;
    /// Three a triangle.
    std::uint32_t mIndexCount = 0;
    std::uint32_t mVertexCount = 0;
    /// The vertices have weights and bones.
    bool mSkinned = false;
    /// Null where the device has no such buffer: nothing to hold, no device, or one being reset.
    IDirect3DVertexBuffer9* mVertexBuffer = nullptr;
    IDirect3DIndexBuffer9* mIndexBuffer = nullptr;

    Mesh() = default;
    /// With arrays of its own and the clock at 0; without mFinalTransforms.
    Mesh(const Mesh& mesh);
    Mesh& operator=(const Mesh&) = delete;
    ~Mesh();

    /// Frees what is in memory: everything as in a new mesh, but for the device buffers.
    void Clear();
};

} // namespace Vorn
