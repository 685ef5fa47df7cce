// SPDX-License-Identifier: MIT
#include "vorn/resource/mesh.hpp"

#include <algorithm>
#include <memory>
#include <utility>

namespace Vorn {

Mesh::Mesh(const Mesh& mesh)
    : mBones(mesh.mBones), mRoots(mesh.mRoots), mBoneCount(mesh.mBoneCount),
      mDuration(mesh.mDuration), mIndexCount(mesh.mIndexCount), mVertexCount(mesh.mVertexCount),
      mSkinned(mesh.mSkinned), mVertexBuffer(mesh.mVertexBuffer), mIndexBuffer(mesh.mIndexBuffer) {
    std::unique_ptr<Vertex_UTx[]> vertices;
    if (mesh.mVertices && mVertexCount) {
        vertices.reset(new Vertex_UTx[mVertexCount]);
        // Not by assignment, which leaves weights and bones.
        std::uninitialized_copy_n(mesh.mVertices, mVertexCount, vertices.get());
    }
    if (mesh.mIndices && mIndexCount) {
        mIndices = new unsigned int[mIndexCount];
        std::copy_n(mesh.mIndices, mIndexCount, mIndices);
    }
    mVertices = vertices.release();
}

Mesh::~Mesh() {
    Clear();
}

void Mesh::Clear() {
    delete[] std::exchange(mVertices, nullptr);
    delete[] std::exchange(mIndices, nullptr);
    delete[] std::exchange(mFinalTransforms, nullptr);
    mBones.clear();
    mRoots.clear();
    mBoneCount = mIndexCount = mVertexCount = 0;
    mDuration = mTime = 0.0f;
    mSkinned = false;
}

} // namespace Vorn
